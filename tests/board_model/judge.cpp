#include "board_model/judge.h"

#include "base/text.h"
#include "board/rules/debates.h"
#include "board/rules/feed.h"
#include "board/rules/ids.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <vector>

namespace quillpost::board_model {

namespace {

using board::Board;
using board::isOpen;
using board::Moment;
using board::owes;
using board::Seat;
using board::Task;
using board::TaskState;

/// Without the rules: whether all that a task waits on is done or not there.
bool isReadyPlainly(const Board& board, const Task& task) {
  for (const std::string& id : task.waitsOn) {
    for (const auto& [otherID, other] : board.tasks)
      if (otherID == id && other.state != TaskState::done) return false;
  }
  return true;
}

bool isTakeablePlainly(const Board& board, const Task& task) {
  return !board.thread().goalComplete && task.state == TaskState::open && !task.blocked &&
         isReadyPlainly(board, task);
}

/// Whether a task waits on itself, looking from each task all the way down.
bool hasCircle(const Board& board) {
  for (const auto& [start, task] : board.tasks) {
    std::vector<std::string> ahead = task.waitsOn;
    std::set<std::string> seen;
    while (!ahead.empty()) {
      const std::string id = ahead.back();
      ahead.pop_back();
      if (id == start) return true;
      const Task* next = board.tasks.find(id);
      if (next == nullptr || !seen.insert(id).second) continue;
      ahead.insert(ahead.end(), next->waitsOn.begin(), next->waitsOn.end());
    }
  }
  return false;
}

std::optional<std::string> wrongWith(const Board& board, const Task& task, Moment at) {
  const bool isClaimed = task.state == TaskState::claimed;
  const Seat* owner = seatOf(board, task.owner);
  if (isClaimed && (owner == nullptr || !isLive(*owner))) return "is held by nobody here";
  if (isClaimed && task.leaseUntilMs <= at.nowMs) return "is held beyond its lease";
  if (task.state == TaskState::open && !task.owner.empty()) return "is open and has an owner";
  if (isReady(board, task) != isReadyPlainly(board, task)) return "is wrongly READY or not";
  if (isClaimed) {
    const std::vector<const Task*> held = board.tasks.with({board::byOwner, task.owner});
    if (std::ranges::find(held, &task) == held.end()) return "is not found by its owner";
  }
  int64_t behind = 0;
  int64_t lines = 0;
  for (const board::LogLine* line : linesOf(board, task.id)) {
    ++lines;
    if (line->kind == board::LogKind::gist) behind = 0;
    behind += line->kind == board::LogKind::progress;
  }
  if (lines != task.lastLine || behind != task.linesBehind) return "has miscounted its log";
  return std::nullopt;
}

}  // namespace

Before lookAt(const Board& board, Moment at) {
  Before before;
  before.rev = board.counted().rev;
  for (const auto& [id, task] : board.tasks) {
    if (!isTakeablePlainly(board, task)) continue;
    const Seat* addressee = addresseeOf(board, task);
    const bool isKept = addressee != nullptr && isAttending(*addressee, at.nowMs);
    before.takeable[id] = isKept ? addressee->id : "";
  }
  return before;
}

std::optional<std::string> whatIsWrong(const Board& board, Moment at) {
  std::size_t open = 0;
  for (const auto& [id, task] : board.tasks) {
    if (const auto wrong = wrongWith(board, task, at)) return text::cat(id, " ", *wrong);
    open += isOpen(task);
    for (const std::string& other : task.waitsOn) {
      const std::vector<const Task*> waiting = dependentsOf(board, other);
      const bool isListed = std::ranges::find(waiting, &task) != waiting.end();
      if (isListed != isOpen(task)) return text::cat(id, " is not found by what it waits on");
    }
  }
  for (const auto& [id, seat] : board.seats) {
    for (const Task* held : board.tasks.with({board::byOwner, seat.fingerprint}))
      if (!isHeldBy(*held, seat.fingerprint)) return text::cat(held->id, " has the wrong owner");
  }
  if (open != board.tasks.with({board::openTasks, {}}).size()) return "open tasks are miscounted";
  if (hasCircle(board)) return "tasks wait in a circle";
  if (const auto next = nextLapse(board); next && *next <= at.nowMs) return "something is overdue";
  for (const auto& [id, discussion] : board.discussions) {
    if (!isOpen(discussion) || discussion.escalated || owes(discussion, board::human)) continue;
    // What the person has said may wait for those who are gone.
    const bool isAnswered = !discussion.volleys.empty() && discussion.volleysSinceHuman == 0;
    if (!isAnswered && isAbandoned(board, discussion)) return text::cat(id, " waits for nobody");
  }
  for (const auto& [id, seat] : board.seats) {
    if (!seat.registered && !wakesOf(board, seat).empty()) return text::cat(id, " keeps old wakes");
  }
  return std::nullopt;
}

std::optional<std::string> whatWasMissed(const Board& board, const Before& before, Moment at,
                                         const std::string& mover) {
  const int64_t moved = board.counted().rev - before.rev;
  const auto first = board.changes.from(board::padded(before.rev + 1));
  if (moved < 0 || std::distance(first, board.changes.end()) != moved) {
    return "revisions and changes differ";
  }
  const Before now = lookAt(board, at);
  for (const auto& [id, seat] : board.seats) {
    if (!isLive(seat) || seat.fingerprint == mover) continue;
    for (const auto& [taskID, only] : now.takeable) {
      if (before.isTakeable(id, taskID) || !now.isTakeable(id, taskID)) continue;
      if (!hasMoved(board, seat, {std::max<int64_t>(before.rev, 1), {taskID}, false}) &&
          wakesOf(board, seat).empty()) {
        return text::cat(taskID, " can be claimed now, and ", seat.handle, " was not told");
      }
    }
  }
  return std::nullopt;
}

std::string rowsOf(const Board& board) {
  std::string rows;
  forEachTable(board, [&](std::string_view kind, const auto& table) {
    for (const auto& [id, row] : table) rows += text::cat(kind, " ", json::encode(row), "\n");
  });
  return rows;
}

}  // namespace quillpost::board_model
