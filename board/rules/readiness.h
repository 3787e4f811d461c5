#pragma once

// Which tasks may be started: what waits on what.

#include "board/rules/board.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// Whether every task that this one waits on is done. An id that names no task holds nothing up.
bool isReady(const Board& board, const Task& task);

/// Those of the ids that name no task on the board.
std::vector<std::string> unresolved(const Board& board, std::span<const std::string> ids);

/// The open tasks that wait on this one, in order.
std::vector<const Task*> dependentsOf(const Board& board, std::string_view taskID);

/// Whether the task would wait on itself, directly or around corners, if it waited on these.
bool wouldWaitOnItself(const Board& board, std::string_view taskID,
                       std::span<const std::string> waitsOn);

/// Whether the agent whom the task is meant for is here and attending.
bool isMeantForSomebodyHere(const Board& board, const Task& task, int64_t nowMs);

}  // namespace quillpost::board
