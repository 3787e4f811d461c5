#pragma once

// One seat at the board: who it is, what it remembers, and what it reaches the world through.

#include "calls/doors.h"
#include "model/request.h"
#include "model/seat_state.h"

#include <string>
#include <string_view>

namespace quillpost {

/// Lives as long as the process, or for one command that takes its state from the last one.
struct Seat {
  SeatDoors doors;
  /// The session on the app; empty outside a Thread.
  std::string sessionID;
  SeatState state = {};
};

/// A request with the envelope of this seat and nothing else. Its token, which may be empty, is
/// read at this moment: the app changes it when it starts anew.
TeamworkRequest requestFrom(const Seat& seat, std::string_view method);

}  // namespace quillpost
