#include "board/rules/wakes.h"

#include "board/rules/ids.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

std::string nextNumber(Board& board) { return padded(++board.count().lastNumber); }

/// Whether a wake makes an earlier one needless: it says the same, or how a task stands by now.
bool saysAll(const Reason& later, const Wake& earlier) {
  if (later.kind != earlier.kind || later.taskID != earlier.taskID) return false;
  return later.summary == earlier.summary || later.kind == WakeKind::taskWatched ||
         later.kind == WakeKind::claimExpiring || later.kind == WakeKind::claimExpired;
}

/// Removes the rows of a seat that match.
template <class Row, class Matches>
void removeFrom(Table<Row>& table, std::string_view session, Matches&& matches) {
  for (const Row* row : table.with({bySeat, session}))
    if (matches(*row)) table.remove(row->id);
}

}  // namespace

void wake(Board& board, const Seat& seat, const Reason& reason) {
  removeFrom(board.wakes, seat.id, [&](const Wake& earlier) { return saysAll(reason, earlier); });
  board.wakes.put(
      {nextNumber(board), seat.id, reason.kind, reason.taskID, reason.summary, reason.cause});
  const std::vector<const Wake*> all = wakesOf(board, seat);
  if (all.size() <= wakesKept) return;
  const auto leastMissed = std::ranges::find(all, WakeKind::taskWatched, &Wake::kind);
  board.wakes.remove((leastMissed == all.end() ? all.front() : *leastMissed)->id);
}

void takeBackWakes(Board& board, const Seat& seat, WakeKind kind, std::string_view taskID) {
  removeFrom(board.wakes, seat.id, [&](const Wake& wake) {
    return wake.kind == kind && (taskID.empty() || wake.taskID == taskID);
  });
}

std::vector<const Wake*> wakesOf(const Board& board, const Seat& seat) {
  return board.wakes.with({bySeat, seat.id});
}

void leaveMessage(Board& board, const Seat& seat, Note note) {
  board.messages.put({nextNumber(board), seat.id, std::move(note.from), std::move(note.fromName),
                      std::move(note.text), note.sentMs});
}

std::vector<const Message*> messagesOf(const Board& board, const Seat& seat) {
  return board.messages.with({bySeat, seat.id});
}

void forgetDelivered(Board& board, const Delivery& delivery) {
  removeFrom(board.wakes, delivery.session,
             [&](const Wake& wake) { return wake.id <= delivery.wakesUpTo; });
  removeFrom(board.messages, delivery.session,
             [&](const Message& message) { return message.id <= delivery.messagesUpTo; });
}

void emptySeat(Board& board, const Seat& seat) {
  removeFrom(board.wakes, seat.id, [](const Wake&) { return true; });
  removeFrom(board.messages, seat.id, [](const Message&) { return true; });
}

}  // namespace quillpost::board
