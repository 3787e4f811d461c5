#pragma once

// The app's answer to one request.

#include "json/record.h"
#include "model/changes.h"
#include "model/discussion.h"
#include "model/obligations.h"
#include "model/plan.h"
#include "model/roster.h"
#include "model/squad.h"
#include "model/task.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// What an answer is; the words are the app's.
enum class TeamworkResponseKind {
  registered,  // the caller's own seat, in agent
  agents,
  tasks,
  task,
  plan,
  changes,
  discussion,
  wake,     // the answer to a stop hook, in wakePending
  written,  // a write that was done; message when the app adds one
  empty,    // nothing to show
  error     // message says why
};

template <>
struct json::Names<TeamworkResponseKind> {
  using Kind = TeamworkResponseKind;
  // clang-format off
  static constexpr std::array rows = {
      Name<Kind>{Kind::registered, "registered"},
      Name<Kind>{Kind::agents,     "agents"},
      Name<Kind>{Kind::tasks,      "tasks"},
      Name<Kind>{Kind::task,       "task"},
      Name<Kind>{Kind::plan,       "plan"},
      Name<Kind>{Kind::changes,    "changes"},
      Name<Kind>{Kind::discussion, "discussion"},
      Name<Kind>{Kind::wake,       "wake"},
      Name<Kind>{Kind::written,    "written"},
      Name<Kind>{Kind::empty,      "empty"},
      Name<Kind>{Kind::error,      "error"},
  };
  // clang-format on
  static_assert(allDifferent(rows));
};

/// One answer. The app may send any subset of the members with any kind.
struct TeamworkResponse {
  using Kind = TeamworkResponseKind;

  Kind kind = Kind::empty;
  /// The caller's own seat.
  std::optional<TeamworkAgent> agent;
  std::optional<std::vector<TeamworkAgent>> agents;
  std::optional<std::vector<TeamworkTask>> tasks;
  std::optional<TeamworkTask> task;
  std::optional<TeamworkPlan> plan;
  /// What the app says in words.
  std::optional<std::string> message;
  std::optional<TeamworkChangeFeed> changes;
  std::optional<TeamworkDiscussion> discussion;
  std::optional<TeamworkObligations> obligations;
  std::optional<TeamworkAudience> audience;
  /// The board's revision.
  std::optional<int64_t> rev;
  /// "T-" and six characters.
  std::optional<std::string> threadTag;
  /// Whether anything waits for this seat.
  std::optional<bool> wakePending;
  /// What the app did differently from what was asked, such as a text that it cut.
  std::optional<std::string> notice;
  /// Delivered once, with this answer.
  std::optional<std::vector<TeamworkSquadMessage>> messages;
  std::optional<TeamworkSquadState> squad;
  std::optional<std::vector<TeamworkPane>> panes;
  std::optional<std::vector<TeamworkMac>> macs;
  /// The helpers that run on this Mac.
  std::optional<std::vector<TeamworkHelperRun>> runningHelpers;

  bool operator==(const TeamworkResponse&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkResponse;
    // clang-format off
    return std::tuple{
        json::required("kind",           &Self::kind),
        json::optional("agent",          &Self::agent),
        json::optional("agents",         &Self::agents),
        json::optional("tasks",          &Self::tasks),
        json::optional("task",           &Self::task),
        json::optional("plan",           &Self::plan),
        json::optional("message",        &Self::message),
        json::optional("changes",        &Self::changes),
        json::optional("discussion",     &Self::discussion),
        json::optional("obligations",    &Self::obligations),
        json::optional("audience",       &Self::audience),
        json::optional("rev",            &Self::rev),
        json::optional("threadTag",      &Self::threadTag),
        json::optional("wakePending",    &Self::wakePending),
        json::optional("notice",         &Self::notice),
        json::optional("messages",       &Self::messages),
        json::optional("squad",          &Self::squad),
        json::optional("panes",          &Self::panes),
        json::optional("macs",           &Self::macs),
        json::optional("runningHelpers", &Self::runningHelpers),
    };
    // clang-format on
  }
};

}  // namespace quillpost
