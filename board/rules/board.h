#pragma once

// All there is to know about one Thread. Plain rows; the rules beside this file read and change
// them, with the time passed in.

#include "board/rules/seat.h"
#include "board/rules/table.h"
#include "board/rules/task.h"
#include "json/record.h"
#include "model/discussion.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>

namespace quillpost::board {

/// How the person is named wherever an agent's fingerprint could stand.
inline constexpr std::string_view human = "human";

/// The Thread itself.
struct Thread {
  /// Its tag, "T-" and six characters.
  std::string id;
  std::string name;
  std::string goal;
  std::string charter;
  /// Who proposed that the goal is complete; empty while nobody does.
  std::string goalProposedBy;
  bool goalComplete = false;
  bool squadOn = false;
  /// The revision of the last change.
  int64_t rev = 0;
  /// The number of the last wake or message.
  int64_t lastNumber = 0;
  int64_t tasksFiled = 0;
  int64_t discussionsOpened = 0;

  bool operator==(const Thread&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",                &Thread::id),
        json::required( "name",              &Thread::name),
        json::defaulted("goal",              &Thread::goal),
        json::defaulted("charter",           &Thread::charter),
        json::defaulted("goalProposedBy",    &Thread::goalProposedBy),
        json::defaulted("goalComplete",      &Thread::goalComplete),
        json::defaulted("squadOn",           &Thread::squadOn),
        json::required( "rev",               &Thread::rev),
        json::defaulted("lastNumber",        &Thread::lastNumber),
        json::defaulted("tasksFiled",        &Thread::tasksFiled),
        json::defaulted("discussionsOpened", &Thread::discussionsOpened),
    };
    // clang-format on
  }
};

/// One thing that moved.
struct Change {
  /// The revision in decimal with leading zeros, so that rows stand in order.
  std::string id;
  int64_t rev = 0;
  std::string kind;
  /// Empty when it is about no task.
  std::string taskID;
  /// The fingerprint of whoever moved it, "human", or empty for the board itself.
  std::string by;

  bool operator==(const Change&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",     &Change::id),
        json::required( "rev",    &Change::rev),
        json::required( "kind",   &Change::kind),
        json::defaulted("taskID", &Change::taskID),
        json::defaulted("by",     &Change::by),
    };
    // clang-format on
  }
};

/// A helper that an agent would like the person to allow.
struct Suggestion {
  /// Its name: a second suggestion of that name replaces the first.
  std::string id;
  std::string command;
  std::string explanation;
  std::string reason;
  /// The handle of whoever suggests it.
  std::string by;

  bool operator==(const Suggestion&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",          &Suggestion::id),
        json::required( "command",     &Suggestion::command),
        json::required( "explanation", &Suggestion::explanation),
        json::defaulted("reason",      &Suggestion::reason),
        json::defaulted("by",          &Suggestion::by),
    };
    // clang-format on
  }
};

/// One Thread with all that is on it.
struct Board {
  /// Exactly one row.
  Table<Thread> threads;
  Table<Seat> seats;
  Table<Task> tasks;
  /// Tasks that were deleted and can still be put back.
  Table<Task> trash;
  Table<TeamworkDiscussion> discussions;
  /// The latest changes, oldest first.
  Table<Change> changes;
  Table<Suggestion> suggestions;

  const Thread& thread() const { return threads.begin()->second; }
  Thread& editThread() { return threads.edit(thread()); }
};

/// Calls `visit(kind, table)` for each table, the kind being a short name for its rows. The board
/// may be const.
template <class AnyBoard, class Visit>
void forEachTable(AnyBoard& board, Visit&& visit) {
  visit("thread", board.threads);
  visit("seat", board.seats);
  visit("task", board.tasks);
  visit("trash", board.trash);
  visit("discussion", board.discussions);
  visit("change", board.changes);
  visit("suggestion", board.suggestions);
}

}  // namespace quillpost::board
