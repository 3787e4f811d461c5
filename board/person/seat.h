#pragma once

// A seat that is made for a command, and taken away when the command has ended.

#include "board/person/commands.h"

#include <optional>
#include <string>

namespace quillpost::board {

/// A new seat.
struct NewSeat {
  std::string handle;
  /// Its thread's tag.
  std::string thread;
  std::string session;
  std::string tokenFile;
  std::string socket;
  /// The lines that put it into a shell's environment, and a sentence about it.
  std::string lines;
  std::string sentence;
};

/// Has the board make a seat as the command line wants it; nothing when it does not: then `why`
/// says so.
std::optional<NewSeat> askForSeat(const Line& line, std::string& why);

/// Gives the seat back. False when the board cannot be asked: then `why` says so.
bool giveBack(const Line& line, const NewSeat& seat, std::string& why);

}  // namespace quillpost::board
