#pragma once

// What the agent owes the board before it may end its turn, and who else reads the Thread.

#include "json/record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// What the calling agent owes. Every key may be missing.
struct TeamworkObligations {
  /// A discussion in which somebody owes a reply.
  struct DebateRef {
    std::string discussionID;
    /// Absent for a discussion of the whole board.
    std::optional<std::string> taskID;
    std::string question;
    /// The other side.
    std::string counterpart;

    bool operator==(const DebateRef&) const = default;

    static constexpr auto fields() {
      using Self = DebateRef;
      // clang-format off
      return std::tuple{
          json::required("discussionID", &Self::discussionID),
          json::optional("taskID",       &Self::taskID),
          json::required("question",     &Self::question),
          json::required("counterpart",  &Self::counterpart),
      };
      // clang-format on
    }
  };

  /// A held task that needs a word.
  struct HeldRef {
    std::string taskID;
    /// Progress lines written since the summary was last refreshed.
    int64_t summaryBehindBy = 0;
    bool wroteNothingSinceClaim = false;

    bool operator==(const HeldRef&) const = default;

    static constexpr auto fields() {
      using Self = HeldRef;
      // clang-format off
      return std::tuple{
          json::required("taskID",                 &Self::taskID),
          json::required("summaryBehindBy",        &Self::summaryBehindBy),
          json::required("wroteNothingSinceClaim", &Self::wroteNothingSinceClaim),
      };
      // clang-format on
    }
  };

  /// A peer who asks for the release of a held task.
  struct ReleaseAskRef {
    std::string taskID;
    std::string requester;
    std::string reason;

    bool operator==(const ReleaseAskRef&) const = default;

    static constexpr auto fields() {
      using Self = ReleaseAskRef;
      // clang-format off
      return std::tuple{
          json::required("taskID",    &Self::taskID),
          json::required("requester", &Self::requester),
          json::required("reason",    &Self::reason),
      };
      // clang-format on
    }
  };

  /// A write that did not land on the relay.
  struct UndeliveredRef {
    /// The tool that wrote.
    std::string verb;
    std::optional<std::string> taskID;
    std::string reason;
    /// Whether the relay received it and declined it; otherwise it never arrived and resends.
    bool refused = false;

    bool operator==(const UndeliveredRef&) const = default;

    static constexpr auto fields() {
      using Self = UndeliveredRef;
      // clang-format off
      return std::tuple{
          json::required("verb",    &Self::verb),
          json::optional("taskID",  &Self::taskID),
          json::required("reason",  &Self::reason),
          json::required("refused", &Self::refused),
      };
      // clang-format on
    }
  };

  /// Discussions where it is this agent's turn.
  std::vector<DebateRef> oweReply;
  /// Discussions that wait on the counterpart.
  std::vector<DebateRef> awaitingReply;
  /// Tasks that this agent set blocked and that still are.
  std::vector<std::string> yourBlockersOpen;
  /// Tasks on which this agent was tagged and has not answered.
  std::vector<std::string> mentionsToAnswer;
  std::vector<std::string> tasksHeld;
  /// Held tasks whose summary lags the progress lines.
  std::vector<HeldRef> staleSummaries;
  /// Held tasks with nothing written since the claim.
  std::vector<HeldRef> idleHeld;
  std::vector<ReleaseAskRef> releaseAsks;
  std::vector<UndeliveredRef> undelivered;
  /// Whether nothing is owed.
  bool clear = true;

  bool operator==(const TeamworkObligations&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkObligations;
    // clang-format off
    return std::tuple{
        json::defaulted("oweReply",         &Self::oweReply),
        json::defaulted("awaitingReply",    &Self::awaitingReply),
        json::defaulted("yourBlockersOpen", &Self::yourBlockersOpen),
        json::defaulted("mentionsToAnswer", &Self::mentionsToAnswer),
        json::defaulted("tasksHeld",        &Self::tasksHeld),
        json::defaulted("staleSummaries",   &Self::staleSummaries),
        json::defaulted("idleHeld",         &Self::idleHeld),
        json::defaulted("releaseAsks",      &Self::releaseAsks),
        json::defaulted("undelivered",      &Self::undelivered),
        json::defaulted("clear",            &Self::clear),
    };
    // clang-format on
  }
};

/// Who else reads the Thread. Every key may be missing.
struct TeamworkAudience {
  /// Whether the Thread is synced beyond this Mac.
  bool shared = false;
  /// Other Macs that are live on the Thread.
  int64_t otherDevices = 0;
  /// Other people whom the Thread is shared with.
  int64_t otherPeople = 0;
  /// Other agents that are live on this Mac.
  int64_t otherLocalAgents = 0;

  bool operator==(const TeamworkAudience&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkAudience;
    // clang-format off
    return std::tuple{
        json::defaulted("shared",           &Self::shared),
        json::defaulted("otherDevices",     &Self::otherDevices),
        json::defaulted("otherPeople",      &Self::otherPeople),
        json::defaulted("otherLocalAgents", &Self::otherLocalAgents),
    };
    // clang-format on
  }
};

}  // namespace quillpost
