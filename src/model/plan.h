#pragma once

// The goal that a Thread serves.

#include "json/record.h"
#include "model/discussion.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// A Thread's goal, charter and reach.
struct TeamworkPlan {
  std::string threadName;
  /// Empty, or only white space, while none is set.
  std::string goal;
  /// What the Thread is for and owns.
  std::string charter;
  bool goalLocked = false;
  bool dispatched = false;
  /// Whether the Thread is synced beyond this machine.
  bool shared = false;
  /// Live peers on this machine.
  int64_t otherLocalAgents = 0;
  /// Other machines that are live on the Thread.
  int64_t otherDevices = 0;
  /// Whether the person has confirmed that the goal is done.
  bool goalComplete = false;
  /// Whether completion is proposed and not yet confirmed.
  bool pendingGoalComplete = false;
  /// The open ones.
  std::vector<TeamworkDiscussion> discussions;

  bool operator==(const TeamworkPlan&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkPlan;
    // clang-format off
    return std::tuple{
        json::required( "threadName",          &Self::threadName),
        json::required( "goal",                &Self::goal),
        json::defaulted("charter",             &Self::charter),
        json::required( "goalLocked",          &Self::goalLocked),
        json::required( "dispatched",          &Self::dispatched),
        json::defaulted("shared",              &Self::shared),
        json::defaulted("otherLocalAgents",    &Self::otherLocalAgents),
        json::defaulted("otherDevices",        &Self::otherDevices),
        json::defaulted("goalComplete",        &Self::goalComplete),
        json::defaulted("pendingGoalComplete", &Self::pendingGoalComplete),
        json::defaulted("discussions",         &Self::discussions),
    };
    // clang-format on
  }
};

}  // namespace quillpost
