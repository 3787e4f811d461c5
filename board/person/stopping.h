#pragma once

// Being told to stop.

#include "base/unique_fd.h"

namespace quillpost::board {

/// The reading end of a pipe that can be read once the program has been told to stop, by a signal
/// that would have ended it otherwise; none when there is no pipe to be had. Once in a program.
UniqueFd catchSignals();

}  // namespace quillpost::board
