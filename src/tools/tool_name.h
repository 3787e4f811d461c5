#pragma once

// The verbs of the board by name: the tools an agent may call, and the methods the app understands.
// A tool is spelled in its row; elsewhere it is a `ToolName`.

#include "tools/tools.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <string>
#include <string_view>

namespace quillpost {

/// Never defined: calling it is what makes a misspelt name fail to compile.
void noSuchTool();

/// The name of a tool. It is made only at compile time and only from a name that has a row, so that
/// a misspelt one does not compile. It is compared with text as text is.
class ToolName {
 public:
  // Implicit, so that a row of a table can spell the tool as plain text.
  consteval ToolName(const char* name) : text_(name) {  // NOLINT(google-explicit-constructor)
    if (!isTool(text_)) noSuchTool();
  }

  // Implicit, so that a name goes wherever a text goes.
  constexpr operator std::string_view() const { return text_; }  // NOLINT(google-explicit-*)

  bool operator==(const ToolName&) const = default;

  // A template, so that a literal is taken for a name, and checked as one, and not for a text.
  template <std::same_as<std::string> Text>
  friend constexpr bool operator==(const ToolName& name, const Text& text) {
    return name.text_ == text;
  }

 private:
  std::string_view text_;
};

/// The tool that waits. It never sends its own name: it asks with `pollChanges` and `heartbeat`.
inline constexpr ToolName waitForChanges = "wait_for_changes";

/// Another name for `waitForChanges`: understood, and never listed.
inline constexpr std::string_view waitForTasks = "wait_for_tasks";

/// The method that renews presence and claims; a tool of the same name sends it too.
inline constexpr ToolName heartbeat = "heartbeat";

/// The method that asks what has changed since a revision.
inline constexpr std::string_view pollChanges = "poll_changes";

/// The method that asks whether anything is waiting for this seat.
inline constexpr std::string_view wakeQuery = "wake_query";

/// The names of all tools, in the order of the list.
inline constexpr auto toolNames = [] {
  std::array<std::string_view, tools.size()> names;
  std::ranges::transform(tools, names.begin(), &Tool::name);
  return names;
}();

/// The tools whose own name is the method the app is sent: all but the one that waits, in the same
/// order.
inline constexpr auto boardMethods = [] {
  std::array<std::string_view, tools.size() - 1> methods;
  std::ranges::remove_copy(toolNames, methods.begin(), waitForChanges);
  return methods;
}();

/// Whether a tool of this name sends its own name to the app. False for the tool that waits, for
/// its alias and for a name that is no tool's.
constexpr bool isBoardMethod(std::string_view name) {
  return std::ranges::find(boardMethods, name) != boardMethods.end();
}

/// The name of a method in a table of what the app answers: of a tool that sends its own name, or
/// of the two that no tool is called after. Any other does not compile.
class MethodName {
 public:
  consteval MethodName(const char* name)  // NOLINT(google-explicit-constructor)
      : MethodName(std::string_view(name)) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  consteval MethodName(std::string_view name) : text_(name) {
    if (!isBoardMethod(text_) && text_ != pollChanges && text_ != wakeQuery) noSuchTool();
  }

  // Implicit, so that a name goes wherever a text goes.
  constexpr operator std::string_view() const { return text_; }  // NOLINT(google-explicit-*)

 private:
  std::string_view text_;
};

static_assert(!isBoardMethod(waitForTasks) && !isBoardMethod(pollChanges) &&
                  !isBoardMethod(wakeQuery),
              "of the named verbs only the heartbeat is both a tool and a method");

}  // namespace quillpost
