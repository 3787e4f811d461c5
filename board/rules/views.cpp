#include "board/rules/views.h"

#include "base/text.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"

#include <algorithm>
#include <string>

namespace quillpost::board {

namespace {

int64_t secondsUntil(int64_t whenMs, Moment at) {
  return std::max<int64_t>(0, (whenMs - at.nowMs) / 1000);
}

std::string parkedReason(const Board& board, const Task& task) {
  if (!task.parkedReason.empty() || task.state != TaskState::claimed) return task.parkedReason;
  const Seat* holder = seatOf(board, task.owner);
  return holder != nullptr ? holder->parkReason : std::string();
}

void showReview(const Task& task, TeamworkTask& view) {
  if (task.reviewState.empty()) return;
  view.reviewState = task.reviewState;
  view.reviewRequestedFromFingerprint = unlessEmpty(task.reviewRequestedFrom);
  view.reviewNote = unlessEmpty(task.reviewNote);
  view.reviewByFingerprint = unlessEmpty(task.reviewBy);
}

void showDiscussions(const Board& board, const Task& task, const Seat& viewer, TeamworkTask& view) {
  for (const TeamworkDiscussion* discussion : openOn(board, task.id)) {
    ++view.openDiscussions;
    view.escalatedDiscussions += discussion->escalated;
    view.discussions.push_back(discussionView(*discussion, viewer));
  }
}

void showWatchers(const Board& board, const Task& task, TeamworkTask& view) {
  for (const Watch& watcher : task.watches) {
    const Seat* seat = seatOf(board, watcher.fingerprint);
    if (seat == nullptr) continue;
    view.watchers.push_back({"agent", watcher.fingerprint, seat->handle, watcher.isAuto});
  }
}

bool mentions(const Task& task, const std::string& fingerprint) {
  return !fingerprint.empty() &&
         std::ranges::find(task.mentions, fingerprint) != task.mentions.end();
}

/// What a held task asks of its holder. A claim may stay unwritten for a third of its lease: until
/// then its holder is getting into the work.
void addHeld(const Task& task, Moment at, TeamworkObligations& owed) {
  owed.tasksHeld.push_back(task.id);
  if (task.linesBehind >= staleAfterLines) {
    owed.staleSummaries.push_back({task.id, task.linesBehind, false});
  }
  const bool isLongHeld = at.nowMs - task.claimedAtMs > at.leaseMs / 3;
  if (task.linesSinceClaim == 0 && isLongHeld) owed.idleHeld.push_back({task.id, 0, true});
}

}  // namespace

TeamworkTask taskView(const Board& board, const Task& task, const Seat& viewer, Moment at) {
  TeamworkTask view = titleView(task);
  view.body = briefOf(board, task.id);
  for (const LogLine* line : linesOf(board, task.id)) view.log.push_back(lineText(*line));
  view.ownerFingerprint = unlessEmpty(task.owner);
  if (task.state == TaskState::claimed) {
    view.claimLeaseSecondsRemaining = secondsUntil(task.leaseUntilMs, at);
  }
  view.blocked = task.blocked;
  view.blockerQuestion = unlessEmpty(task.blockerQuestion);
  view.blockerAnswer = unlessEmpty(task.blockerAnswer);
  view.priority = task.priority;
  view.type = unlessEmpty(task.type);
  view.claimAttempts = task.claimAttempts;
  view.thrashing = isOpen(task) && task.claimAttempts > thrashingAfter;
  view.resources = task.resources;
  showReview(task, view);
  view.parkedReason = unlessEmpty(parkedReason(board, task));
  view.assignedRole = unlessEmpty(task.assignedRole);
  view.routedToFingerprint = unlessEmpty(task.routedTo);
  view.routedToLive = isMeantForSomebodyHere(board, task, at.nowMs);
  view.reportsToHandle = unlessEmpty(task.reportsTo);
  view.waitsOn = task.waitsOn;
  view.ready = isReady(board, task);
  const std::vector<std::string> missing = unresolved(board, task.waitsOn);
  if (!missing.empty()) view.unresolvedWaitsOn = missing;
  if (!task.releaseAsks.empty()) view.pendingReleaseReason = task.releaseAsks.front().reason;
  view.mentionsYou = mentions(task, viewer.fingerprint);
  showDiscussions(board, task, viewer, view);
  showWatchers(board, task, view);
  return view;
}

TeamworkTask titleView(const Task& task) {
  TeamworkTask view;
  view.id = task.id;
  view.title = task.title;
  view.state = json::wordFor(task.state);
  return view;
}

TeamworkAgent agentView(const Board& board, const Seat& seat, const Seat& viewer, Moment at) {
  TeamworkAgent view;
  view.id = seat.fingerprint;
  view.fingerprint = seat.fingerprint;
  view.name = seat.name;
  view.status = seat.status;
  view.leaseSecondsRemaining = secondsUntil(seat.leaseUntilMs, at);
  view.isSelf = seat.id == viewer.id;
  view.activeClaims = claimsOf(board, seat);
  view.idle = seat.waiting && view.activeClaims == 0;
  view.role = unlessEmpty(seat.role);
  view.authority = seat.authority;
  view.canVerify = mayVerify(seat.authority);
  view.handle = seat.handle;
  view.stoodDown = seat.stoodDown;
  if (!isAttending(seat, at.nowMs)) {
    view.quietForSeconds = (at.nowMs - seat.lastCallMs) / 1000;
  }
  return view;
}

TeamworkDiscussion discussionView(const TeamworkDiscussion& discussion, const Seat& viewer) {
  TeamworkDiscussion view = discussion;
  view.yourTurn = owes(discussion, viewer.fingerprint);
  return view;
}

TeamworkPlan planView(const Board& board, const Seat& viewer) {
  const Thread& thread = board.thread();
  TeamworkPlan view;
  view.threadName = thread.name;
  view.goal = thread.goal;
  view.charter = thread.charter;
  view.goalLocked = thread.goalComplete;
  view.dispatched = !board.tasks.empty();
  view.otherLocalAgents = text::countOf(othersHere(board, viewer.fingerprint));
  view.goalComplete = thread.goalComplete;
  view.pendingGoalComplete = !thread.goalProposedBy.empty();
  for (const auto& [id, discussion] : board.discussions)
    if (isOpen(discussion)) view.discussions.push_back(discussionView(discussion, viewer));
  return view;
}

TeamworkSquadState squadView(const Board& board) {
  TeamworkSquadState view;
  view.mode = board.thread().squadOn ? "on" : "off";
  view.canAddress = board.thread().squadOn;
  view.helpers.emplace();
  view.helperLimit = helperLimit;
  view.helpersRunning = 0;
  return view;
}

TeamworkAudience audienceFor(const Board& board, const Seat& viewer) {
  TeamworkAudience audience;
  audience.otherLocalAgents = text::countOf(othersHere(board, viewer.fingerprint));
  return audience;
}

TeamworkObligations obligationsOf(const Board& board, const Seat& seat, Moment at) {
  TeamworkObligations owed;
  if (!seat.registered) return owed;
  const std::string& self = seat.fingerprint;
  for (const TeamworkDiscussion* discussion : board.discussions.with({openByParty, self})) {
    auto& list = owes(*discussion, self) ? owed.oweReply : owed.awaitingReply;
    list.push_back({discussion->id, discussion->taskID, discussion->question,
                    counterpart(board, *discussion, self)});
  }
  for (const Task* task : board.tasks.with({byBlocker, self}))
    owed.yourBlockersOpen.push_back(task->id);
  for (const Task* task : board.tasks.with({byMention, self}))
    owed.mentionsToAnswer.push_back(task->id);
  for (const Task* task : board.tasks.with({byOwner, self})) {
    addHeld(*task, at, owed);
    for (const ReleaseAsk& ask : task->releaseAsks)
      owed.releaseAsks.push_back({task->id, calling(board, ask.requester), ask.reason});
  }
  owed.clear = owed == TeamworkObligations{};
  return owed;
}

}  // namespace quillpost::board
