#pragma once

// The board's one door to processes of its own making.

#include "base/unique_fd.h"
#include "board/serving/spawning.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillpost::board {

/// What is to be run, where, and with which variables (NAME=VALUE); nothing else is passed on.
struct Launch {
  std::vector<std::string> words;
  std::string directory;
  std::vector<std::string> variables;
};

/// A process, by what tells it from every other there ever was: its number, and when it began.
struct ProcessMark {
  int64_t pid = 0;
  /// As the system has it; empty when it could not be told.
  std::string start;

  bool operator==(const ProcessMark&) const = default;
};

/// A process that has been started.
struct Started {
  ProcessMark mark;
  /// What it waits at: its program runs when this has been opened, and never when it is dropped.
  Gate gate;
  /// What it writes on its standard output and error; reading it never waits.
  UniqueFd output;
};

/// How a process stands.
struct Sight {
  enum class State {
    running,  // it is there, whoever's it is
    ended,    // one of this board's has ended, and keeps its number until it is signalled to die
    gone,     // there is none of that number and beginning
  };
  State state = State::gone;
  /// Of one that has ended: its status, or 128 and the number of the signal that ended it.
  int status = 0;
};

/// Starts processes, looks at them and signals them. None of the three waits.
struct Processes {
  virtual ~Processes() = default;

  /// Starts a program in a session and a process group of its own, with nothing to read, up to its
  /// gate. Nothing when it cannot be started: then `why` says so. When the system finds only behind
  /// the gate that it cannot, it has written so and ended with `cannotRun`.
  virtual std::optional<Started> start(const Launch& launch, std::string& why) = 0;

  /// How the process stands.
  virtual Sight look(const ProcessMark& mark) = 0;

  /// Sends a signal to the group of the process; nothing unless it is the one that began then.
  virtual void signal(const ProcessMark& mark, int number) = 0;
};

}  // namespace quillpost::board
