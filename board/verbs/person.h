#pragma once

// The person's side of a board: what a window would show and what its buttons would do.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "model/request.h"
#include "model/response.h"

#include <string>
#include <string_view>

namespace quillpost::board {

// The person's methods. Each request may name the thread that is meant; without a name it is the
// first.

/// Makes a seat, and the thread if there is none of that name.
inline constexpr std::string_view personSeat = "person_seat";
/// The board as a table, in the answer's message.
inline constexpr std::string_view personShow = "person_show";
/// Answers the blocker of a task, comments on a task that has none, or speaks in a discussion:
/// taskID and body.
inline constexpr std::string_view personAnswer = "person_answer";
/// Confirms that the goal is complete.
inline constexpr std::string_view personConfirmGoal = "person_confirm_goal";
/// Takes a proposal or a confirmation back.
inline constexpr std::string_view personReopenGoal = "person_reopen_goal";
/// Says something to an agent: to and body.
inline constexpr std::string_view personSay = "person_say";
/// Switches the squad: approve.
inline constexpr std::string_view personSquad = "person_squad";
/// Puts a deleted task back: taskID.
inline constexpr std::string_view personRestore = "person_restore";

/// Whether a method is one of the person's.
bool isForPerson(std::string_view method);

/// Carries out one of the person's methods other than `personSeat`.
TeamworkResponse carryOutForPerson(Board& board, const TeamworkRequest& request, Moment at);

/// The board as a table to be read in a terminal.
std::string showBoard(const Board& board, Moment at);

}  // namespace quillpost::board
