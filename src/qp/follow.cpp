#include "qp/follow.h"

#include "base/display.h"
#include "base/text.h"
#include "render/obligations.h"

#include <algorithm>
#include <utility>

namespace quillpost {
namespace {

/// A reason's own words, behind its task where they do not name it.
std::string wordsOf(const TeamworkWakeReason& reason) {
  const std::string summary = displayedInLine(reason.summary);
  const std::string task = displayedInLine(reason.taskID.value_or(""));
  const bool isNamed = task.empty() || summary.find(task) != std::string::npos;
  return isNamed ? summary : text::cat(task, " ", summary);
}

/// Whether the move is what a reason of the same feed tells already.
bool isTold(const TeamworkChange& change, const TeamworkChangeFeed& feed) {
  return std::ranges::any_of(feed.wakeReasons, [&](const TeamworkWakeReason& reason) {
    return reason.taskID == change.taskID && reason.cause == change.kind;
  });
}

}  // namespace

std::string FollowLines::linesFor(const TeamworkChangeFeed& feed) {
  const std::string revision = text::cat("r", feed.rev, " ");
  std::string lines;
  const auto add = [&](const std::string& what) { lines += text::cat(revision, what, "\n"); };
  for (const TeamworkWakeReason& reason : feed.wakeReasons)
    add(text::cat("woken: ", wordsOf(reason)));
  for (const TeamworkSquadMessage& message : feed.messages)
    add(text::cat("message from ", displayedInLine(message.from), ": ",
                  displayedInLine(message.text)));
  for (const TeamworkChange& change : feed.changes) {
    if (isTold(change, feed)) continue;
    const std::string task = displayedInLine(change.taskID.value_or(""));
    add(text::cat("moved: ", displayedInLine(change.kind), task.empty() ? "" : " ", task));
  }
  if (feed.pendingGoalComplete != std::exchange(toldPending_, feed.pendingGoalComplete))
    add(feed.pendingGoalComplete ? "the goal is proposed complete"
                                 : "the goal is no longer proposed complete");
  if (feed.goalComplete != std::exchange(toldComplete_, feed.goalComplete))
    add(feed.goalComplete ? "the goal is confirmed complete" : "the goal is open again");
  // An app that says only that something moved.
  if (lines.empty() && feed.changed) add("moved");
  return lines;
}

bool isOver(const TeamworkChangeFeed& feed, const SeatState& state) {
  return feed.goalComplete && areClear(state.lastObligations);
}

}  // namespace quillpost
