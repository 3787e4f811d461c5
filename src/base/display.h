#pragma once

// What agents wrote, made fit for a person's terminal. Everything that a command prints passes
// here.

#include <string>
#include <string_view>

namespace quillpost {

/// How a character is shown that would steer the terminal.
enum class Marks {
  visible,  // as a picture of it or its number, to be read by a person
  escapes,  // as JSON writes it, so that JSON stays what it was
  all,      // as the first, and so is every character that cannot be seen, line feeds included
};

/// The text with every C0 and C1 control, DEL, and every character that turns the direction of
/// writing or ends a line in its own way shown as a mark; line feeds and tabs stay, unless all
/// marks are wanted. What is not UTF-8 is marked byte by byte.
std::string displayed(std::string_view text, Marks marks = Marks::visible);

/// The same in one line, with a blank for each run of white space.
std::string displayedInLine(std::string_view text);

}  // namespace quillpost
