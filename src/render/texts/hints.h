#pragma once

// What the agent is told to do next: after a write, by verb, and after a move in a discussion.

#include "base/text.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::texts {

/// What follows a successful write of this verb.
struct Hint {
  std::string_view verb;
  std::string_view text;
};

/// The "Next:" hints. A verb without a row has no hint.
// clang-format off
inline constexpr Hint nextHints[] = {
    {"set_goal",
     "Next: call add_task to break this goal into claimable tasks (one per unit of work), "
     "wiring waitsOn for any ordering — that backlog is how peers pick up work. "
     "Setting the goal is not the job."},
    {"add_task",
     "Next: keep decomposing — now and LATER, as the work in hand reveals new pieces — "
     "so the backlog grows with your understanding instead of you swallowing the spillover solo. "
     "Give each task a boundary (what it does NOT cover, so peers don't collide) "
     "and what 'done' looks like. "
     "Then list_tasks and claim a READY one; leave the parallelizable tasks for peers."},
    {"claim_task",
     "Next: do the work, leaving update_task progress as you go so a peer could resume it cold "
     "if your claim lapses (and refreshing the task's human `summary` when its state changes), "
     "then complete_task — it requires a `summary`: "
     "the outcome and how you verified it, in plain English. "
     "As it unfolds, keep judging whether it's still a one-agent job: "
     "if it balloons or turns out to be several things, "
     "add_task to spin the extra pieces onto the board (each with its boundary and 'done') "
     "rather than grinding through them all solo. "
     "If it's stuck or needs a peer.s step (a token, a decision, peer/other-device work), "
     "don't ask the human whether to wait — set the task `blocked` with exactly what's needed, "
     "TYPED when you can (blockerKind decision/approval/secret/review "
     "with blockerOptions/blockerSecretName/blockerArtifact and a blockerConsequence line) "
     "so the human answers in one tap, refresh its brief so a stranger could take it over, "
     "and wait_for_changes to keep listening until it clears — "
     "the answer may arrive as a WAKE (`wakeReasons` on the wait's return)."},
    {"request_release",
     "Next: check the task you got back. "
     "If it's now claimed by YOU (the holder was blocked or parked), the lease was handed over — "
     "start working it, leaving update_task progress. "
     "If it's still held by the other agent, your request now STANDS: "
     "don't ask the human and don't keep retrying — call wait_for_changes (watch that taskID) "
     "and the board will wake you the moment the holder blocks or parks "
     "and the lease lands on you. "
     "Meanwhile pick up any other READY task so you're not idle."},
    {"complete_task",
     "Next: first be honest that this task actually MET its 'done' bar — "
     "that you VERIFIED the outcome (built it, ran it, checked it), "
     "not just that you stopped working on it; if it didn't, "
     "reopen it with update_task rather than leaving a hollow completion. "
     "Then RECONCILE the board with what you just learned: "
     "read list_tasks and bring it in line with reality — "
     "a task that was waiting on this one may now be READY; "
     "a related task's brief may now be wrong, or its dependencies moot, "
     "or finishing this revealed new work. "
     "update_task the affected tasks in your scope (or add_task the new pieces) "
     "so the board reflects the state of things, not just the picture in your head. "
     "THEN claim the next READY task. "
     "If the only tasks left are held by live peers or waiting on unfinished work, "
     "you're WAITING, not finished — wait_for_changes on them "
     "(it wakes you the moment the board moves) rather than exiting. "
     "Only when the whole goal is done do you propose_goal_complete and stand down."},
    {"propose_goal_complete",
     "Next: you've proposed the goal is done — "
     "now keep your presence alive and wait_for_changes. "
     "Don't exit: if the human reopens it or asks for more, you'll be woken to pick it back up; "
     "if they confirm, the wait returns telling you to stand down."},
    {"reject_task",
     "Next: you've DECLINED this task (won't-do) — it's now rejected and out of the pool. "
     "Read the board (list_tasks) and claim the next READY task, "
     "or wait_for_changes if nothing's ready. "
     "If the task was wrong rather than unneeded, "
     "consider add_task with a corrected version before moving on."},
    {"delete_task",
     "Next: that task is GONE — off the board and out of list_tasks, "
     "with no acceptance step and nothing to wait for. "
     "The human can put it back from the Thread overview for the next seven days, "
     "so if you removed the wrong one, SAY SO in a comment on a related task "
     "rather than re-creating it as a duplicate. "
     "Otherwise carry on: claim the next READY task, or wait_for_changes if nothing's ready."},
    {"release_task",
     "Next: you've RELEASED this task — your claim is dropped "
     "and it's back in the pool for any agent (including you) to claim. "
     "This is for handing work back you're not doing NOW, WITHOUT completing or rejecting it — "
     "a peer better placed can pick it up immediately instead of waiting for "
     "your lease to lapse. "
     "Leave a comment_task saying WHY you released and what's left "
     "so whoever claims it next resumes cold. "
     "Then claim the next READY task, or wait_for_changes if nothing's ready."},
    {"watch_task",
     "Next: you are WATCHING this task. "
     "You do not hold it and you owe it nothing — you will simply be told when it moves: "
     "a comment, progress, a blocker, a completion. "
     "Use it for work you handed back but still care about, or a task yours depends on. "
     "It costs nothing to carry, so carry on with your own work and let the board tell you. "
     "unwatch_task when you stop caring."},
    {"unwatch_task",
     "Next: you have stopped watching this task "
     "and will hear nothing more about it unless you claim it or are @-mentioned on it. "
     "Carry on: claim the next READY task, or wait_for_changes if nothing's ready."},
    {"comment_task",
     "Posted. "
     "If you expect a REPLY — you asked something, or flagged a disagreement — "
     "do NOT end your turn: a question that needs back-and-forth belongs in open_discussion "
     "(structured, durable, auto-escalates if it stalls), "
     "and even a light question deserves wait_for_changes watching this task "
     "so you hear the answer and respond. "
     "A question left in a comment with nobody listening is how a Thread stalls. "
     "If it was pure FYI, carry on."},
};
// clang-format on

static_assert(std::ranges::all_of(nextHints, [](const Hint& hint) {
  return std::ranges::count(nextHints, hint.verb, &Hint::verb) == 1;
}));

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
