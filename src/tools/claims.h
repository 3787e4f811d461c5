#pragma once

// What becomes of a task: holding it, writing on it, ending it, following it.

#include "tools/backlog.h"
#include "tools/tool.h"

#include <array>
#include <string_view>

namespace quillpost {

namespace properties {

/// What a blocked task may ask the human for.
inline constexpr std::array<std::string_view, 5> blockerKinds{"decision", "approval", "secret",
                                                              "review", "respond"};

// clang-format off

inline constexpr Property taskIDOnly[] = {
    taskID,
};

inline constexpr Property updateTask[] = {
    taskID,
    {"title",               Type::string,  Need::optional, "The corrected title."},
    {"body",                Type::string,  Need::optional, "The corrected brief, whole."},
    {"progress",            Type::string,  Need::optional,
     "One line for the log: worktree, branch, approach, what is DONE, what is next. "
     "About 100 characters is the target; the limit is 240 characters, "
     "past which it is truncated."},
    {"summary",             Type::string,  Need::optional,
     "Where the task stands now, 1–2 plain sentences for the human. Capped at 280 characters."},
    {"blocked",             Type::boolean, Need::optional,
     "true raises a question for the human, false clears it."},
    {"blockerQuestion",     Type::string,  Need::optional,
     "One sentence naming the ACTION you need (\"May I …?\", \"Which …?\"), max 140 characters. "
     "A longer one is refused and nothing is changed."},
    {"blockerKind",         Type::string,  Need::optional,
     "What the human is asked for: a choice, a go-ahead, a secret to fill in, "
     "a look at something, or an answer in words. "
     "Default `respond` when omitted, unless a secret name, "
     "options or an artifact says it already.", blockerKinds},
    {"blockerOptions",      Type::strings, Need::optional,
     "2–4 choices of at most 80 characters each, recommended first. "
     "A fifth is dropped and a longer one cut."},
    {"blockerSecretName",   Type::string,  Need::optional,
     "The exact secret name to be filled, such as \"STRIPE_KEY\". Never the value."},
    {"blockerArtifact",     Type::string,  Need::optional,
     "What there is to look at: a branch, a file, a link."},
    {"blockerConsequence",  Type::string,  Need::optional,
     "What hangs on the answer: the mechanism and the reasoning. Cut to 200 characters."},
    {"parkReason",          Type::string,  Need::optional,
     "Marks you parked on this task: what you are waiting for, one line."},
    {"waitsOn",             Type::strings, Need::optional,
     "Ids of the tasks it waits on. Replaces the list; [] clears it."},
    {"priority",            Type::integer, Need::optional, "Higher = do first (0 is normal)."},
    {"type",                Type::string,  Need::optional,
     "What kind of work it is; \"\" clears it back to untyped.", clearableTaskTypes},
    {"resources",           Type::strings, Need::optional,
     "What the work touches that two cannot touch at once. Replaces the list; [] clears it."},
    {"assignedRole",        Type::string,  Need::optional,
     "The role it is meant for, such as 'reviewer'."},
    {"routedToFingerprint", Type::string,  Need::optional,
     "Fingerprint of the agent it is meant for, such as \"#a3f9\"."},
};

inline constexpr Property completeTask[] = {
    taskID,
    {"summary", Type::string, Need::required,
     "1–2 sentences on the outcome and how it was verified, for the human. "
     "Capped at 280 characters."},
};

inline constexpr Property rejectTask[] = {
    taskID,
    {"reason", Type::string, Need::optional,
     "Why it will not be done. Capped at 240 characters; "
     "past that the rest is cut and the result says so in `notice`."},
};

inline constexpr Property deleteTask[] = {
    taskID,
    {"reason", Type::string, Need::optional, "Recorded for the human's review."},
};

// clang-format on

}  // namespace properties

// clang-format off

inline constexpr Tool claimTools[] = {
    {.name = "claim_task",
     .description =
         "Claim an unclaimed task so other agents know it's yours (a leased claim — "
         "renew it with heartbeat/update_task). "
         "Read it with read_task, then claim it the moment you decide to start: "
         "an unclaimed task is nobody's, and a peer may take it out from under you. "
         "Claim only what is READY (`forYou` first, then `readyToClaim`) "
         "and only what you are working on NOW: never a peer's, and never merely to annotate, "
         "since comment_task needs no claim. "
         "The lease lapses if you stop, and the task then returns to the pool "
         "with everything you wrote still on it. "
         "`claimLeaseSecondsRemaining` says how long is left, "
         "wait_for_changes renews it while it holds, and a wait warns you with `claimExpiring`. "
         "So leave progress with update_task that a stranger could resume from. "
         "A claim also makes you a watcher of the task. "
         "Stuck? Set it `blocked` with update_task. "
         "Not doing it after all? release_task. "
         "Done and verified? complete_task, which needs a `summary`.",
     .properties = properties::taskIDOnly,
     .nextHint =
         "Next: do the work, leaving update_task progress as you go so a peer could resume it "
         "cold "
         "if your claim lapses (and refreshing the task's human `summary` when its state "
         "changes), "
         "then complete_task — it requires a `summary`: "
         "the outcome and how you verified it, in plain English. "
         "As it unfolds, keep judging whether it's still a one-agent job: "
         "if it balloons or turns out to be several things, "
         "add_task to spin the extra pieces onto the board (each with its boundary and 'done') "
         "rather than grinding through them all solo. "
         "If it's stuck or needs a peer.s step (a token, a decision, peer/other-device work), "
         "don't ask the human whether to wait — set the task `blocked` with exactly what's "
         "needed, "
         "TYPED when you can (blockerKind decision/approval/secret/review "
         "with blockerOptions/blockerSecretName/blockerArtifact and a blockerConsequence line) "
         "so the human answers in one tap, refresh its brief so a stranger could take it over, "
         "and wait_for_changes to keep listening until it clears — "
         "the answer may arrive as a WAKE (`wakeReasons` on the wait's return).",
     .commandLine = {.name = "claim", .otherNames = {"take"}, .positionals = {"taskID"},
                     .gist = "take a READY task; the lease is yours to renew",
                     .examples = {"claim t000012", "claim t000012 then show t000012"}}},

    {.name = "update_task",
     .description =
         "Update a task you hold: append a one-line `progress` line to its log, "
         "correct its `title`/`body`/`waitsOn`, raise/clear a `blocked` question, "
         "and/or `parkReason` to mark yourself parked. "
         "It renews the claim too. "
         "`progress` is the handover, not a status ping: "
         "name the worktree (short name, not a path), the branch, the approach, "
         "what is DONE and what is next. "
         "About 100 characters is the target; the limit is 240 characters, "
         "past which the line is truncated without asking. "
         "Keep `summary` current, 1–2 plain sentences for the human, capped at 280 characters. "
         "Only what you pass changes; `waitsOn` and `resources` replace the lists, and [] clears "
         "them. "
         "When only the human can unblock you (a credential, a scope call, anything "
         "irreversible), "
         "do not wait in chat: pass `blocked: true`, typed with `blockerKind` and what goes with "
         "it, "
         "so that one tap answers it. "
         "`blockerQuestion` is one sentence, max 140 characters; "
         "a longer one is refused and nothing is changed. "
         "Without it your `progress`, else your `summary`, is asked instead, cut to 140. "
         "The question outlives your claim, and a wait wakes you with the answer. "
         "Waiting on something else? Say so with `parkReason`. "
         "While you are blocked or parked, the task may go to a peer who asks for "
         "it (request_release). "
         "On a task you do not hold, use comment_task.",
     .properties = properties::updateTask,
     .commandLine = {.name = "update", .positionals = {"taskID"}, .mainText = "progress",
                     .gist = "leave progress, correct the task, block or park it",
                     .examples = {"update t000012 'branch leases: parser DONE, tests next'",
                                  "update t000012 --blocked --blocker-question 'May I drop it?'"}}},

    {.name = "complete_task",
     .description =
         "Completing closes the task: it lands done at once, "
         "and anything that was waiting on it becomes claimable immediately. "
         "So complete only what meets its 'done' bar and what you VERIFIED: "
         "built it, ran it, checked it. "
         "`summary` is required: 1–2 sentences on the outcome and how it was verified, "
         "in plain words for the human, capped at 280 characters. "
         "An open discussion on the task holds its completion back: "
         "bring it to resolve_discussion first. "
         "When others will build on the work, ask for a second look with request_review. "
         "If it turns out not to hold, reopen it with update_task "
         "rather than leaving a hollow completion. "
         "Afterwards bring the board in line with what you learned (update_task, add_task), "
         "then claim the next READY task; if nothing is READY, wait_for_changes. "
         "Only when the whole goal is done do you propose_goal_complete. "
         "Work that should not be done is reject_task; work you are handing back is release_task.",
     .properties = properties::completeTask,
     .nextHint =
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
         "Only when the whole goal is done do you propose_goal_complete and stand down.",
     .commandLine = {.name = "done", .otherNames = {"close", "complete", "finish"},
                     .positionals = {"taskID", "summary"},
                     .gist = "close a task with its verified outcome",
                     .examples = {"done t000012 'Leases are parsed; all tests of the parser pass.'",
                                  "done t000012 'The table is written and read.' then tasks"}}},

    {.name = "reject_task",
     .description =
         "Decline a task — \"won't-do\": it's wrong, unneeded, out of scope, "
         "or made obsolete by other work. "
         "It is out of the pool at once but stays on record: "
         "list_tasks with include \"all\" still shows it. "
         "Say why in `reason`, for whoever filed it; "
         "it is capped at 240 characters, and past that the rest is cut and the result says so "
         "in `notice`. "
         "Decline what is yours to judge, never a task a peer is holding; "
         "when a peer would disagree, open_discussion first. "
         "If the task was wrong rather than unneeded, file the corrected version with add_task. "
         "Good work that you are not doing now is release_task; "
         "a duplicate or a slip that should never have been filed is delete_task.",
     .properties = properties::rejectTask,
     .nextHint =
         "Next: you've DECLINED this task (won't-do) — it's now rejected and out of the pool. "
         "Read the board (list_tasks) and claim the next READY task, "
         "or wait_for_changes if nothing's ready. "
         "If the task was wrong rather than unneeded, "
         "consider add_task with a corrected version before moving on.",
     .commandLine = {.name = "reject", .positionals = {"taskID"}, .mainText = "reason",
                     .gist = "decline a task: it will not be done",
                     .examples = {"reject t000012 'The new parser made it needless'",
                                  "reject t000012 --reason 'out of scope'"}}},

    {.name = "delete_task",
     .description =
         "Remove a task from the board entirely, right now: a genuine deletion, not a decline. "
         "It goes off the board and out of list_tasks at once, with no acceptance step. "
         "Keep it for what should never have been filed: a duplicate, a slip, a trial. "
         "For work that is not going to be done use reject_task, which keeps the decision on "
         "record. "
         "Do not delete a task a peer holds, or one that other tasks wait on; "
         "ask with comment_task or open_discussion. "
         "`reason` is recorded for the human's review, "
         "and the human can put the task back from the Thread overview for the next seven days. "
         "If you removed the wrong one, say so in a comment on a related task rather than filing "
         "it again as a duplicate.",
     .properties = properties::deleteTask,
     .nextHint =
         "Next: that task is GONE — off the board and out of list_tasks, "
         "with no acceptance step and nothing to wait for. "
         "The human can put it back from the Thread overview for the next seven days, "
         "so if you removed the wrong one, SAY SO in a comment on a related task "
         "rather than re-creating it as a duplicate. "
         "Otherwise carry on: claim the next READY task, or wait_for_changes if nothing's ready.",
     .commandLine = {.name = "delete", .positionals = {"taskID"}, .mainText = "reason",
                     .gist = "remove a task that should never have been filed",
                     .examples = {"delete t000012 'a duplicate of t000009'", "delete t000012"}}},

    {.name = "release_task",
     .description =
         "Release a task you hold back to the pool — "
         "voluntarily unclaim it without completing or rejecting. "
         "Any agent can claim it at once instead of waiting for your lease to lapse, "
         "and nothing you wrote on it is lost. "
         "Use it when you are not doing the work NOW, when a peer is better placed, "
         "or when one has asked you for it (`releaseRequestedReason`). "
         "Then leave a comment_task saying WHY you released it and what is left, "
         "so whoever claims it next resumes cold. "
         "If you are only stuck, keep it and set it `blocked` with update_task; "
         "to hand it to one particular peer, release it and then assign_task.",
     .properties = properties::taskIDOnly,
     .nextHint =
         "Next: you've RELEASED this task — your claim is dropped "
         "and it's back in the pool for any agent (including you) to claim. "
         "This is for handing work back you're not doing NOW, WITHOUT completing or rejecting it "
         "— "
         "a peer better placed can pick it up immediately instead of waiting for "
         "your lease to lapse. "
         "Leave a comment_task saying WHY you released and what's left "
         "so whoever claims it next resumes cold. "
         "Then claim the next READY task, or wait_for_changes if nothing's ready.",
     .commandLine = {.name = "release", .positionals = {"taskID"},
                     .gist = "hand a task you hold back to the pool",
                     .examples = {"release t000012",
                                  "comment t000012 'the branch is leases' then release t000012"}}},

    {.name = "watch_task",
     .description =
         "Follow a task without claiming it. "
         "The watcher is told of every move (a comment, progress, a blocker, a completion) "
         "and owes nothing; each reaches you as a wake reason of kind `taskWatched` from "
         "wait_for_changes. "
         "Use it for work you handed back but still care about, or for a task that yours depends "
         "on. "
         "A watch gives you no say over the task: read_task for the detail, "
         "comment_task to add something useful, and leave the claim to whoever holds it. "
         "unwatch_task when you stop caring.",
     .properties = properties::taskIDOnly,
     .nextHint =
         "Next: you are WATCHING this task. "
         "You do not hold it and you owe it nothing — you will simply be told when it moves: "
         "a comment, progress, a blocker, a completion. "
         "Use it for work you handed back but still care about, or a task yours depends on. "
         "It costs nothing to carry, so carry on with your own work and let the board tell you. "
         "unwatch_task when you stop caring.",
     .commandLine = {.name = "watch", .positionals = {"taskID"},
                     .gist = "be told when a task moves, without claiming it",
                     .examples = {"watch t000012", "watch t000012 then wait t000012"}}},

    {.name = "unwatch_task",
     .description =
         "Stop following a task. "
         "It removes both an explicit watch and the one a claim minted. "
         "You hear nothing more about the task unless you claim it or are @-mentioned on it.",
     .properties = properties::taskIDOnly,
     .nextHint =
         "Next: you have stopped watching this task "
         "and will hear nothing more about it unless you claim it or are @-mentioned on it. "
         "Carry on: claim the next READY task, or wait_for_changes if nothing's ready.",
     .commandLine = {.name = "unwatch", .positionals = {"taskID"},
                     .gist = "stop being told",
                     .examples = {"unwatch t000012", "unwatch t000012 then tasks"}}},
};

// clang-format on

}  // namespace quillpost
