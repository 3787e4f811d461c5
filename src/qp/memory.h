#pragma once

// What a seat remembers from one command to the next, as a text, and how what several commands
// have learnt becomes one memory.

#include "model/seat_state.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillpost {

/// A seat's memory, and the Thread that it is about: a revision counts on one board only.
struct SeatMemory {
  SeatState state = {};
  /// Empty until an answer has told it.
  std::string threadTag = {};
};

/// The memory as text. What is owed is left out when it would make the text larger than a small
/// file may be.
std::string encodeMemory(const SeatMemory& memory);

/// The memory that a text holds; nothing when it is malformed or of another version.
std::optional<SeatMemory> decodeMemory(std::string text);

/// What one command learnt: the memory that it started from, and the one that it ended with.
struct Lesson {
  const SeatMemory& before;
  const SeatMemory& after;
};

/// `kept`, as it is on disk now, with what the command learnt (`absorbLesson`), and the Thread that
/// it was about when that is known.
SeatMemory merged(SeatMemory kept, const Lesson& lesson);

/// Whether two memories would be written alike.
bool isSame(const SeatMemory& one, const SeatMemory& other);

}  // namespace quillpost
