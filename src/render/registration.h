#pragma once

// What a seat is told when it registers, and not again.

#include "json/writer.h"
#include "model/seat_state.h"
#include "model/squad.h"

#include <optional>

namespace quillpost {

/// Adds the next step, the protocol, what access means, the rules, the command line, the caller's
/// handle when it is known, and the squad when its state is.
void addRegistration(json::Object& out, const std::optional<TeamworkSquadState>& squad,
                     const SeatState& state);

}  // namespace quillpost
