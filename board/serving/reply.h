#pragma once

// An answer on its way out: its line, and what is known of its having arrived.

#include "board/rules/wakes.h"
#include "model/response.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace quillpost::board {

/// The largest answer that is sent, in bytes: well below what a client takes, so that the texts
/// that it makes of one fit as well.
inline constexpr std::size_t replyLimit = std::size_t{12} << 20;

/// What is to be noted once an answer has been sent whole.
struct Receipt {
  /// What it carries that is to be forgotten then.
  Delivery delivery;
  /// The number of an answer to a write, which is remembered until then; 0 for any other.
  uint64_t write = 0;
  /// The revision up to which it shows the whole board; 0 when it does not.
  int64_t shownRev = 0;
};

/// An answer, and what is to be noted of it.
struct Answer {
  TeamworkResponse response;
  std::optional<Receipt> receipt = std::nullopt;
  /// For how long the answer may be held back, because it says that nothing has moved; 0 when it is
  /// to be sent now.
  int64_t holdMs = 0;
};

/// The answer as one line with its line feed. One that would be too large becomes an error that
/// says what to do, and carries nothing then.
std::string replyLine(Answer& answer);

}  // namespace quillpost::board
