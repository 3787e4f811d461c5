#pragma once

// Where a board is published when nobody says where.

#include <optional>
#include <string>

#include "base/environment.h"

namespace quillpost::devboard {

/// "Quillpost-dev" in the user's application-support directory, where agents look for boards by
/// themselves. Nothing when there is no home directory to look in.
std::optional<std::string> defaultDirectory(const Environment& environment);

}  // namespace quillpost::devboard
