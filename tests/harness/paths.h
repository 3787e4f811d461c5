#pragma once

// Where the programs under test and the files of the tree are.

#include <string>
#include <string_view>

namespace quillpost::testing {

/// The built programs.
std::string seatProgram();
std::string boardProgram();
std::string commandProgram();

/// A file of the repository, and one of its tests folder, by the path from there.
std::string inSources(std::string_view path);
std::string inTests(std::string_view path);

}  // namespace quillpost::testing
