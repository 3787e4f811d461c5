#include "qp/follow.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

TEST(Follow, PrintsOneLineAMove) {
  TeamworkChangeFeed feed;
  feed.rev = 418;
  feed.wakeReasons.resize(2);
  feed.wakeReasons[0].summary = "t000012 is READY: Parse";
  feed.wakeReasons[0].taskID = "t000012";
  feed.wakeReasons[1].summary = "lapses\nsoon";
  feed.wakeReasons[1].taskID = "t000013";
  feed.messages.resize(1);
  feed.messages[0].from = "KQ3";
  feed.messages[0].text = "the schema\nis here\x1b";
  feed.changes = {{.kind = "taskDone", .taskID = "t000011"}, {.kind = "goalSet", .taskID = {}}};
  EXPECT_EQ(FollowLines().linesFor(feed),
            "r418 woken: t000012 is READY: Parse\n"
            "r418 woken: t000013 lapses soon\n"
            "r418 message from KQ3: the schema is here\u241b\n"
            "r418 moved: taskDone t000011\n"
            "r418 moved: goalSet\n");
}

TEST(Follow, TellsAMoveOnceThoughItAlsoWoke) {
  TeamworkChangeFeed feed;
  feed.rev = 2;
  feed.wakeReasons = {{.kind = "r", .taskID = "t1", .summary = "t1 is done", .cause = "taskDone"}};
  feed.changes = {{.kind = "taskDone", .taskID = "t1"}, {.kind = "taskDone", .taskID = "t2"}};
  EXPECT_EQ(FollowLines().linesFor(feed), "r2 woken: t1 is done\nr2 moved: taskDone t2\n");
}

TEST(Follow, TellsTheGoalsStateOnceForEachChange) {
  FollowLines lines;
  TeamworkChangeFeed feed;
  feed.rev = 5;
  feed.pendingGoalComplete = true;
  EXPECT_EQ(lines.linesFor(feed), "r5 the goal is proposed complete\n");
  EXPECT_EQ(lines.linesFor(feed), "");
  feed.goalComplete = true;
  EXPECT_EQ(lines.linesFor(feed), "r5 the goal is confirmed complete\n");
  EXPECT_EQ(lines.linesFor(feed), "");
  feed.goalComplete = feed.pendingGoalComplete = false;
  EXPECT_EQ(lines.linesFor(feed),
            "r5 the goal is no longer proposed complete\nr5 the goal is open again\n");
}

TEST(Follow, SaysThatSomethingMovedWhenTheAppSaysNoMore) {
  TeamworkChangeFeed feed;
  feed.rev = 5;
  EXPECT_EQ(FollowLines().linesFor(feed), "");
  feed.changed = true;
  EXPECT_EQ(FollowLines().linesFor(feed), "r5 moved\n");
}

TEST(Follow, IsOverWhenTheGoalIsCompleteAndNothingIsOwed) {
  TeamworkChangeFeed feed;
  SeatState state;
  EXPECT_FALSE(isOver(feed, state));
  feed.goalComplete = true;
  EXPECT_TRUE(isOver(feed, state));
  state.lastObligations.emplace().clear = false;
  EXPECT_FALSE(isOver(feed, state));
}

}  // namespace
}  // namespace quillpost
