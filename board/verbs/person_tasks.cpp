#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/removal.h"
#include "board/verbs/methods.h"
#include "board/verbs/person.h"

#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

TeamworkResponse noSuchTask(const Deed& deed) {
  return refused(text::cat("No task is called ", deed.subject(), "."));
}

/// Writes what the person says of a deed into the log, behind the word for the deed; nothing when
/// there is nothing to say.
void addRemark(const Deed& deed, Task& task, std::string_view deedWord, const std::string& said) {
  if (said.empty()) return;
  addLine(deed.board, task,
          {"", LogKind::comment, std::string(human), std::string(human),
           text::cat(deedWord, ": ", said), deed.at.nowMs});
}

std::string reasonOf(const Deed& deed, std::string& notice) {
  return cutWithNotice(oneLine(deed.request.releaseReason.value_or("")), reasonLimit, "reason",
                       notice);
}

/// Tells the agent of that mark what the person did.
std::vector<Notice> toldTo(const std::string& mark, const std::string& summary) {
  return {{mark, WakeKind::humanReplied, text::cat("The human ", summary)}};
}

std::string behind(const std::string& reason) {
  return reason.empty() ? std::string() : text::cat(": ", reason);
}

/// Why a change of what a task waits on cannot be; nothing when it can.
std::optional<std::string> whyNotWaiting(const Deed& deed, const std::string& id) {
  const std::optional<std::vector<std::string>>& waitsOn = deed.request.waitsOn;
  if (!waitsOn || !wouldWaitOnItself(deed.board, id, *waitsOn)) return std::nullopt;
  return text::cat(id, " would wait on itself around corners.");
}

/// The request with whole ids for those that the person may write short.
TeamworkRequest withWholeIDs(TeamworkRequest request) {
  if (request.waitsOn)
    for (std::string& id : *request.waitsOn) id = wholeID(id);
  return request;
}

TeamworkResponse add(const Deed& deed) {
  std::string notice;
  const TeamworkRequest request = withWholeIDs(deed.request);
  if (oneLine(request.title.value_or("")).empty()) return refused("A task needs a title.");
  const std::string id = taskID(deed.board.counted().tasksFiled + 1);
  if (const std::optional<std::string> reason = whyNotWaiting({deed.board, request, deed.at}, id)) {
    return refused(*reason);
  }
  Task fresh;
  fresh.filedBy = human;
  Task& task = fileTask(deed.board, std::move(fresh), "");
  correct(deed.board, request, task, notice);
  std::vector<Notice> notices;
  if (const Seat* seat = addresseeOf(deed.board, task)) {
    notices.push_back({seat->fingerprint, WakeKind::taskAssigned,
                       text::cat("The human handed you ", named(task))});
  }
  announce(deed.board, deed.move(MoveKind::taskAdded, task.id, task.title), notices);
  addSentence(notice, noticeOfWaits(deed.board, task.waitsOn));
  return written(text::cat("Added ", named(task), ". It is ",
                           isReady(deed.board, task) ? "READY." : "waiting on other tasks."),
                 notice);
}

TeamworkResponse edit(const Deed& deed) {
  Task* task = deed.board.tasks.touch(deed.subject());
  if (task == nullptr) return noSuchTask(deed);
  std::string notice;
  const TeamworkRequest request = withWholeIDs(deed.request);
  if (const std::optional<std::string> reason =
          whyNotWaiting({deed.board, request, deed.at}, task->id)) {
    return refused(*reason);
  }
  const Task before = *task;
  if (!correct(deed.board, request, *task, notice)) {
    return refused(text::cat(named(*task), " says that already: nothing was changed."));
  }
  const Move move = deed.move(MoveKind::taskEdited, task->id, "");
  announce(deed.board, move, toldTo(task->owner, text::cat("edited ", named(*task))));
  tellOfCorrection(deed.board, before, move);
  if (request.waitsOn) addSentence(notice, noticeOfWaits(deed.board, task->waitsOn));
  return written(text::cat("Edited ", named(*task), "."), notice);
}

TeamworkResponse assign(const Deed& deed) {
  Task* task = deed.board.tasks.touch(deed.subject());
  if (task == nullptr) return noSuchTask(deed);
  const Seat* seat = whoIs(deed.board, deed.request.to.value_or(""));
  if (seat == nullptr) {
    return refused(text::cat("Nobody is home at ", deed.request.to.value_or(""), "."));
  }
  if (!isOpen(*task)) return refused(text::cat(named(*task), " is closed: reopen it first."));
  if (task->state == TaskState::claimed) {
    return refused(text::cat(named(*task), " is held by ", calling(deed.board, task->owner),
                             ": release it first."));
  }
  task->routedTo = seat->handle;
  const Notice notices[] = {{seat->fingerprint, WakeKind::taskAssigned,
                             text::cat("The human handed you ", named(*task))}};
  announce(deed.board, deed.move(MoveKind::taskAssigned, task->id, text::cat("to ", seat->handle)),
           notices);
  return written(text::cat("Handed ", named(*task), " to ", seat->handle, "."));
}

TeamworkResponse release(const Deed& deed) {
  Task* task = deed.board.tasks.touch(deed.subject());
  if (task == nullptr) return noSuchTask(deed);
  if (task->state != TaskState::claimed) {
    return refused(text::cat("Nobody holds ", named(*task), "."));
  }
  std::string notice;
  const std::string holder = task->owner;
  const std::string reason = reasonOf(deed, notice);
  addRemark(deed, *task, "released", reason);
  const std::vector<Notice> notices =
      toldTo(holder, text::cat("took ", named(*task), " back", behind(reason)));
  const bool isHandedOver = giveUpClaim(
      deed.board, *task, deed.move(MoveKind::taskReleased, task->id, reason), deed.at, notices);
  return written(text::cat("Took ", named(*task), " from ", calling(deed.board, holder), ". ",
                           isHandedOver ? text::cat(calling(deed.board, task->owner),
                                                    " had asked for it and holds it now.")
                                        : std::string("It is in the pool.")),
                 notice);
}

TeamworkResponse reopen(const Deed& deed) {
  Task* task = deed.board.tasks.touch(deed.subject());
  if (task == nullptr) return noSuchTask(deed);
  if (isOpen(*task)) return refused(text::cat(named(*task), " is open already."));
  std::string notice;
  const std::string doer = task->owner;
  const std::string reason = reasonOf(deed, notice);
  addRemark(deed, *task, "reopened", reason);
  task->state = TaskState::open;
  task->owner.clear();
  clearVerdict(*task);
  announce(deed.board, deed.move(MoveKind::taskReopened, task->id, reason),
           toldTo(doer, text::cat("reopened ", named(*task), behind(reason))));
  return written(text::cat("Reopened ", named(*task), "; it is in the pool."), notice);
}

TeamworkResponse finish(const Deed& deed) {
  Task* task = deed.board.tasks.touch(deed.subject());
  if (task == nullptr) return noSuchTask(deed);
  if (!isOpen(*task)) return refused(text::cat(named(*task), " is closed already."));
  std::string notice;
  const std::string holder = task->owner;
  addRemark(deed, *task, "done", cutWithNotice(deed.words(), commentLimit, "outcome", notice));
  task->state = TaskState::done;
  if (task->owner.empty()) task->owner = human;
  task->blocked = false;
  forgetSecret(*task);
  task->parkedReason.clear();
  task->releaseAsks.clear();
  announce(deed.board,
           deed.move(MoveKind::taskCompleted, task->id, cut(oneLine(deed.words()), summaryLimit)),
           toldTo(holder, text::cat("says that ", named(*task), " is done")));
  announceUnlocked(deed.board, *task, deed.move(MoveKind::taskReady));
  askForVerdict(deed.board, *task, deed.move(MoveKind::reviewRequested, task->id));
  return written(text::cat("Completed ", named(*task), "."), notice);
}

TeamworkResponse reject(const Deed& deed) {
  Task* task = deed.board.tasks.touch(deed.subject());
  if (task == nullptr) return noSuchTask(deed);
  if (!isOpen(*task)) return refused(text::cat(named(*task), " is closed already."));
  std::string notice;
  const std::string reason = reasonOf(deed, notice);
  addRemark(deed, *task, "declined", reason);
  declineTask(deed.board, *task, deed.move(MoveKind::taskRejected, task->id, reason));
  return written(text::cat("Declined ", named(*task), "."), notice);
}

TeamworkResponse remove(const Deed& deed) {
  Task* task = deed.board.tasks.touch(deed.subject());
  if (task == nullptr) return noSuchTask(deed);
  if (!deed.request.acknowledgeOpenTasks.value_or(false)) {
    if (const std::optional<std::string> reason = whyNotDeletable(deed.board, *task)) {
      return refused(text::cat(*reason, " With --anyway it is deleted all the same."));
    }
  }
  std::string notice;
  const std::string words = named(*task);
  const std::string reason = reasonOf(deed, notice);
  deleteTask(deed.board, *task, deed.move(MoveKind::taskDeleted, task->id, words), reason);
  return written(text::cat("Deleted ", words, "; `restore` puts it back for seven days."), notice);
}

TeamworkResponse restore(const Deed& deed) {
  const Task* deleted = deed.board.trash.find(deed.subject());
  if (deleted == nullptr) {
    return refused(text::cat("No deleted task is called ", deed.subject(), "."));
  }
  if (const std::optional<std::string> reason = whyNotRestorable(deed.board, *deleted))
    return refused(*reason);
  const Task& restored = restoreTask(
      deed.board, *deleted, deed.move(MoveKind::taskAdded, deleted->id, deleted->title), deed.at);
  return written(text::cat("Put back ", named(restored), "."));
}

}  // namespace

// clang-format off
std::span<const PersonMethod> personTasks() {
  static constexpr PersonMethod rows[] = {
      {personAdd,     add},
      {personEdit,    edit},
      {personAssign,  assign},
      {personRelease, release},
      {personReopen,  reopen},
      {personDone,    finish},
      {personReject,  reject},
      {personDelete,  remove},
      {personRestore, restore},
  };
  return rows;
}
// clang-format on

}  // namespace quillpost::board
