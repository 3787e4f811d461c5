#pragma once

// Where a board is published when nobody says where.

#include <optional>
#include <string>

#include "base/environment.h"

namespace quillpost::devboard {

/// "Quillpost-dev" in the user's application-support directory, where agents look for boards by
/// themselves: on Linux the XDG data home when that directory exists, else and on macOS "Library/
/// Application Support" in the home directory. Nothing when neither variable names a place; a home
/// that only the password database knows is not looked up.
std::optional<std::string> defaultDirectory(const Environment& environment);

}  // namespace quillpost::devboard
