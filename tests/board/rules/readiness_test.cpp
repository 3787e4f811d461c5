#include "board/rules/readiness.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

TEST(Readiness, ATaskIsReadyWhenAllItWaitsOnIsDone) {
  struct Row {
    const char* name;
    TaskState first;
    TaskState second;
    bool ready;
  };
  const Row rows[] = {
      {"both open", TaskState::open, TaskState::open, false},
      {"one done", TaskState::done, TaskState::open, false},
      {"one claimed", TaskState::done, TaskState::claimed, false},
      {"one declined", TaskState::done, TaskState::rejected, false},
      {"both done", TaskState::done, TaskState::done, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string one = desk.add("one"), two = desk.add("two");
    const std::string last =
        desk.add("last", text::cat(R"("waitsOn":[")", one, R"(",")", two, R"("])"));
    desk.board.tasks.touch(one)->state = row.first;
    desk.board.tasks.touch(two)->state = row.second;
    EXPECT_EQ(isReady(desk.board, desk.task(last)), row.ready);
    EXPECT_EQ(desk.view("AA2", last).ready, row.ready);
  }
}

TEST(Readiness, AnIdThatNamesNoTaskHoldsNothingUpAndIsReported) {
  Desk desk;
  const std::string id = desk.add("one", R"("waitsOn":["t999999"])");
  EXPECT_TRUE(isReady(desk.board, desk.task(id)));
  EXPECT_THAT(unresolved(desk.board, desk.task(id).waitsOn), ElementsAre("t999999"));
  EXPECT_THAT(*desk.view("AA2", id).unresolvedWaitsOn, ElementsAre("t999999"));
}

TEST(Readiness, ACircleIsSeenAroundCorners) {
  Desk desk;
  const std::string one = desk.add("one");
  const std::string two = desk.add("two", text::cat(R"("waitsOn":[")", one, R"("])"));
  const std::string three = desk.add("three", text::cat(R"("waitsOn":[")", two, R"("])"));
  EXPECT_TRUE(wouldWaitOnItself(desk.board, one, std::vector{three}));
  EXPECT_TRUE(wouldWaitOnItself(desk.board, one, std::vector{one}));
  EXPECT_FALSE(wouldWaitOnItself(desk.board, three, std::vector{one, two}));
  EXPECT_TRUE(wasRefused(
      desk.ask("AA2", "update_task", Desk::on(one) + text::cat(R"(,"waitsOn":[")", three, "\"]")),
      "wait on itself"));
}

TEST(Readiness, OnlyOpenTasksDependOnOne) {
  Desk desk;
  const std::string one = desk.add("one");
  const std::string two = desk.add("two", text::cat(R"("waitsOn":[")", one, R"("])"));
  desk.add("three");
  ASSERT_EQ(dependentsOf(desk.board, one).size(), 1u);
  EXPECT_EQ(dependentsOf(desk.board, one).front()->id, two);
  desk.board.tasks.touch(two)->state = TaskState::rejected;
  EXPECT_TRUE(dependentsOf(desk.board, one).empty());
}

TEST(Readiness, ATaskAimedAtAnAgentIsForOthersOnceThatAgentIsQuiet) {
  Desk desk;
  const std::string id =
      desk.add("one", text::cat(R"("routedToFingerprint":")", desk.mark("BB3"), "\""));
  EXPECT_EQ(desk.task(id).routedTo, "BB3") << "a fingerprint becomes the handle it stands for";
  EXPECT_TRUE(desk.view("AA2", id).routedToLive);
  EXPECT_TRUE(wasRefused(desk.claim("AA2", id), "handed to BB3"));
  desk.pass(599);
  EXPECT_TRUE(desk.view("AA2", id).routedToLive);
  desk.pass(1);
  EXPECT_FALSE(desk.view("AA2", id).routedToLive);
  EXPECT_TRUE(wasWritten(desk.claim("AA2", id)));
}

}  // namespace
}  // namespace quillpost::board
