#pragma once

// Where a board is published when nobody says where.

#include "base/environment.h"

#include <optional>
#include <string>

namespace quillpost::board {

/// "Quillpost-board" in the user's application-support directory, where agents look for boards by
/// themselves. Nothing when there is no home directory to look in.
std::optional<std::string> defaultDirectory(const Environment& environment);

}  // namespace quillpost::board
