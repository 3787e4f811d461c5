#pragma once

// How the options of a verb are spelled, and the few that the command line adds to a tool's own.

#include "tools/backlog.h"
#include "tools/tool.h"
#include "tools/tool_name.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// The buckets of a backlog, in the order in which it shows them.
inline constexpr std::array<std::string_view, 6> bucketNames{"yours",   "forYou", "readyToClaim",
                                                             "waiting", "done",   "rejected"};

/// An option that no tool has: it fills an argument under another name, or says what the command
/// line does with the result.
struct ExtraOption {
  ToolName tool;
  Property property;
  /// The argument of the call that it fills; empty for what is not the call's business.
  std::string_view argument = {};
  /// The least number that makes sense.
  int64_t least = INT64_MIN;
};

// clang-format off

/// All of them.
inline constexpr auto extraOptions = std::to_array<ExtraOption>({
    {"wait_for_changes", {"timeout", Type::integer, Need::optional,
     "Stop waiting after so many seconds, with status 3 when nothing moved. "
     "Without it there is no deadline."}, "timeoutSeconds", 0},
    {"wait_for_changes", {"since",   Type::integer, Need::optional,
     "The revision to wait from. Without it, the one that this seat saw last."}, "sinceRev"},
    {"wait_for_changes", {"follow",  Type::boolean, Need::optional,
     "Print one line a move and go on, until the goal is confirmed complete."}},
    {"list_tasks",       {"limit",   Type::integer, Need::optional,
     "Show at most so many tasks of each bucket."}, "", 1},
    {"list_tasks",       {"all",     Type::boolean, Need::optional,
     "Show every task of each bucket, however many there are."}},
    {"list_tasks",       {"bucket",  Type::string,  Need::optional,
     "Show the tasks of this bucket only.", bucketNames}},
    {"list_tasks",       {"fields",  Type::strings, Need::optional,
     "Show these fields of each task only, such as id,title,state."}},
    {"list_tasks",       {"grep",    Type::string,  Need::optional,
     "Show only tasks with all these words in their id, title, summary or last line."}},
});

// clang-format on

/// What an option of a verb is.
struct OptionRow {
  const Property* property = nullptr;
  /// Where its value goes: an argument of the call, or an option of the command line's own.
  std::string_view key;
  bool isArgument = true;
  /// The least number that makes sense.
  int64_t least = INT64_MIN;
};

/// A name as an option is mostly typed: parkReason as park-reason, taskIDs as task-ids.
std::string kebab(std::string_view name);

/// The option of that spelling, as the table has it or in kebab case and without its dashes;
/// nothing when the verb has none.
std::optional<OptionRow> findOption(const Tool& tool, std::string_view spelled);

/// Every option of a verb with its dashes, in kebab case, its own first.
std::vector<std::string> optionsOf(const Tool& tool);

/// How a verb is called, in one line: "qp done <taskID> <summary> [--json]".
std::string usageLine(const Tool& tool);

}  // namespace quillpost
