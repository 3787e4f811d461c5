#include "board/rules/people.h"

#include "base/text.h"
#include "base/unicode.h"

namespace quillpost::board {

const Seat* seatOf(const Board& board, std::string_view fingerprint) {
  const std::vector<const Seat*> found = board.seats.with({byMark, fingerprint});
  return found.empty() ? nullptr : found.front();
}

Seat* touchSeatOf(Board& board, std::string_view fingerprint) {
  const Seat* seat = seatOf(board, fingerprint);
  return seat != nullptr ? board.seats.touch(seat->id) : nullptr;
}

const Seat* seatAt(const Board& board, std::string_view handle) {
  const std::vector<const Seat*> found = board.seats.with({byHandle, text::lowered(handle)});
  return found.empty() ? nullptr : found.front();
}

const Seat* whoIs(const Board& board, std::string_view text) {
  if (const Seat* seat = seatOf(board, text)) return seat;
  if (const Seat* seat = seatAt(board, text)) return seat->registered ? seat : nullptr;
  const Seat* named = nullptr;
  for (const auto& [id, seat] : board.seats) {
    if (!seat.registered || seat.name.empty()) continue;
    if (!unicode::equalIgnoringCase(seat.name, text)) continue;
    if (named != nullptr) return nullptr;
    named = &seat;
  }
  return named;
}

std::string calling(const Board& board, std::string_view fingerprint) {
  const Seat* seat = seatOf(board, fingerprint);
  return seat != nullptr ? seat->handle : std::string(fingerprint);
}

std::vector<const Seat*> othersHere(const Board& board, std::string_view fingerprint) {
  std::vector<const Seat*> others;
  for (const auto& [id, seat] : board.seats)
    if (isLive(seat) && seat.fingerprint != fingerprint) others.push_back(&seat);
  return others;
}

int64_t claimsOf(const Board& board, const Seat& seat) {
  return text::countOf(board.tasks.with({byOwner, seat.fingerprint}));
}

bool isAttending(const Seat& seat, int64_t nowMs) {
  return isLive(seat) && nowMs - seat.lastCallMs < quietAfterMs;
}

std::string authorityOf(std::string_view role) {
  const std::string_view word = unicode::trim(role);
  if (unicode::equalIgnoringCase(word, "reviewer")) return "reviewer";
  if (unicode::equalIgnoringCase(word, "lead")) return "lead";
  return "contributor";
}

}  // namespace quillpost::board
