#include "board/rules/readiness.h"

#include "base/text.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/runs.h"

#include <algorithm>
#include <set>

namespace quillpost::board {

bool isReady(const Board& board, const Task& task) {
  return std::ranges::all_of(task.waitsOn, [&](const std::string& id) {
    const Task* other = board.tasks.find(id);
    return other == nullptr || other->state == TaskState::done;
  });
}

std::vector<std::string> unresolved(const Board& board, std::span<const std::string> ids) {
  std::vector<std::string> missing;
  for (const std::string& id : ids)
    if (board.tasks.find(id) == nullptr) missing.push_back(id);
  return missing;
}

std::vector<const Task*> dependentsOf(const Board& board, std::string_view taskID) {
  return board.tasks.with({byWaitsOn, taskID});
}

bool wouldWaitOnItself(const Board& board, std::string_view taskID,
                       std::span<const std::string> waitsOn) {
  std::vector<std::string> ahead(waitsOn.begin(), waitsOn.end());
  std::set<std::string> seen;
  while (!ahead.empty()) {
    const std::string id = std::move(ahead.back());
    ahead.pop_back();
    if (id == taskID) return true;
    const Task* task = board.tasks.find(id);
    if (task == nullptr || !seen.insert(id).second) continue;
    ahead.insert(ahead.end(), task->waitsOn.begin(), task->waitsOn.end());
  }
  return false;
}

std::vector<std::string> declinedAmong(const Board& board, std::span<const std::string> ids) {
  std::vector<std::string> declined;
  for (const std::string& id : ids) {
    const Task* task = board.tasks.find(id);
    if (task != nullptr && task->state == TaskState::rejected) declined.push_back(id);
  }
  return declined;
}

std::string waitedOn(const Board& board, const std::string& id) {
  const Task* task = board.tasks.find(id);
  if (task == nullptr || task->state != TaskState::rejected) return id;
  const std::vector<const LogLine*> lines = linesOf(board, id);
  for (std::size_t i = lines.size(); i-- > 0;) {
    // The line that declining leaves: the word alone, or with the reason behind it.
    if (lines[i]->text.starts_with("declined")) return text::cat(id, " (", lines[i]->text, ")");
  }
  return text::cat(id, " (declined)");
}

std::string waitsForEver(const Board& board, const Task& task) {
  const std::vector<std::string> declined = declinedAmong(board, task.waitsOn);
  if (declined.empty() || !isOpen(task)) return {};
  return text::cat("waits on ", text::join(declined, ", ", [&](const std::string& id) {
                     return waitedOn(board, id);
                   }));
}

std::string noticeOfWaits(const Board& board, std::span<const std::string> waitsOn) {
  std::string notice;
  const std::vector<std::string> missing = unresolved(board, waitsOn);
  const std::vector<std::string> declined = declinedAmong(board, waitsOn);
  if (!missing.empty()) {
    addSentence(notice, text::cat("No task on this board is called ", text::join(missing, ", "),
                                  ", so nothing waits on that."));
  }
  if (!declined.empty()) {
    addSentence(notice, text::cat("Declined and never to be done: ", text::join(declined, ", "),
                                  ". Until `waitsOn` is changed this stays unready."));
  }
  return notice;
}

bool isTakeable(const Board& board, const Task& task) {
  return task.state == TaskState::open && !task.blocked && !board.thread().goalComplete &&
         isReady(board, task);
}

void tellIfReady(Board& board, const Task& task, const Move& move, std::string_view why) {
  if (!isOpen(task) || !isReady(board, task)) return;
  std::vector<Notice> notices;
  const std::string summary = text::cat(named(task), " is READY: ", why);
  if (task.state == TaskState::claimed) {
    notices.push_back({task.owner, WakeKind::taskReady, summary});
  } else if (const Seat* seat = addresseeOf(board, task)) {
    notices.push_back({seat->fingerprint, WakeKind::taskReady, summary});
  }
  announce(board, move, notices);
}

std::string routeTo(const Board& board, std::string_view name, std::string& notice) {
  std::string named = cut(oneLine(name), entryLimit);
  if (const Seat* seat = whoIs(board, named)) return seat->handle;
  if (!named.empty()) {
    addSentence(notice, text::cat("Nobody here answers to \"", named,
                                  "\", so until somebody does the task is anybody's."));
  }
  return named;
}

const Seat* addresseeOf(const Board& board, const Task& task) {
  if (task.routedTo.empty()) return nullptr;
  if (const Seat* seat = seatOf(board, task.routedTo)) return seat;
  const Seat* seat = seatAt(board, task.routedTo);
  return seat != nullptr && seat->registered ? seat : nullptr;
}

bool isMeantForSomebodyHere(const Board& board, const Task& task, int64_t nowMs) {
  const Seat* seat = addresseeOf(board, task);
  if (seat != nullptr) return isAttending(*seat, nowMs);
  // A helper that is being started comes for it.
  const HelperRun* run = runFor(board, task);
  return run != nullptr && run->state == RunState::starting;
}

}  // namespace quillpost::board
