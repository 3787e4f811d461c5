#pragma once

// The squad: whom the person allows agents to address and to start.

#include "json/record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// A note that a peer left for this agent.
struct TeamworkSquadMessage {
  std::string id;
  /// The sender's fingerprint or handle.
  std::string from;
  /// Empty when the sender has no name.
  std::string fromName;
  std::string text;
  int64_t ageSeconds = 0;

  bool operator==(const TeamworkSquadMessage&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkSquadMessage;
    // clang-format off
    return std::tuple{
        json::required("id",         &Self::id),
        json::required("from",       &Self::from),
        json::required("fromName",   &Self::fromName),
        json::required("text",       &Self::text),
        json::required("ageSeconds", &Self::ageSeconds),
    };
    // clang-format on
  }
};

/// The agent that takes work on a Mac.
struct TeamworkLead {
  std::string name;
  bool runsWithoutApprovals = false;
  /// Whether its command has changed and waits for the person.
  bool paused = false;

  bool operator==(const TeamworkLead&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkLead;
    // clang-format off
    return std::tuple{
        json::required("name",                 &Self::name),
        json::required("runsWithoutApprovals", &Self::runsWithoutApprovals),
        json::required("paused",               &Self::paused),
    };
    // clang-format on
  }
};

/// A helper that the person allows to be started.
struct TeamworkHelper {
  std::string name;
  std::string explanation;
  bool runsWithoutApprovals = false;
  /// Whether it is started with this program's tools.
  bool quillpostTools = false;

  bool operator==(const TeamworkHelper&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkHelper;
    // clang-format off
    return std::tuple{
        json::required("name",                 &Self::name),
        json::required("explanation",          &Self::explanation),
        json::required("runsWithoutApprovals", &Self::runsWithoutApprovals),
        json::required("quillpostTools",       &Self::quillpostTools),
    };
    // clang-format on
  }
};

/// The squad switch of a Thread and what it allows.
struct TeamworkSquadState {
  /// "on", or anything else for off.
  std::string mode;
  bool canAddress = false;
  bool canSpawn = false;
  /// The helpers that are allowed here.
  std::optional<std::vector<TeamworkHelper>> helpers;
  /// The lead of this Mac.
  std::optional<TeamworkLead> lead;
  /// How many helpers may run at once in the Thread.
  std::optional<int64_t> helperLimit;
  std::optional<int64_t> helpersRunning;

  bool operator==(const TeamworkSquadState&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkSquadState;
    // clang-format off
    return std::tuple{
        json::required("mode",           &Self::mode),
        json::required("canAddress",     &Self::canAddress),
        json::required("canSpawn",       &Self::canSpawn),
        json::optional("helpers",        &Self::helpers),
        json::optional("lead",           &Self::lead),
        json::optional("helperLimit",    &Self::helperLimit),
        json::optional("helpersRunning", &Self::helpersRunning),
    };
    // clang-format on
  }
};

/// A helper that was started on this Mac.
struct TeamworkHelperRun {
  std::string handle;
  /// The helper's name.
  std::string helper;
  /// "starting", "working", "awaitingPermission", "idle", "error", "exited", or a newer word.
  std::string state;
  /// The handle that asked for it; empty when nobody's is known.
  std::string askedBy;
  std::optional<int64_t> runningForSeconds;
  /// What went wrong, or how it ended.
  std::optional<std::string> detail;
  /// Whether the caller, or one of the caller's helpers, asked for it.
  bool yours = false;
  /// "terminal" for one that runs in a terminal.
  std::optional<std::string> kind;

  bool operator==(const TeamworkHelperRun&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkHelperRun;
    // clang-format off
    return std::tuple{
        json::required("handle",            &Self::handle),
        json::required("helper",            &Self::helper),
        json::required("state",             &Self::state),
        json::required("askedBy",           &Self::askedBy),
        json::optional("runningForSeconds", &Self::runningForSeconds),
        json::optional("detail",            &Self::detail),
        json::required("yours",             &Self::yours),
        json::optional("kind",              &Self::kind),
    };
    // clang-format on
  }
};

}  // namespace quillpost
