#pragma once

// Whether an agent that is about to stop is to go on: the answer to its stop hook.

#include "board/rules/board.h"
#include "board/rules/leases.h"

#include <cstdint>

namespace quillpost::board {

/// How often in a row an agent that owes a reply is told to go on without its doing anything. A
/// hook must never trap an agent.
inline constexpr int64_t holdBacksLimit = 3;

/// Whether the agent is to go on because it owes a reply or a verdict: up to the limit, which
/// counts from its last move on the board.
bool holdBackForDebts(const Board& board, Seat& seat, Moment at);

/// Whether the agent is to go on: once for whatever has come for it since it was last told so; and
/// for its debts.
bool holdBack(const Board& board, Seat& seat, Moment at);

}  // namespace quillpost::board
