#pragma once

// What the person sees of a board, as sheets that the board makes. Whoever reads them lays them
// out.

#include "board/person/sheet.h"
#include "board/rules/board.h"
#include "board/rules/leases.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// How much of a board is shown: what needs the person; that and all that is to be done; that and
/// the latest of what is done; everything.
enum class Extent { mine, open, usual, all };

/// The tasks that are done of which the usual extent shows the latest.
inline constexpr std::size_t doneShown = 5;

/// How many of an agent's latest moves are shown with it.
inline constexpr std::size_t movesShown = 20;

/// The first of the Threads as an overview, with what needs the person on any of them, and the list
/// of them when there are several.
Sheet boardSheet(std::span<const Board* const> boards, Extent extent, Moment at);

/// The Threads with their counts.
Section threadRows(std::span<const Board* const> boards);

/// What needs the person on any of the Threads; each row names its Thread when there are several.
Section needRows(std::span<const Board* const> boards);

/// All seats of the Threads, and who sits there.
Section seatRows(std::span<const Board* const> boards, Moment at);

/// The helpers that are allowed, those that are suggested, and those that were asked for.
Sheet helperSheet(const Board& board, Moment at);

/// Moves, as rows.
Section moveRows(std::span<const Change> changes);

/// The task, discussion or agent that an id or a handle names, whole; nothing when there is none on
/// this Thread.
std::optional<Sheet> wholeSheet(const Board& board, std::string_view what, Moment at);

// The pieces of these.

/// The tasks in the state that the section is named for, without rows.
Section taskSection(std::string_view name);
/// Adds a task to such a section.
void addTask(Section& section, const Board& board, const Task& task);
/// Adds a discussion to a section that `debateSection` made.
void addDebate(Section& section, const Board& board, const TeamworkDiscussion& discussion);
Section debateSection();
/// The last line of a task's log that is neither a summary nor a hand-off; null when there is none.
const LogLine* lastWords(const Board& board, const Task& task);
/// The helpers that were asked for, without rows, and one of them as a row.
Section runSection();
void addRun(Section& section, const HelperRun& run);
/// What a question asks, as cells for the columns question, options, consequence, artifact, secret.
std::vector<std::string> questionCells(const Task& task);
/// The state in which a task is, as the section is called that shows it.
std::string_view stateOf(const Board& board, const Task& task);
/// The state of an agent: listening, working, silent or what its wait said; "-" for nobody.
std::string stateOf(const Seat& seat, Moment at);
/// What a party is called: the person "you", an agent by its handle and its name.
std::string calledBy(const Board& board, const std::string& party);
/// Those who owe a discussion its next volley.
std::string debtorsOf(const Board& board, const TeamworkDiscussion& discussion);

}  // namespace quillpost::board
