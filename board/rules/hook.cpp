#include "board/rules/hook.h"

#include "base/text.h"
#include "board/rules/views.h"
#include "board/rules/wakes.h"

#include <algorithm>

namespace quillpost::board {

namespace {

/// The number of the last wake or message that waits for the seat; 0 when none does.
int64_t latestFor(const Board& board, const Seat& seat) {
  int64_t latest = 0;
  const auto consider = [&](const auto& rows) {
    if (rows.empty()) return;
    latest = std::max(latest, text::parseInteger(rows.back()->id).value_or(0));
  };
  consider(wakesOf(board, seat));
  consider(messagesOf(board, seat));
  return latest;
}

}  // namespace

bool holdBack(const Board& board, Seat& seat, Moment at) {
  const int64_t latest = latestFor(board, seat);
  if (latest <= seat.heldBackFor) return holdBackForDebts(board, seat, at);
  seat.heldBackFor = latest;
  seat.holdBacks = 1;
  return true;
}

bool holdBackForDebts(const Board& board, Seat& seat, Moment at) {
  const TeamworkObligations owed = obligationsOf(board, seat, at);
  const bool owesReply = !owed.oweReply.empty() || !owed.mentionsToAnswer.empty();
  if (!owesReply || seat.holdBacks >= holdBacksLimit) return false;
  ++seat.holdBacks;
  return true;
}

}  // namespace quillpost::board
