#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

TEST(Showing, PutsTheBoardIntoColumns) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship it")");
  desk.ask("AA2", "set_charter", R"("name":"Owns the ship")");
  const std::string one = desk.add("Frame");
  desk.add("Hüll", text::cat(R"("waitsOn":[")", one, R"("])"));
  desk.claim("BB3", one);
  desk.ask("BB3", "update_task",
           Desk::on(one) + R"(,"blocked":true,"blockerQuestion":"[[ask:{\"k\":\"decision\",)"
                           R"(\"o\":[\"oak\",\"steel\"]}]] Of what?")");
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["human"])");
  desk.sit("CC4");
  EXPECT_EQ(
      showBoard(desk.board, desk.at),
      text::cat("Thread main (T-abc234), revision ", desk.board.counted().rev, ", squad off\n",
                "Charter: Owns the ship\n"
                "Goal: Ship it\n"
                "\n"
                "TASKS\n"
                "  t000001  BLOCKED  BB3  Frame  asks: Of what? (1) oak (2) steel\n"
                "  t000002  waiting  -    Hüll   after t000001\n"
                "\n"
                "AGENTS\n"
                "  AA2  ",
                desk.mark("AA2"),
                "  working      lease 900 s\n"
                "  BB3  ",
                desk.mark("BB3"),
                "  working      lease 900 s\n"
                "  CC4  -      nobody home\n"
                "\n"
                "DISCUSSIONS\n"
                "  d000001  0/8  board  Which way?  waits for human\n"));
}

TEST(Showing, TellsOfAProposalAndADeletion) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship it")");
  desk.ask("AA2", "delete_task", Desk::on(desk.add("slip")) + R"(,"releaseReason":"twice")");
  desk.ask("AA2", "propose_goal_complete");
  const std::string shown = showBoard(desk.board, desk.at);
  EXPECT_THAT(shown, HasSubstr("PROPOSED as complete by AA2"));
  EXPECT_THAT(shown, HasSubstr("  t000001  slip  twice\n"));
}

}  // namespace
}  // namespace quillpost::board
