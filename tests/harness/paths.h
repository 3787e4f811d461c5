#pragma once

// Where the programs under test and the files of the tree are.

#include <string>
#include <string_view>

namespace quillpost::testing {

/// The built programs; for the seat another one where QUILLPOST_PROGRAM is set.
std::string seatProgram();
std::string boardProgram();
std::string commandProgram();

/// The seat with its C library beside it, whichever way the one that is released is built: a
/// library that is loaded before the C library can come between the two. Not built for macOS or
/// sanitizers.
std::string sharedSeatProgram();

/// Whether the seat is built with the C library inside.
bool isSeatStatic();

/// A file of the repository, and one of its tests folder, by the path from there.
std::string inSources(std::string_view path);
std::string inTests(std::string_view path);

}  // namespace quillpost::testing
