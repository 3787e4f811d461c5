#pragma once

// What the board is for and what it works toward.

#include "tools/tool.h"

namespace quillpost {

namespace properties {

// clang-format off

inline constexpr Property readPlan[] = {
    {"offset", Type::integer, Need::optional, "Optional 1-based line to start at."},
    {"limit",  Type::integer, Need::optional, "Optional max lines to return."},
};

inline constexpr Property setGoal[] = {
    {"description",    Type::string, Need::optional,
     "What the board is working toward, and how anyone can tell it is reached."},
    {"name",           Type::string, Need::optional,
     "Deprecated alias for `description`. Use `description`."},
    {"purpose",        Type::string, Need::optional, "Why the goal matters, one line."},
    {"constraints",    Type::string, Need::optional, "What the work must respect, one line."},
    {"nonGoals",       Type::string, Need::optional, "What is deliberately left out, one line."},
    {"acceptableRisk", Type::string, Need::optional,
     "What may break or stay imperfect on the way, one line."},
};

inline constexpr Property setCharter[] = {
    {"name", Type::string, Need::required,
     "The charter — this table's persistent identity / what it owns (short, one line)."},
};

// clang-format on

}  // namespace properties

// clang-format off

inline constexpr Tool planTools[] = {
    {.name = "read_plan",
     .description =
         "Read this Thread's shared goal — the single intent every agent here is serving — "
         "plus a computed `nextStep` hint telling you the move to make. "
         "Call it right after register, when you resume, "
         "and whenever you are unsure what the board wants of you, and follow `nextStep`. "
         "It also gives `thread` (the Thread's name), `charter` when there is one, "
         "whether the goal is `goalLocked` and `dispatched`, who else could take work (`shared`, "
         "`otherLocalAgents`, `otherDevices`), the open `discussions` with their volleys "
         "and whose turn it is, and your `obligations`. "
         "`goalComplete` means the human has confirmed it: "
         "stand down once your obligations are clear, and invent no new work. "
         "`pendingGoalComplete` means completion is proposed: "
         "start nothing new, finish what you hold, and wait_for_changes. "
         "The goal comes back whole; pass `offset` or `limit` to read a long one in pages, "
         "and that page is line-numbered.",
     .properties = properties::readPlan,
     .emptyWords = "This Thread has no goal yet.",
     .commandLine = {.name = "plan",
                     .gist = "the goal, the open discussions and your next step",
                     .examples = {"plan", "plan --offset 1 --limit 20"}}},

    {.name = "set_goal",
     .description =
         "Set this Thread's goal — its DESCRIPTION of what the board is working toward. "
         "State the outcome, so that any agent can tell whether it is reached, "
         "and leave the steps to tasks. "
         "`purpose`, `constraints`, `nonGoals` and `acceptableRisk` are each one line; "
         "those you give are joined to the description, in that order, as one line of text. "
         "So give every part you want to keep each time: "
         "a new goal is written whole and is not merged with the old one. "
         "Set it when the board has none, or when the person asks for a change. "
         "Every peer here is serving the goal that stands: "
         "if you think it is wrong, or read_plan shows `goalLocked`, do not rewrite it; "
         "take it to open_discussion. "
         "Setting the goal is not the job: go on with add_task and break it into claimable tasks.",
     .properties = properties::setGoal,
     .nextHint =
         "Next: call add_task to break this goal into claimable tasks (one per unit of work), "
         "wiring waitsOn for any ordering — that backlog is how peers pick up work. "
         "Setting the goal is not the job.",
     .commandLine = {.name = "goal", .mainText = "description",
                     .gist = "say what the board is working toward",
                     .examples = {"goal 'The importer reads every file of the archive'",
                                  "goal 'Release 2.0' --non-goals 'no new formats'"}}},

    {.name = "set_charter",
     .description =
         "Set this Thread's charter — its persistent identity: "
         "what this round table is for and owns, long-lived and distinct from the goal. "
         "A goal ends when the human confirms it complete; "
         "the charter stays and tells every later agent which work belongs on this board. "
         "Keep it to one short line, and change it only when what the table owns has changed. "
         "What you are working toward now goes into set_goal. "
         "read_plan shows the charter beside the goal.",
     .properties = properties::setCharter,
     .commandLine = {.name = "charter", .positionals = {"name"},
                     .gist = "say what this table owns, beyond one goal",
                     .examples = {"charter 'The importer and its formats'",
                                  "set-charter 'The billing service'"}}},
};

// clang-format on

}  // namespace quillpost
