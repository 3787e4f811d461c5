#pragma once

// The small file in which a seat's memory lies between two commands. Nothing about it is ever an
// error: what cannot be read is not remembered, what cannot be written is forgotten.

#include "base/clock.h"
#include "base/environment.h"
#include "base/unique_fd.h"
#include "qp/memory.h"

#include <string>
#include <string_view>

namespace quillpost {

/// The folders in which memories may lie, the better one first: `quillpost` in the runtime
/// directory when there is one, and one of this user's own in the system's temporary directory.
struct MemoryPlaces {
  std::string runtime;
  std::string temporary;
};

/// Where this user's memories may lie. Each is empty when the environment names no absolute path
/// for it; the temporary directory is /tmp when it names none.
MemoryPlaces memoryPlaces(const Environment& environment);

/// The file of one seat.
class SeatFile {
 public:
  /// Remembers in the first of the places that is a folder of this user's own which nobody else may
  /// enter, or can be made one. Nothing is remembered where there is none, nor without a session.
  SeatFile(const MemoryPlaces& places, std::string_view sessionID);

  /// What is remembered; an empty memory when the file is missing, malformed, of another version,
  /// somebody else's, or not a file.
  SeatMemory load();

  /// Puts what a command has learnt to what is remembered by now, whoever else has written
  /// meanwhile. The file is replaced whole or stays as it was. Gives up when it is kept waiting by
  /// others for two seconds. False when it was not written.
  bool learn(const Lesson& lesson, Clock& clock);

  /// Where the file is; empty when nothing is remembered.
  std::string path() const;

 private:
  bool isAsKnown() const;
  bool write(const SeatMemory& memory);

  UniqueFd folder_;
  std::string folderPath_, name_;
  /// The file as it was last read or written, and what it holds. It is held open, so that while it
  /// is there no other file has its number.
  UniqueFd known_;
  SeatMemory memory_;
};

}  // namespace quillpost
