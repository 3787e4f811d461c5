#pragma once

// Looking for words on a board.

#include "board/person/sheet.h"
#include "board/rules/board.h"
#include "board/rules/leases.h"

#include <cstddef>
#include <string_view>

namespace quillpost::board {

/// How many tasks and discussions a search gives.
inline constexpr std::size_t foundAtMost = 100;

/// The tasks and discussions in whose id, title, brief, log or volleys the words stand, whatever
/// the case of letters from A to Z; the latest first, each with the place where they stand. None
/// for words that say nothing.
Sheet foundSheet(const Board& board, std::string_view words, Moment at);

}  // namespace quillpost::board
