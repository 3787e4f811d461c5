#pragma once

// A task as the board keeps it. Its brief and the lines of its log are rows of their own, so that
// what is written on it does not carry them along.

#include "base/text.h"
#include "board/rules/ids.h"
#include "board/rules/table.h"
#include "json/record.h"

#include <array>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost::board {

/// How far a task has come.
enum class TaskState { open, claimed, done, rejected };

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
  TaskState state = TaskState::open;
  /// Who holds it, or who did it.
  std::string owner;
  std::string filedBy;
  int64_t claimedAtMs = 0;
  int64_t leaseUntilMs = 0;
  /// When the board next has to look after the claim: to warn its holder, or to end it.
  int64_t dueMs = 0;
  /// Whether the holder has been told that this lease is about to lapse.
  bool expiryWarned = false;
  int64_t claimAttempts = 0;
  /// The number of the last line of its log, and how many lines of progress came after the latest
  /// summary.
  int64_t lastLine = 0;
  int64_t linesBehind = 0;
  /// Log lines that the holder has written since the claim, summaries and comments included.
  int64_t linesSinceClaim = 0;
  bool blocked = false;
  std::string blockedBy;
  std::string blockerQuestion;
  std::string blockerAnswer;
  /// Whether the answer to what was last asked is a secret, for nobody but whoever asked.
  bool isAnswerSecret = false;
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
  /// The role that its reviewer is to have; empty for any.
  std::string reviewOfRole;
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

/// The state of a review that is asked for and not yet given.
inline constexpr std::string_view reviewWanted = "requested";

/// Whether this agent has the claim on the task now.
inline bool isHeldBy(const Task& task, const std::string& fingerprint) {
  return task.state == TaskState::claimed && task.owner == fingerprint;
}

/// Whether a secret of the person's lies on the task.
inline bool hasSecret(const Task& task) {
  return task.isAnswerSecret && !task.blockerAnswer.empty();
}

/// Whether work on the task is still to be done.
inline bool isOpen(const Task& task) {
  return task.state == TaskState::open || task.state == TaskState::claimed;
}

/// The task in words: its id and its title.
inline std::string named(const Task& task) { return text::cat(task.id, " \"", task.title, "\""); }

/// The brief of a task; a task whose brief is empty has none.
struct Brief {
  /// The task's.
  std::string id;
  std::string body;

  bool operator==(const Brief&) const = default;

  static constexpr auto fields() {
    return std::tuple{json::required("id", &Brief::id), json::required("body", &Brief::body)};
  }
};

/// How long a deleted task can be put back, in milliseconds: seven days.
inline constexpr int64_t trashKeptMs = int64_t{7} * 24 * 60 * 60 * 1000;

// The indices of tasks: those still to be done, by who holds them, who waits for the person on
// them, for whom a secret stands on them, who is tagged on them, what they wait on, whom they are
// meant for, by when they are due, and those whose review is asked for.
inline constexpr std::string_view openTasks = "open";
inline constexpr std::string_view byOwner = "owner";
inline constexpr std::string_view byBlocker = "blockedBy";
inline constexpr std::string_view bySecret = "secret";
inline constexpr std::string_view byMention = "mention";
inline constexpr std::string_view byWaitsOn = "waitsOn";
inline constexpr std::string_view byRoute = "route";
inline constexpr std::string_view byDueTime = "due";
inline constexpr std::string_view toReview = "review";

template <>
struct Keys<Task> {
  template <class Found>
  static void visit(const Task& task, Found&& found) {
    if (task.deletedAtMs > 0) return found(Key{byDueTime, padded(task.deletedAtMs + trashKeptMs)});
    if (task.reviewState == reviewWanted) found(Key{toReview, {}});
    if (task.blocked) found(Key{byBlocker, task.blockedBy});
    if (hasSecret(task)) found(Key{bySecret, task.blockedBy});
    for (const std::string& party : task.mentions) found(Key{byMention, party});
    if (!isOpen(task)) return;
    found(Key{openTasks, {}});
    for (const std::string& id : task.waitsOn) found(Key{byWaitsOn, id});
    if (task.state == TaskState::claimed) {
      found(Key{byOwner, task.owner});
      found(Key{byDueTime, padded(task.dueMs)});
    } else if (!task.routedTo.empty()) {
      found(Key{byRoute, text::lowered(task.routedTo)});
    }
  }
};

constexpr auto Task::fields() {
  // clang-format off
  return std::tuple{
      json::required( "id",                  &Task::id),
      json::required( "title",               &Task::title),
      json::required( "state",               &Task::state),
      json::defaulted("owner",               &Task::owner),
      json::defaulted("filedBy",             &Task::filedBy),
      json::defaulted("claimedAtMs",         &Task::claimedAtMs),
      json::defaulted("leaseUntilMs",        &Task::leaseUntilMs),
      json::defaulted("dueMs",               &Task::dueMs),
      json::defaulted("expiryWarned",        &Task::expiryWarned),
      json::defaulted("claimAttempts",       &Task::claimAttempts),
      json::defaulted("lastLine",            &Task::lastLine),
      json::defaulted("linesBehind",         &Task::linesBehind),
      json::defaulted("linesSinceClaim",     &Task::linesSinceClaim),
      json::defaulted("blocked",             &Task::blocked),
      json::defaulted("blockedBy",           &Task::blockedBy),
      json::defaulted("blockerQuestion",     &Task::blockerQuestion),
      json::defaulted("blockerAnswer",       &Task::blockerAnswer),
      json::defaulted("isAnswerSecret",      &Task::isAnswerSecret),
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
      json::defaulted("reviewOfRole",        &Task::reviewOfRole),
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

}  // namespace quillpost
