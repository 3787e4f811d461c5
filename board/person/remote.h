#pragma once

// A harness in a seat on another machine: ssh carries the board's socket there, and nothing listens
// on a network.

#include "board/person/commands.h"
#include "board/person/seat.h"

namespace quillpost::board {

/// Runs the command of the line on its host, in the seat; gives its status. What the seat needs
/// there lies in a folder that only the user of that machine can enter, and that is gone when the
/// command has ended or the connection breaks.
int runThere(const Line& line, const Surroundings& around, const NewSeat& seat);

}  // namespace quillpost::board
