#include "board/rules/views.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/runs.h"
#include "model/markers.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace quillpost::board {

namespace {

int64_t secondsUntil(int64_t whenMs, Moment at) {
  return std::max<int64_t>(0, (whenMs - at.nowMs) / 1000);
}

/// Why nothing goes on with the task: what its holder says, or that it waits for ever.
std::string parkedReason(const Board& board, const Task& task) {
  if (!task.parkedReason.empty() || !isOpen(task)) return task.parkedReason;
  if (std::string why = waitsForEver(board, task); !why.empty()) return why;
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

void countDiscussions(const Board& board, const Task& task, TeamworkTask& view) {
  for (const TeamworkDiscussion* discussion : openOn(board, task.id)) {
    ++view.openDiscussions;
    view.escalatedDiscussions += discussion->escalated;
  }
}

/// The log as a list shows it: the last line that is no marker and the latest summary in full, of
/// the others their marker or nothing, so that their number stays right.
std::vector<std::string> leanLog(const Board& board, const Task& task) {
  const std::vector<const LogLine*> lines = linesOf(board, task.id);
  std::vector<std::string> lean(lines.size());
  bool hasWords = false;
  bool hasGist = false;
  for (std::size_t i = lines.size(); i-- > 0;) {
    const LogLine& line = *lines[i];
    const bool isGist = line.kind == LogKind::gist;
    bool& isShown = isGist ? hasGist : hasWords;
    if (line.kind == LogKind::handOff) {
      lean[i] = forMarker;
    } else if (!std::exchange(isShown, true)) {
      lean[i] = lineText(line);
    } else if (isGist) {
      lean[i] = gistMarker;
    }
  }
  return lean;
}

/// The log as far as an answer has room for it: the latest lines, and a line that says how many
/// came before them.
std::vector<std::string> wholeLog(const Board& board, const Task& task) {
  const std::vector<const LogLine*> lines = linesOf(board, task.id);
  std::size_t first = lines.size();
  for (std::size_t bytes = 0; first > 0; --first) {
    bytes += quotedSize(lines[first - 1]->text);
    if (bytes > logBytesShown) break;
  }
  std::vector<std::string> shown;
  if (first > 0) {
    shown.push_back(text::cat("(", first, " earlier line", text::s(static_cast<int64_t>(first)),
                              " left out: the log is longer than an answer can be.)"));
  }
  for (std::size_t i = first; i < lines.size(); ++i) shown.push_back(lineText(*lines[i]));
  return shown;
}

/// The discussion with as many of its latest volleys as there is room for, in bytes, which is what
/// is left of it then.
TeamworkDiscussion discussionWithin(const TeamworkDiscussion& discussion, const Seat& viewer,
                                    std::size_t& room) {
  TeamworkDiscussion view = discussion;
  std::size_t first = view.volleys.size();
  while (first > 0 && view.volleys.size() - first < volleysShown) {
    const std::size_t size = quotedSize(view.volleys[first - 1].body);
    if (size > room) break;
    room -= size;
    --first;
  }
  view.volleys.erase(view.volleys.begin(),
                     view.volleys.begin() + static_cast<std::ptrdiff_t>(first));
  view.yourTurn = owes(discussion, viewer.fingerprint);
  return view;
}

/// Open discussions in their order, the latest with most of their volleys.
std::vector<TeamworkDiscussion> discussionViews(
    const std::vector<const TeamworkDiscussion*>& discussions, const Seat& viewer) {
  std::vector<TeamworkDiscussion> views;
  std::size_t room = volleyBytesShown;
  for (std::size_t i = discussions.size(); i-- > 0;)
    views.push_back(discussionWithin(*discussions[i], viewer, room));
  std::ranges::reverse(views);
  return views;
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
  TeamworkTask view = leanView(board, task, viewer, at);
  view.body = briefOf(board, task.id);
  view.log = wholeLog(board, task);
  view.discussions = discussionViews(openOn(board, task.id), viewer);
  showWatchers(board, task, view);
  return view;
}

TeamworkTask leanView(const Board& board, const Task& task, const Seat& viewer, Moment at) {
  TeamworkTask view = titleView(task);
  view.log = leanLog(board, task);
  view.ownerFingerprint = unlessEmpty(task.owner);
  if (task.state == TaskState::claimed) {
    view.claimLeaseSecondsRemaining = secondsUntil(task.leaseUntilMs, at);
  }
  view.blocked = task.blocked;
  view.blockerQuestion = unlessEmpty(task.blockerQuestion);
  if (!task.isAnswerSecret || task.blockedBy == viewer.fingerprint) {
    view.blockerAnswer = unlessEmpty(task.blockerAnswer);
  }
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
  countDiscussions(board, task, view);
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
  std::size_t room = volleyBytesShown;
  return discussionWithin(discussion, viewer, room);
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
  // All that are in the index, whatever their task: of those that are over there may be very many.
  view.discussions = discussionViews(board.discussions.upTo(openByTask, "\x7f"), viewer);
  return view;
}

TeamworkSquadState squadView(const Board& board) {
  TeamworkSquadState view;
  view.mode = board.thread().squadOn ? "on" : "off";
  view.canAddress = board.thread().squadOn;
  view.canSpawn = board.thread().squadOn && !board.helpers.empty();
  view.helpers.emplace();
  for (const auto& [name, helper] : board.helpers)
    view.helpers->push_back(
        {name, helper.explanation, helper.runsWithoutApprovals, helper.hasTools});
  view.helperLimit = helperLimit;
  view.helpersRunning = helpersCounted(board);
  return view;
}

TeamworkAudience audienceFor(const Board& board, const Seat& viewer) {
  TeamworkAudience audience;
  audience.otherLocalAgents = text::countOf(othersHere(board, viewer.fingerprint));
  return audience;
}

bool isForReviewBy(const Task& task, const Seat& seat) {
  const std::string& self = seat.fingerprint;
  if (!mayVerify(seat.authority) || task.owner == self || task.reviewRequestedBy == self) {
    return false;
  }
  if (!task.reviewRequestedFrom.empty()) return task.reviewRequestedFrom == self;
  return task.reviewOfRole.empty() || unicode::equalIgnoringCase(task.reviewOfRole, seat.role);
}

TeamworkObligations obligationsOf(const Board& board, const Seat& seat, Moment at) {
  TeamworkObligations owed;
  if (!seat.registered) return owed;
  const std::string& self = seat.fingerprint;
  for (const TeamworkDiscussion* discussion : board.discussions.with({openByParty, self})) {
    std::vector<TeamworkObligations::DebateRef>& list =
        owes(*discussion, self) ? owed.oweReply : owed.awaitingReply;
    list.push_back({discussion->id, discussion->taskID, discussion->question,
                    counterpart(board, *discussion, self)});
  }
  for (const Task* task : board.tasks.with({toReview, {}})) {
    if (!isForReviewBy(*task, seat)) continue;
    owed.oweReply.push_back({"none", task->id,
                             text::cat("A verdict on ", named(*task), ": verify_task"),
                             calling(board, task->reviewRequestedBy)});
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
