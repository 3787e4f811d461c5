#pragma once

// The end of a session, in which nothing goes wrong any more but that some agents never speak
// again. Those that are left listen, pay what they owe and do what can be done.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "harness/dice.h"
#include "model/request.h"

#include <functional>
#include <optional>
#include <string>

namespace quillpost::board_model {

/// What the calm has of the session that it ends.
struct Calm {
  const board::Board& board;
  board::Moment& at;
  testing::Dice& dice;
  /// Carries out a request, of the person when it names no session, and has its answer arrive: what
  /// is wrong about that, in words; nothing when all is well. A refusal is wrong too.
  std::function<std::optional<std::string>(TeamworkRequest)> ask;
};

/// Plays on until a round moves nothing: every agent that is left has then heard of all that waited
/// for it, owes nothing and may stop, and every task is done that can be. What is wrong, in words,
/// when one of these is not so or a request is refused; and when there is still something to do
/// after so many rounds as are more than enough.
std::optional<std::string> endCalmly(const Calm& calm);

}  // namespace quillpost::board_model
