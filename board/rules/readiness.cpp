#include "board/rules/readiness.h"

#include "board/rules/people.h"

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

bool isMeantForSomebodyHere(const Board& board, const Task& task, int64_t nowMs) {
  if (task.routedTo.empty()) return false;
  const Seat* seat = whoIs(board, task.routedTo);
  return seat != nullptr && isAttending(*seat, nowMs);
}

}  // namespace quillpost::board
