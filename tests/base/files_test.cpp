#include "base/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::files {
namespace {

using namespace std::string_literals;

bool all(std::string_view /*name*/) { return true; }

/// A directory of the test's own, gone with everything in it at the end.
class Files : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = std::filesystem::temp_directory_path() / "quillpost-files-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    root_ = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(root_); }

  std::string path(const std::string& name) const { return (root_ / name).string(); }

  std::string written(const std::string& name, std::string_view content) const {
    std::ofstream file(root_ / name, std::ios::binary);
    file << content;
    return path(name);
  }

  void setModified(const std::string& name, timespec modified) const {
    const timespec times[] = {modified, modified};
    ASSERT_EQ(::utimensat(AT_FDCWD, path(name).c_str(), times, 0), 0);
  }

  std::filesystem::path root_;
};

// Reading

TEST_F(Files, AreReadWholeAsTheyStand) {
  for (const std::string& content :
       {""s, "token"s, " seat\r\n/a/b.sock\n\n"s, "Ünïcödé — 日本語 👩‍👩‍👧"s,
        "\0 zero \0"s, "\xEF\xBB\xBF with a mark"s, std::string(4095, 'a'), std::string(4096, 'a'),
        std::string(4097, 'a'), std::string(100'000, 'a')}) {
    EXPECT_EQ(readSmallText(written("file", content)), content) << content.size() << " bytes";
  }
}

TEST_F(Files, AreReadUpToTheLimitAndNoFurther) {
  const std::string exactly(smallFileLimit, 'a');
  EXPECT_EQ(readSmallText(written("exact", exactly)), exactly);
  EXPECT_EQ(readSmallText(written("above", exactly + "a")), std::nullopt);
}

TEST_F(Files, ThatAreNotUtf8AreNotRead) {
  EXPECT_EQ(readSmallText(written("lone", "token\xFF")), std::nullopt);
  EXPECT_EQ(readSmallText(written("cut", "token\xE2\x82")), std::nullopt);
  EXPECT_EQ(readSmallText(written("surrogate", "\xED\xA0\x80")), std::nullopt);
  // A character that lies across two pieces of what is read is whole all the same.
  const std::string across = std::string(4095, 'a') + "é" + std::string(5000, 'b');
  EXPECT_EQ(readSmallText(written("across", across)), across);
}

TEST_F(Files, AreReadThroughSymbolicLinks) {
  written("target", "token");
  std::filesystem::create_symlink("target", root_ / "link");
  EXPECT_EQ(readSmallText(path("link")), "token");
}

TEST_F(Files, ThatAreMissingGiveNothing) {
  written("plain", "text");
  std::filesystem::create_symlink("nowhere", root_ / "dangling");
  std::filesystem::create_symlink("loop", root_ / "loop");
  EXPECT_EQ(readSmallText(""), std::nullopt);
  EXPECT_EQ(readSmallText(path("missing")), std::nullopt);
  EXPECT_EQ(readSmallText(path("plain/below")), std::nullopt);
  EXPECT_EQ(readSmallText(path("dangling")), std::nullopt);
  EXPECT_EQ(readSmallText(path("loop")), std::nullopt);
  EXPECT_EQ(readSmallText(path(std::string(5000, 'n'))), std::nullopt);
  EXPECT_EQ(readSmallText(path("plain") + "\0.token"s), std::nullopt);
}

TEST_F(Files, ThatAreNotRegularGiveNothingAndAreNotWaitedFor) {
  ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
  std::filesystem::create_symlink("fifo", root_ / "link");
  EXPECT_EQ(readSmallText(path("fifo")), std::nullopt);
  EXPECT_EQ(readSmallText(path("link")), std::nullopt);
  EXPECT_EQ(readSmallText(root_.string()), std::nullopt);
  EXPECT_EQ(readSmallText("/dev/zero"), std::nullopt);
  EXPECT_EQ(readSmallText("/dev/null"), std::nullopt);
}

TEST_F(Files, LeaveNoDescriptorOpen) {
  const std::string file = written("file", "token");
  const std::string notUtf8 = written("bad", "\xFF");
  const int before = ::open("/", O_RDONLY);
  ::close(before);
  readSmallText(file);
  readSmallText(notUtf8);
  readSmallText(root_.string());
  list(root_.string(), all);
  list(file, all);
  const int after = ::open("/", O_RDONLY);
  ::close(after);
  EXPECT_EQ(after, before);
}

// Listing

std::vector<std::string> namesOf(const std::vector<Entry>& entries) {
  std::vector<std::string> names;
  for (const Entry& entry : entries) names.push_back(entry.name);
  std::ranges::sort(names);
  return names;
}

/// An entry that is not listed has no name.
Entry entryNamed(const std::string& name, const std::vector<Entry>& entries) {
  const auto found = std::ranges::find(entries, name, &Entry::name);
  return found == entries.end() ? Entry{} : *found;
}

TEST_F(Files, AreListedWithoutTheHiddenOnes) {
  for (const char* name : {"b.sock", "a.sock", "a b", "é", "a.", ".hidden", "..odd"}) {
    written(name, "");
  }
  std::filesystem::create_directory(root_ / "folder");
  std::filesystem::create_directory(root_ / ".folder");
  written("folder/below", "");
  EXPECT_EQ(namesOf(list(root_.string(), all)),
            (std::vector<std::string>{"a b", "a.", "a.sock", "b.sock", "folder", "é"}));
  EXPECT_EQ(namesOf(list(root_.string() + "/", all)).size(), 6u);
}

TEST_F(Files, AreListedWhenTheyAreWanted) {
  for (const char* name : {"a.sock", "b.sock", "a.token", ".a.sock"}) written(name, "");
  std::vector<std::string> judged;
  const auto isSocket = [&](std::string_view name) {
    judged.emplace_back(name);
    return name.ends_with(".sock");
  };
  EXPECT_EQ(namesOf(list(root_.string(), isSocket)),
            (std::vector<std::string>{"a.sock", "b.sock"}));
  std::ranges::sort(judged);
  EXPECT_EQ(judged, (std::vector<std::string>{"a.sock", "a.token", "b.sock"}));
}

TEST_F(Files, AreListedWithTheirModificationTimes) {
  written("old", "");
  written("new", "");
  setModified("old", {1'000'000'000, 1'000});
  setModified("new", {1'700'000'000, 999'999'000});
  const std::vector<Entry> entries = list(root_.string(), all);
  const Entry older = entryNamed("old", entries);
  const Entry newer = entryNamed("new", entries);
  ASSERT_TRUE(older.modified && newer.modified);
  EXPECT_EQ(older.modified->tv_sec, 1'000'000'000);
  EXPECT_EQ(older.modified->tv_nsec, 1'000);
  EXPECT_EQ(newer.modified->tv_sec, 1'700'000'000);
  EXPECT_EQ(newer.modified->tv_nsec, 999'999'000);
}

TEST_F(Files, AreToldFromDirectoriesThroughSymbolicLinks) {
  written("file", "");
  setModified("file", {1'000'000'000, 0});
  std::filesystem::create_directory(root_ / "folder");
  std::filesystem::create_symlink("file", root_ / "link-to-file");
  std::filesystem::create_symlink("folder", root_ / "link-to-folder");
  std::filesystem::create_symlink("nowhere", root_ / "dangling");
  const std::vector<Entry> entries = list(root_.string(), all);
  EXPECT_FALSE(entryNamed("file", entries).isDirectory);
  EXPECT_TRUE(entryNamed("folder", entries).isDirectory);
  EXPECT_FALSE(entryNamed("link-to-file", entries).isDirectory);
  EXPECT_TRUE(entryNamed("link-to-folder", entries).isDirectory);
  const Entry link = entryNamed("link-to-file", entries);
  ASSERT_TRUE(link.modified);
  EXPECT_EQ(link.modified->tv_sec, 1'000'000'000);
  const Entry dangling = entryNamed("dangling", entries);
  EXPECT_EQ(dangling.name, "dangling");
  EXPECT_FALSE(dangling.modified);
  EXPECT_FALSE(dangling.isDirectory);
}

TEST_F(Files, AreNotListedWhereThereIsNoDirectory) {
  written("file", "");
  std::filesystem::create_directory(root_ / "empty");
  EXPECT_TRUE(list(path("empty"), all).empty());
  EXPECT_TRUE(list(path("missing"), all).empty());
  EXPECT_TRUE(list(path("file"), all).empty());
  EXPECT_TRUE(list("", all).empty());
  EXPECT_TRUE(list(root_.string() + "\0/x"s, all).empty());
}

// Paths

TEST(JoinPath, PutsOneSlashBetween) {
  struct Row {
    std::string_view directory, name, path;
  };
  for (const Row& row : {
           Row{"/a/b", "c", "/a/b/c"},
           Row{"/a/b/", "c", "/a/b/c"},
           Row{"/a/b//", "//c", "/a/b/c"},
           Row{"/", "c", "/c"},
           Row{"a", "c", "a/c"},
           Row{".", "c", "./c"},
           Row{"", "c", "c"},
           Row{"/a b", "c d/e", "/a b/c d/e"},
       }) {
    EXPECT_EQ(joinPath(row.directory, row.name), row.path) << row.directory << " + " << row.name;
  }
}

TEST(Path, IsTakenApartAtItsLastSlash) {
  struct Row {
    std::string_view path, parent, last;
  };
  for (const Row& row : {
           Row{"/a/b.sock", "/a", "b.sock"},
           Row{"/b.sock", "/", "b.sock"},
           Row{"b.sock", "", "b.sock"},
           Row{"a/b", "a", "b"},
           Row{"/a b/c d", "/a b", "c d"},
           Row{"/a/b/", "/a/b", ""},
           Row{"/", "/", ""},
           Row{"", "", ""},
       }) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(parentPath(row.path), row.parent);
    EXPECT_EQ(lastComponent(row.path), row.last);
  }
}

TEST(Path, IsPutTogetherAgainByJoining) {
  for (const std::string path : {"/a/b.sock", "/b.sock", "b.sock", "a/b", "./b", "/a b/c d"}) {
    EXPECT_EQ(joinPath(parentPath(path), lastComponent(path)), path);
  }
}

TEST(WithExtension, ReplacesTheLastExtensionOfTheLastComponent) {
  struct Row {
    const char* name;
    std::string_view path, replaced;
  };
  for (const Row& row : {
           Row{"a socket", "/x/teamwork-7Q2.sock", "/x/teamwork-7Q2.token"},
           Row{"no extension", "/x/sock", "/x/sock.token"},
           Row{"no directory", "a.sock", "a.token"},
           Row{"the same extension", "/x/a.token", "/x/a.token"},
           Row{"two extensions", "/x/a.b.sock", "/x/a.b.token"},
           Row{"a dot in the directory alone", "/a.b/c", "/a.b/c.token"},
           Row{"a dot in both", "/a.b/c.d", "/a.b/c.token"},
           Row{"a hidden file", "/x/.hidden", "/x/.hidden.token"},
           Row{"a hidden file with an extension", "/x/.hidden.sock", "/x/.hidden.token"},
           Row{"a hidden file without a directory", ".hidden", ".hidden.token"},
           Row{"a dot at the end", "/x/name.", "/x/name.token"},
           Row{"a slash at the end", "/x/a.sock/", "/x/a.token"},
           Row{"slashes at the end", "/x/sock//", "/x/sock.token"},
           Row{"blanks and letters beyond ASCII", "/a b/é ü.so ck", "/a b/é ü.token"},
           Row{"the root", "/", "/"},
           Row{"the root, twice", "//", "/"},
           Row{"nothing", "", ""},
       }) {
    EXPECT_EQ(withExtension(row.path, "token"), row.replaced) << row.name;
  }
}

}  // namespace
}  // namespace quillpost::files
