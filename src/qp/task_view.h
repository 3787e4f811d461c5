#pragma once

// Less of a backlog: a board of a thousand tasks must not cost its reader all his attention.

#include "calls/arguments.h"
#include "json/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// The most tasks of a bucket that are shown to one who did not say how many.
inline constexpr int64_t plainBucketLimit = 50;

/// What of a backlog is shown.
struct TaskView {
  /// The most tasks of each bucket; nothing for all of them.
  std::optional<int64_t> limit = std::nullopt;
  /// The only bucket; empty for all of them.
  std::string bucket = {};
  /// The only fields of a task; empty for all of them.
  std::vector<std::string> fields = {};
  /// Words that a task must have; empty for every task.
  std::vector<std::string> words = {};
};

/// The view that the command line's own options ask for. `asJson` is what a program reads, which is
/// shown everything unless it says otherwise.
TaskView taskViewFrom(const Arguments& options, bool asJson);

/// A backlog, seen that way.
struct ViewedTasks {
  /// Nothing when the view leaves the result as it is, or it is no backlog.
  std::optional<std::string> json;
  /// A line for each bucket of which some were left out: "… 212 more under readyToClaim: qp tasks
  /// --all"; and one that names the fields asked for that no task has. Empty when all is there.
  std::string leftOut;
};

/// The JSON of a result of list_tasks with less in its buckets; everything else stays.
ViewedTasks viewed(std::string_view backlog, const TaskView& view);

}  // namespace quillpost
