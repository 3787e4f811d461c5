#pragma once

// One seat at the board: who it is, what it remembers, and what it reaches the world through.

#include "base/memory.h"
#include "calls/doors.h"
#include "model/request.h"
#include "model/response.h"
#include "model/seat_state.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillpost {

/// Lives as long as the process, or for one command that takes its state from the last one.
struct Seat {
  SeatDoors doors;
  /// The session on the app; empty outside a Thread.
  std::string sessionID = {};
  SeatState state = {};
  /// Is told the size of every answer; whoever runs the seat says when there is time to give back.
  MemoryKeeper memory = {};
};

/// A request with the envelope of this seat and nothing else. Its token, which may be empty, is
/// read at this moment: the app changes it when it starts anew.
TeamworkRequest requestFrom(const Seat& seat, std::string_view method);

/// Sends one request once. Nothing when no answer came, or one that is not a response.
std::optional<TeamworkResponse> send(const TeamworkRequest& request, Seat& seat);

}  // namespace quillpost
