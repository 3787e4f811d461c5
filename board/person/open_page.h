#pragma once

// Starting the program that serves the page. It is one of its own, so that nothing of what comes
// over HTTP runs where the board is kept.

#include "board/person/commands.h"

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace quillpost::board {

/// The variable by which a page is told the process that started it, with which it ends.
inline constexpr std::string_view boardProcessVariable = "QUILLPOST_BOARD_PROCESS";

/// The words that start the page's program for a command line; it stands beside this program.
std::vector<std::string> pageWords(const Line& line, std::string_view program);

/// A page's program that runs; it is ended with this object, or does not run at all.
class PageProgram {
 public:
  PageProgram() = default;
  explicit PageProgram(pid_t pid) : pid_(pid) {}
  PageProgram(const PageProgram&) = delete;
  PageProgram& operator=(const PageProgram&) = delete;
  ~PageProgram();

  bool isRunning() const { return pid_ > 0; }

  /// Waits until it has ended by itself, passing on to it what would end this program; gives its
  /// status.
  int wait();

 private:
  pid_t pid_ = -1;
};

/// Starts it, to end with this process. Not running when that cannot be: then `why` says so, and
/// where the program is to be had.
PageProgram startPage(const Line& line, const Surroundings& around, std::string& why);

}  // namespace quillpost::board
