#pragma once

// Makes processes follow the rows: what a board says is asked for is started, what it says is to
// stop is stopped, and what has ended is noted on it.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "board/serving/processes.h"

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace quillpost::board {

/// How long a helper has to end after it was asked to, in milliseconds, before it is killed.
inline constexpr int64_t graceMs = 5000;

/// What the seat of a helper is told in its environment, beside its session.
struct SeatFiles {
  std::string token;
  std::string socket;
};

/// The helpers' processes of all boards of a program.
class Hands {
 public:
  /// `processes` is what starts them, and must outlive this object; null where none is ever
  /// started. `news` can be read when one may have ended, or is -1.
  Hands(Processes* processes, int news, SeatFiles files)
      : processes_(processes), news_(news), files_(std::move(files)) {}

  /// Takes over the rows that a board left which was killed: whatever of their processes is still
  /// there is stopped, and so are the rows.
  void adopt(Board& board, Moment at);

  /// Starts, stops and notes what is to be by the rows of this board, which may change them. Only
  /// of rows that are saved.
  void tend(Board& board, Moment at);

  /// Has the programs of those run whose processes are noted in rows that are saved: a board that
  /// is killed before leaves nothing behind that the next one would not know.
  void letGo(const Board& board);

  /// Kills what was asked to end and has not. When there is more to be done, in milliseconds since
  /// 1970; nothing when nothing waits.
  std::optional<int64_t> press(int64_t nowMs);

  /// What can be read when there is something to hear.
  std::vector<int> descriptors() const;
  /// Looks at all processes when `descriptor` is that of the news.
  void hearOfEnds(int descriptor);
  /// Takes what a helper of this board wrote, when `descriptor` is its output.
  void hearOutput(int descriptor, Board& board);

  /// Stops all processes and waits until they have ended, no longer than their grace.
  void finish();

 private:
  struct Process {
    /// The session of its seat.
    std::string run;
    ProcessMark mark;
    Gate gate;
    UniqueFd output;
    /// Whether an earlier board started it, so that nobody tells when it ends.
    bool isOrphan = false;
    /// When it is killed, in milliseconds since 1970; 0 while it is not asked to end.
    int64_t killAtMs = 0;
    Sight sight{Sight::State::running, 0};
  };

  Process* processOf(std::string_view run);
  void start(Board& board, const std::string& session, Moment at);
  void askToEnd(Process& process, int64_t nowMs);
  void look(Process& process) const;
  void read(Process& process, Output& output);

  Processes* processes_;
  int news_;
  SeatFiles files_;
  std::list<Process> all_;
};

}  // namespace quillpost::board
