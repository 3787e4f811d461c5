#pragma once

// What starting a program takes, whoever starts it.

#include "base/unique_fd.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

/// The status of a program that could not be started, as shells have it.
inline constexpr int cannotRun = 127;

/// The same descriptor as one of more than the standard streams', closed when another program is
/// run; none when there is none to be had.
UniqueFd aboveStandard(UniqueFd fd);

/// A pipe, none of whose ends is a standard stream, closed when another program is run; two empty
/// ends when there is none to be had.
struct Pipe {
  UniqueFd reading;
  UniqueFd writing;

  Pipe();
};

/// What a new process waits at before it runs its program. Whoever made the process opens it; when
/// that one dies before, or drops this, the process ends and nothing of the program has run.
class Gate {
 public:
  /// One that nobody waits at.
  Gate() = default;
  /// One for whoever reads from this pipe, and has no other end of it.
  explicit Gate(Pipe pipe) : pipe_(std::move(pipe)) {}

  /// Lets the process go on; nothing when it was done before, or the process has ended.
  void open();

 private:
  std::optional<Pipe> pipe_;
};

/// The texts as the system takes a program's words and variables, with a null pointer at the end.
/// They live as long as the texts do.
std::vector<char*> pointersTo(const std::vector<std::string>& texts);

}  // namespace quillpost::board
