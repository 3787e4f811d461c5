#pragma once

// What has moved on the board since a revision: the answer to a poll.

#include "json/record.h"
#include "model/squad.h"
#include "model/task.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// One thing that moved.
struct TeamworkChange {
  std::string kind;
  std::optional<std::string> taskID;

  bool operator==(const TeamworkChange&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkChange;
    // clang-format off
    return std::tuple{
        json::required("kind",   &Self::kind),
        json::optional("taskID", &Self::taskID),
    };
    // clang-format on
  }
};

/// One reason why the app woke this agent.
struct TeamworkWakeReason {
  /// Such as "claimExpiring", "claimExpired" or "taskWatched".
  std::string kind;
  std::optional<std::string> taskID;
  std::string summary;
  std::optional<std::string> cause;

  bool operator==(const TeamworkWakeReason&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkWakeReason;
    // clang-format off
    return std::tuple{
        json::required("kind",    &Self::kind),
        json::optional("taskID",  &Self::taskID),
        json::required("summary", &Self::summary),
        json::optional("cause",   &Self::cause),
    };
    // clang-format on
  }
};

/// What has moved since the revision that the poll named.
struct TeamworkChangeFeed {
  /// The board's revision now; the cursor of the next poll.
  int64_t rev = 0;
  /// Whether anything moved that the poll asked about.
  bool changed = false;
  std::string goal;
  /// Whether the person has confirmed that the goal is done.
  bool goalComplete = false;
  /// Whether completion is proposed and not yet confirmed.
  bool pendingGoalComplete = false;
  /// What kinds of change there were.
  std::vector<std::string> changeKinds;
  /// The tasks concerned.
  std::vector<TeamworkTask> tasks;
  std::vector<TeamworkChange> changes;
  /// Empty when the agent was not woken.
  std::vector<TeamworkWakeReason> wakeReasons;
  /// Delivered once, with this feed.
  std::vector<TeamworkSquadMessage> messages;

  bool operator==(const TeamworkChangeFeed&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkChangeFeed;
    // clang-format off
    return std::tuple{
        json::required( "rev",                 &Self::rev),
        json::required( "changed",             &Self::changed),
        json::required( "goal",                &Self::goal),
        json::required( "goalComplete",        &Self::goalComplete),
        json::required( "pendingGoalComplete", &Self::pendingGoalComplete),
        json::required( "changeKinds",         &Self::changeKinds),
        json::required( "tasks",               &Self::tasks),
        json::defaulted("changes",             &Self::changes),
        json::defaulted("wakeReasons",         &Self::wakeReasons),
        json::defaulted("messages",            &Self::messages),
    };
    // clang-format on
  }
};

}  // namespace quillpost
