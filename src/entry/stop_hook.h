#pragma once

// The stop hook: run when the agent is about to end its turn, it asks the app once whether anything
// is waiting for this seat. Whatever is missing or goes wrong lets the agent stop.

#include "base/input.h"
#include "calls/seat.h"

#include <string_view>

namespace quillpost {

/// How the hook ends.
struct HookResult {
  /// The exit status: 0 lets the agent stop, 2 keeps it going.
  int status = 0;
  /// What goes to standard error; empty when the agent may stop.
  std::string_view line;

  bool operator==(const HookResult&) const = default;
};

/// Reads the input to its end and keeps nothing, so that whoever writes the event never meets a
/// closed pipe.
void drain(Input& input);

/// Asks the app, once. Without a session or a token nothing is asked.
HookResult runStopHook(Seat& seat);

}  // namespace quillpost
