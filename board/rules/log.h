#pragma once

// The log of a task: what was written on it, oldest first.

#include "board/rules/board.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// Adds a line at the end of the log. Its id and its number are given here.
const LogLine& addLine(Board& board, Task& task, LogLine line);

/// The last line; null for a log without any.
const LogLine* lastLine(const Board& board, const Task& task);

/// All lines, oldest first.
std::vector<const LogLine*> linesOf(const Board& board, std::string_view taskID);

/// The line as a reader of the log sees it, with its marker or its author before it.
std::string lineText(const LogLine& line);

/// Puts a summary on the task, cut to its limit; nothing when it says nothing.
void refreshSummary(Board& board, Task& task, const Seat& author, std::string_view summary,
                    int64_t nowMs);

/// The brief of a task; empty when it has none.
std::string_view briefOf(const Board& board, std::string_view taskID);

/// Sets the brief of a task; an empty one takes it away.
void setBrief(Board& board, const std::string& taskID, std::string body);

/// Forgets the log and the brief of a task that is gone for good.
void forgetWritings(Board& board, const std::string& taskID);

}  // namespace quillpost::board
