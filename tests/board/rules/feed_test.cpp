#include "board/rules/feed.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Feed, WhatEndsAWaitAndWhatOnlyAWaitForChangesOfState) {
  struct Row {
    const char* name;
    void (*move)(Desk&, const std::string& id);
    bool ends;
    bool endsEager;
  };
  const Row rows[] = {
      {"nothing", [](Desk&, const std::string&) {}, false, false},
      {"a new task",
       [](Desk& desk, const std::string&) { desk.ask("BB3", "add_task", R"("title":"x")"); }, true,
       true},
      {"a claim", [](Desk& desk, const std::string& id) { desk.claim("BB3", id); }, false, true},
      {"a comment",
       [](Desk& desk, const std::string& id) {
         desk.ask("BB3", "comment_task", Desk::on(id) + R"(,"note":"x")");
       },
       true, true},
      {"the goal",
       [](Desk& desk, const std::string&) { desk.ask("BB3", "set_goal", R"("name":"x")"); }, true,
       true},
      {"an arrival",
       [](Desk& desk, const std::string&) {
         desk.sit("CC4");
         desk.ask("CC4", "register");
       },
       false, true},
      {"its own doing",
       [](Desk& desk, const std::string&) { desk.ask("AA2", "add_task", R"("title":"x")"); }, false,
       false},
      {"reading", [](Desk& desk, const std::string&) { desk.ask("BB3", "list_tasks"); }, false,
       false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string id = desk.add("one");
    const int64_t rev = desk.board.counted().rev;
    row.move(desk, id);
    EXPECT_EQ(hasMoved(desk.board, desk.seat("AA2"), {rev, {}, false}), row.ends);
    EXPECT_EQ(hasMoved(desk.board, desk.seat("AA2"), {rev, {}, true}), row.endsEager);
  }
}

TEST(Feed, AWaitOnTasksEndsWithTheseTasksAndWithTheBoardItself) {
  Desk desk;
  const std::string one = desk.add("one"), two = desk.add("two");
  const int64_t rev = desk.board.counted().rev;
  const Listening listening{rev, {one}, false};
  desk.ask("BB3", "comment_task", Desk::on(two) + R"(,"note":"x")");
  EXPECT_FALSE(hasMoved(desk.board, desk.seat("AA2"), listening));
  const auto feed = feedFor(desk.board, desk.seat("AA2"), listening, desk.at);
  ASSERT_EQ(feed.tasks.size(), 1u);
  EXPECT_EQ(feed.tasks.front().id, one);
  desk.ask("BB3", "set_charter", R"("name":"x")");
  EXPECT_TRUE(hasMoved(desk.board, desk.seat("AA2"), listening));
}

TEST(Feed, FromRevisionZeroNothingHasBeenMissed) {
  Desk desk;
  desk.add("one");
  const auto feed = feedFor(desk.board, desk.seat("BB3"), {0, {}, true}, desk.at);
  EXPECT_FALSE(feed.changed);
  EXPECT_THAT(feed.changes, IsEmpty());
  EXPECT_EQ(feed.rev, desk.board.counted().rev);
  EXPECT_THAT(feed.tasks, IsEmpty());
}

TEST(Feed, FromTheFirstRevisionOnEveryMoveIsNamed) {
  Desk desk;
  const auto feed = feedFor(desk.board, desk.seat("AA2"), {1, {}, true}, desk.at);
  EXPECT_TRUE(feed.changed);
  ASSERT_EQ(feed.changes.size(), 1u) << "the second agent's arrival";
  EXPECT_THAT(feed.changeKinds, ElementsAre(feed.changes.front().kind));
}

TEST(Feed, WhoeverHasLostTrackIsToldThatTheBoardMoved) {
  Desk desk;
  EXPECT_TRUE(hasMoved(desk.board, desk.seat("AA2"), {desk.board.counted().rev + 1, {}, false}));
  for (std::size_t i = 0; i <= changesKept; ++i)
    record(desk.board, {MoveKind::taskProgress, "", ""});
  board::settle(desk.board);
  EXPECT_TRUE(hasMoved(desk.board, desk.seat("AA2"), {1, {}, false}));
  EXPECT_FALSE(hasMoved(desk.board, desk.seat("AA2"), {desk.board.counted().rev - 5, {}, false}));
}

TEST(Feed, AFinishedTaskIsToldOnceWhenTheWholeBacklogIsWatched) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  const int64_t rev = desk.board.counted().rev;
  desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":"did it")");
  EXPECT_EQ(feedFor(desk.board, desk.seat("AA2"), {rev, {}, false}, desk.at).tasks.size(), 1u);
  const int64_t later = desk.board.counted().rev;
  EXPECT_THAT(feedFor(desk.board, desk.seat("AA2"), {later, {}, false}, desk.at).tasks, IsEmpty());
}

TEST(Feed, ATagIsNamedAmongTheKinds) {
  Desk desk;
  const std::string id = desk.add("one");
  const int64_t rev = desk.board.counted().rev;
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"see?","tags":["BB3"])");
  const auto feed = feedFor(desk.board, desk.seat("BB3"), {rev, {}, false}, desk.at);
  EXPECT_THAT(feed.changeKinds, Contains("youWereTagged"));
  ASSERT_EQ(feed.wakeReasons.size(), 1u);
  EXPECT_EQ(feed.wakeReasons.front().kind, "mentioned");
  EXPECT_EQ(feed.wakeReasons.front().taskID, id);
}

TEST(Feed, AnAgentThatHasNotRegisteredSeesTitlesAndNothingElse) {
  Desk desk;
  desk.sit("CC4");
  desk.ask("AA2", "set_goal", R"("name":"secret")");
  desk.add("one", R"("body":"secret","summary":"secret")");
  const auto feed = feedFor(desk.board, desk.seat("CC4"), {1, {}, false}, desk.at);
  EXPECT_EQ(feed.goal, "");
  ASSERT_EQ(feed.tasks.size(), 1u);
  EXPECT_EQ(feed.tasks.front().title, "one");
  EXPECT_EQ(feed.tasks.front().body, "");
  EXPECT_THAT(feed.tasks.front().log, IsEmpty());
}

TEST(Feed, NothingIsToWaitOnOnlyWithoutWorkAndAgents) {
  Desk desk({});
  desk.sit("AA2");
  EXPECT_TRUE(isDeserted(desk.board));
  EXPECT_EQ(desk.ask("AA2", "poll_changes").kind, Desk::Kind::empty);
  desk.ask("AA2", "register");
  EXPECT_FALSE(isDeserted(desk.board));
  desk.add("one");
  desk.ask("AA2", "unregister");
  EXPECT_FALSE(isDeserted(desk.board));
}

TEST(Feed, MessagesTellHowOldTheyAre) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  desk.ask("AA2", "send_message", R"("to":"bb3","body":"mind the gap")");
  desk.pass(42);
  const auto messages = feedFor(desk.board, desk.seat("BB3"), {}, desk.at).messages;
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages.front().from, "AA2");
  EXPECT_EQ(messages.front().text, "mind the gap");
  EXPECT_EQ(messages.front().ageSeconds, 42);
}

TEST(Feed, OfTheWholeBacklogTellsWhatMovedAndWhatTheAgentHolds) {
  Desk desk;
  const std::string held = desk.add("held"), moved = desk.add("moved");
  desk.add("at rest");
  desk.claim("AA2", held);
  const int64_t rev = desk.board.counted().rev;
  desk.ask("BB3", "comment_task", Desk::on(moved) + R"(,"note":"x")");
  const auto feed = feedFor(desk.board, desk.seat("AA2"), {rev, {}, false}, desk.at);
  ASSERT_EQ(feed.tasks.size(), 2u);
  EXPECT_EQ(feed.tasks[0].id, held);
  EXPECT_EQ(feed.tasks[1].id, moved);
}

TEST(Feed, CarriesMessagesOnlyAsFarAsThereIsRoomAndTheRestNextTime) {
  Desk desk;
  const std::string words(1'500'000, 'x');
  for (int i = 0; i < 3; ++i) leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", words, 0});
  EXPECT_EQ(messagesFor(desk.board, desk.seat("BB3"), desk.at).size(), 2u);
  forgetDelivered(desk.board, deliveryOf(desk.board, desk.seat("BB3")));
  EXPECT_EQ(messagesFor(desk.board, desk.seat("BB3"), desk.at).size(), 1u);
}

}  // namespace
}  // namespace quillpost::board
