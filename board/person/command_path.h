#pragma once

// How a terminal in a seat comes to find `qp`.

#include "base/environment.h"
#include "board/person/commands.h"

#include <string>
#include <string_view>

namespace quillpost::board {

/// The line that puts the `qp` beside this program on a shell's PATH, behind what is there, so that
/// it comes before no other. `program` is the path by which this program was started. Empty when it
/// was found on the PATH itself, when that has its folder already, and when no `qp` stands there.
std::string commandPathLine(std::string_view program, const Environment& environment);

/// The variable PATH as this program has it, with its own folder first when it was called by its
/// path: qp lies there too.
std::string pathWith(const Surroundings& around);

}  // namespace quillpost::board
