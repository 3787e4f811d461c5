#pragma once

// What one seat at the board has: its session, its memory, and its doors to the world.

#include "base/clock.h"
#include "base/environment.h"
#include "bridge/bridge.h"
#include "json/writer.h"
#include "model/seat_state.h"

#include <functional>
#include <string>

namespace quillpost {

/// The doors that a tool call goes through. Not owned.
struct SeatDoors {
  Clock& clock;
  const Environment& environment;
  Bridge& bridge;
};

/// One seat.
struct Seat {
  SeatDoors doors;
  /// The session on the app; empty outside a Thread.
  std::string sessionID;
  SeatState state;
};

/// What a tool call gives the agent.
struct ToolReply {
  json::EscapedText text;
  /// The Thread that answered; empty when none did.
  std::string threadTag;
};

/// Tells the client how far a running call has come, counting from 1. False when nobody reads any
/// more. Empty for a call that asked for no progress.
using ProgressReport = std::function<bool(int64_t count)>;

/// A request with the envelope of this seat and nothing else.
TeamworkRequest requestFrom(const Seat& seat, std::string_view method);

}  // namespace quillpost
