// Many real agents on one real board: claims raced, wakes counted, the board killed under them.

#include "board/real_seats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <set>
#include <thread>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

constexpr std::size_t seatCount = 8;

/// The board, and agents that have registered.
struct Crew {
  RealBoard board;
  std::vector<std::unique_ptr<RealSeat>> seats;
  std::vector<std::string> fingerprints;

  explicit Crew(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      seats.push_back(std::make_unique<RealSeat>(board.newSeat()));
      const json::TreeObject self = seats.back()->callForObject("register");
      fingerprints.emplace_back(json::findText(self, "id").value_or(""));
      EXPECT_EQ(fingerprints.back().size(), 5u);
    }
  }
  void add(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      seats[0]->call("add_task", text::cat(R"({"title":"task )", i, R"("})"));
  }
  /// Runs one job for each seat, all at once, and meanwhile `beside`.
  template <class Job, class Beside>
  void together(Job&& job, Beside&& beside) {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seats.size(); ++i)
      threads.emplace_back([&job, &seat = *seats[i], i] { job(seat, i); });
    beside();
    for (std::thread& thread : threads) thread.join();
  }
};

std::string taskID(std::size_t number) {
  const std::string digits = text::cat(number);
  return "t" + std::string(6 - digits.size(), '0') + digits;
}

/// Waits, without rest, until the counter has come that far.
void awaitCount(const std::atomic<int>& counter, int count) {
  const Instant deadline = SteadyClock().now() + realPatience;
  while (counter < count && isBefore(deadline)) std::this_thread::yield();
  EXPECT_GE(counter, count);
}

TEST(Seats, ATaskNeverHasTwoOwnersThoughEightRaceAndTheBoardIsKilledTwice) {
  constexpr std::size_t taskCount = 200;
  Crew crew(seatCount);
  crew.seats[0]->call("set_goal", R"({"description":"Race"})");
  crew.add(taskCount);
  std::mutex mutex;
  std::map<std::string, std::vector<std::size_t>> owners;
  std::atomic<int> won = 0;

  const auto race = [&](RealSeat& seat, std::size_t self) {
    for (std::size_t number = 1; number <= taskCount; ++number) {
      const std::string id = taskID(number);
      const std::string claim =
          seat.callUntilReached("claim_task", text::cat(R"({"taskID":")", id, R"("})"));
      if (!claim.starts_with("You hold ")) continue;
      {
        const std::scoped_lock lock(mutex);
        owners[id].push_back(self);
      }
      ++won;
      const std::string done = seat.callUntilReached(
          "complete_task",
          text::cat(R"({"taskID":")", id, R"(","summary":"done by )", self, R"("})"));
      EXPECT_TRUE(done.starts_with("Completed ")) << done;
    }
  };
  crew.together(race, [&] {
    for (const int count : {50, 120}) {
      awaitCount(won, count);
      crew.board.kill();
      crew.board.start();
    }
  });

  EXPECT_EQ(owners.size(), taskCount);
  for (const auto& [id, seats] : owners) EXPECT_EQ(seats.size(), 1u) << id;
  const json::TreeObject backlog =
      crew.seats[0]->callForObject("list_tasks", R"({"include":"all"})");
  ASSERT_TRUE(backlog.contains("done"));
  EXPECT_EQ(backlog.at("done").as_array().size(), taskCount) << "nothing acknowledged was lost";
  for (const json::Tree& tree : backlog.at("done").as_array()) {
    const std::string id(json::findText(tree.as_object(), "id").value_or(""));
    ASSERT_FALSE(owners[id].empty()) << id;
    const std::size_t owner = owners[id].front();
    EXPECT_EQ(json::findText(tree.as_object(), "owner"), crew.fingerprints[owner]) << id;
    EXPECT_EQ(json::findText(tree.as_object(), "summary"), text::cat("done by ", owner)) << id;
  }
}

TEST(Seats, WhatIsAcknowledgedIsThereAfterFiftyKills) {
  constexpr std::size_t writerCount = 3;
  constexpr int kills = 50;
  Crew crew(writerCount);
  crew.add(writerCount);
  std::atomic<bool> isOver = false;
  std::atomic<int> acknowledged = 0;
  std::array<int, writerCount> counts{};
  const auto note = [](std::size_t self, int number) {
    return text::cat("note ", number, " by ", self, ".");
  };
  const auto write = [&](RealSeat& seat, std::size_t self) {
    for (int number = 1; !isOver; ++number) {
      const std::string answer = seat.callUntilReached(
          "comment_task", text::cat(R"({"taskID":")", taskID(self + 1), R"(","text":")",
                                    note(self, number), R"("})"));
      ASSERT_TRUE(answer.starts_with("Commented on ")) << answer;
      counts[self] = number;
      ++acknowledged;
    }
  };
  crew.together(write, [&] {
    for (int i = 0; i < kills; ++i) {
      awaitCount(acknowledged, acknowledged + 2);
      crew.board.kill();
      crew.board.start();
    }
    isOver = true;
  });

  for (std::size_t self = 0; self < writerCount; ++self) {
    const std::string task = crew.seats[0]->call(
        "read_task",
        text::cat(R"({"taskID":")", taskID(self + 1), R"(","logOffset":1,"logLimit":100000})"));
    EXPECT_GT(counts[self], 0);
    for (int number = 1; number <= counts[self]; ++number)
      EXPECT_THAT(task, HasSubstr(note(self, number)));
  }
}

TEST(Seats, NoWakeIsLostAndRevisionsMoveForwardOnly) {
  constexpr std::size_t tagCount = 24;
  Crew crew(seatCount);
  crew.add(tagCount);
  std::string tags;
  for (std::size_t i = 1; i < seatCount; ++i)
    tags += text::cat(i == 1 ? "" : ",", "\"", crew.fingerprints[i], "\"");
  for (const auto& seat : crew.seats) seat->call("list_tasks");

  const auto listen = [&](RealSeat& seat, std::size_t self) {
    if (self == 0) {
      for (std::size_t number = 1; number <= tagCount; ++number) {
        seat.callUntilReached("comment_task", text::cat(R"({"taskID":")", taskID(number),
                                                        R"(","text":"see?","tags":[)", tags, "]}"));
      }
      return;
    }
    std::set<std::string> tagged;
    int64_t rev = 0;
    const Instant deadline = SteadyClock().now() + realPatience;
    while (tagged.size() < tagCount && isBefore(deadline)) {
      const json::TreeObject outcome =
          seat.callForObject("wait_for_changes", R"({"timeoutSeconds":20})");
      if (const json::Tree* now = json::find(outcome, "rev")) {
        EXPECT_GE(now->as_int64(), rev);
        rev = now->as_int64();
      }
      if (!outcome.contains("wakeReasons")) continue;
      for (const json::Tree& reason : outcome.at("wakeReasons").as_array()) {
        if (json::findText(reason.as_object(), "kind") != "mentioned") continue;
        tagged.emplace(json::findText(reason.as_object(), "taskID").value_or(""));
      }
    }
    EXPECT_EQ(tagged.size(), tagCount) << "seat " << self;
  };
  crew.together(listen, [&] {
    crew.board.kill();
    crew.board.start();
  });
}

TEST(Seats, TheStopHookKeepsAnAgentUntilItHasHeardAndAnswered) {
  Crew crew(2);
  crew.add(1);
  EXPECT_EQ(crew.seats[1]->stopHook(), 0);
  crew.seats[0]->call("comment_task", text::cat(R"({"taskID":"t000001","text":"see?","tags":[")",
                                                crew.fingerprints[1], R"("]})"));
  EXPECT_EQ(crew.seats[1]->stopHook(), 2);
  EXPECT_THAT(crew.seats[1]->call("wait_for_changes"), HasSubstr("mentioned"));
  EXPECT_EQ(crew.seats[1]->stopHook(), 2) << "it owes an answer";
  crew.seats[1]->call("comment_task", R"({"taskID":"t000001","text":"seen"})");
  EXPECT_EQ(crew.seats[1]->stopHook(), 0);
}

TEST(Seats, ThePersonAnswersFromTheCommandLine) {
  Crew crew(2);
  crew.add(1);
  crew.seats[1]->call("list_tasks");
  crew.seats[1]->call("claim_task", R"({"taskID":"t000001"})");
  crew.seats[1]->call("update_task",
                      R"({"taskID":"t000001","blocked":true,"blockerQuestion":"Which colour?",)"
                      R"("blockerKind":"decision","blockerOptions":["red","blue"]})");
  EXPECT_THAT(crew.board.person({"--thread", "main", "show"}).value_or(""), HasSubstr("BLOCKED"));
  std::string outcome;
  crew.together(
      [&](RealSeat& seat, std::size_t self) {
        if (self == 1) outcome = seat.call("wait_for_changes");
      },
      [&] {
        EXPECT_TRUE(crew.board.person({"--thread", "main", "answer", "t000001", "2"}));
      });
  EXPECT_THAT(outcome, HasSubstr("blockerAnswered"));
  EXPECT_THAT(outcome, HasSubstr("blue"));
  EXPECT_EQ(crew.board.person({"answer", "t999999", "2"}), std::nullopt);
}

TEST(Seats, ABoardThatIsStoppedLeavesNothingButItsFile) {
  for (const int signal : {SIGINT, SIGTERM}) {
    RealBoard board;
    EXPECT_EQ(board.stop(signal), 0);
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(board.directory().path()))
      left.push_back(entry.path().filename().string());
    EXPECT_THAT(left, ::testing::ElementsAre("board.db"));
  }
}

TEST(Seats, ASocketThatIsDeletedIsPublishedAgain) {
  RealBoard board;
  const std::string socket = board.directory().pathOf("teamwork-board.sock");
  std::filesystem::remove(socket);
  const Instant deadline = SteadyClock().now() + realPatience;
  while (!std::filesystem::exists(socket) && isBefore(deadline)) std::this_thread::yield();
  EXPECT_TRUE(board.person({"seat", "--thread", "main"}));
}

TEST(Seats, OfTwoBoardsInOneDirectoryTheSecondSaysSoAndLeavesTheFirstAlone) {
  const RealBoard board;
  for (const char* database : {"board.db", "another.db"}) {
    testing::Process second(
        {testing::boardProgram(),
         {"--dir", board.directory().path(), "--db", board.directory().pathOf(database)},
         {}});
    EXPECT_THAT(second.errors(), HasSubstr("another board"));
    EXPECT_EQ(second.waitForExit(), 1);
  }
  EXPECT_TRUE(board.person({"seat", "--thread", "main"}));
}

}  // namespace
}  // namespace quillpost::board
