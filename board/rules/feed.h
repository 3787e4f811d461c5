#pragma once

// What an agent that listens is told: the answer to a poll, and whether it is worth giving.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "board/rules/wakes.h"
#include "model/changes.h"
#include "model/request.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillpost::board {

/// What a poll asks: since when, about which tasks (none: all of them), how readily it ends.
struct Listening {
  int64_t sinceRev = 0;
  std::vector<std::string> taskIDs;
  bool wakesOnStateChanges = false;
};

/// Reads a poll's arguments; what is absent is 0, none and false.
Listening listeningOf(const TeamworkRequest& request);

/// Whether the board has moved for this agent: others have done something that ends its wait. From
/// revision 0 nothing has, since an agent that has seen nothing has not missed anything.
bool hasMoved(const Board& board, const Seat& seat, const Listening& listening);

/// Whether there is nothing to wait on: no work, and nobody who could make some.
bool isDeserted(const Board& board);

/// Whether a poll is to be answered now rather than held.
bool hasNews(const Board& board, const Seat& seat, const Listening& listening);

/// The answer to a poll: the tasks that moved since the revision, in the form of a list; none from
/// revision 0, which asks for the revision alone. An agent that has not registered sees titles
/// only, and no goal.
TeamworkChangeFeed feedFor(const Board& board, const Seat& seat, const Listening& listening,
                           Moment at);

/// The messages that an answer carries to a seat, oldest first.
std::vector<TeamworkSquadMessage> messagesFor(const Board& board, const Seat& seat, Moment at);

/// What an answer with all the wakes and messages of a seat carries.
Delivery deliveryOf(const Board& board, const Seat& seat);

}  // namespace quillpost::board
