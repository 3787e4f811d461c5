#pragma once

// The board as a page keeps it: everything once, and from then on what moved.

#include "board/person/sheet.h"
#include "board/rules/board.h"
#include "board/rules/leases.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace quillpost::board {

/// How many of the tasks that are done or declined are told, those that were filed last: a page
/// shows fewer, and finds the others when they are looked for.
inline constexpr std::size_t finishedTold = 1000;

/// What a page shows of the first of the Threads, and what needs the person on any of them. With a
/// revision whose moves are still known: of tasks only those that moved since or whose readiness
/// may have changed, in `gone` the ids of those that went away, and the moves themselves. A sheet
/// without tables of tasks when there is no Thread yet.
Sheet liveSheet(std::span<const Board* const> boards, std::optional<int64_t> sinceRev, Moment at);

}  // namespace quillpost::board
