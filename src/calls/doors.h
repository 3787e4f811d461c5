#pragma once

// The doors to the world that a call goes through.

#include "base/clock.h"
#include "base/environment.h"
#include "bridge/bridge.h"

namespace quillpost {

/// None of them is owned, and all must outlive the seat. The environment is read at each wait, so
/// that a person who changes its two variables for waiting need not start anything anew.
struct SeatDoors {
  Clock& clock;
  const Environment& environment;
  Bridge& bridge;
};

}  // namespace quillpost
