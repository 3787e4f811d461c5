#pragma once

// Claims and presence are leases: they are held as long as somebody renews them.

#include "board/rules/board.h"
#include "board/rules/moves.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// How long a lease runs unless the board is told otherwise, in milliseconds.
inline constexpr int64_t defaultLeaseMs = int64_t{15} * 60 * 1000;

/// A task that was claimed more often than this and is still not done is being dropped over and
/// over.
inline constexpr int64_t thrashingAfter = 3;

/// When something happens, and how long leases run on this board.
struct Moment {
  /// Milliseconds since 1970.
  int64_t nowMs = 0;
  int64_t leaseMs = defaultLeaseMs;

  /// How much of a lease is left when its holder is warned: two minutes, but never more than a
  /// quarter of it.
  int64_t warningMs() const { return std::min<int64_t>(120'000, leaseMs / 4); }
};

/// The tasks that an agent holds, to be changed, in the order of their ids.
std::vector<Task*> touchHeld(Board& board, std::string_view fingerprint);

/// Counts the agent's lease anew from now: it is here, and has just spoken.
void startPresence(Seat& seat, Moment at);

/// Keeps the agent on the roster. Written down only when a tenth of the lease has gone since the
/// last time, so that reading the board does not write to it each time.
void renewPresence(Board& board, Seat& seat, Moment at);

/// Renews every claim of the agent, and takes back what was said of them lapsing.
void renewClaims(Board& board, const Seat& seat, Moment at);

/// Renews one claim.
void renewClaim(Board& board, Task& task, Moment at);

/// Takes a secret of the person's off the task.
inline void forgetSecret(Task& task) {
  if (task.isAnswerSecret) task.blockerAnswer.clear();
}

/// Gives the task to the agent. Says nothing of it to anybody.
void takeClaim(Board& board, Task& task, const Seat& seat, Moment at);

/// Takes the task from its holder, for a move of that kind: it goes to the first agent here who has
/// asked for its release, and back to the pool when nobody has; `notices` are for the latter.
/// Whether somebody got it.
bool giveUpClaim(Board& board, Task& task, const Move& move, Moment at,
                 std::span<const Notice> notices = {});

/// Hands the task over if its holder is blocked or parked and somebody here has asked for it. `by`
/// is whose doing that is, who needs not be told; empty when both are to be told. Whether it was
/// handed over.
bool settleReleaseAsks(Board& board, Task& task, const std::string& by, Moment at);

/// Takes the agent off the roster and returns what it holds, with what waits for it: how many
/// claims that were.
int64_t leave(Board& board, Seat& seat, Moment at);

/// Whether the holder of the task is blocked on it or parked.
bool isStuck(const Board& board, const Task& task);

/// Sends away whoever's lease is over, returns their claims, warns those whose claims are about to
/// lapse, and forgets deleted tasks whose time is over.
void lapse(Board& board, Moment at);

/// When `lapse` next has something to do, in milliseconds since 1970; nothing when no lease runs.
std::optional<int64_t> nextLapse(const Board& board);

/// Gives every lease its full time again, for a board that was away and cannot tell who was idle.
void forgiveAbsence(Board& board, Moment at);

}  // namespace quillpost::board
