#pragma once

// Which tasks may be started: what waits on what.

#include "board/rules/moves.h"

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

/// Those of the ids whose tasks were declined, and so will never be done.
std::vector<std::string> declinedAmong(const Board& board, std::span<const std::string> ids);

/// A task that another waits on, for a reader: its id, and behind it that it was declined and why.
std::string waitedOn(const Board& board, const std::string& id);

/// What is said of an open task that waits on one that was declined, and so for ever; empty for any
/// other.
std::string waitsForEver(const Board& board, const Task& task);

/// What a caller is told of the ids that a task is to wait on when not all of them hold it up until
/// they are done; empty when all do.
std::string noticeOfWaits(const Board& board, std::span<const std::string> waitsOn);

/// Whether anybody could claim the task now, but for whom it is meant for.
bool isTakeable(const Board& board, const Task& task);

/// Tells all, and by name its holder or whom it is meant for, that the task is READY, when it is
/// one to be done and it is; `why` stands behind the words.
void tellIfReady(Board& board, const Task& task, const Move& move, std::string_view why);

/// Whom a task is to be meant for, as it is kept: the handle of the agent who is named; the name
/// itself when nobody here answers to it, with a sentence in `notice`.
std::string routeTo(const Board& board, std::string_view name, std::string& notice);

/// The agent whom a task is meant for; null when that is nobody on the roster.
const Seat* addresseeOf(const Board& board, const Task& task);

/// Whether the agent whom the task is meant for is here and attending.
bool isMeantForSomebodyHere(const Board& board, const Task& task, int64_t nowMs);

}  // namespace quillpost::board
