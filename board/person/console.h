#pragma once

// Where a command's words go: a person's terminal, or a file or a program behind it.

#include "base/environment.h"
#include "board/person/sheet.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace quillpost::board {

/// Prints the words on standard output as `displayed` makes them, with a line feed at their end.
void print(std::string_view words);

/// Prints a text that has been laid out, and has passed `displayed` then.
void printLaidOut(std::string_view text);

/// Says on standard error what went wrong, as `displayed` makes it; gives the status of a failure.
int complain(std::string_view why);

/// The page that standard output is: as wide as the terminal, in colour unless NO_COLOR is set to
/// something or the terminal is a dumb one; neither when it is no terminal.
Page pageOf(const Environment& environment);

/// The lines of the terminal; 0 when standard output is none.
std::size_t terminalLines();

/// The value of a variable among NAME=VALUE; empty when it is not there.
std::string_view valueOf(std::string_view name, const std::vector<std::string>& variables);

}  // namespace quillpost::board
