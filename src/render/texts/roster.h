#pragma once

// Who is on the board, what can be addressed and started, and the same board's command line.

#include "base/text.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::texts {

/// An agent that has made no call of its own for this many whole minutes.
inline std::string quietNote(int64_t minutes) {
  return text::cat(
      "This seat has not made a call of its own for ", minutes,
      "m. Its terminal is open, so its lease keeps renewing, but nothing has come from the agent. "
      "Do not wait on it: anything aimed at it is claimable by you.");
}

/// Why an agent on another Mac has no lease.
inline constexpr std::string_view seatNote =
    "This agent is on another Mac, so its lease is not this Mac's to report "
    "and no leaseSecondsRemaining is given. "
    "`seat` is what the relay last said about that Mac's seat — "
    "the only liveness fact available here. "
    "It is not proof the agent is working; treat a quiet peer as unknown, not gone.";

/// A helper run's state and the words it is shown with.
struct HelperRunState {
  std::string_view state;
  std::string_view shownAs;
};

/// A state without a row is shown as it is.
// clang-format off
inline constexpr HelperRunState helperRunStates[] = {
    {"starting",           "starting"},
    {"working",            "working"},
    {"awaitingPermission", "WAITING ON THE PERSON to answer a permission prompt"},
    {"idle",               "idle between turns"},
    {"error",              "in error"},
    {"exited",             "stopped"},
};
// clang-format on

static_assert(std::ranges::all_of(helperRunStates, [](const HelperRunState& run) {
  return std::ranges::count(helperRunStates, run.state, &HelperRunState::state) == 1;
}));

/// The SQUAD paragraph when the squad is on.
inline constexpr std::string_view squadOn =
    "SQUAD: on for this thread, reaching the agents in this thread on this Mac, "
    "and the ones on your other Macs when you address them by name (`KQ3@name`) — "
    "each Mac decides for itself what it accepts. "
    "assign_task hands a peer a task and wakes it, send_message leaves one a short note, "
    "request_hands files work and starts a helper for it as one of the helpers listed below, "
    "and stop_helper stops a helper you asked for (list_agents shows which are yours). "
    "Squad is on because the person switched on at least one helper here in the Squad drawer.";

/// The SQUAD paragraph in any other mode.
inline constexpr std::string_view squadOff =
    "SQUAD: off for this thread, so assign_task, "
    "send_message and request_hands all refuse and no agent here can be addressed directly. "
    "Coordinate through the board — add_task filed here is claimable by every peer. "
    "Squad turns on when the person switches on a helper in the Squad drawer; until they do, "
    "a retry changes nothing.";

/// The HELPERS HERE paragraph when no helper is allowed.
inline constexpr std::string_view noHelpersHere =
    "HELPERS HERE: none allowed in this thread, "
    "so request_hands files the work and starts nothing on this device. "
    "The person allows helpers in the Squad drawer; suggest_helper asks them to add one.";

/// How exactly one helper is named in a call.
inline constexpr std::string_view helperNameMayBeOmitted = ", or omit it";

/// How one of several helpers is named in a call.
inline constexpr std::string_view helperNameRequired = ", required when there is more than one";

/// The helpers of the HELPERS HERE paragraph, already in words.
struct HelpersHere {
  /// One of the two naming rules above.
  std::string_view naming;
  /// The helper lines, joined.
  std::string_view lines;
};

/// The HELPERS HERE paragraph when there are helpers.
inline std::string helpersHere(const HelpersHere& helpers) {
  return text::cat("HELPERS HERE (request_hands agent: \"<name>\"", helpers.naming,
                   "): ", helpers.lines, ".");
}

/// The mark of a helper, or of another Mac's lead, that never asks.
inline constexpr std::string_view runsWithoutApproval = "runs without asking for approval";

/// The mark of a helper that has the command line only.
inline constexpr std::string_view onlyCommandLine = "no Quillpost tools, only qp";

/// How many helpers run, and how many may.
struct HelperCount {
  int64_t running;
  int64_t limit;
};

/// The limit leaves no room; ends with a blank.
inline constexpr std::string_view noneMayStart = "none may start until one is stopped. ";

/// The limit leaves room for this many; ends with a blank.
inline std::string moreMayStart(int64_t count) { return text::cat(count, " more may start. "); }

/// The HELPER LIMIT sentence; `mayStart` is one of the two above.
inline std::string helperLimit(const HelperCount& helpers, std::string_view mayStart) {
  return text::cat(
      "HELPER LIMIT: ", helpers.running, " of ", helpers.limit,
      " helpers are running in this thread, so ", mayStart, "The ", helpers.limit,
      " are shared by every agent here and a helper's own helpers count. "
      "The helpers you ask for are yours to manage: ask for no more than the work splits into, "
      "read each one's result when you are woken, and stop it then (stop_helper). "
      "A helper that has finished still counts until it is stopped, "
      "and closing your terminal stops every helper you asked for.");
}

/// The mark of a helper that runs in a terminal.
inline constexpr std::string_view inTerminal = ", in a terminal";

/// Whose a helper is: one of the caller's own helpers asked for it.
inline std::string askedForByYourHelper(std::string_view handle) {
  return text::cat(", asked for by your helper ", handle, ", so you may stop it");
}

/// Whose a helper is: the caller asked for it.
inline constexpr std::string_view askedForByYou = ", asked for by you";

/// Whose a helper is: another agent asked for it.
inline std::string askedForBy(std::string_view handle) {
  return text::cat(", asked for by ", handle);
}

/// The HELPERS RUNNING HERE paragraph; `lines` are the helper runs, joined.
inline std::string helpersRunningHere(std::string_view lines) {
  return text::cat("HELPERS RUNNING HERE: ", lines, ".");
}

/// How to stop one; begins with a blank.
inline constexpr std::string_view stopOneOfYours =
    " stop_helper handle: \"<handle>\" stops one of yours (one you asked for, "
    "or one your helpers asked for) when you no longer need it; its claims go back to the pool.";

/// The words of the ALSO OPEN HERE paragraph that depend on the number of terminals.
struct PaneWords {
  std::string_view terminalsExist;
  std::string_view inThem;
  std::string_view theyAre;
};

/// For one terminal.
inline constexpr PaneWords onePane{
    .terminalsExist = "That terminal exists", .inThem = "it", .theyAre = "it is"};

/// For several terminals.
inline constexpr PaneWords severalPanes{
    .terminalsExist = "Those terminals exist", .inThem = "them", .theyAre = "they are"};

/// The ALSO OPEN HERE paragraph; `handles` are the terminals, joined.
inline std::string alsoOpenHere(std::string_view handles, const PaneWords& words) {
  return text::cat("ALSO OPEN HERE, WITH NOBODY HOME: ", handles, ". ", words.terminalsExist,
                   " and no agent has confirmed in ", words.inThem,
                   ", so nothing can be assigned or sent there and ", words.theyAre,
                   " not on the roster above. "
                   "An agent appears once it registers. "
                   "If you need those hands, say so — the person can start an agent there, "
                   "or you can ask for a helper with request_hands.");
}

/// The heading of the sentences on the person's other Macs.
inline constexpr std::string_view otherDevices = "YOUR OTHER DEVICES ON THIS THREAD.";

/// Some of the other Macs, already in words.
struct Devices {
  /// The Macs, joined.
  std::string_view names;
  /// The tag of the first of them, without "@".
  std::string_view firstTag;
};

/// The Macs that take work.
inline std::string devicesTakingWork(const Devices& devices) {
  return text::cat("Taking work: ", devices.names, ". request_hands to: \"@", devices.firstTag,
                   "\" sends the work to that device's lead, "
                   "which may start its own helpers there; name no agent.");
}

/// The Macs whose lead is paused.
inline std::string devicesPaused(std::string_view names) {
  return text::cat("Paused: ", names,
                   ". Its lead's command changed and waits for the person to confirm it there, "
                   "so request_hands to it is refused.");
}

/// The Macs that have no lead.
inline std::string devicesNotTakingWork(std::string_view names) {
  return text::cat("Not taking work from other devices: ", names,
                   ". request_hands to it is refused; that is the person's switch on that device.");
}

/// The Macs that are not awake.
inline std::string devicesUnreachable(std::string_view names) {
  return text::cat("Unreachable: ", names,
                   ". Asleep, shut, or off the network, so request_hands to it is refused.");
}

/// The Macs whose terminals can be addressed.
inline std::string devicesAddressable(const Devices& devices) {
  return text::cat("assign_task and send_message reach the terminals on ", devices.names,
                   " by their own addresses (KQ3@", devices.firstTag,
                   "), and wait there if that device is asleep.");
}

/// The board's command line, for every client.
inline constexpr std::string_view commandLineNote =
    "`qp` is on your PATH in this terminal and reaches every verb in this tool list, "
    "from this same seat, with the same results and the same steering. "
    "PREFER IT. "
    "Several verbs go in one command, so one turn does what several tool calls would; "
    "`--json` pipes into jq, so you can narrow a long result before it costs you any context; "
    "and it is the only one of the two that your harness can run while you are "
    "doing something else. "
    "`qp --help` lists the groups, `qp brief` prints the protocol in full. "
    "Use these tools when you cannot run a shell command here, and think nothing of it.";

/// What the command line is best at, for clients that have not been told; begins with a blank.
inline constexpr std::string_view commandLineWaits =
    " That last difference is the large one: "
    "`qp wait` as a background command costs nothing while it blocks and your harness wakes you "
    "with what changed, where every return from wait_for_changes is a whole model turn carrying "
    "your whole conversation.";

}  // namespace quillpost::texts
