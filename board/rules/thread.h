#pragma once

// A Thread, what it counts, and what moved on it.

#include "board/rules/kinds.h"
#include "json/record.h"

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
  /// Its place among the Threads of its file, in the order of their making.
  int64_t place = 0;
  std::string goal;
  std::string charter;
  /// Who proposed that the goal is complete; empty while nobody does.
  std::string goalProposedBy;
  bool goalComplete = false;
  bool squadOn = false;

  bool operator==(const Thread&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",             &Thread::id),
        json::required( "name",           &Thread::name),
        json::required( "place",          &Thread::place),
        json::defaulted("goal",           &Thread::goal),
        json::defaulted("charter",        &Thread::charter),
        json::defaulted("goalProposedBy", &Thread::goalProposedBy),
        json::defaulted("goalComplete",   &Thread::goalComplete),
        json::defaulted("squadOn",        &Thread::squadOn),
    };
    // clang-format on
  }
};

/// What a Thread counts. A row of its own, since every move counts and most leave the Thread alone.
struct Counters {
  /// The Thread's tag.
  std::string id;
  /// The revision of the last change.
  int64_t rev = 0;
  /// The number of the last wake or message.
  int64_t lastNumber = 0;
  int64_t tasksFiled = 0;
  int64_t discussionsOpened = 0;

  bool operator==(const Counters&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required("id",                &Counters::id),
        json::required("rev",               &Counters::rev),
        json::required("lastNumber",        &Counters::lastNumber),
        json::required("tasksFiled",        &Counters::tasksFiled),
        json::required("discussionsOpened", &Counters::discussionsOpened),
    };
    // clang-format on
  }
};

/// One thing that moved.
struct Change {
  /// The revision in decimal with leading zeros, so that rows stand in order.
  std::string id;
  int64_t rev = 0;
  MoveKind kind = MoveKind::taskEdited;
  /// Empty when it is about no task.
  std::string taskID;
  /// The fingerprint of whoever moved it, "human", or empty for the board itself.
  std::string by;
  /// What that one was called then.
  std::string byName;
  /// When, in milliseconds since 1970.
  int64_t atMs = 0;
  /// What it was about, in one line for a reader of the history.
  std::string what;

  bool operator==(const Change&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",     &Change::id),
        json::required( "rev",    &Change::rev),
        json::required( "kind",   &Change::kind),
        json::defaulted("taskID", &Change::taskID),
        json::defaulted("by",     &Change::by),
        json::defaulted("byName", &Change::byName),
        json::required( "atMs",   &Change::atMs),
        json::defaulted("what",   &Change::what),
    };
    // clang-format on
  }
};

}  // namespace quillpost::board
