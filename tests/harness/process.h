#pragma once

// A program run by a test: exactly the environment given, its three standard streams in hand.

#include "base/clock.h"
#include "base/unique_fd.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace quillpost::testing {

/// What to run.
struct Command {
  std::string program;
  std::vector<std::string> arguments;
  /// All of it: nothing of the test's own environment is passed on.
  std::map<std::string, std::string> environment;
};

/// How long a test waits for a program before it takes it to hang; only a failing test ever waits
/// for so long.
inline constexpr Duration processPatience = std::chrono::seconds(20);

/// A running program. It is killed at the end of this object when it has not ended by itself.
class Process {
 public:
  /// Starts it; a program that cannot be started is a test failure and counts as ended with 127.
  explicit Process(const Command& command);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /// Writes to its standard input. False when it no longer reads.
  bool write(std::string_view bytes);
  bool writeLine(std::string_view line);
  /// Ends its standard input.
  void closeInput();
  /// Stops reading its standard output, so that its next write meets a closed pipe.
  void closeOutput();
  /// Sends it a signal; nothing when it has ended.
  void signal(int number);

  /// The next line of its standard output, without its line feed; a last one without a line feed
  /// too. Nothing when the output ends or no line comes in time.
  std::optional<std::string> readLine(Duration patience = processPatience);

  /// Its exit status, or 128 and the signal that ended it. Nothing when it still runs after that
  /// time.
  std::optional<int> waitForExit(Duration patience = processPatience);

  /// All the rest of its standard output and all of its standard error, read until it has closed
  /// them (or until patience ends).
  std::string restOfOutput(Duration patience = processPatience);
  std::string errors(Duration patience = processPatience);

  /// How many descriptors it has open; nothing where the system does not tell or it has ended.
  std::optional<std::size_t> openDescriptors() const;
  /// How many bytes of memory it occupies; nothing where the system does not tell or it has ended.
  std::optional<std::size_t> residentBytes() const;

 private:
  /// One of its output streams, read by a thread so that the program never waits for the test.
  struct Stream {
    UniqueFd fd;
    std::string bytes;
    bool ended = false;
    std::thread reader;
  };

  void readAll(Stream& stream);
  void awaitExit();

  pid_t pid_ = -1;
  UniqueFd input_, wakeReader_, wakeWriter_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Stream output_, errors_;
  std::optional<int> status_;
  std::thread waiter_;
};

/// What came of a program: its status as of `waitForExit`, and what it wrote that nobody has read.
struct Ending {
  std::optional<int> status;
  std::string output, errors;
};

/// Waits for the end of a program that runs.
Ending endOf(Process& process);
/// Runs a program with this input, and nothing after it, to its end.
Ending runToEnd(const Command& command, std::string_view input = "");

}  // namespace quillpost::testing
