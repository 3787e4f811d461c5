#pragma once

// The one message that the program sends to the app: an envelope with the credentials of this seat
// and the verb, and a flat set of arguments that each verb uses as it needs.

#include "json/record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// One request to the app. What has no value is left out of the JSON; an empty list or a false flag
/// that was given is written.
struct TeamworkRequest {
  /// The version of this protocol; always 1.
  int64_t protocolVersion = 1;
  /// The collaboration token, as it is at the moment of the request.
  std::string token;
  /// The session of this seat on the app.
  std::string sessionID;
  /// The verb: a tool's own name, or one of the methods of waiting and of the stop hook.
  std::string method;
  /// The cosmetic handle (register), the charter (set_charter), the composed goal (set_goal).
  std::optional<std::string> name;
  /// The agent's role (register).
  std::optional<std::string> role;
  /// The verdict of a review (verify_task).
  std::optional<bool> approve;
  /// The reviewer asked for (request_review).
  std::optional<std::string> reviewOfFingerprint;
  /// The role of the reviewer asked for (request_review).
  std::optional<std::string> reviewOfRole;
  /// The task's priority; higher comes first, 0 is normal.
  std::optional<int64_t> priority;
  /// The task's type; the empty text clears it.
  std::optional<std::string> taskType;
  /// What the task touches; an empty list clears it.
  std::optional<std::vector<std::string>> resources;
  /// The role the task is meant for.
  std::optional<std::string> assignedRole;
  /// The agent the task is routed to.
  std::optional<std::string> routedToFingerprint;
  /// The addressee: a handle, a device tag, or the helper to stop.
  std::optional<std::string> to;
  /// The helper's name (request_hands, suggest_helper).
  std::optional<std::string> agent;
  /// The command line of a suggested helper.
  std::optional<std::string> command;
  /// What other agents should know about a suggested helper.
  std::optional<std::string> explanation;
  /// The one-line presence hint (register, heartbeat).
  std::optional<std::string> status;
  /// The task addressed.
  std::optional<std::string> taskID;
  /// The task's title.
  std::optional<std::string> title;
  /// The task's brief, or the free text of a verb: question, volley, resolution, message, reason.
  std::optional<std::string> body;
  /// A comment's text or a progress line.
  std::optional<std::string> note;
  /// Sets or clears the task's blocked state.
  std::optional<bool> blocked;
  /// The question to the person, with its ask marker when it is typed.
  std::optional<std::string> blockerQuestion;
  /// Why the agent is parked.
  std::optional<std::string> parkReason;
  /// The summary line for the person.
  std::optional<std::string> summary;
  /// The tasks that this one waits on; an empty list clears it.
  std::optional<std::vector<std::string>> waitsOn;
  /// The tasks to watch (waiting only); absent means all of them.
  std::optional<std::vector<std::string>> taskIDs;
  /// The board revision that the caller has seen (waiting only).
  std::optional<int64_t> sinceRev;
  /// How long the app may hold the request open, in milliseconds (waiting only).
  std::optional<int64_t> holdMs;
  /// Whether a wait also ends on claims and other changes of state (waiting only).
  std::optional<bool> wakeOnStateChanges;
  /// The reason given to any verb that takes one.
  std::optional<std::string> releaseReason;
  /// Whether this heartbeat comes from a wait (waiting only).
  std::optional<bool> waiting;
  /// Whether the agent is finished and waits to be given work (waiting only).
  std::optional<bool> standDown;
  /// The parties tagged on a comment, or a discussion's addressees.
  std::optional<std::vector<std::string>> tags;
  /// Amends the agent's own last comment instead of adding one.
  std::optional<bool> editLast;
  /// Acknowledges that tasks are still open (propose_goal_complete).
  std::optional<bool> acknowledgeOpenTasks;
  /// The discussion addressed.
  std::optional<std::string> discussionID;

  bool operator==(const TeamworkRequest&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkRequest;
    // clang-format off
    return std::tuple{
        json::required("protocolVersion",      &Self::protocolVersion),
        json::required("token",                &Self::token),
        json::required("sessionID",            &Self::sessionID),
        json::required("method",               &Self::method),
        json::optional("name",                 &Self::name),
        json::optional("role",                 &Self::role),
        json::optional("approve",              &Self::approve),
        json::optional("reviewOfFingerprint",  &Self::reviewOfFingerprint),
        json::optional("reviewOfRole",         &Self::reviewOfRole),
        json::optional("priority",             &Self::priority),
        json::optional("taskType",             &Self::taskType),
        json::optional("resources",            &Self::resources),
        json::optional("assignedRole",         &Self::assignedRole),
        json::optional("routedToFingerprint",  &Self::routedToFingerprint),
        json::optional("to",                   &Self::to),
        json::optional("agent",                &Self::agent),
        json::optional("command",              &Self::command),
        json::optional("explanation",          &Self::explanation),
        json::optional("status",               &Self::status),
        json::optional("taskID",               &Self::taskID),
        json::optional("title",                &Self::title),
        json::optional("body",                 &Self::body),
        json::optional("note",                 &Self::note),
        json::optional("blocked",              &Self::blocked),
        json::optional("blockerQuestion",      &Self::blockerQuestion),
        json::optional("parkReason",           &Self::parkReason),
        json::optional("summary",              &Self::summary),
        json::optional("waitsOn",              &Self::waitsOn),
        json::optional("taskIDs",              &Self::taskIDs),
        json::optional("sinceRev",             &Self::sinceRev),
        json::optional("holdMs",               &Self::holdMs),
        json::optional("wakeOnStateChanges",   &Self::wakeOnStateChanges),
        json::optional("releaseReason",        &Self::releaseReason),
        json::optional("waiting",              &Self::waiting),
        json::optional("standDown",            &Self::standDown),
        json::optional("tags",                 &Self::tags),
        json::optional("editLast",             &Self::editLast),
        json::optional("acknowledgeOpenTasks", &Self::acknowledgeOpenTasks),
        json::optional("discussionID",         &Self::discussionID),
    };
    // clang-format on
  }
};

}  // namespace quillpost
