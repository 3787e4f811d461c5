#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

TEST(Goal, IsProposedByAgentsAndConfirmedByThePerson) {
  Desk desk;
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "propose_goal_complete"), "set_goal"));
  desk.ask("AA2", "set_goal", R"("name":"Ship")");
  const std::string id = desk.add("one");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "propose_goal_complete"), "1 task is"));
  EXPECT_TRUE(
      wasWritten(desk.ask("AA2", "propose_goal_complete", R"("acknowledgeOpenTasks":true)")));
  EXPECT_TRUE(desk.ask("BB3", "read_plan").plan->pendingGoalComplete);
  EXPECT_FALSE(desk.ask("BB3", "read_plan").plan->goalComplete);
  EXPECT_TRUE(wasRefused(desk.person(personConfirmGoal), "1 task is still open"));
  desk.person(personConfirmGoal, R"("acknowledgeOpenTasks":true)");
  EXPECT_TRUE(desk.ask("BB3", "read_plan").plan->goalComplete);
  EXPECT_FALSE(desk.ask("BB3", "read_plan").plan->pendingGoalComplete);
  EXPECT_TRUE(wasRefused(desk.claim("BB3", id), "complete"));
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "set_goal", R"("name":"More")"), "locked"));
  desk.settle();
  desk.person(personReopenGoal);
  EXPECT_THAT(desk.wakes("AA2"), ElementsAre("goalReopened"));
  EXPECT_TRUE(wasWritten(desk.claim("BB3", id)));
}

TEST(Goal, OpenTasksHoldItBackInWordsThatFitTheirNumber) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship")");
  desk.add("one");
  EXPECT_EQ(desk.ask("AA2", "propose_goal_complete").message,
            "1 task is still open. Look at list_tasks; when the goal is done without it, pass "
            "acknowledgeOpenTasks true.");
  desk.add("two");
  EXPECT_EQ(desk.ask("AA2", "propose_goal_complete").message,
            "2 tasks are still open. Look at list_tasks; when the goal is done without them, pass "
            "acknowledgeOpenTasks true.");
}

TEST(Goal, ANewOneTakesTheProposalBack) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship")");
  desk.ask("AA2", "propose_goal_complete");
  desk.ask("AA2", "set_goal", R"("name":"Ship more")");
  EXPECT_FALSE(desk.ask("BB3", "read_plan").plan->pendingGoalComplete);
}

}  // namespace
}  // namespace quillpost::board
