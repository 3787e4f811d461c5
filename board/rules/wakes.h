#pragma once

// Waking agents and leaving them messages, and forgetting what has reached them.

#include "board/rules/board.h"
#include "model/response.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// The wakes kept for one seat; beyond that the oldest give way, watch notices first, since the
/// agent that comes back to so many reads the board anew.
inline constexpr std::size_t wakesKept = 256;

/// The watch notices kept for one seat; what comes after these is only counted.
inline constexpr std::size_t watchNoticesKept = 20;

/// Why a seat is woken.
struct Reason {
  WakeKind kind = WakeKind::humanSaid;
  /// Empty when it is about no task.
  std::string taskID;
  std::string summary;
  /// The move behind it, if there is one.
  std::optional<MoveKind> cause = std::nullopt;
};

/// Wakes a seat; the new wake takes the place of an earlier one that it makes needless.
void wake(Board& board, const Seat& seat, const Reason& reason);

/// Takes back the wakes of that kind, about that task unless `taskID` is empty.
void takeBackWakes(Board& board, const Seat& seat, WakeKind kind, std::string_view taskID);

/// The wakes that wait for a seat, oldest first.
std::vector<const Wake*> wakesOf(const Board& board, const Seat& seat);

/// A message for a seat, not yet numbered.
struct Note {
  /// The sender's handle and name.
  std::string from;
  std::string fromName;
  std::string text;
  /// When it is sent, in milliseconds since 1970.
  int64_t sentMs = 0;
};

/// Leaves a message for a seat.
void leaveMessage(Board& board, const Seat& seat, Note note);

/// The messages that wait for a seat, oldest first.
std::vector<const Message*> messagesOf(const Board& board, const Seat& seat);

/// How much of the wakes of a seat one answer carries, in bytes, and how much of its messages; the
/// next one carries the next.
inline constexpr std::size_t wakeBytesCarried = std::size_t{1} << 20;
inline constexpr std::size_t messageBytesCarried = std::size_t{4} << 20;

/// Those that one answer carries, oldest first: one at least when any waits.
std::vector<const Wake*> wakesCarried(const Board& board, const Seat& seat);
std::vector<const Message*> messagesCarried(const Board& board, const Seat& seat);

/// What an answer carried to a seat: every wake and every message up to these ids.
struct Delivery {
  std::string thread;
  std::string session;
  /// Each is empty when it carried none.
  std::string wakesUpTo = {};
  std::string messagesUpTo = {};
  /// Of the wakes only what the person has said.
  std::string saidUpTo = {};
};

/// Forgets what has been carried.
void forgetDelivered(Board& board, const Delivery& delivery);

/// Puts what the person has said to the agent, as much as one answer carries, into an answer that
/// carries no wakes, wherever an answer of its kind has room for words: the id of the last such
/// wake, or empty when there is none or no room.
std::string carrySaid(const Board& board, const Seat& seat, TeamworkResponse& response);

/// Forgets all that waits for a seat.
void emptySeat(Board& board, const Seat& seat);

}  // namespace quillpost::board
