#pragma once

// How much room text takes on a terminal, which is not how many characters it has.

#include <cstddef>
#include <string>
#include <string_view>

namespace quillpost::unicode {

/// The columns that the text takes in one line of a terminal: two for what is drawn wide, such as
/// Chinese characters and pictures, none for what is drawn onto the character before it. A byte
/// that is not UTF-8 counts as one.
std::size_t columnsOf(std::string_view whole);

/// As many of the first user-perceived characters as fit into so many columns.
std::string_view firstColumns(std::string_view whole, std::size_t columns);

/// The whole text, or as much of it as fits before an ellipsis in the last column.
std::string cutToColumns(std::string_view whole, std::size_t columns);

}  // namespace quillpost::unicode
