#pragma once

// What a wait that goes on prints of each feed: one line a move.

#include "model/changes.h"
#include "model/seat_state.h"

#include <string>

namespace quillpost {

/// The lines of a wait that follows the board. Each feed is told once.
class FollowLines {
 public:
  /// The lines for a feed that brought news, each with its line feed; empty when they were all told
  /// with an earlier feed.
  std::string linesFor(const TeamworkChangeFeed& feed);

 private:
  bool toldComplete_ = false;
  bool toldPending_ = false;
};

/// Whether there is nothing left to follow: the goal is confirmed complete, and nothing is owed.
bool isOver(const TeamworkChangeFeed& feed, const SeatState& state);

}  // namespace quillpost
