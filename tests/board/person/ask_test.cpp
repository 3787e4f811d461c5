#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

TEST(AskCommand, PrintsWhatTheBoardSaysAndItsRefusalsAmongTheErrors) {
  const CommandedBoard board;
  Said said = board.type({"add", "Publish", "the", "bread", "--priority", "2"});
  EXPECT_EQ(said.output, "Added t000001 \"Publish the bread\". It is READY.\n");
  EXPECT_EQ(said.errors, "");
  EXPECT_EQ(said.status, 0);
  said = board.type({"comment", "7", "x"});
  EXPECT_EQ(said.output, "");
  EXPECT_EQ(said.errors, "quillpost-board: No task is called t000007.\n");
  EXPECT_EQ(said.status, 1);
}

TEST(AskCommand, ATextComesFromStandardInput) {
  const CommandedBoard board;
  board.type({"add", "one"});
  EXPECT_EQ(board.type({"comment", "1", "-"}, {}, "`date` and\n$HOME\n").status, 0);
  EXPECT_THAT(board.type({"show", "1"}).output, HasSubstr("`date` and"));
  EXPECT_THAT(board.type({"show", "1"}).output, ContainsRegex("\n +\\$HOME\n"));
}

TEST(AskCommand, ANewBoardIsBegunWithAGoalOrATask) {
  const testing::TempDir dir;
  testing::Process process({testing::boardProgram(), {"--dir", dir.path()}, {}});
  const Instant deadline = SteadyClock().now() + realPatience;
  while (typed(dir.path(), {"threads"}).status != 0 && isBefore(deadline)) continue;
  EXPECT_EQ(typed(dir.path(), {"comment", "1", "x"}).errors,
            "quillpost-board: There is no thread yet: `goal`, `add`, `thread` or `seat` makes the "
            "first one.\n");
  EXPECT_EQ(typed(dir.path(), {"goal", "Ship", "it"}).status, 0);
  EXPECT_THAT(typed(dir.path(), {"threads"}).output, HasSubstr("main"));
}

TEST(AskCommand, ShowIsJsonForPrograms) {
  const CommandedBoard board;
  board.type({"add", "one"});
  const Said said = board.type({"show", "--json"});
  const auto tree = json::parse(said.output);
  ASSERT_TRUE(tree) << said.output;
  EXPECT_EQ(tree->as_object().at("ready").as_array().at(0).as_object().at("id").as_string(),
            "t000001");
}

TEST(AskCommand, MineSaysByItsStatusWhetherSomethingNeedsThePerson) {
  const CommandedBoard board;
  Said said = board.type({"show", "--mine"});
  EXPECT_EQ(said.output, "Nothing needs you.\n");
  EXPECT_EQ(said.status, 0);
  board.type({"goal", "Ship it"});
  RealSeat agent([&] {
    std::map<std::string, std::string> variables;
    const std::string lines = board.type({"seat"}).output;
    for (const std::string_view line : text::split(lines, '\n')) {
      const std::size_t equals = line.find("='");
      if (equals == line.npos) continue;
      variables[std::string(line.substr(7, equals - 7))] =
          line.substr(equals + 2, line.size() - equals - 3);
    }
    return variables;
  }());
  agent.call("register");
  agent.call("propose_goal_complete");
  said = board.type({"show", "--mine"});
  EXPECT_THAT(said.output, HasSubstr("> quillpost-board confirm-goal"));
  EXPECT_EQ(said.status, 1);
  EXPECT_EQ(board.type({"show", "--mine", "--json"}).status, 1);
}

TEST(AskCommand, ASeatIsLinesForAShellAndASentenceForThePerson) {
  const CommandedBoard board;
  const Said said = board.type({"seat", "--name", "Ada"});
  EXPECT_THAT(said.output, ContainsRegex("^export QUILLPOST_SESSION_ID='[0-9a-f]+'\n"));
  EXPECT_THAT(said.errors, ContainsRegex("^quillpost-board: This seat answers to [A-Z0-9]+ on the "
                                         "thread"));
  EXPECT_THAT(board.type({"seats"}).output, HasSubstr("Ada"));
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"seat", "--thread", "mian"},
        {"run", "--thread", "mein", "true"}}) {
    EXPECT_THAT(board.type(command).errors, HasSubstr("A new thread was made. This seat"));
  }
}

TEST(AskCommand, OnSeveralThreadsAWritingCommandNeedsToNameOne) {
  const CommandedBoard board;
  EXPECT_EQ(board.type({"thread", "second"}).status, 0);
  EXPECT_EQ(board.type({"thread", "second"}).status, 1) << "there is one of that name";
  const Said said = board.type({"add", "x"});
  EXPECT_EQ(
      said.errors,
      "quillpost-board: There are several threads (main, second): say which with --thread.\n");
  EXPECT_EQ(said.status, 1);
  EXPECT_EQ(board.type({"add", "x", "--thread", "second"}).status, 0);
  EXPECT_THAT(board.type({"add", "x", "--thread", "third"}).errors, HasSubstr("no thread called"));
  EXPECT_THAT(board.type({"show"}).output, HasSubstr("THREADS\n"));
}

}  // namespace
}  // namespace quillpost::board
