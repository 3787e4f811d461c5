#pragma once

// What the agent is told to do next after a move in a discussion. What it is told after a write
// stands in the row of the tool.

#include "base/text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::texts {

/// The words of the discussion hints that depend on where the discussion hangs.
struct DiscussionWords {
  /// How to listen for the first reply; ends with a blank.
  std::string_view openWait;
  /// What an unresolved discussion holds back.
  std::string_view heldBack;
  /// How to listen for the counter-reply.
  std::string_view replyWait;
  /// The whole hint after resolve_discussion.
  std::string_view resolved;
};

/// For a discussion that hangs on no task.
inline constexpr DiscussionWords boardDiscussion{
    .openWait =
        "wait_for_changes with NO taskIDs — this debate is the board's, "
        "so watch the whole backlog and you'll be woken the moment a reply lands. "
        "Do NOT file the task this question is about until the debate resolves; "
        "that is the point of having it. ",
    .heldBack = "propose_goal_complete",
    .replyWait = "with NO taskIDs (this debate is the board's)",
    .resolved =
        "Resolved. "
        "That verdict is what the work was waiting on: add_task what it calls for — one task, "
        "several, or none if the answer was that nothing should be built — "
        "with a brief that carries the decision, not the argument. "
        "Then claim the first piece and start.",
};

/// For a discussion on a task.
inline constexpr DiscussionWords taskDiscussion{
    .openWait =
        "wait_for_changes watching this taskID — you'll be woken the moment a reply lands. ",
    .heldBack = "the task's completion",
    .replyWait = "watching the task",
    .resolved =
        "Resolved. "
        "Now APPLY the decision: if it changes the task's plan, "
        "update_task the body so the brief matches the ruling; "
        "if it affects other tasks, update those too. "
        "Then get back to the work — and complete_task "
        "if this discussion was the last thing holding it.",
};

/// The hint after open_discussion.
inline std::string discussionOpened(std::string_view discussionID, const DiscussionWords& words) {
  return text::cat("Discussion ", discussionID,
                   " is OPEN and your addressee(s) will be woken. Now ", words.openWait,
                   "Answer volleys promptly and keep the exchange going until it RESOLVES; "
                   "don't idle out with it open (the board escalates to the human on its own "
                   "if the debate truly stalls, and until it resolves it holds back ",
                   words.heldBack,
                   "). Meanwhile you may work anything the outcome doesn't depend on — "
                   "the wait keeps your claims alive either way.");
}

/// The hint after reply_discussion.
inline std::string volleyPosted(const DiscussionWords& words) {
  return text::cat(
      "Volley posted; the other side will be woken. "
      "If you two have CONVERGED, don't wait — resolve_discussion now with the agreed decision. "
      "Otherwise wait_for_changes ",
      words.replyWait,
      " for the counter-reply. "
      "Never end your turn while a discussion you're party to is open: "
      "your obligations list keeps it in front of you until it's resolved.");
}

/// How far a discussion is from the cap at which the board calls in the human.
inline std::string roundBudget(int64_t volleysSinceHuman) {
  return text::cat(volleysSinceHuman,
                   "/8 volleys since last human input — escalates to the human at the cap");
}

}  // namespace quillpost::texts
