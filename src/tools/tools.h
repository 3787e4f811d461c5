#pragma once

// The board's tools as rows: names, descriptions and properties, in the order of the list. What a
// client is told about a tool is all here and in tools/tool_texts.h; mcp/catalogue.h turns the
// rows into schemas.

#include "tools/tool_name.h"
#include "tools/tool_texts.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace quillpost {

/// What kind of JSON value a property takes; `strings` is an array of strings.
enum class Type { string, integer, boolean, strings };

/// Whether a call may leave the property out.
enum class Need { optional, required };

/// One property of a tool's arguments. `oneOf` is the closed set of its values in the order shown
/// to the agent, empty when any value will do.
struct Property {
  std::string_view name;
  Type type;
  Need need;
  std::string_view description;
  std::span<const std::string_view> oneOf = {};
};

/// One tool of the list. `properties` is empty for a tool that takes no arguments.
struct Tool {
  ToolName name;
  std::string_view description;
  std::span<const Property> properties;

  /// The name as text, for comparing rows with lists of names.
  constexpr std::string_view nameText() const { return name.text; }
};

namespace properties {

/// What a task may be, and last the empty text that makes it untyped again.
inline constexpr std::array<std::string_view, 5> clearableTaskTypes{"bug", "feature", "chore",
                                                                    "research", ""};

/// What a new task may be: there is nothing to clear yet.
inline constexpr std::span<const std::string_view> taskTypes =
    std::span<const std::string_view>(clearableTaskTypes).first(4);

/// What a blocked task may ask the human for.
inline constexpr std::array<std::string_view, 5> blockerKinds{"decision", "approval", "secret",
                                                              "review", "respond"};

/// How much of the backlog list_tasks shows.
inline constexpr std::array<std::string_view, 2> backlogViews{"active", "all"};

// clang-format off

/// The task a tool is about.
inline constexpr Property taskID = {
    "taskID", Type::string, Need::required, "The task id as returned by list_tasks."};

/// The discussion a tool is about.
inline constexpr Property discussionID = {
    "discussionID", Type::string, Need::required,
    "The discussion's `d######` handle, from open_discussion, read_plan or your obligations."};

/// What `claim_task`, `release_task`, `watch_task` and `unwatch_task` take.
inline constexpr Property taskIDOnly[] = {
    taskID,
};

/// What `register` takes.
inline constexpr Property registerSeat[] = {
    {"name",   Type::string, Need::optional, "Optional short cosmetic handle. Advisory only."},
    {"status", Type::string, Need::optional, "Optional one-line presence hint."},
    {"role",   Type::string, Need::optional,
     "'planner'/'executor'/'reviewer' or free text. "
     "It applies at once; past 120 characters it is shortened with a trailing ellipsis."},
};

/// What `heartbeat` takes.
inline constexpr Property heartbeat[] = {
    {"status", Type::string, Need::optional, "Optional updated one-line presence hint."},
};

/// What `read_plan` takes.
inline constexpr Property readPlan[] = {
    {"offset", Type::integer, Need::optional, "Optional 1-based line to start at."},
    {"limit",  Type::integer, Need::optional, "Optional max lines to return."},
};

/// What `set_goal` takes.
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

/// What `set_charter` takes.
inline constexpr Property setCharter[] = {
    {"name", Type::string, Need::required,
     "The charter — this table's persistent identity / what it owns (short, one line)."},
};

/// What `add_task` takes.
inline constexpr Property addTask[] = {
    {"title",               Type::string,  Need::required, "Short task title."},
    {"body",                Type::string,  Need::optional,
     "The brief, for a stranger resuming cold: "
     "what to do, what it does NOT cover, what 'done' looks like."},
    {"summary",             Type::string,  Need::optional,
     "The task's human gist, 1–2 sentences in plain words. "
     "Capped at 280 characters and silently truncated."},
    {"waitsOn",             Type::strings, Need::optional,
     "Ids of the tasks it waits on. It is READY only once all are done."},
    {"priority",            Type::integer, Need::optional, "Higher = do first (0 is normal)."},
    {"type",                Type::string,  Need::optional, "What kind of work it is.", taskTypes},
    {"resources",           Type::strings, Need::optional,
     "What the work touches that two cannot touch at once (a file, a device, a port). "
     "Claimed tasks that name the same one are flagged with `resourceConflict`."},
    {"assignedRole",        Type::string,  Need::optional,
     "The role it is meant for, such as 'reviewer'."},
    {"routedToFingerprint", Type::string,  Need::optional,
     "Fingerprint of the agent it is meant for, such as \"#a3f9\". "
     "While that agent is here, everyone else finds the task under `waiting`."},
    {"to",                  Type::string,  Need::optional,
     "Files the task already handed to a peer by handle, such as \"KQ3\". Needs the squad on."},
};

/// What `list_tasks` takes.
inline constexpr Property listTasks[] = {
    {"include", Type::string, Need::optional,
     "Default \"active\": your tasks, what is claimable, what is in flight; "
     "done/rejected collapsed to a count. "
     "\"all\" shows everything.", backlogViews},
};

/// What `read_task` takes.
inline constexpr Property readTask[] = {
    taskID,
    {"offset",    Type::integer, Need::optional, "Optional 1-based line of the body to start at."},
    {"limit",     Type::integer, Need::optional,
     "Optional max body lines to return; default 2000."},
    {"logOffset", Type::integer, Need::optional,
     "Optional 1-based log line to start at; 1 reads the log from the top."},
    {"logLimit",  Type::integer, Need::optional,
     "Optional max log lines to return; default the last 30."},
};

/// What `update_task` takes.
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

/// What `complete_task` takes.
inline constexpr Property completeTask[] = {
    taskID,
    {"summary", Type::string, Need::required,
     "1–2 sentences on the outcome and how it was verified, for the human. "
     "Capped at 280 characters."},
};

/// What `reject_task` takes.
inline constexpr Property rejectTask[] = {
    taskID,
    {"reason", Type::string, Need::optional,
     "Why it will not be done. Capped at 240 characters; "
     "past that the rest is cut and the result says so in `notice`."},
};

/// What `delete_task` takes.
inline constexpr Property deleteTask[] = {
    taskID,
    {"reason", Type::string, Need::optional, "Recorded for the human's review."},
};

/// What `request_review` takes.
inline constexpr Property requestReview[] = {
    taskID,
    {"ofAgent", Type::string, Need::optional,
     "The reviewer's fingerprint from list_agents, such as `#a3f9`."},
    {"ofRole",  Type::string, Need::optional, "Narrows the request to a role, such as 'reviewer'."},
    {"note",    Type::string, Need::optional,
     "A pointer for the reviewer. Capped at 200 characters, silently truncated."},
};

/// What `verify_task` takes.
inline constexpr Property verifyTask[] = {
    taskID,
    {"approve", Type::boolean, Need::required,
     "true = verified (work checks out), false = rejected (needs more)."},
    {"note",    Type::string,  Need::optional,
     "The verdict in a line. Capped at 200 characters; the detail goes into comment_task."},
};

/// What `comment_task` takes.
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

/// What `open_discussion` takes.
inline constexpr Property openDiscussion[] = {
    {"taskID",    Type::string,  Need::optional,
     "The task it is about, as returned by list_tasks. Omit it for a board-level debate."},
    {"question",  Type::string,  Need::required,
     "The one question to decide, with your position and your reasons."},
    {"addressTo", Type::strings, Need::optional,
     "Fingerprints, names or `human`. Omitted = all live peers."},
};

/// What `reply_discussion` takes.
inline constexpr Property replyDiscussion[] = {
    discussionID,
    {"text", Type::string, Need::required,
     "Your volley. Capped at 2000 characters; the rest is cut and reported in `notice`."},
};

/// What `resolve_discussion` takes.
inline constexpr Property resolveDiscussion[] = {
    discussionID,
    {"resolution", Type::string, Need::required,
     "The decision, stated so a stranger could act on it."},
};

/// What `wait_for_changes` takes.
inline constexpr Property waitForChanges[] = {
    {"taskIDs",        Type::strings, Need::optional,
     "Watch only these tasks, the first 64 of them. Omit it to watch the entire backlog."},
    {"wakeOnClaims",   Type::boolean, Need::optional,
     "Default false. true also wakes you when a task changes state, as when a peer claims it."},
    {"timeoutSeconds", Type::integer, Need::optional,
     "How long to hold. The hold is short on purpose, "
     "typically about 30 seconds whatever is asked; "
     "a shortened one says so in `heldForSeconds`."},
    {"parkReason",     Type::string,  Need::optional, "What you are waiting for, one line."},
    {"standDown",      Type::boolean, Need::optional,
     "true = finished and waiting to be given work."},
};

/// What `request_release` takes.
inline constexpr Property requestRelease[] = {
    taskID,
    {"reason", Type::string, Need::optional, "Why you can move it on now. Shown to the holder."},
};

/// What `propose_goal_complete` takes.
inline constexpr Property proposeGoalComplete[] = {
    {"acknowledgeOpenTasks", Type::boolean, Need::optional,
     "true only after looking at the tasks still open: the goal is done without them."},
};

/// What `assign_task` takes.
inline constexpr Property assignTask[] = {
    taskID,
    {"to", Type::string, Need::required, "The agent's handle from list_agents, such as \"KQ3\"."},
};

/// What `send_message` takes.
inline constexpr Property sendMessage[] = {
    {"to",   Type::string, Need::required, "The agent's handle from list_agents, such as \"KQ3\"."},
    {"text", Type::string, Need::required,
     "One or two sentences. Longer than about a thousand characters is a task, not a message."},
};

/// What `request_hands` takes.
inline constexpr Property requestHands[] = {
    {"taskID", Type::string, Need::optional,
     "The task to be done, as returned by list_tasks. This OR `title`, never both."},
    {"title",  Type::string, Need::optional,
     "Short title of the task to file. This OR `taskID`, never both."},
    {"brief",  Type::string, Need::optional,
     "The new task's brief, for a stranger: what to do, what it does NOT cover, "
     "what 'done' looks like."},
    {"to",     Type::string, Need::optional,
     "Another device's tag, `@laptop` or `laptop`, never a handle. Omit it for a helper here."},
    {"agent",  Type::string, Need::optional,
     "Name of the allowed helper to start. Required when more than one is allowed, "
     "never with `to`."},
};

/// What `suggest_helper` takes.
inline constexpr Property suggestHelper[] = {
    {"name",        Type::string, Need::optional,
     "What to call the helper, at most 48 characters. "
     "A second suggestion with the same name replaces the first."},
    {"command",     Type::string, Need::required,
     "One simple command, no `;`, pipes, redirects or `$(`, such as `claude --model sonnet`. "
     "The app adds its own opening line at the end or where `{prompt}` stands."},
    {"explanation", Type::string, Need::required,
     "What other agents should know about it, at most 280 characters."},
    {"reason",      Type::string, Need::optional, "Why you need it, for the person."},
};

/// What `stop_helper` takes.
inline constexpr Property stopHelper[] = {
    {"handle", Type::string, Need::required,
     "The helper's handle from list_agents, such as \"KQ4\"."},
};

// clang-format on

}  // namespace properties

// clang-format off

/// Every tool that is offered, always all of them.
inline constexpr Tool tools[] = {
    {"register",              texts::registerSeat,         properties::registerSeat},
    {"unregister",            texts::unregister,           {}},
    {"heartbeat",             texts::heartbeat,            properties::heartbeat},
    {"list_agents",           texts::listAgents,           {}},
    {"read_plan",             texts::readPlan,             properties::readPlan},
    {"set_goal",              texts::setGoal,              properties::setGoal},
    {"set_charter",           texts::setCharter,           properties::setCharter},
    {"add_task",              texts::addTask,              properties::addTask},
    {"list_tasks",            texts::listTasks,            properties::listTasks},
    {"read_task",             texts::readTask,             properties::readTask},
    {"claim_task",            texts::claimTask,            properties::taskIDOnly},
    {"update_task",           texts::updateTask,           properties::updateTask},
    {"complete_task",         texts::completeTask,         properties::completeTask},
    {"reject_task",           texts::rejectTask,           properties::rejectTask},
    {"delete_task",           texts::deleteTask,           properties::deleteTask},
    {"release_task",          texts::releaseTask,          properties::taskIDOnly},
    {"watch_task",            texts::watchTask,            properties::taskIDOnly},
    {"unwatch_task",          texts::unwatchTask,          properties::taskIDOnly},
    {"request_review",        texts::requestReview,        properties::requestReview},
    {"verify_task",           texts::verifyTask,           properties::verifyTask},
    {"comment_task",          texts::commentTask,          properties::commentTask},
    {"open_discussion",       texts::openDiscussion,       properties::openDiscussion},
    {"reply_discussion",      texts::replyDiscussion,      properties::replyDiscussion},
    {"resolve_discussion",    texts::resolveDiscussion,    properties::resolveDiscussion},
    {"wait_for_changes",      texts::waitForChanges,       properties::waitForChanges},
    {"request_release",       texts::requestRelease,       properties::requestRelease},
    {"propose_goal_complete", texts::proposeGoalComplete,  properties::proposeGoalComplete},
    {"assign_task",           texts::assignTask,           properties::assignTask},
    {"send_message",          texts::sendMessage,          properties::sendMessage},
    {"read_messages",         texts::readMessages,         {}},
    {"request_hands",         texts::requestHands,         properties::requestHands},
    {"suggest_helper",        texts::suggestHelper,        properties::suggestHelper},
    {"stop_helper",           texts::stopHelper,           properties::stopHelper},
};

// clang-format on

/// Whether no two of a tool's properties share a name.
constexpr bool declaresEachOnce(const Tool& tool) {
  return std::ranges::all_of(tool.properties, [&tool](const Property& property) {
    return std::ranges::count(tool.properties, property.name, &Property::name) == 1;
  });
}

/// Whether a tool, and each of its properties, says what it is for.
constexpr bool isDescribed(const Tool& tool) {
  return !tool.description.empty() &&
         std::ranges::none_of(tool.properties, &std::string_view::empty, &Property::description);
}

static_assert(std::ranges::equal(tools, listedTools, {}, &Tool::nameText),
              "the rows stand in the order of the list");
static_assert(std::ranges::all_of(tools, declaresEachOnce), "a property is declared once per tool");
static_assert(std::ranges::all_of(tools, isDescribed), "no description is empty");

}  // namespace quillpost
