#pragma once

// Who is who on a board: finding agents by what others call them.

#include "board/rules/board.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// The seat whose agent has this fingerprint, here or away; null when there is none.
const Seat* seatOf(const Board& board, std::string_view fingerprint);

/// The same seat, to be changed; null when there is none.
Seat* touchSeatOf(Board& board, std::string_view fingerprint);

/// The seat of this handle, whatever the case; null when there is none.
const Seat* seatAt(const Board& board, std::string_view handle);

/// The registered seat that a text names: a fingerprint, a handle or a name. Null when it names
/// nobody, or a name that several share.
const Seat* whoIs(const Board& board, std::string_view text);

/// What a line calls an agent: its handle; the text itself for whoever is not on the roster.
std::string calling(const Board& board, std::string_view fingerprint);

/// The agents that are here, but for the one of this fingerprint.
std::vector<const Seat*> othersHere(const Board& board, std::string_view fingerprint);

/// How many tasks an agent holds.
int64_t claimsOf(const Board& board, const Seat& seat);

/// Whether an agent is here and has lately made a call of its own.
bool isAttending(const Seat& seat, int64_t nowMs);

/// What a role lets an agent do: "reviewer" and "lead" for the roles of these names, whatever the
/// case, else "contributor".
std::string authorityOf(std::string_view role);

/// Whether this authority may record verdicts.
inline bool mayVerify(std::string_view authority) {
  return authority == "reviewer" || authority == "lead";
}

}  // namespace quillpost::board
