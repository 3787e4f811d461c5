#pragma once

// What starting a program takes, whoever starts it.

#include "base/unique_fd.h"

#include <string>
#include <vector>

namespace quillpost::board {

/// The status of a program that could not be started, as shells have it.
inline constexpr int cannotRun = 127;

/// The same descriptor as one of more than the standard streams', closed when another program is
/// run; none when there is none to be had.
UniqueFd aboveStandard(UniqueFd fd);

/// A pipe, none of whose ends is a standard stream, closed when another program is run; two empty
/// ends when there is none to be had.
struct Pipe {
  UniqueFd reading;
  UniqueFd writing;

  Pipe();
};

/// The texts as the system takes a program's words and variables, with a null pointer at the end.
/// They live as long as the texts do.
std::vector<char*> pointersTo(const std::vector<std::string>& texts);

}  // namespace quillpost::board
