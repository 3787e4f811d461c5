#pragma once

// The notes in tasks, in the briefing and around the pages of a task's body and log.

#include "base/text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::texts {

/// A task waits on ids that name no task.
inline constexpr std::string_view unresolvedWaitsOnNote =
    "These ids name no task on this board — deleted, mistyped, "
    "or a peer's id that has not crossed yet. "
    "They are NOT blocking this task, so `ready` above does not account for them: "
    "check them before treating this as gated.";

/// Tasks were handed to this agent by name.
inline constexpr std::string_view forYouNote =
    "A peer handed these to you by name. "
    "They are not claimed yet — claiming is still yours to do, "
    "and you may decline by leaving them or saying why on the task. "
    "Take these before anything in readyToClaim.";

/// The caller is not known yet.
inline constexpr std::string_view registerFirst =
    "Call register first (then list_agents) so tasks you hold show under `yours`.";

/// How many finished and declined tasks are not listed.
inline std::string finishedHidden(int64_t count) {
  return text::cat(count, " finished/declined task", text::s(count),
                   " hidden — pass include:\"all\" to list them.");
}

/// There is nothing to hold and nothing to claim.
inline constexpr std::string_view nothingClaimable =
    "Nothing is claimable by you right now — if work is still in flight, "
    "wait_for_changes to keep listening rather than exiting.";

/// The first line of a log page that does not begin at the first line of the log.
inline std::string earlierLinesOmitted(int64_t count) {
  return text::cat("(", count, " earlier line", text::s(count),
                   " omitted — pass logOffset=1 to read the log from the top.)");
}

/// A body without a line.
inline constexpr std::string_view emptyBody = "(empty)";

/// A page that was asked for beyond the last line.
struct OffsetPastEnd {
  int64_t offset;
  int64_t lineCount;
};

/// The body is shorter than the page's first line.
inline std::string offsetPastEnd(const OffsetPastEnd& page) {
  return text::cat("(offset ", page.offset, " is past the last line — this has ", page.lineCount,
                   " line", text::s(page.lineCount), ".)");
}

/// The lines a body page shows, numbered from 1, and how many there are.
struct BodyPage {
  int64_t first;
  int64_t last;
  int64_t lineCount;
};

/// How to read on from this line; begins with a blank.
inline std::string continueAt(int64_t line) {
  return text::cat(" Pass offset=", line, " to continue.");
}

/// The foot of a body page; `more` is how to read on, or nothing on the last page.
inline std::string pageFooter(const BodyPage& page, std::string_view more) {
  return text::cat("(Lines ", page.first, "–", page.last, " of ", page.lineCount, ".", more, ")");
}

}  // namespace quillpost::texts
