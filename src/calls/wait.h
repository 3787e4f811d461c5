#pragma once

// wait_for_changes: holds the call, keeps the seat alive, and returns when the board moves.

#include "calls/arguments.h"
#include "calls/seat.h"
#include "calls/tool_reply.h"
#include "model/changes.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace quillpost {

/// Tells whoever waits how far a wait has come, counting from 1. False when nobody reads any more.
using ProgressReport = std::function<bool(int64_t count)>;

/// Who waits, and what else he can stand or asks for. One of these as it stands waits without a
/// deadline until the board moves.
struct Listener {
  /// The longest hold, in seconds; nothing for one who can be held for ever.
  std::optional<int64_t> budget = std::nullopt;
  /// Whether quick returns are to be explained to him, because he cannot be held long.
  bool cannotHoldLong = false;
  /// Called at once and then every few seconds; empty for one who asked for no progress.
  ProgressReport progress = {};
  /// Asked before each poll, and so at least once for each heartbeat; false ends the wait before
  /// anything more is sent, so that a seat whose agent is gone does not go on renewing its claims.
  /// Empty for one who never goes.
  std::function<bool()> isThere = {};
  /// Asked when an answer would end the wait, with the ending and the last feed, which is null when
  /// none ever came; true goes on listening, from the feed's revision. Empty for one whom the first
  /// such answer is enough.
  std::function<bool(CallEnd end, const TeamworkChangeFeed* feed)> goesOn = {};
};

/// The client of this seat: held no longer than its profile and the environment allow now.
Listener clientOf(const Seat& seat, ProgressReport progress);

/// Waits as the arguments ask, within the listener's budget, and says how it ended. Nothing the app
/// does or fails to do is an error here: what cannot be reached is asked again.
ToolReply runWait(const Arguments& arguments, Seat& seat, const Listener& listener);

}  // namespace quillpost
