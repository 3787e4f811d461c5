#include "board/rules/moves.h"

#include "base/text.h"
#include "board/rules/people.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// Wide enough for every 64-bit revision, so that the order of the texts is that of the numbers.
constexpr std::size_t revisionDigits = 19;

// What goes on all the time on a busy board; a wait that ended with each of these would never hold.
constexpr std::array<std::string_view, 7> quietKinds{"taskClaimed", "taskProgress", "taskBlocked",
                                                     "taskParked",  "agentJoined",  "agentLeft",
                                                     "taskEdited"};

std::string revisionID(int64_t rev) {
  const std::string digits = text::cat(rev);
  return std::string(revisionDigits - digits.size(), '0') + digits;
}

int64_t nextNumber(Board& board) { return ++board.editThread().lastNumber; }

/// How a watcher is told of a move.
std::string watchedSummary(const Board& board, const Move& move) {
  const Task* task = board.tasks.find(move.taskID);
  if (task == nullptr) task = board.trash.find(move.taskID);
  const std::string title = task != nullptr ? task->title : std::string();
  const std::string by = move.by.empty() ? "the board" : calling(board, move.by);
  return text::cat(move.kind, " by ", by, ": ", move.taskID, " \"", title, "\"");
}

std::vector<std::string> watchersOf(const Board& board, const std::string& taskID) {
  std::vector<std::string> fingerprints;
  const Task* task = board.tasks.find(taskID);
  if (task == nullptr) task = board.trash.find(taskID);
  if (task == nullptr) return fingerprints;
  for (const Watch& watcher : task->watches) fingerprints.push_back(watcher.fingerprint);
  return fingerprints;
}

/// Whether a wake makes an earlier one needless: it says the same, or how a task stands by now.
bool saysAll(const Wake& later, const Wake& earlier) {
  if (later.kind != earlier.kind || later.taskID != earlier.taskID) return false;
  return later.summary == earlier.summary || later.kind == "taskWatched" ||
         later.kind == "claimExpiring" || later.kind == "claimExpired";
}

}  // namespace

bool isQuiet(std::string_view changeKind) {
  return std::ranges::find(quietKinds, changeKind) != quietKinds.end();
}

void record(Board& board, const Move& move) {
  const int64_t rev = ++board.editThread().rev;
  board.changes.put({revisionID(rev), rev, std::string(move.kind), move.taskID, move.by});
  while (!board.changes.empty() && board.changes.begin()->second.rev <= rev - changesKept) {
    board.changes.remove(std::string(board.changes.begin()->first));
  }
}

void announce(Board& board, const Move& move, std::span<const Notice> notices) {
  record(board, move);
  const std::string cause(move.kind);
  std::set<std::string> told{move.by};
  for (const Notice& notice : notices) {
    const Seat* seat = seatOf(board, notice.fingerprint);
    if (seat == nullptr || notice.fingerprint == move.by) continue;
    wake(board, *seat, {0, std::string(notice.kind), move.taskID, notice.summary, cause});
    told.insert(notice.fingerprint);
  }
  for (const std::string& watcher : watchersOf(board, move.taskID)) {
    const Seat* seat = seatOf(board, watcher);
    if (seat == nullptr || !told.insert(watcher).second) continue;
    wake(board, *seat, {0, "taskWatched", move.taskID, watchedSummary(board, move), cause});
  }
}

void wake(Board& board, const Seat& seat, Wake reason) {
  reason.number = nextNumber(board);
  std::vector<Wake>& wakes = board.seats.edit(seat).wakes;
  std::erase_if(wakes, [&](const Wake& earlier) { return saysAll(reason, earlier); });
  wakes.push_back(std::move(reason));
  if (wakes.size() <= wakesKept) return;
  const auto leastMissed = std::ranges::find(wakes, "taskWatched", &Wake::kind);
  wakes.erase(leastMissed == wakes.end() ? wakes.begin() : leastMissed);
}

void takeBackWakes(Board& board, const Seat& seat, std::string_view kind, std::string_view taskID) {
  const auto matches = [&](const Wake& reason) {
    return reason.kind == kind && (taskID.empty() || reason.taskID == taskID);
  };
  if (std::ranges::any_of(seat.wakes, matches)) {
    std::erase_if(board.seats.edit(seat).wakes, matches);
  }
}

void leaveMessage(Board& board, const Seat& seat, Message message) {
  message.number = nextNumber(board);
  board.seats.edit(seat).inbox.push_back(std::move(message));
}

void forgetDelivered(Board& board, const Delivery& delivery) {
  const Seat* seat = board.seats.find(delivery.session);
  if (seat == nullptr) return;
  Seat& settled = board.seats.edit(*seat);
  std::erase_if(settled.wakes,
                [&](const Wake& reason) { return reason.number <= delivery.wakesUpTo; });
  std::erase_if(settled.inbox,
                [&](const Message& message) { return message.number <= delivery.messagesUpTo; });
}

void watch(Board& board, const Task& task, Watch watcher) {
  std::vector<Watch>& watches = board.tasks.edit(task).watches;
  const auto found = std::ranges::find(watches, watcher.fingerprint, &Watch::fingerprint);
  if (found == watches.end()) {
    watches.push_back(std::move(watcher));
  } else {
    found->isAuto = found->isAuto && watcher.isAuto;
  }
}

bool unwatch(Board& board, const Task& task, std::string_view fingerprint, Unwatch which) {
  return std::erase_if(board.tasks.edit(task).watches, [&](const Watch& watcher) {
           return watcher.fingerprint == fingerprint && (which == Unwatch::any || watcher.isAuto);
         }) > 0;
}

}  // namespace quillpost::board
