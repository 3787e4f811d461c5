#pragma once

// Where a board is published when nobody says where.

#include "base/environment.h"

#include <optional>
#include <string>

namespace quillpost::board {

/// "Quillpost-board" where agents look for boards by themselves: on macOS in the user's
/// application-support directory, elsewhere in the XDG data home, which need not be there yet.
/// Where there was none an earlier release kept a board in "Library/Application Support"; such a
/// board stays there. Nothing when there is no home directory to look in.
std::optional<std::string> defaultDirectory(const Environment& environment);

}  // namespace quillpost::board
