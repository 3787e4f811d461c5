#pragma once

// How a wait ended, as the agent reads it.

#include "json/writer.h"
#include "model/changes.h"
#include "model/seat_state.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quillpost {

/// What the end of a wait is told from.
struct WaitOutcome {
  /// The last feed; null when the app never answered with one.
  const TeamworkChangeFeed* feed = nullptr;
  /// The tasks that were watched; empty for the entire backlog.
  std::span<const std::string> watching;
  /// The hold that was granted, in seconds.
  int64_t heldSeconds = 0;
  /// The hold that was asked for, in seconds; only when the wait was shortened.
  std::optional<int64_t> shortenedFrom;
  /// Whether the hold ran out.
  bool timedOut = false;
  /// Whether this client cannot hold a long wait and is to be told so when nothing moved.
  bool cannotHoldLong = false;
};

/// The result of a wait as compact JSON. `state` has counted this outcome already; its last
/// obligations and audience are the ones shown. Without a feed everything that a feed tells is
/// left out.
json::EscapedText waitOutcome(const WaitOutcome& outcome, const SeatState& state);

}  // namespace quillpost
