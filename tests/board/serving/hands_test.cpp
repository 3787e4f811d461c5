#include "board/serving/hands.h"

#include "board/fake_processes.h"
#include "board/helped.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// A board whose helpers are started in memory.
struct HelperHands : ::testing::Test {
  HelperHands() {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    for (const int end : ends) ::fcntl(end, F_SETFL, O_NONBLOCK);
    news = UniqueFd(ends[0]);
    newsWriter = UniqueFd(ends[1]);
    hands = make();
  }
  std::unique_ptr<Hands> make() {
    return std::make_unique<Hands>(&processes, news.get(), SeatFiles{"/d/s.token", "/d/s.sock"});
  }

  std::string ask() {
    std::string handle = desk.hands("AA2");
    hands->tend(desk.board, desk.at);
    return handle;
  }
  /// Lets so much time pass as the board would with nothing else to do.
  void pass(int64_t ms) {
    desk.at.nowMs += ms;
    EXPECT_EQ(::write(newsWriter.get(), "", 1), 1);
    hands->hearOfEnds(news.get());
    hands->press(desk.at.nowMs);
    hands->tend(desk.board, desk.at);
  }
  void stop(std::string_view handle) {
    desk.ask("AA2", "stop_helper", text::cat(R"("to":")", handle, "\""));
    hands->tend(desk.board, desk.at);
  }
  const std::vector<int>& signals(std::size_t which) { return processes.all.at(which).signals; }

  HelpedDesk desk;
  FakeProcesses processes;
  UniqueFd news, newsWriter;
  std::unique_ptr<Hands> hands;
};

TEST_F(HelperHands, StartWhatIsAskedForOnceWithItsSeatInItsEnvironment) {
  const std::string handle = ask();
  hands->tend(desk.board, desk.at);
  ASSERT_THAT(processes.all, SizeIs(1));
  const Launch& launch = processes.all[0].launch;
  ASSERT_THAT(launch.words, SizeIs(3));
  EXPECT_EQ(launch.words[1], "-p");
  EXPECT_THAT(launch.words[2], HasSubstr("t000001"));
  EXPECT_EQ(launch.directory, "/d");
  EXPECT_THAT(
      launch.variables,
      ElementsAre("PATH=/bin", text::cat("QUILLPOST_SESSION_ID=", desk.run(handle).id),
                  "QUILLPOST_COLLAB_TOKEN_FILE=/d/s.token", "QUILLPOST_COLLAB_SOCKET=/d/s.sock"));
  EXPECT_EQ(desk.run(handle).pid, 100);
  EXPECT_EQ(desk.run(handle).startMark, "start 100");
}

TEST_F(HelperHands, OneThatCannotBeStartedFailsAndItsAskerIsTold) {
  processes.refusal = "cannot run scout in /d: no such file";
  const std::string handle = ask();
  EXPECT_EQ(desk.stateOf(handle), "failed");
  EXPECT_THAT(desk.told("AA2").front(), HasSubstr("cannot run scout in /d"));
  stop(handle);
  EXPECT_EQ(desk.stateOf(handle), "stopped");
  EXPECT_EQ(helpersCounted(desk.board), 0);

  Hands none(nullptr, -1, {});
  const std::string other = desk.hands("AA2");
  none.tend(desk.board, desk.at);
  EXPECT_EQ(desk.stateOf(other), "failed") << "a board without processes says so";
}

TEST_F(HelperHands, OneThatEndsIsDoneOrFailedAndIsNotSignalledUntilItIsStopped) {
  const std::string first = ask();
  const std::string second = ask();
  processes.end(0, 0);
  processes.end(1, 3);
  pass(1);
  EXPECT_EQ(desk.stateOf(first), "done");
  EXPECT_EQ(desk.stateOf(second), "failed");
  EXPECT_THAT(desk.run(second).detail, HasSubstr("status 3"));
  EXPECT_THAT(signals(0), IsEmpty());
  pass(60'000);
  EXPECT_THAT(signals(0), IsEmpty());
  stop(first);
  EXPECT_EQ(desk.stateOf(first), "stopped");
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM)) << "what it left behind is asked to end";
  pass(graceMs);
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM, SIGKILL));
}

TEST_F(HelperHands, OneThatIgnoresBeingAskedIsKilledAfterFiveSecondsAndNoSooner) {
  processes.ignoresRequests = true;
  const std::string handle = ask();
  stop(handle);
  EXPECT_EQ(desk.stateOf(handle), "stopping");
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM));
  EXPECT_EQ(hands->press(desk.at.nowMs), desk.at.nowMs + 5000);
  pass(4999);
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM));
  EXPECT_EQ(helpersCounted(desk.board), 1);
  pass(1);
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM, SIGKILL));
  EXPECT_EQ(desk.stateOf(handle), "stopped");
  EXPECT_EQ(hands->press(desk.at.nowMs), std::nullopt) << "nothing is left to be done";
}

TEST_F(HelperHands, WhatCannotBeSavedIsNotStartedTwice) {
  board::settle(desk.board);
  const std::string handle = desk.hands("AA2");
  board::settle(desk.board);
  hands->tend(desk.board, desk.at);
  EXPECT_EQ(desk.run(handle).pid, 100);
  revert(desk.board);
  EXPECT_EQ(desk.run(handle).pid, 0);
  hands->tend(desk.board, desk.at);
  EXPECT_EQ(desk.run(handle).pid, 100);
  EXPECT_THAT(processes.all, SizeIs(1));
  processes.end(0, 0);
  board::settle(desk.board);
  pass(1);
  revert(desk.board);
  EXPECT_EQ(desk.stateOf(handle), "starting");
  pass(1);
  EXPECT_EQ(desk.stateOf(handle), "done");
}

TEST_F(HelperHands, NoneRunsBeforeItsNumberIsSavedNorOneThatIsToStop) {
  board::settle(desk.board);
  const std::string handle = desk.hands("AA2");
  board::settle(desk.board);
  hands->tend(desk.board, desk.at);
  EXPECT_FALSE(processes.isLetGo(0)) << "its number stands in no file yet";
  revert(desk.board);
  hands->letGo(desk.board);
  EXPECT_FALSE(processes.isLetGo(0)) << "it could not be saved";
  hands->tend(desk.board, desk.at);
  board::settle(desk.board);
  hands->letGo(desk.board);
  hands->letGo(desk.board);
  EXPECT_TRUE(processes.isLetGo(0));

  processes.ignoresRequests = true;
  const std::string other = ask();
  stop(other);
  hands->letGo(desk.board);
  EXPECT_FALSE(processes.isLetGo(1)) << "it was stopped before it began";
}

TEST_F(HelperHands, ABoardThatWasKilledFindsItsHelpersByNumberAndBeginningTogether) {
  processes.ignoresRequests = true;
  const std::string alive = ask();
  const std::string ended = ask();
  const std::string reused = ask();
  const std::string done = ask();
  const std::string never = desk.hands("AA2");
  desk.asHelper(alive, "register");
  desk.asHelper(alive, "claim_task", Desk::on(desk.run(alive).taskID));
  endRun(desk.board, desk.run(done).id, {true, "ended with status 0"}, desk.at);
  processes.all[1].sight = {Sight::State::gone, 0};
  // Another process has got the number meanwhile.
  processes.all[2].mark.start = "start of another";
  desk.settle();

  hands = make();
  hands->adopt(desk.board, desk.at);
  EXPECT_EQ(desk.stateOf(alive), "stopping");
  for (const std::string& handle : {ended, reused, never})
    EXPECT_EQ(desk.stateOf(handle), "stopped");
  EXPECT_EQ(desk.stateOf(done), "done") << "it waits to be read";
  EXPECT_EQ(desk.task(desk.run(alive).taskID).state, TaskState::open);
  EXPECT_THAT(desk.told("AA2").front(), HasSubstr("the board was started anew"));
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM));
  EXPECT_THAT(signals(2), IsEmpty()) << "a number alone is never signalled";
  EXPECT_TRUE(hands->press(desk.at.nowMs)) << "nobody tells when it ends";
  pass(graceMs);
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM, SIGKILL));
  EXPECT_EQ(desk.stateOf(alive), "stopped");
  EXPECT_THAT(signals(2), IsEmpty());
}

TEST_F(HelperHands, WhatAHelperWritesIsKeptUntilItEndsItsOutput) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  processes.nextOutput = UniqueFd(ends[0]);
  UniqueFd writer(ends[1]);
  const std::string handle = ask();
  ask();
  EXPECT_THAT(hands->descriptors(), ElementsAre(news.get(), ends[0]));
  ASSERT_EQ(::write(writer.get(), "one\n", 4), 4);
  hands->hearOutput(ends[0], desk.board);
  ASSERT_EQ(::write(writer.get(), "two\n", 4), 4);
  processes.end(0, 0);
  pass(1);
  EXPECT_EQ(outputText(desk.board.outputs[desk.run(handle).id]), "one\ntwo");
  EXPECT_THAT(desk.told("AA2").front(), HasSubstr("It wrote last: one / two"));
  writer = UniqueFd();
  hands->hearOutput(ends[0], desk.board);
  EXPECT_THAT(hands->descriptors(), ElementsAre(news.get()));
}

TEST_F(HelperHands, WhenTheBoardEndsAllAreAskedAndThenKilled) {
  ask();
  ask();
  hands->finish();
  EXPECT_THAT(signals(0), ElementsAre(SIGTERM, SIGKILL));
  EXPECT_THAT(signals(1), ElementsAre(SIGTERM, SIGKILL));
}

}  // namespace
}  // namespace quillpost::board
