#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(ServeCommand, SaysWhereItListensAndEndsInOrder) {
  CommandedBoard board;
  EXPECT_EQ(board.stop(), 0);
  const std::string errors = board.process().errors();
  EXPECT_THAT(errors, HasSubstr("listening on " + board.directory().pathOf("teamwork-board.sock")));
  EXPECT_THAT(errors, Not(HasSubstr("person_"))) << "nobody asked for a log";
  EXPECT_FALSE(std::filesystem::exists(board.directory().pathOf("teamwork-board.sock")));
  EXPECT_TRUE(std::filesystem::exists(board.directory().pathOf("board.db")));
}

TEST(ServeCommand, WritesALineForEachRequestWhenAsked) {
  const testing::TempDir dir;
  testing::Process process({testing::boardProgram(), {"serve", "--log", "--dir", dir.path()}, {}});
  const Instant deadline = SteadyClock().now() + realPatience;
  while (typed(dir.path(), {"threads"}).status != 0 && isBefore(deadline)) continue;
  typed(dir.path(), {"run", "sh", "-c", "qp register then claim t9"});
  typed(dir.path(), {"comment", "3", "x"});
  process.signal(SIGTERM);
  EXPECT_EQ(process.waitForExit(), 0);
  const std::string errors = process.errors();
  EXPECT_THAT(errors, HasSubstr("quillpost-board: person person_threads: written\n"));
  EXPECT_THAT(errors, ContainsRegex("quillpost-board: [0-9a-f][0-9a-f][0-9a-f][0-9a-f] register: "
                                    "registered\n"));
  EXPECT_THAT(errors, HasSubstr(" claim_task t9: error: "));
  EXPECT_THAT(errors, HasSubstr("person person_comment 3: error: No task is called t000003."));
}

TEST(ServeCommand, AFolderThatCannotBeMadeIsToldOf) {
  const testing::TempDir dir;
  dir.write("file", "");
  const Said said = typed(dir.pathOf("file/below"), {"serve"});
  EXPECT_EQ(said.status, 1);
  EXPECT_THAT(said.errors, HasSubstr("cannot make"));
}

}  // namespace
}  // namespace quillpost::board
