#include "board/person/show.h"

#include "board/person/sheets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Raises a question to the person on a task that BB3 holds.
std::string blockedTask(Desk& desk) {
  const std::string id = desk.add("Frame");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task",
           Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"[[ask:{\"k\":\"decision\",)"
                          R"(\"o\":[\"oak\",\"steel\"],\"c\":\"It floats or not\"}]] Of what?")");
  return id;
}

TEST(Showing, PutsWhatNeedsThePersonFirst) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship it")");
  desk.ask("AA2", "set_charter", R"("name":"Owns the ship")");
  const std::string one = blockedTask(desk);
  desk.add("Hüll", text::cat(R"("waitsOn":[")", one, R"("])"));
  desk.add("Mast", R"("priority":2)");
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["human"])");
  desk.at.nowMs += 180'000;
  EXPECT_EQ(sheetText(overviewOf(desk), {}),
            text::cat("  main  T-abc234  revision ", desk.board.counted().rev,
                      "  squad off  open 3  done 0\n"
                      "  Goal: Ship it\n"
                      "  Charter: Owns the ship\n"
                      "\n"
                      "NEEDS YOU\n"
                      "  t000001  question  from BB3  3m ago\n"
                      "           Frame\n"
                      "           Of what?\n"
                      "           1) oak   2) steel\n"
                      "           What it leads to: It floats or not\n"
                      "           > quillpost-board answer t000001 NUMBER\n"
                      "  d000001  discussion  from AA2\n"
                      "           Which way?\n"
                      "           > quillpost-board show d000001; quillpost-board reply d000001 "
                      "TEXT\n"
                      "\n"
                      "BLOCKED\n"
                      "  t000001  BB3  3m  Frame\n"
                      "\n"
                      "READY\n"
                      "  t000003  priority 2  Mast\n"
                      "\n"
                      "WAITING\n"
                      "  t000002  Hüll\n"
                      "           after t000001\n"
                      "\n"
                      "AGENTS\n"
                      "  AA2  ",
                      desk.mark("AA2"),
                      "  working  lease 12m  silent 3m  holds 0\n"
                      "  BB3  ",
                      desk.mark("BB3"),
                      "  working  lease 12m  silent 3m  holds 1\n"
                      "\n"
                      "DISCUSSIONS\n"
                      "  d000001  board  FOR YOU  Which way?  waits for you\n"));
}

TEST(Showing, TellsOfAProposalAndADeletion) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship it")");
  desk.ask("AA2", "delete_task", Desk::on(desk.add("slip")) + R"(,"releaseReason":"twice")");
  desk.ask("AA2", "propose_goal_complete");
  const Sheet sheet = overviewOf(desk);
  EXPECT_THAT(columnOf(sheet, "needs", "kind"), ElementsAre("proposal"));
  EXPECT_THAT(columnOf(sheet, "needs", "from"), ElementsAre("AA2"));
  EXPECT_THAT(columnOf(sheet, "deleted", "reason"), ElementsAre("twice"));
  EXPECT_THAT(columnOf(overviewOf(desk, Extent::open), "deleted", "id"), IsEmpty());
  desk.person(personConfirmGoal);
  EXPECT_THAT(columnOf(overviewOf(desk), "needs", "kind"), IsEmpty());
  EXPECT_THAT(columnOf(overviewOf(desk), "thread", "state"), ElementsAre("GOAL COMPLETE"));
}

TEST(Showing, ATagNeedsThePersonUntilItIsAnswered) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("BB3", "comment_task", Desk::on(id) + R"(,"note":"Is this yours?","tags":["@human"])");
  desk.ask("BB3", "comment_task", Desk::on(id) + R"(,"summary":"asked")");
  const Sheet sheet = overviewOf(desk, Extent::mine);
  EXPECT_THAT(columnOf(sheet, "needs", "kind"), ElementsAre("tag"));
  EXPECT_THAT(columnOf(sheet, "needs", "question"), ElementsAre("Is this yours?"));
  EXPECT_EQ(sheet.sections.size(), 1u) << "what needs the person and nothing else";
  desk.person(personComment, Desk::on(id) + R"(,"body":"Yes")");
  EXPECT_THAT(columnOf(overviewOf(desk, Extent::mine), "needs", "kind"), IsEmpty());
}

TEST(Showing, AnEscalatedDiscussionNeedsThePerson) {
  Desk desk;
  desk.ask("AA2", "open_discussion", R"("body":"Left or right?","tags":["BB3"])");
  for (int i = 0; i < 4; ++i) {
    desk.ask("BB3", "reply_discussion", R"("discussionID":"d000001","body":"Left")");
    desk.ask("AA2", "reply_discussion", R"("discussionID":"d000001","body":"Right")");
  }
  EXPECT_THAT(columnOf(overviewOf(desk), "needs", "kind"), ElementsAre("escalated"));
  EXPECT_THAT(columnOf(overviewOf(desk), "debates", "volleys"), ElementsAre("FOR YOU"));
}

TEST(Showing, TheUsualExtentHasTheLatestOfWhatIsDone) {
  Desk desk;
  for (int i = 0; i < 7; ++i) {
    const std::string id = desk.add("work");
    desk.claim("BB3", id);
    desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":"done and looked at")");
  }
  desk.ask("AA2", "reject_task", Desk::on(desk.add("never")));
  EXPECT_THAT(columnOf(overviewOf(desk), "done", "id"),
              ElementsAre("t000007", "t000006", "t000005", "t000004", "t000003"));
  EXPECT_THAT(columnOf(overviewOf(desk), "declined", "id"), IsEmpty());
  EXPECT_THAT(columnOf(overviewOf(desk, Extent::open), "done", "id"), IsEmpty());
  EXPECT_EQ(columnOf(overviewOf(desk, Extent::all), "done", "id").size(), 7u);
  EXPECT_THAT(columnOf(overviewOf(desk, Extent::all), "declined", "id"), ElementsAre("t000008"));
}

TEST(Showing, OfSeveralThreadsAllThatNeedsThePersonIsShown) {
  Desk one;
  Desk two;
  two.board.editThread().name = "my other";
  blockedTask(two);
  const Board* const boards[] = {&one.board, &two.board};
  const Sheet sheet = boardSheet(boards, Extent::usual, one.at);
  EXPECT_THAT(columnOf(sheet, "threads", "thread"), ElementsAre("main", "my other"));
  EXPECT_THAT(columnOf(sheet, "threads", "needing"), ElementsAre("0", "1"));
  EXPECT_THAT(columnOf(sheet, "thread", "thread"), ElementsAre("main"));
  EXPECT_THAT(columnOf(sheet, "needs", "thread"), ElementsAre("my other"));
  EXPECT_THAT(columnOf(sheet, "needs", "do"),
              ElementsAre("quillpost-board answer t000001 NUMBER --thread 'my other'"));
}

TEST(Showing, AnAgentsStateIsWhatItIsDoing) {
  Desk desk;
  desk.sit("CC4");
  EXPECT_EQ(stateOf(desk.seat("CC4"), desk.at), "-");
  EXPECT_EQ(stateOf(desk.seat("AA2"), desk.at), "working");
  desk.ask("AA2", "heartbeat", R"("waiting":true)");
  EXPECT_EQ(stateOf(desk.seat("AA2"), desk.at), "listening");
  desk.ask("AA2", "heartbeat", R"("waiting":true,"standDown":true)");
  EXPECT_EQ(stateOf(desk.seat("AA2"), desk.at), "stood down");
  desk.at.nowMs += quietAfterMs + 1;
  EXPECT_EQ(stateOf(desk.seat("BB3"), desk.at), "silent");
  desk.pass(900);
  EXPECT_EQ(stateOf(desk.seat("BB3"), desk.at), "away");
}

TEST(Showing, WhatAgentsWroteSteersNoTerminal) {
  Desk desk;
  const std::string id = desk.add(R"(\u001b]52;c;cm0=\u0007title\u202e)");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"two\u009bJ\u001b[2J")");
  const std::string text = sheetText(overviewOf(desk), {80, false});
  EXPECT_THAT(text, HasSubstr("␛]52;c;cm0=␇title<U+202E>"));
  EXPECT_THAT(text, HasSubstr("two<U+009B>J␛[2J"));
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace quillpost::board
