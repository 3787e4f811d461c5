// contrib/git/pre-commit in a real repository, with a real board beside it.

#include "harness/paths.h"
#include "shell_agent/shell_agent.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace quillpost {
namespace {

using board::RealBoard;

/// A repository with the hook, in which one agent holds src/leases and another commits.
class CommitHook : public ::testing::Test {
 protected:
  CommitHook() {
    holder.run(
        "qp register Holder then add 'Parse leases' --resources src/leases then "
        "claim t000001");
    committer.run("qp register Committer");
    committer.run(
        "git init -q ~/project && cd ~/project && git config user.name C && git config user.email "
        "c@c &&"
        "mkdir -p src/leases docs && echo 1 >src/leases/a.cpp && echo 1 >'docs/a b.md' && "
        "echo 1 >docs/ä.md && git add . && git commit -qm 'Before the hook'");
    committer.run(text::cat("cp '", testing::inSources("contrib/git/pre-commit"),
                            "' ~/project/.git/hooks/pre-commit"));
  }

  /// What a commit of the command's changes says, which must end with that status.
  std::string commitAfter(const std::string& command, int status) const {
    return committer.run(text::cat("cd ~/project && { ", command, "; } && git add -A && ",
                                   "git commit -qm 'A change' 2>&1"),
                         status);
  }

  const RealBoard board;
  const ShellAgent holder{board}, committer{board};
};

TEST_F(CommitHook, LetsPassWhatNobodyElseHolds) {
  EXPECT_EQ(commitAfter("echo 2 >'docs/a b.md'; echo 2 >docs/ä.md", 0), "");
  EXPECT_EQ(committer.run("cd ~/project && git commit -q --allow-empty -m 'No file' 2>&1"), "");
}

TEST_F(CommitHook, StopsACommitOfWhatAnotherHoldsAndSaysWho) {
  const std::string said = commitAfter("echo 2 >src/leases/a.cpp", 1);
  EXPECT_TRUE(has(said, " holds t000001 (Parse leases): src/leases")) << said;
  EXPECT_EQ(committer.run("cd ~/project && git log --oneline | wc -l | tr -d ' \n'"), "1");
  // As any hook of git's, for a person who knows better.
  committer.run("cd ~/project && git commit -qnm 'Past the hook'");
}

TEST_F(CommitHook, StopsACommitThatMovesAwayOrDeletesWhatAnotherHolds) {
  commitAfter("git mv src/leases/a.cpp docs/a.cpp", 1);
  committer.run("cd ~/project && git reset -q --hard");
  commitAfter("git rm -q src/leases/a.cpp", 1);
}

TEST_F(CommitHook, LetsTheHolderCommit) {
  committer.run("chmod -R a+rX ~/project");
  holder.run(text::cat("cd '", committer.home().pathOf("project"),
                       "' && echo 2 >src/leases/a.cpp && ",
                       "git add -A && git commit -qm 'Its own'"));
}

TEST_F(CommitHook, TakesFilesOfAnyName) {
  EXPECT_EQ(commitAfter("touch \"$(printf 'caf\\351')\" then", 0), "");
  const std::string said = commitAfter("touch -- --help --json; echo 2 >src/leases/a.cpp", 1);
  EXPECT_TRUE(has(said, " holds t000001 ")) << said;
}

TEST_F(CommitHook, StopsNobodyWhenTheCommandCannotBeRun) {
  commitAfter(
      "echo 2 >src/leases/a.cpp; mkdir ~/bin; printf '#!/bin/sh\\nexit 2\\n' >~/bin/qp; "
      "chmod +x ~/bin/qp; PATH=~/bin:$PATH",
      0);
}

TEST_F(CommitHook, LetsEverythingPassWhereThereIsNoBoard) {
  commitAfter("echo 2 >src/leases/a.cpp; unset QUILLPOST_SESSION_ID", 0);
  commitAfter("echo 3 >src/leases/a.cpp; export QUILLPOST_COLLAB_SOCKET=/nonexistent", 0);
  commitAfter("echo 4 >src/leases/a.cpp; PATH=/usr/local/bin:/usr/bin:/bin", 0);
}

}  // namespace
}  // namespace quillpost
