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

#include <string_view>

namespace quillpost::board {

/// How many helpers may run at once in a Thread.
inline constexpr int64_t helperLimit = 20;

/// Progress lines after which a summary counts as stale.
inline constexpr int64_t staleAfterLines = 3;

/// A task with its brief and its log.
TeamworkTask taskView(const Board& board, const Task& task, const Seat& viewer, Moment at);

/// What a terminal that has not registered may see of a task: its title and state.
TeamworkTask titleView(const Task& task);

/// One seat of the roster.
TeamworkAgent agentView(const Board& board, const Seat& seat, const Seat& viewer, Moment at);

/// A discussion, with whether it is the viewer's turn.
TeamworkDiscussion discussionView(const TeamworkDiscussion& discussion, const Seat& viewer);

/// The goal and the open discussions.
TeamworkPlan planView(const Board& board, const Seat& viewer);

/// The squad switch; no helper is ever allowed here.
TeamworkSquadState squadView(const Board& board);

/// Who else reads the Thread: this machine's agents and nobody beyond it.
TeamworkAudience audienceFor(const Board& board, const Seat& viewer);

/// What the agent owes before it may stop. Clear when nothing at all stands open for it.
TeamworkObligations obligationsOf(const Board& board, const Seat& seat, Moment at);

}  // namespace quillpost::board
