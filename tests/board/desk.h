#pragma once

// A board in memory with agents on it, without socket or file: requests go straight to the methods.

#include "base/text.h"
#include "board/rules/board.h"
#include "board/rules/feed.h"
#include "board/rules/ids.h"
#include "board/rules/leases.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/views.h"
#include "board/rules/wakes.h"
#include "board/verbs/methods.h"
#include "board/verbs/person.h"
#include "model/coding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// Random numbers that are the same in every run.
inline Random countingRandom() {
  return [engine = std::mt19937(7)]() mutable { return static_cast<uint32_t>(engine()); };
}

/// A request of that session with those members, each written as in JSON; a test failure when that
/// is no request.
inline TeamworkRequest requestOf(std::string_view session, std::string_view method,
                                 std::string_view members = "", std::string_view token = "") {
  const std::string json =
      text::cat(R"({"protocolVersion":1,"token":")", token, R"(","sessionID":")", session,
                R"(","method":")", method, "\"", members.empty() ? "" : ",", members, "}");
  std::optional<TeamworkRequest> request = decodeRequest(json);
  EXPECT_TRUE(request) << json;
  return request.value_or(TeamworkRequest{});
}

/// The board and its agents. A seat's session id is "s-" and its handle.
class Desk {
 public:
  using Kind = TeamworkResponse::Kind;

  Board board;
  Moment at{1'000'000'000, 900'000};

  explicit Desk(std::initializer_list<std::string_view> handles = {"AA2", "BB3"}) {
    Thread thread;
    thread.id = "T-abc234";
    thread.name = "main";
    board = newBoard(std::move(thread));
    for (const std::string_view handle : handles) {
      sit(handle);
      ask(handle, "register");
    }
    settle();
  }

  /// Adds a terminal with nobody home.
  void sit(std::string_view handle) {
    Seat seat;
    seat.id = text::cat("s-", handle);
    seat.handle = handle;
    board.seats.put(std::move(seat));
  }

  const Seat& seat(std::string_view handle) const { return *seatAt(board, handle); }
  std::string mark(std::string_view handle) const { return seat(handle).fingerprint; }
  const Task& task(std::string_view id) const { return *board.tasks.find(id); }
  /// The log of a task as its readers see it.
  std::vector<std::string> log(std::string_view id) const {
    std::vector<std::string> lines;
    for (const LogLine* line : linesOf(board, id)) lines.push_back(lineText(*line));
    return lines;
  }

  TeamworkResponse ask(std::string_view handle, std::string_view method,
                       std::string_view members = "") {
    const TeamworkRequest request = requestOf(text::cat("s-", handle), method, members);
    return carryOut({board, request, *board.seats.touch(seat(handle).id), at, random_});
  }
  TeamworkResponse person(std::string_view method, std::string_view members = "") {
    return carryOutForPerson(board, requestOf("", method, members), at);
  }

  /// Files a task as AA2 and gives its id.
  std::string add(std::string_view title, std::string_view members = "") {
    const auto response =
        ask("AA2", "add_task",
            text::cat(R"("title":")", title, "\"", members.empty() ? "" : ",", members));
    EXPECT_EQ(response.kind, Kind::written) << response.message.value_or("");
    return std::prev(board.tasks.end())->first;
  }
  TeamworkResponse claim(std::string_view handle, std::string_view id) {
    return ask(handle, "claim_task", on(id));
  }

  /// The member that names a task.
  static std::string on(std::string_view id) { return text::cat(R"("taskID":")", id, "\""); }

  TeamworkTask view(std::string_view handle, std::string_view id) {
    return taskView(board, task(id), seat(handle), at);
  }
  TeamworkObligations owed(std::string_view handle) {
    return obligationsOf(board, seat(handle), at);
  }

  /// What wakes an agent: kinds, each with its task when there is one.
  std::vector<std::string> wakes(std::string_view handle) const {
    std::vector<std::string> found;
    for (const Wake* wake : wakesOf(board, seat(handle))) {
      const std::string_view kind = json::wordFor(wake->kind);
      found.push_back(text::cat(kind, wake->taskID.empty() ? "" : " ", wake->taskID));
    }
    return found;
  }
  bool isWoken(std::string_view handle, std::string_view by) const {
    const std::vector<std::string> found = wakes(handle);
    return std::ranges::find(found, by) != found.end();
  }
  /// Forgets all wakes.
  void settle() {
    for (const auto& [id, seat] : board.seats)
      forgetDelivered(board, {"", id, padded(INT64_MAX), ""});
  }

  /// Lets time pass, and what lapses lapse.
  void pass(int64_t seconds) {
    at.nowMs += seconds * 1000;
    lapse(board, at);
  }

 private:
  Random random_ = countingRandom();
};

/// Whether a write was done; the refusal is printed when it was not.
inline ::testing::AssertionResult wasWritten(const TeamworkResponse& response) {
  if (response.kind == TeamworkResponse::Kind::written) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << response.message.value_or("(no message)");
}

/// Whether something was refused in words that hold this text.
inline ::testing::AssertionResult wasRefused(const TeamworkResponse& response,
                                             std::string_view words) {
  const std::string message = response.message.value_or("(no message)");
  const bool isError = response.kind == TeamworkResponse::Kind::error;
  if (isError && message.find(words) != std::string::npos) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << (isError ? "refused: " : "done: ") << message;
}

}  // namespace quillpost::board
