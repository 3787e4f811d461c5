#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(PersonTasks, ATaskIsFiledAsAnAgentWouldFileIt) {
  Desk desk;
  const auto added = desk.person(
      personAdd, R"("title":"Frame","body":"Of oak","priority":2,"resources":["hull/"],)"
                 R"("routedToFingerprint":"bb3")");
  EXPECT_TRUE(wasWritten(added));
  EXPECT_EQ(added.message, "Added t000001 \"Frame\". It is READY.");
  const Task& task = desk.task("t000001");
  EXPECT_EQ(task.filedBy, human);
  EXPECT_EQ(task.priority, 2);
  EXPECT_EQ(task.routedTo, "BB3");
  EXPECT_EQ(briefOf(desk.board, "t000001"), "Of oak");
  EXPECT_TRUE(desk.isWoken("BB3", "taskAssigned t000001"));
  EXPECT_TRUE(wasRefused(desk.person(personAdd, R"("title":" ")"), "title"));
}

TEST(PersonTasks, IdsThatATaskWaitsOnMayBeWrittenShort) {
  Desk desk;
  desk.add("one");
  EXPECT_TRUE(wasWritten(desk.person(personAdd, R"("title":"two","waitsOn":["1"])")));
  EXPECT_THAT(desk.task("t000002").waitsOn, ElementsAre("t000001"));
  EXPECT_TRUE(wasRefused(desk.person(personEdit, Desk::on("1") + R"(,"waitsOn":["t2"])"),
                         "around corners"));
  EXPECT_TRUE(wasRefused(desk.person(personAdd, R"("title":"three","waitsOn":["3"])"), "itself"));
  EXPECT_EQ(desk.board.tasks.size(), 2u);
  EXPECT_THAT(desk.person(personAdd, R"("title":"x","waitsOn":["9"])").notice.value_or(""),
              HasSubstr("t000009"));
}

TEST(PersonTasks, EditingChangesWhatIsGivenAndTellsWhomItConcerns) {
  Desk desk;
  const std::string id = desk.add("Frame");
  desk.claim("BB3", id);
  desk.settle();
  EXPECT_TRUE(wasWritten(desk.person(personEdit, Desk::on(id) + R"(,"title":"Hull")")));
  EXPECT_EQ(desk.task(id).title, "Hull");
  EXPECT_TRUE(desk.isWoken("BB3", "humanReplied " + id));
  EXPECT_TRUE(wasRefused(desk.person(personEdit, Desk::on(id) + R"(,"title":"Hull")"), "already"));
  EXPECT_TRUE(wasRefused(desk.person(personEdit, R"("taskID":"t9","title":"x")"), "t000009"));
}

TEST(PersonTasks, TakingAWaitAwayMakesATaskReadyAndSaysSo) {
  Desk desk;
  desk.add("one");
  const std::string two = desk.add("two", R"("waitsOn":["t000001"])");
  const int64_t rev = desk.board.counted().rev;
  EXPECT_TRUE(wasWritten(desk.person(personEdit, Desk::on(two) + R"(,"waitsOn":[])")));
  EXPECT_THAT(feedFor(desk.board, desk.seat("BB3"), {rev, {}, true}, desk.at).changeKinds,
              Contains("taskReady"));
}

TEST(PersonTasks, OnlyATaskThatNobodyHoldsIsHandedOver) {
  Desk desk;
  const std::string id = desk.add("one");
  EXPECT_TRUE(wasWritten(desk.person(personAssign, Desk::on(id) + R"(,"to":"bb3")")));
  EXPECT_EQ(desk.task(id).routedTo, "BB3");
  EXPECT_TRUE(desk.isWoken("BB3", "taskAssigned " + id));
  EXPECT_TRUE(wasRefused(desk.person(personAssign, Desk::on(id) + R"(,"to":"ZZ9")"), "Nobody"));
  desk.claim("BB3", id);
  EXPECT_TRUE(
      wasRefused(desk.person(personAssign, Desk::on(id) + R"(,"to":"AA2")"), "release it first"));
  desk.person(personDone, Desk::on(id));
  EXPECT_TRUE(wasRefused(desk.person(personAssign, Desk::on(id) + R"(,"to":"AA2")"), "closed"));
}

TEST(PersonTasks, ATaskIsTakenFromItsHolderWhoIsTold) {
  Desk desk;
  const std::string id = desk.add("one");
  EXPECT_TRUE(wasRefused(desk.person(personRelease, Desk::on(id)), "Nobody holds"));
  desk.claim("BB3", id);
  desk.settle();
  EXPECT_TRUE(
      wasWritten(desk.person(personRelease, Desk::on(id) + R"(,"releaseReason":"too slow")")));
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_THAT(desk.log(id), ElementsAre("human: released: too slow"));
  EXPECT_TRUE(desk.isWoken("BB3", "humanReplied " + id));
}

TEST(PersonTasks, OneWhoHadAskedForATaskGetsIt) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("AA2", "request_release", Desk::on(id) + R"(,"releaseReason":"I know how")");
  EXPECT_THAT(desk.person(personRelease, Desk::on(id)).message.value_or(""),
              HasSubstr("AA2 had asked for it"));
  EXPECT_TRUE(isHeldBy(desk.task(id), desk.mark("AA2")));
}

TEST(PersonTasks, WhatIsDoneOrDeclinedCanBeReopenedWithoutItsVerdict) {
  Desk desk;
  const std::string id = desk.add("one");
  EXPECT_TRUE(wasRefused(desk.person(personReopen, Desk::on(id)), "open already"));
  desk.claim("BB3", id);
  desk.ask("AA2", "register", R"("role":"reviewer")");
  desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":"done")");
  desk.ask("BB3", "request_review", Desk::on(id));
  desk.ask("AA2", "verify_task", Desk::on(id) + R"(,"approve":true)");
  desk.settle();
  EXPECT_TRUE(
      wasWritten(desk.person(personReopen, Desk::on(id) + R"(,"releaseReason":"it leaks")")));
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_EQ(desk.task(id).owner, "");
  EXPECT_EQ(desk.task(id).reviewState, "");
  EXPECT_TRUE(desk.isWoken("BB3", "humanReplied " + id));
  desk.person(personReject, Desk::on(id));
  EXPECT_TRUE(wasWritten(desk.person(personReopen, Desk::on(id))));
}

TEST(PersonTasks, WhatThePersonSaysIsDoneIsDoneAndOpensWhatWaited) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.add("two", R"("waitsOn":["t000001"])");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
  desk.settle();
  const int64_t rev = desk.board.counted().rev;
  EXPECT_TRUE(wasWritten(desk.person(personDone, Desk::on(id) + R"(,"body":"I did it myself")")));
  EXPECT_EQ(desk.task(id).state, TaskState::done);
  EXPECT_EQ(desk.task(id).owner, desk.mark("BB3"));
  EXPECT_FALSE(desk.task(id).blocked);
  EXPECT_THAT(desk.log(id), ElementsAre("human: done: I did it myself"));
  EXPECT_TRUE(desk.isWoken("BB3", "humanReplied " + id));
  EXPECT_THAT(feedFor(desk.board, desk.seat("AA2"), {rev, {}, true}, desk.at).changeKinds,
              Contains("taskReady"));
  EXPECT_TRUE(wasRefused(desk.person(personDone, Desk::on(id)), "closed already"));
  EXPECT_TRUE(wasWritten(desk.person(personDone, Desk::on("2"))));
  EXPECT_EQ(desk.task("t000002").owner, human);
  EXPECT_THAT(desk.log("t000002"), IsEmpty()) << "nothing was said";
}

TEST(PersonTasks, DecliningTellsTheHolder) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.settle();
  EXPECT_TRUE(wasWritten(desk.person(personReject, Desk::on(id) + R"(,"releaseReason":"no use")")));
  EXPECT_EQ(desk.task(id).state, TaskState::rejected);
  EXPECT_TRUE(desk.isWoken("BB3", "taskRejected " + id));
  EXPECT_TRUE(wasRefused(desk.person(personReject, Desk::on(id)), "closed already"));
}

TEST(PersonTasks, WhatOthersWaitOnIsDeletedOnlyAnyway) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.add("two", R"("waitsOn":["t000001"])");
  EXPECT_TRUE(wasRefused(desk.person(personDelete, Desk::on(id)), "t000002 waits on it"));
  EXPECT_TRUE(wasRefused(desk.person(personDelete, Desk::on(id)), "With --anyway"));
  EXPECT_TRUE(wasWritten(desk.person(
      personDelete, Desk::on(id) + R"(,"releaseReason":"twice","acknowledgeOpenTasks":true)")));
  EXPECT_EQ(desk.board.trash.find(id)->deleteReason, "twice");
  EXPECT_TRUE(wasWritten(desk.person(personRestore, Desk::on("1"))));
  EXPECT_NE(desk.board.tasks.find(id), nullptr);
  EXPECT_TRUE(wasRefused(desk.person(personRestore, Desk::on("1")), "No deleted task"));
}

TEST(PersonTasks, EveryDeedNamesTheTaskThatIsNotThere) {
  Desk desk;
  for (const PersonMethod& method : personTasks()) {
    if (method.name == personAdd) continue;
    EXPECT_TRUE(wasRefused(desk.person(method.name, R"("taskID":"77")"), "t000077")) << method.name;
  }
}

TEST(PersonTasks, WhatIsNoMethodIsRefused) {
  Desk desk;
  EXPECT_TRUE(wasRefused(desk.person("person_frobnicate"), "does not know"));
}

}  // namespace
}  // namespace quillpost::board
