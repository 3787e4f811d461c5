#include "base/support_directory.h"

#include "harness/fake_environment.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

#include <pwd.h>
#include <unistd.h>

namespace quillpost {
namespace {

using testing::TempDir;

testing::FakeEnvironment with(std::map<std::string, std::string> variables) {
  return testing::FakeEnvironment(std::move(variables));
}

std::string homeOfThisUser() {
  const passwd* entry = ::getpwuid(::getuid());
  return entry == nullptr ? "" : entry->pw_dir;
}

TEST(HomeDirectory, IsTheVariableWhenItNamesOne) {
  EXPECT_EQ(homeDirectory(with({{"HOME", "/h"}})), "/h");
  EXPECT_EQ(homeDirectory(with({{"HOME", "/h/é x/"}})), "/h/é x/");
}

TEST(HomeDirectory, IsThePasswordDatabasesWhenTheVariableIsEmptyOrUnset) {
  EXPECT_EQ(homeDirectory(testing::FakeEnvironment()).value_or(""), homeOfThisUser());
  EXPECT_EQ(homeDirectory(with({{"HOME", ""}})).value_or(""), homeOfThisUser());
}

#if !defined(__APPLE__)
TEST(HomeDirectory, IsWhatTheFirstEntryOfTheUserInThePasswordFileNames) {
  const TempDir directory;
  struct Row {
    const char* name;
    std::string file;
    std::optional<std::string> home;
  };
  const std::string own = "me:x:1000:1000:Me,,,:/home/me:/bin/sh\n";
  for (const Row& row : {
           Row{"one entry", own, "/home/me"},
           Row{"no line feed at the end", own.substr(0, own.size() - 1), "/home/me"},
           Row{"others before", "root:x:0:0:root:/root:/bin/sh\nother:x:100:1000::/o:\n" + own,
               "/home/me"},
           Row{"two entries", own + "twin:x:1000:1000::/home/twin:\n", "/home/me"},
           Row{"comments, blank lines and no entries", "# me\n\n:\nx:y\n+\n" + own, "/home/me"},
           Row{"letters beyond ASCII", "me:x:1000:1:é:/home/é x:", "/home/é x"},
           Row{"a very long line before",
               "long:x:1:1:" + std::string(100'000, 'g') + ":/l:\n" + own, "/home/me"},
           Row{"nobody by that number", "other:x:10000:1000::/o:\nme:x:100:1:::\n", std::nullopt},
           Row{"no directory", "me:x:1000:1000:::/bin/sh\n", std::nullopt},
           Row{"empty", "", std::nullopt},
       }) {
    EXPECT_EQ(homeInPasswordFile(directory.write("passwd", row.file), 1000), row.home) << row.name;
  }
  EXPECT_EQ(homeInPasswordFile(directory.pathOf("missing"), 1000), std::nullopt);
  EXPECT_EQ(homeInPasswordFile(directory.path(), 1000), std::nullopt);
}
#endif

TEST(ReportedSupportDirectory, StandsForTheHomeDirectoryWhereItBeginsWithATilde) {
  struct Row {
    const char* name;
    std::string_view reported, home, path;
  };
  for (const Row& row : {
           Row{"in the home directory", "~/Library/Application Support", "/Users/a",
               "/Users/a/Library/Application Support"},
           Row{"a home directory with a slash at its end", "~/Library/Application Support", "/h/",
               "/h/Library/Application Support"},
           Row{"a whole path", "/Volumes/x/Support", "/Users/a", "/Volumes/x/Support"},
           Row{"nothing", "", "/Users/a", "/Users/a/Library/Application Support"},
           Row{"nothing, and the root for a home", "", "/", "/Library/Application Support"},
           Row{"a tilde further on", "/x/~/y", "/h", "/x/~/y"},
       }) {
    EXPECT_EQ(reportedSupportDirectory(row.reported, row.home), row.path) << row.name;
  }
}

TEST(XdgDataHome, IsTheVariableWhenThatIsAnAbsolutePath) {
  struct Row {
    const char* name;
    std::optional<std::string> variable;
    std::string_view path;
  };
  for (const Row& row : {
           Row{"absolute", "/data", "/data"},
           Row{"the root", "/", "/"},
           Row{"unset", std::nullopt, "/h/.local/share"},
           Row{"empty", "", "/h/.local/share"},
           Row{"relative", "data", "/h/.local/share"},
           Row{"a tilde, which is relative", "~/data", "/h/.local/share"},
       }) {
    EXPECT_EQ(xdgDataHome(row.variable, "/h"), row.path) << row.name;
  }
}

#if !defined(__APPLE__)
TEST(SupportDirectory, IsTheFirstThatExistsAndElseTheFallback) {
  struct Row {
    const char* name;
    std::optional<std::string> variable;
    std::string made, directory;
  };
  for (const Row& row : {
           Row{"variable, and it exists", "data", "data", "data"},
           Row{"variable, and nothing exists", "data", "", "home/Library/Application Support"},
           Row{"variable, and only the other exists", "data", "home/.local/share",
               "home/Library/Application Support"},
           Row{"no variable, and the default exists", std::nullopt, "home/.local/share",
               "home/.local/share"},
           Row{"no variable, and nothing exists", std::nullopt, "",
               "home/Library/Application Support"},
       }) {
    const TempDir root;
    if (!row.made.empty()) root.makeDirectory(row.made);
    testing::FakeEnvironment environment = with({{"HOME", root.pathOf("home")}});
    if (row.variable) environment.variables["XDG_DATA_HOME"] = root.pathOf(*row.variable);
    EXPECT_EQ(supportDirectory(environment), root.pathOf(row.directory)) << row.name;
  }
}

TEST(SupportDirectory, IsNoPlainFile) {
  const TempDir root;
  const testing::FakeEnvironment environment =
      with({{"HOME", "/h"}, {"XDG_DATA_HOME", root.write("data", "")}});
  EXPECT_EQ(supportDirectory(environment), "/h/Library/Application Support");
}
#else
TEST(SupportDirectory, IsInTheHomeDirectoryAsTheSystemReportsIt) {
  const testing::FakeEnvironment environment = with({{"HOME", "/h"}, {"XDG_DATA_HOME", "/"}});
  EXPECT_EQ(supportDirectory(environment), "/h/Library/Application Support");
}
#endif

}  // namespace
}  // namespace quillpost
