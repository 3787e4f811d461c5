#pragma once

// What peers say of a task that is not theirs.

#include "tools/backlog.h"
#include "tools/tool.h"

namespace quillpost {

namespace properties {

// clang-format off

inline constexpr Property requestReview[] = {
    taskID,
    {"ofAgent", Type::string, Need::optional,
     "The reviewer's fingerprint from list_agents, such as `#a3f9`."},
    {"ofRole",  Type::string, Need::optional, "Narrows the request to a role, such as 'reviewer'."},
    {"note",    Type::string, Need::optional,
     "A pointer for the reviewer. Capped at 200 characters, silently truncated."},
};

inline constexpr Property verifyTask[] = {
    taskID,
    {"approve", Type::boolean, Need::required,
     "true = verified (work checks out), false = rejected (needs more)."},
    {"note",    Type::string,  Need::optional,
     "The verdict in a line. Capped at 200 characters; the detail goes into comment_task."},
};

inline constexpr Property commentTask[] = {
    taskID,
    {"text",     Type::string,  Need::optional,
     "The comment. Optional when `summary` is given. "
     "1999 characters of it survive, the two-thousandth is the cut mark."},
    {"summary",  Type::string,  Need::optional,
     "Where the task stands now, 1–2 plain sentences for the human. Capped at 280 characters."},
    {"tags",     Type::strings, Need::optional,
     "Who should look: `human`, a handle, a fingerprint."},
    {"editLast", Type::boolean, Need::optional,
     "Default false. "
     "true amends your last comment instead of adding one, only if it is still the last entry."},
};

// clang-format on

}  // namespace properties

// clang-format off

inline constexpr Tool reviewTools[] = {
    {.name = "request_review",
     .description =
         "Ask a capable peer to verify a task's completed work before it's trusted — "
         "the quality net a self-reporting board otherwise lacks. "
         "Ask when others will build on the result, or when you could not check all of it "
         "yourself. "
         "Aim it with `ofAgent` (a fingerprint from list_agents) or narrow it with `ofRole`; "
         "`canVerify` in list_agents marks who may give a verdict. "
         "The reviewer works from the task, so put what to check, "
         "where it is and how you verified it into its summary and log: "
         "`note` is only a pointer, capped at 200 characters and silently truncated. "
         "The task then shows `reviewState`, and the peer answers with verify_task. "
         "wait_for_changes watching the task, and if the verdict is that it needs more, "
         "take it up again.",
     .properties = properties::requestReview,
     .commandLine = {.name = "review", .positionals = {"taskID"}, .mainText = "note",
                     .gist = "ask a peer to verify work that is done",
                     .examples = {"review t000012 'the corner cases are in the last test'",
                                  "review t000012 --of-role reviewer"}}},

    {.name = "verify_task",
     .description =
         "Record a verdict on a peer's task that requested review (request_review). "
         "It needs reviewer or lead authority: your own row in list_agents shows `authority` "
         "and `canVerify` when you have it. "
         "Check before you judge: read_task for the brief and the log, then build it, run it, "
         "look at the result. "
         "A verdict says what you saw, not what the task says about itself, "
         "and your own work is for a peer to judge. "
         "`approve` is true when the work checks out, false when it needs more. "
         "With a false one leave a comment_task saying what fails and how to see it, "
         "so that the owner can act on it: `note` is capped at 200 characters. "
         "If you doubt the approach rather than the work, open_discussion instead.",
     .properties = properties::verifyTask,
     .commandLine = {.name = "verify", .positionals = {"taskID", "approve"}, .mainText = "note",
                     .yes = "approve", .no = "reject",
                     .gist = "give the verdict on a peer's work",
                     .examples = {"verify t000012 approve 'built it and ran the tests'",
                                  "verify t000012 reject 'an empty file is not read'"}}},

    {.name = "comment_task",
     .description =
         "Leave a comment on a task — a short, authored message to the human or a peer agent, "
         "distinct from `update_task` progress (which is ambient status). "
         "No claim needed, so this is how you annotate a task you do not hold "
         "and how you refresh its `summary`. "
         "`text` is optional when `summary` is given. "
         "1999 characters of `text` survive, the two-thousandth is the cut mark; "
         "`summary` is capped at 280 characters. "
         "Tag who should look: `tags` may name `human`, a handle or a fingerprint. "
         "A tag is a nudge, not a command: it shows on the task as `mentionsYou` and in "
         "that agent's obligations until it is answered; you answer one on you with a comment. "
         "With `editLast` you amend your last comment instead of adding one, "
         "as long as it is still the last entry. "
         "If you expect a reply, do not end your turn: "
         "a question with two sides belongs in open_discussion, "
         "and for a light one wait_for_changes watching the task.",
     .properties = properties::commentTask,
     .nextHint =
         "Posted. "
         "If you expect a REPLY — you asked something, or flagged a disagreement — "
         "do NOT end your turn: a question that needs back-and-forth belongs in open_discussion "
         "(structured, durable, auto-escalates if it stalls), "
         "and even a light question deserves wait_for_changes watching this task "
         "so you hear the answer and respond. "
         "A question left in a comment with nobody listening is how a Thread stalls. "
         "If it was pure FYI, carry on.",
     .commandLine = {.name = "comment", .positionals = {"taskID"}, .mainText = "text",
                     .gist = "leave a comment; no claim needed",
                     .examples = {"comment t000012 'the schema is on t000009'",
                                  "comment t000012 'please look' --tags human,KQ3"}}},
};

// clang-format on

}  // namespace quillpost
