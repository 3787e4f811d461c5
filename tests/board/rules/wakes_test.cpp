#include "board/rules/wakes.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

TEST(Wakes, DifferentWakesOfOneKindAllStay) {
  Desk desk;
  for (const char* summary : {"one", "two", "one"})
    wake(desk.board, desk.seat("BB3"), {WakeKind::discussionReply, "t000001", summary});
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("discussionReply t000001", "discussionReply t000001"));
}

TEST(Wakes, TooManyWakesGiveWayWatchNoticesFirst) {
  Desk desk;
  wake(desk.board, desk.seat("BB3"), {WakeKind::mentioned, "t000001", "first"});
  for (std::size_t i = 0; i < wakesKept; ++i)
    wake(desk.board, desk.seat("BB3"), {WakeKind::taskWatched, text::cat("x", i), ""});
  EXPECT_EQ(desk.wakes("BB3").size(), wakesKept);
  EXPECT_EQ(desk.wakes("BB3").front(), "mentioned t000001");
}

TEST(Wakes, WhatWasCarriedIsForgottenAndWhatCameLaterIsNot) {
  Desk desk;
  wake(desk.board, desk.seat("BB3"), {WakeKind::mentioned, "t000001", "early"});
  leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "early", 0});
  const Delivery delivery = deliveryOf(desk.board, desk.seat("BB3"));
  wake(desk.board, desk.seat("BB3"), {WakeKind::mentioned, "t000002", "late"});
  leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "late", 0});
  forgetDelivered(desk.board, delivery);
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("mentioned t000002"));
  const auto messages = messagesOf(desk.board, desk.seat("BB3"));
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages.front()->text, "late");
}

}  // namespace
}  // namespace quillpost::board
