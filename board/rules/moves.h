#pragma once

// What moves on a board, and who is told: the change feed's rows, wakes and messages.

#include "board/rules/board.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillpost::board {

/// The latest changes that are kept; whoever has seen less is told of all of these.
inline constexpr int64_t changesKept = 1000;

/// The wakes kept for one seat; beyond that the oldest give way, watch notices first, since the
/// agent that comes back to so many reads the board anew.
inline constexpr std::size_t wakesKept = 256;

/// One thing that somebody does.
struct Move {
  std::string_view kind;
  /// Empty when it is about no task.
  std::string taskID;
  /// A fingerprint, "human", or empty for the board itself.
  std::string by;
};

/// A wake for one agent on account of a move.
struct Notice {
  /// The agent; one that is on no seat is passed over, and so is the one that moved.
  std::string fingerprint;
  std::string_view kind;
  std::string summary;
};

/// Records a move under a new revision, wakes those who are noticed, and tells everybody else who
/// watches the task.
void announce(Board& board, const Move& move, std::span<const Notice> notices = {});

/// Records a move under a new revision, and tells nobody by name.
void record(Board& board, const Move& move);

/// Whether a change ends only the waits that ask for changes of state too.
bool isQuiet(std::string_view changeKind);

/// Adds a wake; it takes the place of an earlier one that it makes needless.
void wake(Board& board, const Seat& seat, Wake reason);

/// Takes back the wakes of that kind, about that task unless `taskID` is empty.
void takeBackWakes(Board& board, const Seat& seat, std::string_view kind, std::string_view taskID);

/// Leaves a message for a seat.
void leaveMessage(Board& board, const Seat& seat, Message message);

/// What an answer carried to a seat: every wake and every message up to these numbers.
struct Delivery {
  std::string thread;
  std::string session;
  int64_t wakesUpTo = 0;
  int64_t messagesUpTo = 0;
};

/// Forgets what has been carried.
void forgetDelivered(Board& board, const Delivery& delivery);

/// Makes the agent follow the task; an explicit watch takes the place of an automatic one.
void watch(Board& board, const Task& task, Watch watcher);

/// Ends the agent's watch of the task, only an automatic one if `autoOnly`. False when there was
/// none.
enum class Unwatch { any, autoOnly };
bool unwatch(Board& board, const Task& task, std::string_view fingerprint, Unwatch which);

}  // namespace quillpost::board
