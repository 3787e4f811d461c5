#include "board/rules/moves.h"

#include "base/text.h"
#include "board/rules/ids.h"
#include "board/rules/people.h"
#include "board/rules/wakes.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

const Task* taskOf(const Board& board, const std::string& id) {
  const Task* task = board.tasks.find(id);
  return task != nullptr ? task : board.trash.find(id);
}

/// How a watcher is told of a move.
std::string watchedSummary(const Board& board, const Move& move, const Task& task) {
  const std::string by = move.by.empty() ? "the board" : calling(board, move.by);
  return text::cat(json::wordFor(move.kind), " by ", by, ": ", named(task));
}

}  // namespace

void record(Board& board, const Move& move) {
  const int64_t rev = ++board.count().rev;
  board.changes.put({padded(rev), rev, move.kind, move.taskID, move.by,
                     move.by.empty() ? std::string() : calling(board, move.by), move.atMs,
                     move.what});
  // An agent that does something has understood its stop hook.
  if (Seat* mover = touchSeatOf(board, move.by)) mover->holdBacks = 0;
}

void announce(Board& board, const Move& move, std::span<const Notice> notices) {
  record(board, move);
  std::set<std::string> told{move.by};
  for (const Notice& notice : notices) {
    const Seat* seat = seatOf(board, notice.fingerprint);
    if (seat == nullptr || notice.fingerprint == move.by) continue;
    wake(board, *seat, {notice.kind, move.taskID, notice.summary, move.kind});
    told.insert(notice.fingerprint);
  }
  const Task* task = taskOf(board, move.taskID);
  if (task == nullptr) return;
  for (const Watch& watcher : task->watches) {
    const Seat* seat = seatOf(board, watcher.fingerprint);
    if (seat == nullptr || !told.insert(watcher.fingerprint).second) continue;
    wake(board, *seat,
         {WakeKind::taskWatched, move.taskID, watchedSummary(board, move, *task), move.kind});
  }
}

void watch(Task& task, Watch watcher) {
  const auto found = std::ranges::find(task.watches, watcher.fingerprint, &Watch::fingerprint);
  if (found == task.watches.end()) {
    task.watches.push_back(std::move(watcher));
  } else {
    found->isAuto = found->isAuto && watcher.isAuto;
  }
}

bool unwatch(Task& task, std::string_view fingerprint, Unwatch which) {
  return std::erase_if(task.watches, [&](const Watch& watcher) {
           return watcher.fingerprint == fingerprint && (which == Unwatch::any || watcher.isAuto);
         }) > 0;
}

}  // namespace quillpost::board
