#include "qp/seat_file.h"

#include "base/files.h"
#include "base/text.h"
#include "harness/fake_clock.h"
#include "harness/fake_environment.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost {
namespace {

using testing::FakeClock;
using testing::readFile;
using testing::TempDir;

constexpr std::string_view session = "ses-4711-secret";

SeatMemory seenAt(int64_t rev) {
  SeatMemory memory;
  memory.threadTag = "T-1";
  memory.state.lastSeenRev = rev;
  memory.state.hasCursor = true;
  memory.state.selfHandle = "KQ3";
  return memory;
}

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & static_cast<mode_t>(0777);
}

struct SeatFileTest : ::testing::Test {
  SeatFile file() const { return SeatFile(places(), session); }
  MemoryPlaces places() const { return {.runtime = home.pathOf("q"), .temporary = ""}; }
  bool learn(SeatFile&& file, int64_t before, int64_t after) {
    SeatMemory known = seenAt(before);
    known.state.selfHandle.reset();
    return file.learn({.before = known, .after = seenAt(after)}, clock);
  }
  /// A file of the folder, by the seat's file's own name and what follows it.
  void write(std::string_view ending, std::string_view text) const {
    const std::string path = file().path();
    home.write(text::cat("q/", files::lastComponent(path), ending), text);
  }

  TempDir home;
  FakeClock clock;
};

TEST_F(SeatFileTest, RemembersFromOneCommandToTheNext) {
  EXPECT_FALSE(file().load().state.hasCursor);
  ASSERT_TRUE(learn(file(), 0, 41));
  EXPECT_EQ(file().load().state.lastSeenRev, 41);
  EXPECT_EQ(file().load().state.selfHandle, "KQ3");
  EXPECT_EQ(modeOf(file().path()), mode_t{0600});
  EXPECT_EQ(modeOf(home.pathOf("q")), mode_t{0700});
}

TEST_F(SeatFileTest, TellsNothingOfTheSessionByItsNameOrItsContent) {
  ASSERT_TRUE(learn(file(), 0, 41));
  EXPECT_EQ(file().path().find("4711"), std::string::npos);
  EXPECT_EQ(readFile(file().path()).find("4711"), std::string::npos);
}

TEST_F(SeatFileTest, IsAnotherForAnotherSession) {
  ASSERT_TRUE(learn(file(), 0, 41));
  SeatFile other(places(), "ses-2");
  EXPECT_NE(other.path(), file().path());
  EXPECT_FALSE(other.load().state.hasCursor);
}

TEST_F(SeatFileTest, RemembersNothingWithoutASession) {
  SeatFile none(places(), "");
  EXPECT_EQ(none.path(), "");
  EXPECT_FALSE(none.learn({.before = {}, .after = seenAt(1)}, clock));
  EXPECT_FALSE(none.load().state.hasCursor);
  EXPECT_FALSE(std::filesystem::exists(home.pathOf("q")));
}

TEST_F(SeatFileTest, TakesTheSecondPlaceWhereTheFirstCannotBe) {
  const MemoryPlaces both = {.runtime = home.pathOf("missing/q"), .temporary = home.pathOf("t")};
  const SeatFile second(both, session);
  EXPECT_TRUE(second.path().starts_with(home.pathOf("t"))) << second.path();
  const SeatFile none({.runtime = home.pathOf("missing/q"), .temporary = ""}, session);
  EXPECT_EQ(none.path(), "");
}

TEST_F(SeatFileTest, MendsTheModeOfItsFolderAndRefusesALink) {
  ASSERT_EQ(::mkdir(home.pathOf("q").c_str(), 0755), 0);
  EXPECT_NE(file().path(), "");
  EXPECT_EQ(modeOf(home.pathOf("q")), mode_t{0700});
  ASSERT_EQ(::symlink(home.pathOf("q").c_str(), home.pathOf("link").c_str()), 0);
  EXPECT_EQ(SeatFile({.runtime = home.pathOf("link"), .temporary = ""}, session).path(), "");
}

TEST_F(SeatFileTest, TakesWhatItCannotReadForMissing) {
  for (const std::string_view text :
       {"", "{}", "no json", R"({"version":2,"thread":"","rev":9,"hasCursor":true,"waits":0})"}) {
    ASSERT_TRUE(learn(file(), 0, 1));
    write("", text);
    EXPECT_FALSE(file().load().state.hasCursor) << text;
    EXPECT_TRUE(learn(file(), 0, 3)) << text;
    EXPECT_EQ(file().load().state.lastSeenRev, 3) << text;
  }
}

TEST_F(SeatFileTest, ReadsNoFileThatOthersMayWriteAndNoLink) {
  ASSERT_TRUE(learn(file(), 0, 41));
  ASSERT_EQ(::chmod(file().path().c_str(), 0622), 0);
  EXPECT_FALSE(file().load().state.hasCursor);
  ASSERT_EQ(::chmod(file().path().c_str(), 0600), 0);
  std::filesystem::rename(file().path(), home.pathOf("elsewhere"));
  std::filesystem::create_symlink(home.pathOf("elsewhere"), file().path());
  EXPECT_FALSE(file().load().state.hasCursor);
}

TEST_F(SeatFileTest, NeverGoesBackWhoeverWritesLast) {
  ASSERT_TRUE(learn(file(), 0, 10));
  ASSERT_TRUE(learn(file(), 10, 15));
  ASSERT_TRUE(learn(file(), 10, 12));
  EXPECT_EQ(file().load().state.lastSeenRev, 15);
}

TEST_F(SeatFileTest, AddsToWhatOthersHaveWrittenSinceItWasRead) {
  ASSERT_TRUE(learn(file(), 0, 10));
  SeatFile mine = file();
  EXPECT_EQ(mine.load().state.lastSeenRev, 10);
  ASSERT_TRUE(learn(file(), 10, 20));
  EXPECT_TRUE(mine.learn({.before = seenAt(10), .after = seenAt(15)}, clock));
  EXPECT_EQ(file().load().state.lastSeenRev, 20);
  EXPECT_TRUE(mine.learn({.before = seenAt(15), .after = seenAt(30)}, clock));
  EXPECT_TRUE(mine.learn({.before = seenAt(30), .after = seenAt(31)}, clock))
      << "by what it wrote itself";
  EXPECT_EQ(file().load().state.lastSeenRev, 31);
}

TEST_F(SeatFileTest, GivesUpWhenOthersHoldItForTooLong) {
  ASSERT_NE(file().path(), "");
  const int holder = ::open(home.pathOf("q").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_GE(holder, 0);
  ASSERT_EQ(::flock(holder, LOCK_EX), 0);
  EXPECT_FALSE(learn(file(), 0, 10));
  EXPECT_LE(clock.elapsed(), std::chrono::milliseconds(2'000));
  EXPECT_GE(clock.elapsed(), std::chrono::milliseconds(1'900));
  ::close(holder);
  EXPECT_TRUE(learn(file(), 0, 10));
}

TEST_F(SeatFileTest, StaysAsItWasWhenItCannotBeWritten) {
  ASSERT_TRUE(learn(file(), 0, 10));
  // Nothing can be written beside it where a folder of that name stands.
  std::filesystem::create_directories(file().path() + ".new/x");
  EXPECT_FALSE(learn(file(), 10, 12));
  EXPECT_EQ(file().load().state.lastSeenRev, 10);
}

TEST_F(SeatFileTest, LeavesNothingBesideItself) {
  ASSERT_TRUE(learn(file(), 0, 10));
  write(".new", "left by one that was killed");
  ASSERT_TRUE(learn(file(), 10, 12));
  const std::filesystem::directory_iterator entries(home.pathOf("q"));
  EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST(MemoryPlaces, AreInTheRuntimeDirectoryAndInTheTemporaryOne) {
  const std::string own = text::cat("quillpost-", uint64_t{::geteuid()});
  const MemoryPlaces both = memoryPlaces(
      testing::FakeEnvironment({{"XDG_RUNTIME_DIR", "/run/user/7"}, {"TMPDIR", "/var/t/"}}));
  EXPECT_EQ(both.runtime, "/run/user/7/quillpost");
  EXPECT_EQ(both.temporary, "/var/t/" + own);
  for (const testing::FakeEnvironment& environment :
       {testing::FakeEnvironment(),
        testing::FakeEnvironment({{"XDG_RUNTIME_DIR", ""}, {"TMPDIR", "relative"}})}) {
    EXPECT_EQ(memoryPlaces(environment).runtime, "");
    EXPECT_EQ(memoryPlaces(environment).temporary, "/tmp/" + own);
  }
}

}  // namespace
}  // namespace quillpost
