#pragma once

// Whoever started a wait, as a door: a seat whose agent is gone must not go on renewing its claims.

#include "base/unique_fd.h"

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace quillpost {

/// Tells whether anybody still waits.
struct Lifetime {
  virtual ~Lifetime() = default;
  /// Remembers who is there now. For the start of a wait.
  virtual void begin() = 0;
  /// Whether the terminal, the process that started this one, or whoever reads it has gone. Once
  /// it has, it stays so.
  virtual bool isOver() = 0;
  /// Whether nobody can read what the process prints any more.
  virtual bool isUnread() const = 0;
};

/// A process and when it started, which together no other process has.
struct ProcessMark {
  pid_t pid = 0;
  std::string startedAt;
};

/// What the system tells of a process; empty, with no parent, when there is no such process or the
/// system does not tell.
struct ProcessFacts {
  pid_t parent = 0;
  std::string name;
  std::string startedAt;
  /// Whether it has ended and only its number is left.
  bool isEnded = false;
};

/// Reads one line of /proc/PID/stat; no parent when it is none.
ProcessFacts readProcessLine(std::string_view line);

/// This process, as it was started.
class ProcessLifetime final : public Lifetime {
 public:
  explicit ProcessLifetime(std::string_view sessionID);

  /// Remembers the terminal, the parent, and those above it that sit in the seat of this session;
  /// and lets a hang-up end the process, though whoever started it had that ignored.
  void begin() override;
  bool isOver() override;
  bool isUnread() const override;

 private:
  void rememberTerminals();
  void rememberAncestors();
  bool hasLostTerminal() const;

  std::string seatVariable_;
  pid_t parent_ = 0;
  bool isOrphan_ = false;
  bool wasOver_ = false;
  UniqueFd terminal_;
  std::vector<int> standardTerminals_;
  std::vector<ProcessMark> ancestors_;
};

}  // namespace quillpost
