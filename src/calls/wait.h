#pragma once

// wait_for_changes: holds the call, keeps the seat alive, and returns when the board moves.

#include "calls/arguments.h"
#include "calls/seat.h"

namespace quillpost {

/// Waits as the arguments ask, within the hold budget of the client, and says how it ended.
/// Nothing the app does or fails to do is an error here: what cannot be reached is asked again.
ToolReply runWait(const Arguments& arguments, Seat& seat, const ProgressReport& progress);

}  // namespace quillpost
