#pragma once

// Every verb of the board by name: the tools an agent may call and the methods the app understands.
// A verb is spelled here once; elsewhere it is one of these constants or a `ToolName`.

#include <algorithm>
#include <array>
#include <string_view>

namespace quillpost {

/// The tools that are offered to the agent, in the order of the list.
inline constexpr std::array<std::string_view, 33> listedTools{
    "register",         "unregister",       "heartbeat",
    "list_agents",      "read_plan",        "set_goal",
    "set_charter",      "add_task",         "list_tasks",
    "read_task",        "claim_task",       "update_task",
    "complete_task",    "reject_task",      "delete_task",
    "release_task",     "watch_task",       "unwatch_task",
    "request_review",   "verify_task",      "comment_task",
    "open_discussion",  "reply_discussion", "resolve_discussion",
    "wait_for_changes", "request_release",  "propose_goal_complete",
    "assign_task",      "send_message",     "read_messages",
    "request_hands",    "suggest_helper",   "stop_helper",
};

/// The tool that waits. It never sends its own name: it asks with `pollChanges` and `heartbeat`.
inline constexpr std::string_view waitForChanges = "wait_for_changes";

/// Another name for `waitForChanges`: understood, and never listed.
inline constexpr std::string_view waitForTasks = "wait_for_tasks";

/// The method that asks what has changed since a revision.
inline constexpr std::string_view pollChanges = "poll_changes";

/// The method that renews presence and claims; a tool of the same name sends it too.
inline constexpr std::string_view heartbeat = "heartbeat";

/// The method that asks whether anything is waiting for this seat.
inline constexpr std::string_view wakeQuery = "wake_query";

/// The tools whose own name is the method the app is sent: all that are listed but the one that
/// waits, in the same order.
inline constexpr std::array<std::string_view, 32> boardMethods = [] {
  std::array<std::string_view, 32> methods;
  std::ranges::remove_copy(listedTools, methods.begin(), waitForChanges);
  return methods;
}();

/// Whether a tool of this name sends its own name to the app. False for the tool that waits, for
/// its alias and for a name that is no tool's.
constexpr bool isBoardMethod(std::string_view name) {
  return std::ranges::find(boardMethods, name) != boardMethods.end();
}

/// Never defined: calling it is what makes a misspelt tool name fail to compile.
void noSuchTool();

/// The name of a listed tool. It can be made only at compile time and only from a name in
/// `listedTools`, so that a misspelt one does not compile.
struct ToolName {
  std::string_view text;

  // Implicit, so that a row of a table can spell the tool as plain text.
  consteval ToolName(const char* name) : text(name) {  // NOLINT(google-explicit-constructor)
    if (std::ranges::find(listedTools, text) == listedTools.end()) noSuchTool();
  }

  bool operator==(const ToolName&) const = default;
};

/// Whether no name stands twice among `names`.
template <std::size_t Count>
constexpr bool namesAreUnique(std::array<std::string_view, Count> names) {
  std::ranges::sort(names);
  return std::ranges::adjacent_find(names) == names.end();
}

static_assert(namesAreUnique(listedTools), "a tool is listed once");
static_assert(isBoardMethod(heartbeat) && !isBoardMethod(waitForChanges) &&
                  !isBoardMethod(waitForTasks) && !isBoardMethod(pollChanges) &&
                  !isBoardMethod(wakeQuery),
              "of the named verbs only the heartbeat is both a tool and a method");

}  // namespace quillpost
