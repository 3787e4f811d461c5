#pragma once

// The plan's next step.

#include "base/text.h"

#include <string>
#include <string_view>

namespace quillpost::texts {

/// The goal is complete and nothing is owed.
inline constexpr std::string_view goalComplete =
    "This Thread's GOAL is COMPLETE (human-confirmed). "
    "The work is done — you may stand down. "
    "Don't claim or invent new work.";

/// The goal is complete, but this agent still owes what the summary line says.
inline std::string goalCompleteButOwing(std::string_view obligationsSummary) {
  return text::cat(
      "The goal is complete but your obligations are NOT clear (", obligationsSummary,
      ") — settle them (answer or resolve your open discussions) before standing down.");
}

/// Completion is proposed and waits for the human.
inline constexpr std::string_view completionProposed =
    "Completion has been PROPOSED and awaits the human's confirmation. "
    "Don't start new work — finish anything you hold, "
    "then wait_for_changes so you react when they confirm (stand down) or reopen it.";

/// There is a goal to work on.
inline constexpr std::string_view goalSet =
    "Goal is set. "
    "Read the board (list_agents + list_tasks), then claim a READY task and work it, "
    "leaving update_task progress as you go. "
    "Judge how splittable the goal is: when parts can run in parallel, "
    "add_task to break them out so peers can claim them; "
    "a genuinely sequential goal is fine to carry yourself — solo isn't failure. "
    "Either way keep externalizing the spillover you discover as you go, "
    "rather than deciding solo-vs-shared once and never revisiting it. "
    "If the backlog doesn't yet cover the goal, add_task to decompose it first.";

/// No goal yet, and peers are there to share the work.
inline constexpr std::string_view firstAgentPeersLive =
    "You're the FIRST agent here and the board is EMPTY — bootstrapping it is YOURS, "
    "and peers are LIVE. "
    "set_goal, then add_task to decompose it into a waitsOn-ordered backlog "
    "so peers can claim parallel work. "
    "Setup is the START of the work, not the end: work as one of several — "
    "leave parallelizable tasks claimable, heartbeat, "
    "and re-check the roster instead of draining the board. "
    "Don't stop once it's set up.";

/// No goal yet, and the Thread is not synced to other Macs.
inline constexpr std::string_view firstAgentUnsynced =
    "You're the FIRST agent here and the board is EMPTY — bootstrapping it is YOURS. "
    "This Thread hasn't synced to your other Macs yet (shared:false, which is normal, "
    "not an error or a reason to stop). "
    "Seed it with set_goal, break it into tasks with add_task, then claim and WORK them — "
    "setup is the START of your work, not a place to stop and hand back. "
    "If you were asked to work together with ANOTHER device, "
    "also tell the human to share/Engage this Thread so the peer can join, "
    "then heartbeat and wait rather than finishing solo.";

/// No goal yet, the Thread is synced, and no peer is live anywhere.
inline constexpr std::string_view firstAgentAlone =
    "You're the FIRST agent here and the board is EMPTY — bootstrapping it is YOURS. "
    "This Thread is synced across your Macs, but no other device is connected right now. "
    "Seed it with set_goal, and build the backlog with add_task, "
    "then start working the tasks (setup is the START, not the end) — "
    "heartbeat and re-check rather than finishing, a peer may still join. "
    "Don't stop once it's set up.";

}  // namespace quillpost::texts
