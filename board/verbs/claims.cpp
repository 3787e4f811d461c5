#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/removal.h"
#include "board/rules/views.h"
#include "board/rules/wakes.h"
#include "board/verbs/methods.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// What an agent that does not hold a task is told.
TeamworkResponse notYours(const Call& call, const Task& task) {
  const std::string state = task.state == TaskState::claimed
                                ? text::cat("is held by ", calling(call.board, task.owner))
                                : "is not claimed by you";
  return refused(text::cat(named(task), " ", state, ". comment_task needs no claim."));
}

/// Says which of the tasks that one waits on will never be done; empty when all may be.
std::string whyForEver(const Board& board, const Task& task) {
  const std::vector<std::string> declined = declinedAmong(board, task.waitsOn);
  if (declined.empty()) return {};
  return text::cat(" Declined and never to be done: ", text::join(declined, ", "),
                   "; whoever filed it can change `waitsOn`.");
}

/// Why the caller may not claim a task that nobody holds; nothing when it may.
std::optional<std::string> whyNotClaimable(const Call& call, const Task& task) {
  if (call.board.thread().goalComplete) return "The goal is complete, so nothing is to be started.";
  if (!isOpen(task)) return text::cat(named(task), " is closed.");
  if (task.state == TaskState::claimed) {
    return text::cat(named(task), " is held by ", calling(call.board, task.owner),
                     ". Claim another READY task; request_release asks for this one.");
  }
  if (!isReady(call.board, task)) {
    return text::cat(named(task), " is not READY: it waits on ", text::join(task.waitsOn, ", "),
                     ".", whyForEver(call.board, task));
  }
  if (task.blocked && task.blockedBy != call.self()) {
    return text::cat(named(task), " is blocked on a question to the person.");
  }
  if (addresseeOf(call.board, task) != &call.seat &&
      isMeantForSomebodyHere(call.board, task, call.at.nowMs)) {
    return text::cat(named(task), " is handed to ", task.routedTo, ", who is here.");
  }
  return std::nullopt;
}

}  // namespace

void announceUnlocked(Board& board, const Task& done, Move move) {
  move.kind = MoveKind::taskReady;
  move.what = named(done);
  for (const Task* task : dependentsOf(board, done.id)) {
    move.taskID = task->id;
    tellIfReady(board, *task, move, text::cat(named(done), " is done"));
  }
}

namespace {

/// Tells those whose verdict is asked for: whom the request names, or all here who have the
/// authority and, when one is given, the role; by a move like `move` but for its kind. Whether
/// there is any.
bool askReviewers(Board& board, const Task& task, Move move) {
  std::vector<Notice> notices;
  for (const Seat* seat : othersHere(board, move.by)) {
    if (!isForReviewBy(task, *seat)) continue;
    notices.push_back({seat->fingerprint, WakeKind::reviewRequested,
                       text::cat(calling(board, move.by), " asks for a review of ", named(task))});
  }
  move.kind = MoveKind::reviewRequested;
  move.what = task.reviewNote;
  announce(board, move, notices);
  return !notices.empty();
}

}  // namespace

void askForVerdict(Board& board, Task& task, Move move) {
  if (task.reviewRequestedBy.empty()) return;
  // One that is there was given on what was not complete yet.
  if (task.reviewState != reviewWanted) clearVerdict(task);
  task.reviewState = reviewWanted;
  askReviewers(board, task, std::move(move));
}

namespace {

TeamworkResponse claimTask(const Call& call, Task& task) {
  if (isHeldBy(task, call.self())) {
    renewClaim(call.board, task, call.at);
    return written(text::cat("You hold ", named(task), " already; the lease is renewed."));
  }
  if (const std::optional<std::string> reason = whyNotClaimable(call, task))
    return refused(*reason);
  takeClaim(call.board, task, call.seat, call.at);
  announce(call.board, call.move(MoveKind::taskClaimed, task.id, task.title));
  return written(text::cat("You hold ", named(task), " for ", call.at.leaseMs / 1000,
                           " seconds, renewed whenever you listen or write."));
}

TeamworkResponse releaseTask(const Call& call, Task& task) {
  if (!isHeldBy(task, call.self())) return notYours(call, task);
  unwatch(task, call.self(), Unwatch::autoOnly);
  const bool handedOver =
      giveUpClaim(call.board, task, call.move(MoveKind::taskReleased, task.id), call.at);
  if (handedOver) {
    return written(text::cat("Released ", named(task), "; it went to ",
                             calling(call.board, task.owner), ", who had asked for it."));
  }
  return written(text::cat("Released ", named(task), "."));
}

TeamworkResponse completeTask(const Call& call, Task& task) {
  // A client whose answer was lost asks again, and is to hear that all is well.
  if (task.state == TaskState::done && task.owner == call.self()) {
    return written(text::cat("Completed ", named(task), " already."));
  }
  if (!isHeldBy(task, call.self())) return notYours(call, task);
  const std::string summary(unicode::trim(call.request.summary.value_or("")));
  if (summary.empty()) {
    return refused("A `summary` is required: the outcome and how you verified it.");
  }
  const std::vector<const TeamworkDiscussion*> debates = openOn(call.board, task.id);
  if (!debates.empty()) {
    return refused(text::cat("The open discussion ", debates.front()->id,
                             " holds this completion back. resolve_discussion first."));
  }
  refreshSummary(call.board, task, call.seat, summary, call.at.nowMs);
  task.state = TaskState::done;
  task.blocked = false;
  forgetSecret(task);
  task.parkedReason.clear();
  task.releaseAsks.clear();
  takeBackWakes(call.board, call.seat, WakeKind::claimExpiring, task.id);
  std::vector<Notice> notices;
  if (const Seat* asker = seatAt(call.board, task.reportsTo)) {
    notices.push_back({asker->fingerprint, WakeKind::handedTaskDone,
                       text::cat(call.seat.handle, " completed ", named(task))});
  }
  announce(call.board, call.move(MoveKind::taskCompleted, task.id, cut(summary, summaryLimit)),
           notices);
  announceUnlocked(call.board, task, call.move(MoveKind::taskReady));
  askForVerdict(call.board, task, call.move(MoveKind::reviewRequested, task.id));
  return written(text::cat("Completed ", named(task), "."));
}

TeamworkResponse requestRelease(const Call& call, Task& task) {
  if (isHeldBy(task, call.self())) return refused(text::cat("You hold ", named(task), " already."));
  if (task.state != TaskState::claimed) {
    return refused(text::cat("Nobody holds ", named(task), ": claim_task is all it takes."));
  }
  const std::string holder = task.owner;
  std::string notice;
  const std::string reason = cutWithNotice(oneLine(call.request.releaseReason.value_or("")),
                                           reasonLimit, "reason", notice);
  std::vector<ReleaseAsk>& asks = task.releaseAsks;
  std::erase_if(asks, [&](const ReleaseAsk& ask) { return ask.requester == call.self(); });
  asks.push_back({call.self(), reason.empty() ? "no reason given" : reason});
  if (settleReleaseAsks(call.board, task, call.self(), call.at) && isHeldBy(task, call.self())) {
    return written(text::cat(named(task), " was stuck with ", calling(call.board, holder),
                             ": the lease was handed over and you hold it now."));
  }
  const Notice notices[] = {{holder, WakeKind::releaseRequested,
                             text::cat(call.seat.handle, " asks you to release ", named(task), ": ",
                                       reason.empty() ? "no reason given" : reason)}};
  announce(call.board, call.move(MoveKind::releaseRequested, task.id, reason), notices);
  return written(text::cat(named(task), " is still held by ", calling(call.board, task.owner),
                           ", who has been told. Your request stands."),
                 std::move(notice));
}

TeamworkResponse assignTask(const Call& call, Task& task) {
  const std::string to = call.request.to.value_or("");
  if (const std::optional<std::string> reason = whyUnreachable(call, to)) return refused(*reason);
  if (!isOpen(task)) return refused(text::cat(named(task), " is closed."));
  if (task.state == TaskState::claimed) {
    return refused(text::cat(named(task), " is held by ", calling(call.board, task.owner),
                             ". Only a task that nobody holds can be handed over."));
  }
  const Seat& peer = *seatAt(call.board, to);
  task.routedTo = peer.handle;
  task.reportsTo = call.seat.handle;
  addLine(call.board, task,
          {"", LogKind::handOff, call.self(), call.seat.handle,
           text::cat("handed to ", peer.handle, " by ", call.seat.handle), call.at.nowMs});
  const Notice notices[] = {{peer.fingerprint, WakeKind::taskAssigned,
                             text::cat(call.seat.handle, " handed you ", named(task))}};
  announce(call.board, call.move(MoveKind::taskAssigned, task.id, text::cat("to ", peer.handle)),
           notices);
  return written(
      text::cat("Handed ", named(task), " to ", peer.handle, ". Claiming it is theirs to do."));
}

/// What is to be said of the reviewer who was asked by name; nothing when all is well.
std::string_view whyNoVerdict(const Seat& asked) {
  if (!mayVerify(asked.authority)) {
    return "Whom you asked has neither reviewer nor lead authority, so no verdict can come of it. "
           "list_agents says who can verify.";
  }
  return isLive(asked) ? "" : "Whom you asked is not here now.";
}

TeamworkResponse requestReview(const Call& call, Task& task) {
  if (task.state != TaskState::done && !isHeldBy(task, call.self())) return notYours(call, task);
  const bool isAnothers = task.owner != call.self() && task.reviewRequestedBy != call.self();
  if (isAnothers && task.reviewState == reviewWanted) {
    return refused(text::cat("A review of ", named(task), " is requested already, by ",
                             calling(call.board, task.reviewRequestedBy), "."));
  }
  const std::string mark = call.request.reviewOfFingerprint.value_or("");
  const Seat* asked = mark.empty() ? nullptr : whoIs(call.board, mark);
  if (!mark.empty() && asked == nullptr) {
    return refused(text::cat("Nobody here is ", mark, ". list_agents has the fingerprints."));
  }
  std::string notice;
  task.reviewState = reviewWanted;
  task.reviewRequestedBy = call.self();
  task.reviewRequestedFrom = asked != nullptr ? asked->fingerprint : "";
  task.reviewOfRole = cut(oneLine(call.request.reviewOfRole.value_or("")), roleLimit);
  task.reviewBy.clear();
  task.reviewNote =
      cutWithNotice(oneLine(call.request.note.value_or("")), noteLimit, "note", notice);
  const bool isHeard =
      askReviewers(call.board, task, call.move(MoveKind::reviewRequested, task.id));
  if (asked != nullptr) {
    addSentence(notice, whyNoVerdict(*asked));
  } else if (!isHeard) {
    addSentence(notice, "Nobody who may give a verdict is here now.");
  }
  return written(text::cat("A review of ", named(task), " is requested."), std::move(notice));
}

TeamworkResponse verifyTask(const Call& call, Task& task) {
  if (!mayVerify(call.seat.authority)) {
    return refused("A verdict needs reviewer or lead authority, and your seat has neither.");
  }
  if (task.reviewState != reviewWanted) {
    return refused(text::cat("No review of ", named(task), " is requested."));
  }
  if (task.owner == call.self() || task.reviewRequestedBy == call.self()) {
    return refused("Your own work is for a peer to judge.");
  }
  if (!call.request.approve) return refused("A verdict needs `approve`: true or false.");
  const bool approves = *call.request.approve;
  task.reviewState = approves ? "verified" : "rejected";
  task.reviewBy = call.self();
  const std::string note = cut(oneLine(call.request.note.value_or("")), noteLimit);
  if (!note.empty()) task.reviewNote = note;
  const std::string summary =
      text::cat(call.seat.handle, approves ? " verified " : " found wanting: ", named(task));
  const Notice notices[] = {{task.owner, WakeKind::reviewVerdict, summary},
                            {task.reviewRequestedBy, WakeKind::reviewVerdict, summary}};
  announce(call.board, call.move(MoveKind::reviewVerdict, task.id, task.reviewState), notices);
  return written(text::cat(named(task), approves ? " is verified." : " needs more."));
}

}  // namespace

// clang-format off
std::span<const Method> claimMethods() {
  static constexpr Method rows[] = {
      {"claim_task",      Entry::member, claimTask},
      {"complete_task",   Entry::member, completeTask},
      {"release_task",    Entry::member, releaseTask},
      {"request_review",  Entry::member, requestReview},
      {"verify_task",     Entry::member, verifyTask},
      {"request_release", Entry::member, requestRelease},
      {"assign_task",     Entry::member, assignTask},
  };
  return rows;
}
// clang-format on

}  // namespace quillpost::board
