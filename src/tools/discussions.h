#pragma once

// Deciding a question together before anybody builds on it.

#include "tools/tool.h"

namespace quillpost {

namespace properties {

// clang-format off

/// The discussion a tool is about.
inline constexpr Property discussionID = {
    "discussionID", Type::string, Need::required,
    "The discussion's `d######` handle, from open_discussion, read_plan or your obligations."};

inline constexpr Property openDiscussion[] = {
    {"taskID",    Type::string,  Need::optional,
     "The task it is about, as returned by list_tasks. Omit it for a board-level debate."},
    {"question",  Type::string,  Need::required,
     "The one question to decide, with your position and your reasons."},
    {"addressTo", Type::strings, Need::optional,
     "Fingerprints, names or `human`. Omitted = all live peers."},
};

inline constexpr Property replyDiscussion[] = {
    discussionID,
    {"text", Type::string, Need::required,
     "Your volley. Capped at 2000 characters; the rest is cut and reported in `notice`."},
};

inline constexpr Property resolveDiscussion[] = {
    discussionID,
    {"resolution", Type::string, Need::required,
     "The decision, stated so a stranger could act on it."},
};

// clang-format on

}  // namespace properties

// clang-format off

inline constexpr Tool discussionTools[] = {
    {.name = "open_discussion",
     .description =
         "Open a discussion — a structured, on-the-board debate with a peer (or the human) "
         "about a decision the work needs: an approach, a boundary, an interface, "
         "a disagreement with a peer's position. "
         "Ask one question that can be decided, with your own position and your reasons in it. "
         "Give `taskID` when it is about a task, whose completion it holds back until it "
         "resolves; "
         "omit it for a board-level debate, which holds back propose_goal_complete, "
         "and do not file the task it is about until the verdict. "
         "`addressTo` takes fingerprints, names or `human`; omitted, it goes to all live peers. "
         "Whoever is addressed is woken. "
         "It comes back with `id`, `volleys`, `owingParties` (who must speak next), "
         "`yourTurn` and `roundBudget`: after 8 volleys without human input the board escalates "
         "to the human. "
         "Then wait_for_changes, watching the task, or with no taskIDs for a board-level debate; "
         "answer promptly and close it with resolve_discussion. "
         "Do not end your turn while it is open; meanwhile work on what the outcome does not "
         "touch. "
         "Implementation calls, naming, what is good enough to call done, are yours: "
         "decide those and move.",
     .properties = properties::openDiscussion,
     .commandLine = {.name = "discuss", .otherNames = {"ask"}, .positionals = {"question"},
                     .gist = "open a debate on one question",
                     .examples = {"discuss 'One table or two? I say one: they are read together.'",
                                  "discuss 'Keep the old format?' --task-id t000012"}}},

    {.name = "reply_discussion",
     .description =
         "Add your volley to a discussion — agree, rebut with reasons, or refine the proposal. "
         "Read the volleys first: read_plan lists every open discussion with all of them, "
         "its `d######` handle and `yourTurn`. "
         "Reply when it is your turn or your obligations list it under `oweReply`; "
         "that comes before other work. "
         "Answer the argument, concede what is right, and end with what you propose. "
         "`text` is capped at 2000 characters; the rest is cut and reported in `notice`. "
         "Volleys are counted (`roundBudget`), and the board escalates to the human after 8 "
         "without human input. "
         "If you two have converged, do not send another round: "
         "resolve_discussion with the agreed decision. "
         "Otherwise wait_for_changes for the counter-reply, "
         "and never end your turn while a discussion you are party to is open.",
     .properties = properties::replyDiscussion,
     .commandLine = {.name = "reply", .positionals = {"discussionID", "text"},
                     .gist = "add your volley",
                     .examples = {"reply d000003 'Agreed, if the index stays.'",
                                  "reply d000003 -"}}},

    {.name = "resolve_discussion",
     .description =
         "Close a discussion with its resolution — the decision the debate reached, "
         "stated so a stranger could act on it without reading the volleys. "
         "Close it as soon as the parties agree, and not over an objection that nobody has "
         "answered. "
         "Write what was decided, the reason in one clause, and what changes because of it. "
         "Closing lifts what the discussion held back: "
         "the task's completion, or propose_goal_complete for a board-level one. "
         "Then APPLY it: on a task, update_task the body so the brief matches the ruling, "
         "and the other tasks it touches; for a board-level debate, add_task what it calls for, "
         "which may be one task, several, or none.",
     .properties = properties::resolveDiscussion,
     .commandLine = {.name = "resolve", .positionals = {"discussionID", "resolution"},
                     .gist = "close a debate with its decision",
                     .examples = {"resolve d000003 'One table, with the index as it is.'",
                                  "resolve d000003 'Both formats stay.' then plan"}}},
};

// clang-format on

}  // namespace quillpost
