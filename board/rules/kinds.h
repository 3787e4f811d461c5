#pragma once

// The vocabularies of a board: what moves, and why an agent is woken.

#include "json/names.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace quillpost::board {

// clang-format off
/// What somebody does on a board; the words are those of a feed's changes.
enum class MoveKind {
  goalSet, goalProposed, goalConfirmed, goalReopened, charterSet, squadSwitched, agentJoined,
  agentLeft, taskAdded, taskEdited, taskAssigned, taskReady, taskClaimed, taskProgress,
  taskParked, taskBlocked, taskUnblocked, taskCommented, taskReleased, taskLapsed,
  taskHandedOver, taskCompleted, taskReopened, taskRejected, taskDeleted, releaseRequested,
  reviewRequested, reviewVerdict, discussionOpened, discussionReplied, discussionEscalated,
  discussionResolved, helperSuggested, helperAllowed, helperForgotten, helperStarted,
  helperEnded, helperStopped,
};

/// Why an agent is woken; the words are those of its wake reasons.
enum class WakeKind {
  claimExpiring, claimExpired, claimHandedOver, releaseRequested, releaseGranted, taskReady,
  taskAssigned, taskRejected, taskDeleted, handedTaskDone, taskWatched, mentioned,
  reviewRequested, reviewVerdict, discussionOpened, discussionReply, discussionEscalated,
  discussionResolved, blockerAnswered, humanReplied, humanSaid, goalConfirmed, goalReopened,
  helperBlocked, helperEnded,
};
// clang-format on

/// How readily a move ends the waits of others: every wait, or only those that ask for changes of
/// state too.
enum class Loudness { loud, quiet };

/// The row of one kind of move.
struct MoveName : json::Name<MoveKind> {
  Loudness loudness = Loudness::loud;
};

}  // namespace quillpost::board

namespace quillpost {

template <>
struct json::Names<board::MoveKind> {
  using Kind = board::MoveKind;
  using Row = board::MoveName;
  // Quiet is what goes on all the time on a busy board; a wait that ended with each of these would
  // never hold.
  static constexpr auto loud = board::Loudness::loud;
  static constexpr auto quiet = board::Loudness::quiet;
  // clang-format off
  static constexpr std::array rows = {
      Row{{Kind::goalSet,             "goalSet"},             loud},
      Row{{Kind::goalProposed,        "goalProposed"},        loud},
      Row{{Kind::goalConfirmed,       "goalConfirmed"},       loud},
      Row{{Kind::goalReopened,        "goalReopened"},        loud},
      Row{{Kind::charterSet,          "charterSet"},          loud},
      Row{{Kind::squadSwitched,       "squadSwitched"},       loud},
      Row{{Kind::agentJoined,         "agentJoined"},         quiet},
      Row{{Kind::agentLeft,           "agentLeft"},           quiet},
      Row{{Kind::taskAdded,           "taskAdded"},           loud},
      Row{{Kind::taskEdited,          "taskEdited"},          quiet},
      Row{{Kind::taskAssigned,        "taskAssigned"},        loud},
      Row{{Kind::taskReady,           "taskReady"},           loud},
      Row{{Kind::taskClaimed,         "taskClaimed"},         quiet},
      Row{{Kind::taskProgress,        "taskProgress"},        quiet},
      Row{{Kind::taskParked,          "taskParked"},          quiet},
      Row{{Kind::taskBlocked,         "taskBlocked"},         quiet},
      Row{{Kind::taskUnblocked,       "taskUnblocked"},       loud},
      Row{{Kind::taskCommented,       "taskCommented"},       loud},
      Row{{Kind::taskReleased,        "taskReleased"},        loud},
      Row{{Kind::taskLapsed,          "taskLapsed"},          loud},
      Row{{Kind::taskHandedOver,      "taskHandedOver"},      loud},
      Row{{Kind::taskCompleted,       "taskCompleted"},       loud},
      Row{{Kind::taskReopened,        "taskReopened"},        loud},
      Row{{Kind::taskRejected,        "taskRejected"},        loud},
      Row{{Kind::taskDeleted,         "taskDeleted"},         loud},
      Row{{Kind::releaseRequested,    "releaseRequested"},    loud},
      Row{{Kind::reviewRequested,     "reviewRequested"},     loud},
      Row{{Kind::reviewVerdict,       "reviewVerdict"},       loud},
      Row{{Kind::discussionOpened,    "discussionOpened"},    loud},
      Row{{Kind::discussionReplied,   "discussionReplied"},   loud},
      Row{{Kind::discussionEscalated, "discussionEscalated"}, loud},
      Row{{Kind::discussionResolved,  "discussionResolved"},  loud},
      Row{{Kind::helperSuggested,     "helperSuggested"},     quiet},
      Row{{Kind::helperAllowed,       "helperAllowed"},       loud},
      Row{{Kind::helperForgotten,     "helperForgotten"},     quiet},
      Row{{Kind::helperStarted,       "helperStarted"},       quiet},
      Row{{Kind::helperEnded,         "helperEnded"},         quiet},
      Row{{Kind::helperStopped,       "helperStopped"},       quiet},
  };
  // clang-format on
  static_assert(allDifferent(rows));
  static_assert(rows.size() == static_cast<std::size_t>(Kind::helperStopped) + 1);
};

template <>
struct json::Names<board::WakeKind> {
  using Kind = board::WakeKind;
  // clang-format off
  static constexpr std::array rows = {
      Name<Kind>{Kind::claimExpiring,       "claimExpiring"},
      Name<Kind>{Kind::claimExpired,        "claimExpired"},
      Name<Kind>{Kind::claimHandedOver,     "claimHandedOver"},
      Name<Kind>{Kind::releaseRequested,    "releaseRequested"},
      Name<Kind>{Kind::releaseGranted,      "releaseGranted"},
      Name<Kind>{Kind::taskReady,           "taskReady"},
      Name<Kind>{Kind::taskAssigned,        "taskAssigned"},
      Name<Kind>{Kind::taskRejected,        "taskRejected"},
      Name<Kind>{Kind::taskDeleted,         "taskDeleted"},
      Name<Kind>{Kind::handedTaskDone,      "handedTaskDone"},
      Name<Kind>{Kind::taskWatched,         "taskWatched"},
      Name<Kind>{Kind::mentioned,           "mentioned"},
      Name<Kind>{Kind::reviewRequested,     "reviewRequested"},
      Name<Kind>{Kind::reviewVerdict,       "reviewVerdict"},
      Name<Kind>{Kind::discussionOpened,    "discussionOpened"},
      Name<Kind>{Kind::discussionReply,     "discussionReply"},
      Name<Kind>{Kind::discussionEscalated, "discussionEscalated"},
      Name<Kind>{Kind::discussionResolved,  "discussionResolved"},
      Name<Kind>{Kind::blockerAnswered,     "blockerAnswered"},
      Name<Kind>{Kind::humanReplied,        "humanReplied"},
      Name<Kind>{Kind::humanSaid,           "humanSaid"},
      Name<Kind>{Kind::goalConfirmed,       "goalConfirmed"},
      Name<Kind>{Kind::goalReopened,        "goalReopened"},
      Name<Kind>{Kind::helperBlocked,       "helperBlocked"},
      Name<Kind>{Kind::helperEnded,         "helperEnded"},
  };
  // clang-format on
  static_assert(allDifferent(rows));
  static_assert(rows.size() == static_cast<std::size_t>(Kind::helperEnded) + 1);
};

}  // namespace quillpost

namespace quillpost::board {

/// Whether a move ends only the waits that ask for changes of state too.
constexpr bool isQuiet(MoveKind kind) {
  return std::ranges::find(json::Names<MoveKind>::rows, kind, &MoveName::value)->loudness ==
         Loudness::quiet;
}

}  // namespace quillpost::board
