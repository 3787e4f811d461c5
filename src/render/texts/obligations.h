#pragma once

// What the agent owes, in one line and in full, and what to do about it.

#include "base/text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::texts {

// The phrases of the summary line, in its order, each for a count of 1 or more.

/// Discussions in which it is this agent's turn.
inline std::string repliesOwed(int64_t count) {
  return text::cat(count, " repl", text::yOrIes(count), " owed");
}

/// Discussions that wait for the other side.
inline std::string discussionsAwaiting(int64_t count) {
  return text::cat(count, " discussion", text::s(count), " awaiting your counterpart");
}

/// Blockers this agent set that are still open.
inline std::string blockersOpen(int64_t count) {
  return text::cat(count, " blocker", text::s(count), " open");
}

/// Mentions this agent has not answered.
inline std::string mentionsToAnswer(int64_t count) {
  return text::cat(count, " mention", text::s(count), " to answer");
}

/// Tasks this agent holds.
inline std::string tasksHeld(int64_t count) {
  return text::cat(count, " task", text::s(count), " held");
}

/// Held tasks whose summary lags behind their progress.
inline std::string summariesStale(int64_t count) {
  return text::cat(count, " stale summar", text::yOrIes(count));
}

/// Held tasks with nothing written since the claim.
inline std::string heldWithNothingWritten(int64_t count) {
  return text::cat(count, " held with nothing written");
}

/// How many writes the relay declined.
inline std::string writesRefused(int64_t count) {
  return text::cat(count, " REFUSED by the relay");
}

/// How many writes are still to be sent.
inline std::string writesQueued(int64_t count) { return text::cat(count, " queued unsent"); }

/// All writes that did not land; `reasons` are the two above, joined.
inline std::string writesNotLanded(int64_t count, std::string_view reasons) {
  return text::cat(count, " of your writes did not land (", reasons, ")");
}

/// The summary line when no phrase applies.
inline constexpr std::string_view nothingOutstanding = "nothing outstanding";

/// The end of a text result when something is owed.
inline std::string obligationsSuffix(std::string_view obligationsSummary) {
  return text::cat("\n\nobligations: ", obligationsSummary);
}

/// The state of a held task with nothing written.
inline constexpr std::string_view heldNothingWritten = "held, nothing written since you claimed it";

/// What to do about it when it is not known who else reads the board.
inline constexpr std::string_view writeOrRelease =
    "Write what you have done with update_task, "
    "or hand it back with release_task if you are not on it. "
    "If you are waiting on something, say so: wait_for_changes takes a parkReason.";

/// What to do about it when others are on the board.
inline constexpr std::string_view writeOrReleaseForOthers =
    "Write what you have done with update_task, "
    "or hand it back with release_task if you are not on it. "
    "Until you do, this is work another agent can neither take nor judge the state of. "
    "If you are waiting on something, say so: wait_for_changes takes a parkReason.";

/// What to do about it when nobody else is on the board.
inline constexpr std::string_view writeOrReleaseAlone =
    "Write what you have done with update_task, "
    "or hand it back with release_task if you are not on it. "
    "Nobody else is on this board, so this is not about holding a peer up: "
    "it is so the work survives your claim lapsing, "
    "and so the human reading the task can see where it got to. "
    "If you are waiting on something, say so: wait_for_changes takes a parkReason.";

/// The state of a held task whose summary lags by `lines` progress lines.
inline std::string summaryBehind(int64_t lines) {
  return text::cat("the human's summary is ", lines, " progress lines behind this task");
}

/// What to do about a lagging summary.
inline constexpr std::string_view refreshSummary =
    "Pass a fresh `summary` to update_task (or comment_task, which needs no claim) "
    "saying where this task stands now, in plain sentences.";

/// The state of a write that the relay declined.
inline constexpr std::string_view writeRefused =
    "the relay REFUSED this write — it arrived and was declined";

/// What to do about a declined write.
inline constexpr std::string_view redoOrSayWhy =
    "Do not treat this as done. "
    "Re-read the task to see what the board actually holds, "
    "and either redo the work against that or say on the task why it cannot be.";

/// The state of a write that has not left this Mac.
inline constexpr std::string_view writeQueued =
    "this write never reached the relay — it is queued and resends";

/// What to do about a queued write when it is not known who else reads the board.
inline constexpr std::string_view undeliveredAudienceUnknown =
    "Do not report this as landed. "
    "It resends on the next sync; if anything depends on it, "
    "say on the task that it is still outstanding.";

/// What to do about a queued write when nobody else is on the board.
inline constexpr std::string_view undeliveredAlone =
    "Nobody else is on this board, so nothing is out of step and there is nobody to warn. "
    "The write is simply still local: it is not on the relay's copy, "
    "which is what a second Mac or the web would read. "
    "It resends on the next sync: carry on, and do not call it synced.";

/// What to do about a queued write when the only others are agents on this Mac.
inline constexpr std::string_view undeliveredLocalAgents =
    "The other agents here read the same board you write to, "
    "so they DO see it and nothing between you is out of step. "
    "What has not happened is the relay taking it, so it is missing from the copy a second Mac, "
    "the web, or somebody joining later would read. "
    "It resends on the next sync: carry on, and just do not call it synced.";

/// What to do about a queued write that `readers` cannot see yet.
inline std::string undeliveredTo(std::string_view readers) {
  return text::cat("This has not reached ", readers,
                   " yet, so do not build on it or report it as landed. "
                   "It resends on the next sync; say on the task that it is outstanding "
                   "if anything depends on it.");
}

/// The readers of an undelivered write: one other Mac.
inline constexpr std::string_view yourOtherMac = "your other Mac on this Thread";

/// The readers of an undelivered write: several other Macs.
inline constexpr std::string_view yourOtherMacs = "your other Macs on this Thread";

/// The readers of an undelivered write: one other person, whatever the Macs.
inline constexpr std::string_view otherPerson = "the person you share this Thread with";

/// The readers of an undelivered write: several other people, whatever the Macs.
inline constexpr std::string_view otherPeople = "the people you share this Thread with";

}  // namespace quillpost::texts
