#pragma once

// Allowing helpers from a terminal: what is recorded of it is what they get.

#include "board/person/commands.h"
#include "board/rules/helper.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quillpost::board {

/// Of a terminal's variables those that a helper gets: the plain ones, and those that are named,
/// with the folder of this program on the PATH. Nothing when one of these is not set: then `why`
/// says so.
std::optional<std::vector<std::string>> variablesOfHelper(const Surroundings& around,
                                                          std::span<const std::string> named,
                                                          std::string& why);

/// The helper that a command line describes, in this terminal; nothing when it cannot be: then
/// `why` says so.
std::optional<Helper> helperHere(const Line& line, const Surroundings& around, std::string& why);

}  // namespace quillpost::board
