#pragma once

// Helpers that were asked for: who they belong to, how they end, and what an agent is told of them.
// Nothing here starts or ends a process: whoever serves the board makes the processes follow the
// rows.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "model/squad.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// The stopped helpers that are still shown; of more the first give way.
inline constexpr std::size_t stoppedShown = 5;

/// How many helpers count against the limit.
int64_t helpersCounted(const Board& board);

/// How many count and how many more may start, in a sentence.
std::string limitSentence(const Board& board);

/// The helper of this handle, whatever the case: one that counts rather than one that is stopped.
/// Null when there is none.
const HelperRun* runAt(const Board& board, std::string_view handle);

/// The helper that is to do the task and has not ended; null when there is none.
const HelperRun* runFor(const Board& board, const Task& task);

/// The sessions of the helpers that count and that this seat asked for, its helpers' helpers
/// included, each behind the one that asked for it.
std::vector<std::string> runsUnder(const Board& board, std::string_view session);

/// Why helpers are stopped, and by whom: a fingerprint, "human", or empty for the board itself.
struct Stop {
  std::string by;
  std::string why;
};

/// Stops these helpers. Their seats go, and what they held goes back to the pool: a sentence for
/// each task. Those who asked for one are woken unless they stop it themselves.
std::string stopRuns(Board& board, const std::vector<std::string>& sessions, const Stop& stop,
                     Moment at);

/// Stops the helper and the helpers under it; gives such sentences.
std::string stopWithHelpers(Board& board, const std::string& session, const Stop& stop, Moment at);

/// Stops the helpers of a seat that nobody sits at any more; how many those were.
int64_t stopHelpersOf(Board& board, const std::string& session, const Stop& stop, Moment at);

/// Notes that a helper's agent has registered.
void noteRegistered(Board& board, const Seat& seat);

/// How a process ended: with a status, or not even begun, or unseen.
struct Ending {
  bool isGood = false;
  /// "ended with status 3".
  std::string words;
};

/// Notes that a helper's process has ended or could not be started: its agent leaves the board, and
/// whoever asked for it is woken with its last words. One that was being stopped is stopped now.
void endRun(Board& board, const std::string& session, const Ending& ending, Moment at);

/// Tells whoever asked for a helper that it asks the person something on a task; nothing when the
/// seat is no helper's.
void tellAskerOfQuestion(Board& board, const Seat& helper, const Task& task);

/// The helpers as an agent is shown them.
std::vector<TeamworkHelperRun> runViews(const Board& board, const Seat& viewer, Moment at);

/// What a helper is told when it starts, which says nothing that somebody else wrote.
std::string openingLine(const Helper& helper, const HelperRun& run);

}  // namespace quillpost::board
