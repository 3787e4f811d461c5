#include "board/rules/removal.h"

#include "base/text.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"

#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// Those who lose something when a task goes away: its holder, whoever asked for it, and whoever
/// holds or has filed a task that waits on it.
std::vector<Notice> noticesOfRemoval(const Board& board, const Task& task, WakeKind kind,
                                     const std::string& summary) {
  std::vector<Notice> notices;
  if (task.state == TaskState::claimed) notices.push_back({task.owner, kind, summary});
  if (const Seat* asker = seatAt(board, task.reportsTo)) {
    notices.push_back({asker->fingerprint, kind, summary});
  }
  for (const Task* dependent : dependentsOf(board, task.id)) {
    const std::string words = text::cat(summary, ", and ", named(*dependent), " waits on it");
    const bool isHeld = dependent->state == TaskState::claimed;
    notices.push_back({isHeld ? dependent->owner : dependent->filedBy, kind, words});
  }
  return notices;
}

}  // namespace

void clearVerdict(Task& task) {
  task.reviewState.clear();
  task.reviewBy.clear();
  task.reviewNote.clear();
}

std::optional<std::string> whyNotDeletable(const Board& board, const Task& task) {
  std::vector<std::string> waiting;
  for (const Task* dependent : dependentsOf(board, task.id)) waiting.push_back(dependent->id);
  if (waiting.empty()) return std::nullopt;
  return text::cat(named(task), " cannot be deleted: ", text::join(waiting, ", "),
                   waiting.size() == 1 ? " waits" : " wait",
                   " on it. Change `waitsOn` there first, or decline this one with reject_task.");
}

void deleteTask(Board& board, Task& task, const Move& move, const std::string& reason) {
  const std::vector<Notice> notices =
      noticesOfRemoval(board, task, WakeKind::taskDeleted,
                       text::cat(calling(board, move.by), " deleted ", named(task)));
  forgetSecret(task);
  Task& deleted = board.trash.put(task);
  deleted.deletedAtMs = move.atMs;
  deleted.deleteReason = reason;
  board.tasks.remove(deleted.id);
  announce(board, move, notices);
  const std::string words = text::cat(named(deleted), " was deleted");
  for (const Task* dependent : dependentsOf(board, deleted.id)) {
    Move ready = move;
    ready.kind = MoveKind::taskReady;
    ready.taskID = dependent->id;
    tellIfReady(board, *dependent, ready, words);
  }
}

void declineTask(Board& board, Task& task, const Move& move) {
  const std::vector<Notice> notices =
      noticesOfRemoval(board, task, WakeKind::taskRejected,
                       text::cat(calling(board, move.by), " declined ", named(task)));
  task.state = TaskState::rejected;
  task.owner = move.by;
  task.blocked = false;
  task.releaseAsks.clear();
  forgetSecret(task);
  clearVerdict(task);
  announce(board, move, notices);
}

std::optional<std::string> whyNotRestorable(const Board& board, const Task& deleted) {
  if (!wouldWaitOnItself(board, deleted.id, deleted.waitsOn)) return std::nullopt;
  return text::cat(named(deleted),
                   " would wait on itself, since what it waits on waits on it by now. Change that "
                   "first.");
}

Task& restoreTask(Board& board, const Task& deleted, const Move& move, Moment at) {
  Task task = deleted;
  task.deletedAtMs = 0;
  task.deleteReason.clear();
  board.trash.remove(task.id);
  const Seat* holder = seatOf(board, task.owner);
  if (task.state == TaskState::claimed && (holder == nullptr || !isLive(*holder))) {
    task.state = TaskState::open;
    task.owner.clear();
  }
  Task& restored = board.tasks.put(std::move(task));
  if (restored.state == TaskState::claimed) renewClaim(board, restored, at);
  announce(board, move);
  return restored;
}

}  // namespace quillpost::board
