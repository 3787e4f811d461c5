#pragma once

// The board as one agent is shown it: rows to wire records.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "model/discussion.h"
#include "model/obligations.h"
#include "model/plan.h"
#include "model/roster.h"
#include "model/squad.h"
#include "model/task.h"

#include <cstddef>

namespace quillpost::board {

/// Progress lines after which a summary counts as stale.
inline constexpr int64_t staleAfterLines = 3;

/// Of a log, as much is shown as this, in bytes of the answer, the latest lines first: the brief
/// and the discussions are in it as well.
inline constexpr std::size_t logBytesShown = std::size_t{5} << 20;

/// Of a discussion, so many of the latest volleys; and of all that are in one answer so many bytes
/// of them.
inline constexpr std::size_t volleysShown = 100;
inline constexpr std::size_t volleyBytesShown = std::size_t{3} << 20;

/// A task as a list or a feed shows it, without its brief and all but the latest of its log.
TeamworkTask leanView(const Board& board, const Task& task, const Seat& viewer, Moment at);

/// A task whole, with its brief, its log, its discussions and its watchers.
TeamworkTask taskView(const Board& board, const Task& task, const Seat& viewer, Moment at);

/// What a terminal that has not registered may see of a task: its title and state.
TeamworkTask titleView(const Task& task);

/// One seat of the roster.
TeamworkAgent agentView(const Board& board, const Seat& seat, const Seat& viewer, Moment at);

/// A discussion, with whether it is the viewer's turn.
TeamworkDiscussion discussionView(const TeamworkDiscussion& discussion, const Seat& viewer);

/// The goal and the open discussions.
TeamworkPlan planView(const Board& board, const Seat& viewer);

/// The squad switch, the helpers that are allowed, and how many count.
TeamworkSquadState squadView(const Board& board);

/// Who else reads the Thread: this machine's agents and nobody beyond it.
TeamworkAudience audienceFor(const Board& board, const Seat& viewer);

/// Whether a verdict on the task is asked of this agent.
bool isForReviewBy(const Task& task, const Seat& seat);

/// What the agent owes before it may stop. Clear when nothing at all stands open for it.
TeamworkObligations obligationsOf(const Board& board, const Seat& seat, Moment at);

}  // namespace quillpost::board
