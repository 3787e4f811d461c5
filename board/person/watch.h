#pragma once

// What of a moving board is new, and how it is drawn over what stands on a terminal.

#include "board/person/sheet.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace quillpost::board {

/// What needs the person, each by what tells it from all others.
using Needs = std::set<std::string>;

/// The rows of what needs the person and did not before; `known` is then what does now.
std::vector<const Section::Row*> newNeeds(const Sheet& sheet, Needs& known);

/// What draws a text over a terminal of so many lines, the last of which stays free. A text that is
/// too long ends with a line that says so.
std::string screenOf(const std::string& text, std::size_t lines);

}  // namespace quillpost::board
