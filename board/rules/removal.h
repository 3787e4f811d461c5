#pragma once

// Declining, deleting and putting back tasks, and taking back what was said of them.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "board/rules/moves.h"

#include <optional>
#include <string>

namespace quillpost::board {

/// Takes the verdict off a task that is to be done again, or by nobody. Who asked for one stays.
void clearVerdict(Task& task);

/// Why a task cannot be deleted: those that wait on it would be READY without its being done.
/// Nothing when none waits.
std::optional<std::string> whyNotDeletable(const Board& board, const Task& task);

/// Deletes a task: it can be put back for a while, as it is now. What waited on it and is READY
/// without it is told to all.
void deleteTask(Board& board, Task& task, const Move& move, const std::string& reason);

/// Closes a task that nobody is to do; those whose tasks wait on it are told that they will wait
/// for ever.
void declineTask(Board& board, Task& task, const Move& move);

/// Why a deleted task cannot be put back; nothing when it can.
std::optional<std::string> whyNotRestorable(const Board& board, const Task& deleted);

/// Puts a deleted task, one of the board's trash, back as it was; `deleted` is gone then. A claim
/// goes on when its holder is still here, with its full lease; otherwise the task is in the pool.
Task& restoreTask(Board& board, const Task& deleted, const Move& move, Moment at);

}  // namespace quillpost::board
