#pragma once

// A task on the board and those who follow it.

#include "json/record.h"
#include "model/discussion.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// Somebody who is told of every move of a task.
struct TeamworkTaskWatcher {
  /// What kind of party it is.
  std::string kind;
  std::optional<std::string> fingerprint;
  std::optional<std::string> name;
  /// Whether the board added the watch by itself; on the wire "auto", which is a keyword here.
  bool isAuto = false;

  bool operator==(const TeamworkTaskWatcher&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkTaskWatcher;
    // clang-format off
    return std::tuple{
        json::required("kind",        &Self::kind),
        json::optional("fingerprint", &Self::fingerprint),
        json::optional("name",        &Self::name),
        json::required("auto",        &Self::isAuto),
    };
    // clang-format on
  }
};

/// A task as the app tells it.
struct TeamworkTask {
  std::string id;
  std::string title;
  /// The brief, lines separated by line feeds.
  std::string body;
  /// The app's word, such as "claimed", "done" or "rejected".
  std::string state;
  /// Who holds the claim; absent or empty when nobody does.
  std::optional<std::string> ownerFingerprint;
  /// Seconds until the claim lapses.
  std::optional<int64_t> claimLeaseSecondsRemaining;
  /// Progress lines and marker lines, oldest first.
  std::vector<std::string> log;
  bool blocked = false;
  /// What the person is asked.
  std::optional<std::string> blockerQuestion;
  /// What the person answered.
  std::optional<std::string> blockerAnswer;
  /// Whether the question has been put before the person again.
  bool blockerEscalated = false;
  /// Higher comes first; 0 is normal.
  int64_t priority = 0;
  /// "bug", "feature", "chore" or "research".
  std::optional<std::string> type;
  /// Whether it has been claimed and dropped over and over.
  bool thrashing = false;
  /// How often it has been claimed.
  int64_t claimAttempts = 0;
  /// What it touches.
  std::vector<std::string> resources;
  /// The app's word for the state of its review; absent when none was asked for.
  std::optional<std::string> reviewState;
  std::optional<std::string> reviewRequestedFromFingerprint;
  std::optional<std::string> reviewNote;
  std::optional<std::string> reviewByFingerprint;
  /// Why its holder is parked.
  std::optional<std::string> parkedReason;
  /// The role it is meant for.
  std::optional<std::string> assignedRole;
  /// The agent it is routed to: a fingerprint or a handle.
  std::optional<std::string> routedToFingerprint;
  /// Whether that agent is still here.
  bool routedToLive = false;
  /// Who asked for it.
  std::optional<std::string> reportsToHandle;
  /// The tasks it waits on.
  std::vector<std::string> waitsOn;
  /// Whether nothing it waits on is unfinished.
  bool ready = true;
  /// Those of waitsOn that name no task on this board.
  std::optional<std::vector<std::string>> unresolvedWaitsOn;
  /// Why a peer asks for its release.
  std::optional<std::string> pendingReleaseReason;
  /// Whether a comment on it tags the caller, unanswered.
  bool mentionsYou = false;
  int64_t openDiscussions = 0;
  int64_t escalatedDiscussions = 0;
  std::vector<TeamworkDiscussion> discussions;
  bool pendingDelete = false;
  std::optional<std::string> pendingDeleteReason;
  std::vector<TeamworkTaskWatcher> watchers;

  bool operator==(const TeamworkTask&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkTask;
    // clang-format off
    return std::tuple{
        json::required( "id",                             &Self::id),
        json::required( "title",                          &Self::title),
        json::required( "body",                           &Self::body),
        json::required( "state",                          &Self::state),
        json::optional( "ownerFingerprint",               &Self::ownerFingerprint),
        json::optional( "claimLeaseSecondsRemaining",     &Self::claimLeaseSecondsRemaining),
        json::required( "log",                            &Self::log),
        json::defaulted("blocked",                        &Self::blocked),
        json::optional( "blockerQuestion",                &Self::blockerQuestion),
        json::optional( "blockerAnswer",                  &Self::blockerAnswer),
        json::defaulted("blockerEscalated",               &Self::blockerEscalated),
        json::defaulted("priority",                       &Self::priority),
        json::optional( "type",                           &Self::type),
        json::defaulted("thrashing",                      &Self::thrashing),
        json::defaulted("claimAttempts",                  &Self::claimAttempts),
        json::required( "resources",                      &Self::resources),
        json::optional( "reviewState",                    &Self::reviewState),
        json::optional( "reviewRequestedFromFingerprint", &Self::reviewRequestedFromFingerprint),
        json::optional( "reviewNote",                     &Self::reviewNote),
        json::optional( "reviewByFingerprint",            &Self::reviewByFingerprint),
        json::optional( "parkedReason",                   &Self::parkedReason),
        json::optional( "assignedRole",                   &Self::assignedRole),
        json::optional( "routedToFingerprint",            &Self::routedToFingerprint),
        json::defaulted("routedToLive",                   &Self::routedToLive),
        json::optional( "reportsToHandle",                &Self::reportsToHandle),
        json::defaulted("waitsOn",                        &Self::waitsOn),
        json::defaulted("ready",                          &Self::ready),
        json::optional( "unresolvedWaitsOn",              &Self::unresolvedWaitsOn),
        json::optional( "pendingReleaseReason",           &Self::pendingReleaseReason),
        json::defaulted("mentionsYou",                    &Self::mentionsYou),
        json::defaulted("openDiscussions",                &Self::openDiscussions),
        json::defaulted("escalatedDiscussions",           &Self::escalatedDiscussions),
        json::defaulted("discussions",                    &Self::discussions),
        json::defaulted("pendingDelete",                  &Self::pendingDelete),
        json::optional( "pendingDeleteReason",            &Self::pendingDeleteReason),
        json::defaulted("watchers",                       &Self::watchers),
    };
    // clang-format on
  }
};

}  // namespace quillpost
