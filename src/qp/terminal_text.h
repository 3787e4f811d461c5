#pragma once

// What peers wrote, so that it can be shown on a person's terminal without steering it.

#include <string>
#include <string_view>

namespace quillpost {

/// The text with every control character and every character that turns the direction of writing
/// shown as a visible mark; line feeds and tabs stay. What is not UTF-8 is marked byte by byte.
std::string withVisibleControls(std::string_view text);

/// The same in one line: each run of line feeds, tabs and blanks is one blank.
std::string inOneLine(std::string_view text);

}  // namespace quillpost
