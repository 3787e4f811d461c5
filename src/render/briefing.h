#pragma once

// The backlog, sorted into what the agent can act on.

#include "json/writer.h"
#include "model/task.h"

#include <optional>
#include <span>
#include <string_view>

namespace quillpost {

/// For whom the backlog is told, and how much of it.
struct BriefingView {
  /// Whether finished and declined tasks are listed and not only counted.
  bool includeAll = false;
  /// Who the caller is; nothing before it has registered.
  std::optional<std::string_view> fingerprint = std::nullopt;
  /// The handle that tasks may be routed to; an empty one stands for none.
  std::optional<std::string_view> handle = std::nullopt;
};

/// Adds the members of the briefing: every task in exactly one of the lists yours, forYou,
/// readyToClaim and waiting or among the finished and declined, the most urgent first; then what
/// is to be said about them.
void addBriefing(json::Object& out, std::span<const TeamworkTask> tasks, const BriefingView& view);

}  // namespace quillpost
