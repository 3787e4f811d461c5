// scripts/release where no release can be made: a small repository that has it, and tools that only
// seem to be there.

#include "base/text.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>

namespace quillpost {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using testing::Process;

/// How a command ended and what it said.
struct Outcome {
  int status = -1;
  std::string said;
};

/// A repository with a commit, whose version is 1.0.0 and is tagged so.
class Release : public ::testing::Test {
 protected:
  Release() {
    home.makeDirectory("project/scripts");
    home.write("project/CMakeLists.txt", "project(quillpost-teamwork VERSION 1.0.0 LANGUAGES CXX)");
    std::filesystem::copy_file(testing::inSources("scripts/release"),
                               home.pathOf("project/scripts/release"));
    program("project/scripts/bootstrap", "exit 0");
    shell(
        "mkdir bin && for tool in bash git sed uname dirname mktemp cat rm id env sort; do "
        "ln -s \"$(command -v $tool)\" bin/; done");
    shell(
        "cd project && git init -q && git add -A && git -c user.name=A -c user.email=a@a commit "
        "-qm 'All of it' && git tag v1.0.0");
    // The machine on which a release can be made, but for what cannot be installed.
    program("bin/uname", "echo Linux x86_64");
    program("bin/dpkg-query", "exit 0");
    program("bin/sudo", "exec \"$@\"");
    program("bin/apt-get", "echo 'there is no network' >&2; exit 100");
  }

  /// Writes a script that can be run, in the place of whatever has that name.
  void program(const std::string& name, std::string_view commands) const {
    std::filesystem::remove(home.pathOf(name));
    const std::string path = home.write(name, text::cat("#!/bin/sh\n", commands, "\n"));
    ASSERT_EQ(::chmod(path.c_str(), S_IRWXU), 0);
  }

  Outcome run(std::vector<std::string> words, const std::string& path) const {
    Process process({"/usr/bin/env", std::move(words), {{"PATH", path}, {"HOME", home.path()}}});
    process.closeInput();
    const int status = process.waitForExit(std::chrono::seconds(60)).value_or(-1);
    return {status, process.restOfOutput() + process.errors()};
  }

  void shell(const std::string& commands) const {
    const Outcome ending = run({"sh", "-ec", text::cat("cd '", home.path(), "'; ", commands)},
                               "/usr/local/bin:/opt/homebrew/bin:/usr/bin:/bin");
    ASSERT_EQ(ending.status, 0) << ending.said;
  }

  /// Asks for a release, which must fail with that status; gives what is said of it.
  std::string refused(std::vector<std::string> words, int status = 1) const {
    words.insert(words.begin(), home.pathOf("project/scripts/release"));
    Outcome ending = run(std::move(words), home.pathOf("bin"));
    EXPECT_EQ(ending.status, status) << ending.said;
    EXPECT_FALSE(std::filesystem::exists(home.pathOf("project/dist")));
    return ending.said;
  }

  const testing::TempDir home;
};

TEST_F(Release, IsMadeOfATagAndOfNothingElse) {
  EXPECT_THAT(refused({}, 2), HasSubstr("usage: scripts/release TAG [URL]"));
  EXPECT_EQ(refused({"v9.9.9"}), "scripts/release: there is no tag v9.9.9\n");
  EXPECT_EQ(refused({"HEAD"}), "scripts/release: there is no tag HEAD\n");
  shell("cd project && git tag v2.0.0");
  EXPECT_EQ(refused({"v2.0.0"}),
            "scripts/release: CMakeLists.txt of v2.0.0 has version 1.0.0, which is v1.0.0\n");
}

TEST_F(Release, IsNotMadeBesideWhatNobodyCommitted) {
  home.write("project/new.cpp", "int answer;");
  EXPECT_THAT(refused({"v1.0.0"}), HasSubstr("something here is not committed"));
}

TEST_F(Release, NamesWhatIsMissingAndCouldNotBeInstalled) {
  const std::string said = refused({"v1.0.0"});
  EXPECT_THAT(said, HasSubstr("there is no network"));
  EXPECT_THAT(said, HasSubstr("scripts/release: missing, and could not be installed: "
                              "g++-aarch64-linux-gnu qemu-user-static lintian dpkg-dev\n"));
  program("bin/lintian", "exit 0");
  EXPECT_THAT(refused({"v1.0.0"}), Not(HasSubstr("lintian")));
  shell(
      "cd project && printf '#!/bin/sh\\nexit 1\\n' >scripts/bootstrap && git add -A && "
      "git -c user.name=A -c user.email=a@a commit -qm 'Nothing to build with'");
  EXPECT_THAT(refused({"v1.0.0"}), HasSubstr("what a build needs is not there"));
}

TEST_F(Release, IsMadeOnOneKindOfMachine) {
  program("bin/uname", "echo Darwin arm64");
  EXPECT_THAT(refused({"v1.0.0"}), HasSubstr("a release is made on Debian, on an x86-64 machine"));
}

}  // namespace
}  // namespace quillpost
