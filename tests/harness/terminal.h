#pragma once

// A pseudo-terminal with a shell in it, as a person's window has one.

#include "base/unique_fd.h"

#include <map>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace quillpost::testing {

/// A window: a shell of its own session, whose terminal this is.
class Terminal {
 public:
  /// Opens it with exactly that environment. `interactive` gives the shell job control, as at a
  /// person's prompt.
  enum class Kind { script, interactive };
  Terminal(Kind kind, const std::map<std::string, std::string>& environment);
  /// Closes it and ends the shell.
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// Types a line.
  void type(std::string_view line) const;
  /// Closes the window: the terminal hangs up.
  void close();
  /// Ends the shell at once, the window left open.
  void killShell();

 private:
  UniqueFd window_;
  pid_t shell_ = -1;
};

/// Whether a process runs; one that has ended and only waits to be asked for its status does not.
bool isRunning(pid_t pid);

}  // namespace quillpost::testing
