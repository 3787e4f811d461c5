#pragma once

// What the board asks the system about files, and what the system says of a call that failed.

#include <string>

namespace quillpost::board {

/// Whether anything has this path, be it a link to nothing; false too when that cannot be told.
bool exists(const std::string& path);

/// What the system says of the last call that failed, in its own words.
std::string reason();

}  // namespace quillpost::board
