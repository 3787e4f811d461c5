#pragma once

// The person's side of a board: what a window's buttons would do.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "board/rules/moves.h"
#include "model/request.h"
#include "model/response.h"

#include <span>
#include <string>
#include <string_view>

namespace quillpost::board {

// The person's methods. Each request may name the thread that is meant.

// clang-format off

// What the board's desk does itself. Those that show something answer with a sheet as JSON.
inline constexpr std::string_view personSeat = "person_seat";          // makes a seat, called `agent`
inline constexpr std::string_view personSeats = "person_seats";
inline constexpr std::string_view personThread = "person_thread";      // makes the thread `name`
inline constexpr std::string_view personThreads = "person_threads";
inline constexpr std::string_view personShow = "person_show";          // `taskID` alone; of all else as much as `status` says
inline constexpr std::string_view personHistory = "person_history";    // of `taskID`, by `to`, within `holdMs`; `status` "all": more of them
inline constexpr std::string_view personLive = "person_live";          // what moved since `sinceRev`, held for `holdMs`; without it all
inline constexpr std::string_view personFind = "person_find";          // the words `body`
inline constexpr std::string_view personHelpers = "person_helpers";    // allowed, suggested and asked for
inline constexpr std::string_view personExport = "person_export";      // into the file `body`, as the next two
inline constexpr std::string_view personBackup = "person_backup";
inline constexpr std::string_view personImport = "person_import";
inline constexpr std::string_view personCheck = "person_check";

// What is done on a thread.
inline constexpr std::string_view personUnseat = "person_unseat";      // the handle `to`
inline constexpr std::string_view personAnswer = "person_answer";      // `taskID`, which may be a discussion's, and `body`; only while `blockerQuestion` is asked, if given
inline constexpr std::string_view personComment = "person_comment";    // the same, for a task
inline constexpr std::string_view personReply = "person_reply";        // the same, for a discussion
inline constexpr std::string_view personAdd = "person_add";            // `title`, and whatever add_task takes
inline constexpr std::string_view personEdit = "person_edit";          // `taskID`, and whatever add_task takes
inline constexpr std::string_view personAssign = "person_assign";      // `taskID` and `to`
inline constexpr std::string_view personRelease = "person_release";    // `taskID` and perhaps `releaseReason`
inline constexpr std::string_view personReopen = "person_reopen";
inline constexpr std::string_view personDone = "person_done";          // `taskID` and perhaps `body`
inline constexpr std::string_view personReject = "person_reject";
inline constexpr std::string_view personDelete = "person_delete";      // `acknowledgeOpenTasks`: though others wait on it
inline constexpr std::string_view personRestore = "person_restore";
inline constexpr std::string_view personGoal = "person_goal";          // `body`
inline constexpr std::string_view personCharter = "person_charter";
inline constexpr std::string_view personConfirmGoal = "person_confirm_goal";  // `acknowledgeOpenTasks`: anyway
inline constexpr std::string_view personReopenGoal = "person_reopen_goal";
inline constexpr std::string_view personSay = "person_say";            // `to` and `body`
inline constexpr std::string_view personSquad = "person_squad";        // `approve`
inline constexpr std::string_view personHelperAllow = "person_helper_allow";      // `body`: a Helper as JSON
inline constexpr std::string_view personHelperForget = "person_helper_forget";    // `agent`: the name
inline constexpr std::string_view personHelperApprove = "person_helper_approve";  // `body`: the same without words; `command`: the arguments as shown
inline constexpr std::string_view personHelperRefuse = "person_helper_refuse";    // `agent`: the name suggested

// clang-format on

/// What is said of a file without any board.
inline constexpr std::string_view noThreadYet =
    "There is no thread yet: `goal`, `add`, `thread` or `seat` makes the first one.";

/// One request of the person's on its way to one board.
struct Deed {
  Board& board;
  const TeamworkRequest& request;
  Moment at;

  /// What the person says, without white space around it.
  std::string words() const;
  /// The task or discussion that is meant, by its whole id.
  std::string subject() const;
  /// A move of the person's, now; about no task when `taskID` is empty.
  Move move(MoveKind kind, std::string taskID = {}, std::string what = {}) const;
};

/// One of the person's methods that are carried out on a thread.
struct PersonMethod {
  std::string_view name;
  TeamworkResponse (*run)(const Deed&);
};

/// Those that speak to agents, those that change tasks, and those that are about helpers.
std::span<const PersonMethod> personTalk();
std::span<const PersonMethod> personTasks();
std::span<const PersonMethod> personHelping();

/// Whether a method is one of the person's.
bool isForPerson(std::string_view method);

/// Carries out one of the person's methods that are done on a thread.
TeamworkResponse carryOutForPerson(Board& board, const TeamworkRequest& request, Moment at);

}  // namespace quillpost::board
