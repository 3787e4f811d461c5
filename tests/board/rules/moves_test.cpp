#include "board/rules/moves.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Moves, EveryChangeHasARevisionOfItsOwn) {
  Desk desk;
  const int64_t before = desk.board.thread().rev;
  record(desk.board, {"goalSet", "", "human"});
  record(desk.board, {"goalSet", "", "human"});
  EXPECT_EQ(desk.board.thread().rev, before + 2);
  EXPECT_EQ(std::prev(desk.board.changes.end())->second.rev, before + 2);
}

TEST(Moves, OnlyTheLatestChangesAreKept) {
  Desk desk;
  for (int64_t i = 0; i < changesKept + 50; ++i) record(desk.board, {"goalSet", "", ""});
  EXPECT_EQ(text::countOf(desk.board.changes), changesKept);
  EXPECT_EQ(std::prev(desk.board.changes.end())->second.rev, desk.board.thread().rev);
}

TEST(Moves, WatchersAreToldOfEveryMoveButTheirOwn) {
  Desk desk({"AA2", "BB3", "CC4"});
  const std::string id = desk.add("one");
  desk.ask("CC4", "watch_task", Desk::on(id));
  desk.claim("BB3", id);
  EXPECT_THAT(desk.wakes("CC4"), ElementsAre("taskWatched " + id));
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
  desk.settle();
  desk.ask("CC4", "comment_task", Desk::on(id) + R"(,"note":"hm")");
  EXPECT_THAT(desk.wakes("CC4"), IsEmpty());
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("taskWatched " + id)) << "a claim watches too";
  EXPECT_THAT(desk.wakes("AA2"), IsEmpty());
}

TEST(Moves, WhoeverIsWokenByNameIsNotToldTwice) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("BB3", "watch_task", Desk::on(id));
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"look","tags":["BB3"])");
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("mentioned " + id));
}

TEST(Moves, WatchNoticesOfOneTaskTakeEachOthersPlace) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("BB3", "watch_task", Desk::on(id));
  for (int i = 0; i < 5; ++i) desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"x")");
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("taskWatched " + id));
}

TEST(Moves, DifferentWakesOfOneKindAllStay) {
  Desk desk;
  for (const char* summary : {"one", "two", "one"})
    wake(desk.board, desk.seat("BB3"), {0, "discussionReply", "t000001", summary, ""});
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("discussionReply t000001", "discussionReply t000001"));
}

TEST(Moves, TooManyWakesGiveWayWatchNoticesFirst) {
  Desk desk;
  wake(desk.board, desk.seat("BB3"), {0, "mentioned", "t000001", "first", ""});
  for (std::size_t i = 0; i < wakesKept; ++i)
    wake(desk.board, desk.seat("BB3"), {0, "taskWatched", text::cat("x", i), "", ""});
  EXPECT_EQ(desk.wakes("BB3").size(), wakesKept);
  EXPECT_EQ(desk.wakes("BB3").front(), "mentioned t000001");
}

TEST(Moves, AnExplicitWatchOutlivesTheClaim) {
  struct Row {
    const char* name;
    bool explicitly;
    bool stays;
  };
  for (const Row& row : {Row{"by the claim", false, false}, Row{"asked for", true, true}}) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string id = desk.add("one");
    desk.claim("BB3", id);
    if (row.explicitly) desk.ask("BB3", "watch_task", Desk::on(id));
    EXPECT_EQ(desk.view("AA2", id).watchers.front().isAuto, !row.explicitly);
    desk.ask("BB3", "release_task", Desk::on(id));
    EXPECT_EQ(desk.view("AA2", id).watchers.size(), row.stays ? 1u : 0u);
  }
}

TEST(Moves, UnwatchEndsEitherWatchAndItsNotice) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"x")");
  EXPECT_TRUE(wasWritten(desk.ask("BB3", "unwatch_task", Desk::on(id))));
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"y")");
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
}

TEST(Moves, WhatWasCarriedIsForgottenAndWhatCameLaterIsNot) {
  Desk desk;
  wake(desk.board, desk.seat("BB3"), {0, "mentioned", "t000001", "early", ""});
  leaveMessage(desk.board, desk.seat("BB3"), {0, "AA2", "", "early", 0});
  const Delivery delivery = deliveryOf(desk.board, desk.seat("BB3"));
  wake(desk.board, desk.seat("BB3"), {0, "mentioned", "t000002", "late", ""});
  leaveMessage(desk.board, desk.seat("BB3"), {0, "AA2", "", "late", 0});
  forgetDelivered(desk.board, delivery);
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("mentioned t000002"));
  ASSERT_EQ(desk.seat("BB3").inbox.size(), 1u);
  EXPECT_EQ(desk.seat("BB3").inbox.front().text, "late");
}

}  // namespace
}  // namespace quillpost::board
