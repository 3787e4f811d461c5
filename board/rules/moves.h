#pragma once

// What moves on a board, and who is told of it.

#include "board/rules/board.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quillpost::board {

/// One thing that somebody does.
struct Move {
  MoveKind kind = MoveKind::taskEdited;
  /// Empty when it is about no task.
  std::string taskID;
  /// A fingerprint, "human", or empty for the board itself.
  std::string by;
  /// When, in milliseconds since 1970.
  int64_t atMs = 0;
  /// What a reader of the history should see beside it; may be empty.
  std::string what = {};
};

/// A wake for one agent on account of a move.
struct Notice {
  /// The agent; one that is on no seat is passed over, and so is the one that moved.
  std::string fingerprint;
  WakeKind kind = WakeKind::humanSaid;
  std::string summary;
};

/// Records a move under a new revision, wakes those who are noticed, and tells everybody else who
/// watches the task.
void announce(Board& board, const Move& move, std::span<const Notice> notices = {});

/// Records a move under a new revision, and tells nobody by name.
void record(Board& board, const Move& move);

/// Makes the agent follow the task; an explicit watch takes the place of an automatic one.
void watch(Task& task, Watch watcher);

/// Which watches are meant: a claim's only, or all.
enum class Unwatch { any, autoOnly };

/// Ends the agent's watch of the task. False when there was none.
bool unwatch(Task& task, std::string_view fingerprint, Unwatch which);

}  // namespace quillpost::board
