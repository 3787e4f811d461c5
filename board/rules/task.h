#pragma once

// A task as the board keeps it.

#include "json/record.h"

#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost::board {

/// How far a task has come.
enum class TaskState { open, claimed, done, rejected };

/// What a line of a task's log is.
enum class LogKind { progress, comment, gist, handOff };

/// One line of a task's log.
struct LogLine {
  LogKind kind = LogKind::progress;
  /// The author's fingerprint, or "human".
  std::string author;
  /// What the author is called on the line.
  std::string name;
  std::string text;

  bool operator==(const LogLine&) const = default;

  static constexpr auto fields() {
    return std::tuple{
        json::required("kind", &LogLine::kind), json::required("author", &LogLine::author),
        json::required("name", &LogLine::name), json::required("text", &LogLine::text)};
  }
};

/// Somebody who is told of every move of a task.
struct Watch {
  std::string fingerprint;
  /// Whether a claim made it rather than the agent.
  bool isAuto = false;

  bool operator==(const Watch&) const = default;

  static constexpr auto fields() {
    return std::tuple{json::required("fingerprint", &Watch::fingerprint),
                      json::required("auto", &Watch::isAuto)};
  }
};

/// A peer's standing request for a held task.
struct ReleaseAsk {
  std::string requester;
  std::string reason;

  bool operator==(const ReleaseAsk&) const = default;

  static constexpr auto fields() {
    return std::tuple{json::required("requester", &ReleaseAsk::requester),
                      json::required("reason", &ReleaseAsk::reason)};
  }
};

/// A unit of work. Agents are named by fingerprint, times are milliseconds since 1970, and a text
/// that is empty says nothing.
struct Task {
  std::string id;
  std::string title;
  std::string body;
  TaskState state = TaskState::open;
  /// Who holds it, or who did it.
  std::string owner;
  std::string filedBy;
  int64_t claimedAtMs = 0;
  int64_t leaseUntilMs = 0;
  /// Whether the holder has been told that this lease is about to lapse.
  bool expiryWarned = false;
  int64_t claimAttempts = 0;
  std::vector<LogLine> log;
  /// Log lines that the holder has written since the claim, summaries and comments included.
  int64_t linesSinceClaim = 0;
  bool blocked = false;
  std::string blockedBy;
  std::string blockerQuestion;
  std::string blockerAnswer;
  std::string parkedReason;
  int64_t priority = 0;
  std::string type;
  std::vector<std::string> resources;
  std::vector<std::string> waitsOn;
  std::string assignedRole;
  /// The handle of whom it is meant for; what was given when that names nobody here.
  std::string routedTo;
  /// The handle of whoever handed it over.
  std::string reportsTo;
  /// "requested", "verified" or "rejected".
  std::string reviewState;
  std::string reviewRequestedBy;
  std::string reviewRequestedFrom;
  std::string reviewBy;
  std::string reviewNote;
  std::vector<ReleaseAsk> releaseAsks;
  /// Who is tagged and has not answered; "human" for the person.
  std::vector<std::string> mentions;
  std::vector<Watch> watches;
  /// For a task that was deleted: when, and why.
  int64_t deletedAtMs = 0;
  std::string deleteReason;

  bool operator==(const Task&) const = default;
  static constexpr auto fields();
};

/// Whether this agent has the claim on the task now.
inline bool isHeldBy(const Task& task, const std::string& fingerprint) {
  return task.state == TaskState::claimed && task.owner == fingerprint;
}

/// Whether work on the task is still to be done.
inline bool isOpen(const Task& task) {
  return task.state == TaskState::open || task.state == TaskState::claimed;
}

constexpr auto Task::fields() {
  // clang-format off
  return std::tuple{
      json::required( "id",                  &Task::id),
      json::required( "title",               &Task::title),
      json::defaulted("body",                &Task::body),
      json::required( "state",               &Task::state),
      json::defaulted("owner",               &Task::owner),
      json::defaulted("filedBy",             &Task::filedBy),
      json::defaulted("claimedAtMs",         &Task::claimedAtMs),
      json::defaulted("leaseUntilMs",        &Task::leaseUntilMs),
      json::defaulted("expiryWarned",        &Task::expiryWarned),
      json::defaulted("claimAttempts",       &Task::claimAttempts),
      json::defaulted("log",                 &Task::log),
      json::defaulted("linesSinceClaim",     &Task::linesSinceClaim),
      json::defaulted("blocked",             &Task::blocked),
      json::defaulted("blockedBy",           &Task::blockedBy),
      json::defaulted("blockerQuestion",     &Task::blockerQuestion),
      json::defaulted("blockerAnswer",       &Task::blockerAnswer),
      json::defaulted("parkedReason",        &Task::parkedReason),
      json::defaulted("priority",            &Task::priority),
      json::defaulted("type",                &Task::type),
      json::defaulted("resources",           &Task::resources),
      json::defaulted("waitsOn",             &Task::waitsOn),
      json::defaulted("assignedRole",        &Task::assignedRole),
      json::defaulted("routedTo",            &Task::routedTo),
      json::defaulted("reportsTo",           &Task::reportsTo),
      json::defaulted("reviewState",         &Task::reviewState),
      json::defaulted("reviewRequestedBy",   &Task::reviewRequestedBy),
      json::defaulted("reviewRequestedFrom", &Task::reviewRequestedFrom),
      json::defaulted("reviewBy",            &Task::reviewBy),
      json::defaulted("reviewNote",          &Task::reviewNote),
      json::defaulted("releaseAsks",         &Task::releaseAsks),
      json::defaulted("mentions",            &Task::mentions),
      json::defaulted("watches",             &Task::watches),
      json::defaulted("deletedAtMs",         &Task::deletedAtMs),
      json::defaulted("deleteReason",        &Task::deleteReason),
  };
  // clang-format on
}

}  // namespace quillpost::board

namespace quillpost {

template <>
struct json::Names<board::TaskState> {
  using Kind = board::TaskState;
  static constexpr std::array rows = {
      Name<Kind>{Kind::open, "open"},
      Name<Kind>{Kind::claimed, "claimed"},
      Name<Kind>{Kind::done, "done"},
      Name<Kind>{Kind::rejected, "rejected"},
  };
  static_assert(allDifferent(rows));
};

template <>
struct json::Names<board::LogKind> {
  using Kind = board::LogKind;
  static constexpr std::array rows = {
      Name<Kind>{Kind::progress, "progress"},
      Name<Kind>{Kind::comment, "comment"},
      Name<Kind>{Kind::gist, "gist"},
      Name<Kind>{Kind::handOff, "handOff"},
  };
  static_assert(allDifferent(rows));
};

}  // namespace quillpost
