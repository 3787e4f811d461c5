#include "board/person/sheets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(Whole, ATaskIsShownWithAllThatIsKnownOfIt) {
  Desk desk;
  const std::string before = desk.add("Plan");
  const std::string id = desk.add(
      "Frame", text::cat(R"("body":"Line one\nLine two","priority":3,"taskType":"build",)"
                         R"("resources":["hull/","mast"],"assignedRole":"shipwright","waitsOn":[")",
                         before, R"("])"));
  desk.claim("AA2", before);
  desk.ask("AA2", "complete_task", Desk::on(before) + R"(,"summary":"planned")");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"keel laid","summary":"half way")");
  desk.person(personComment, Desk::on(id) + R"(,"body":"Good\nGo on")");
  desk.ask("AA2", "watch_task", Desk::on(id));
  desk.ask("BB3", "request_review", Desk::on(id) + R"(,"note":"look at the keel")");
  const std::string text = wholeOf(desk, "2");
  EXPECT_THAT(text, HasSubstr("t000002  working  BB3  lease 15m  priority 3  type build\n"));
  for (const char* line :
       {"  Frame\n", "  Waits on: t000001\n", "  Role: shipwright\n", "  Touches: hull/, mast\n",
        "  Review: requested, asked for by BB3: look at the keel\n", "  Watched by: BB3, AA2\n",
        "BRIEF\n  Line one\n  Line two\n", "  BB3  progress  keel laid\n",
        "  BB3  gist      half way\n"})
    EXPECT_THAT(text, HasSubstr(line));
  EXPECT_THAT(text, HasSubstr("  you  comment   Good\n")) << text;
  EXPECT_EQ(wholeOf(desk, "t2"), text);
  EXPECT_EQ(wholeOf(desk, "t9"), "");
}

TEST(Whole, OfALongLogTheLatestLinesAreShownAndTheOthersCounted) {
  Desk desk;
  const std::string id = desk.add("Frame");
  Task& task = *desk.board.tasks.touch(id);
  for (const std::string& words : {std::string("first"), std::string(std::size_t{4} << 20, 'x')})
    addLine(desk.board, task, {"", LogKind::comment, "", "", words, 0});
  EXPECT_EQ(columnOf(*wholeSheet(desk.board, id, desk.at), "log", "text").front(),
            "(1 earlier line is left out; `export` has it)");
}

TEST(Whole, AWaitOnADeclinedTaskSaysSo) {
  Desk desk;
  desk.add("Plan");
  desk.add("Frame", R"("waitsOn":["t000001","t000009"])");
  desk.person(personReject, R"("taskID":"1","releaseReason":"no use")");
  EXPECT_THAT(wholeOf(desk, "2"), HasSubstr("  Waits on: t000001, t000009\n"));
  EXPECT_THAT(wholeOf(desk, "2"), HasSubstr("waits on t000001 (declined: no use)\n"));
  EXPECT_THAT(columnOf(overviewOf(desk), "waiting", "note"),
              ElementsAre("after t000001 (declined: no use), t000009"));
}

TEST(Whole, ATaskThatWasDeletedIsStillShown) {
  Desk desk;
  const std::string id = desk.add("slip");
  desk.ask("AA2", "delete_task", Desk::on(id));
  EXPECT_THAT(wholeOf(desk, id), HasSubstr("t000001  deleted\n  slip\n"));
}

TEST(Whole, ADiscussionIsShownWithItsVolleys) {
  Desk desk;
  desk.ask("AA2", "open_discussion", R"("body":"Left or right?","tags":["BB3","human"])");
  desk.ask("BB3", "reply_discussion", R"("discussionID":"d000001","body":"Left,\nof course")");
  desk.person(personReply, R"("taskID":"d1","body":"Right")");
  const std::string text = wholeOf(desk, "d1", 80);
  EXPECT_THAT(text, HasSubstr("  d000001  open\n  Between: AA2, BB3, you\n  Left or right?\n"));
  EXPECT_THAT(text, HasSubstr("Waits for: AA2\n"));
  EXPECT_THAT(text, HasSubstr("  BB3  Left,\n"));
  EXPECT_THAT(text, HasSubstr("  you  Right\n"));
}

TEST(Whole, AnAgentIsShownWithWhatItHoldsAndDidLast) {
  Desk desk;
  const std::string id = desk.add("Frame");
  desk.ask("BB3", "register", R"("name":"Bo","status":"at the keel","role":"Reviewer")");
  desk.claim("BB3", id);
  const std::string text = wholeOf(desk, "bb3");
  EXPECT_THAT(text, HasSubstr(text::cat("  BB3  ", desk.mark("BB3"), "  working  lease 15m")));
  EXPECT_THAT(text, HasSubstr("  Role: Reviewer\n"));
  EXPECT_THAT(text, HasSubstr("IN WORK\n  t000001  BB3 Bo  0s  Frame\n"));
  EXPECT_THAT(text, HasSubstr("taskClaimed  t000001  Frame\n"));
  EXPECT_EQ(wholeOf(desk, "Bo"), text) << "by its name too";
}

TEST(Whole, EverySeatIsListedAndWhoSitsThere) {
  Desk desk;
  desk.sit("CC4");
  const Board* const boards[] = {&desk.board};
  const Sheet sheet{0, 0, {seatRows(boards, desk.at)}};
  EXPECT_THAT(columnOf(sheet, "seats", "handle"), ElementsAre("AA2", "BB3", "CC4"));
  EXPECT_THAT(columnOf(sheet, "seats", "state"), ElementsAre("working", "working", "-"));
}

TEST(Whole, AMoveIsTheBoardsThePersonsOrAnAgents) {
  Change change;
  change.kind = MoveKind::taskLapsed;
  change.atMs = 1;
  std::vector<Change> changes(3, change);
  changes[1].by = human;
  changes[2].by = "#a3f9";
  changes[2].byName = "KQ3";
  const Sheet sheet{0, 0, {moveRows(changes)}};
  EXPECT_THAT(columnOf(sheet, "moves", "by"), ElementsAre("board", "you", "KQ3"));
  EXPECT_THAT(columnOf(sheet, "moves", "move"),
              ElementsAre("taskLapsed", "taskLapsed", "taskLapsed"));
}

}  // namespace
}  // namespace quillpost::board
