#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(RunCommand, GivesASeatWithQpOnThePathAndFreesItWithTheCommandsStatus) {
  const CommandedBoard board;
  const Said said = board.type({"run", "--name", "Ada", "sh", "-c",
                                "qp register && qp agents && test -S \"$QUILLPOST_COLLAB_SOCKET\" "
                                "&& test -r \"$QUILLPOST_COLLAB_TOKEN_FILE\" && echo HOME=$HOME; "
                                "exit 7"},
                               {{"HOME", "/somewhere"}, {"QUILLPOST_SESSION_ID", "another's"}});
  EXPECT_EQ(said.status, 7) << said.errors;
  EXPECT_THAT(said.output, HasSubstr("\"name\":\"Ada\""));
  EXPECT_THAT(said.output, HasSubstr("HOME=/somewhere"));
  EXPECT_EQ(board.type({"seats"}).output, "There is nothing to show.\n");
}

TEST(RunCommand, WhatItsAgentHeldGoesBackToThePool) {
  const CommandedBoard board;
  board.type({"add", "one"});
  EXPECT_EQ(board.type({"run", "sh", "-c", "qp register then claim t000001"}).status, 0);
  EXPECT_THAT(board.type({"show"}).output, HasSubstr("READY\n  t000001"));
}

TEST(RunCommand, ACommandThatIsNotThereFreesTheSeatToo) {
  const CommandedBoard board;
  const Said said = board.type({"run", "no-such-program-here"});
  EXPECT_EQ(said.status, 127);
  EXPECT_THAT(said.errors, HasSubstr("cannot run no-such-program-here"));
  EXPECT_EQ(board.type({"seats"}).output, "There is nothing to show.\n");
}

TEST(RunCommand, WithoutABoardNothingIsRun) {
  const testing::TempDir dir;
  const Said said = typed(dir.path(), {"run", "sh", "-c", "echo ran"});
  EXPECT_EQ(said.status, 1);
  EXPECT_EQ(said.output, "");
  EXPECT_THAT(said.errors, HasSubstr("quillpost-board serve"));
}

TEST(RunCommand, ASignalIsHandedOnAndTheSeatFreedAfterwards) {
  const CommandedBoard board;
  testing::Process process({testing::boardProgram(),
                            {"--dir", board.directory().path(), "run", "sh", "-c",
                             "trap 'echo told; exit 3' TERM; echo ready; while :; do sleep 0.05; "
                             "done"},
                            {{"PATH", "/usr/bin:/bin"}}});
  EXPECT_EQ(process.readLine(), "ready");
  process.signal(SIGTERM);
  EXPECT_EQ(process.readLine(), "told");
  EXPECT_EQ(process.waitForExit(), 3);
  EXPECT_EQ(board.type({"seats"}).output, "There is nothing to show.\n");
}

TEST(RunCommand, TwoAtOnceHaveSeatsOfTheirOwn) {
  const CommandedBoard board;
  const Said said = board.type({"run", "sh", "-c",
                                "quillpost-board --dir \"$0\" run sh -c 'qp register' >&2; "
                                "quillpost-board --dir \"$0\" seats",
                                board.directory().path()});
  EXPECT_THAT(said.output, ContainsRegex("^SEATS\n  main  [A-Z0-9]+  -\n$")) << said.errors;
  EXPECT_THAT(said.errors, Not(HasSubstr("quillpost-board:")));
}

}  // namespace
}  // namespace quillpost::board
