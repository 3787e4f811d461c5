#pragma once

// One task as the agent reads it, what its log says at a glance, and the notes of other agents.

#include "json/writer.h"
#include "model/squad.h"
#include "model/task.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillpost {

/// Adds the members of the compact task object: id, title and state always, of the rest what is
/// there and says something.
void addTask(json::Object& out, const TeamworkTask& task);

/// Adds the members of a message object: from, text, fromName when it is not empty, ageSeconds.
void addMessage(json::Object& out, const TeamworkSquadMessage& message);

/// The progress lines of a log: all lines but those that begin with a marker.
struct Progress {
  /// The latest one, a view into the log; empty when there is none.
  std::string_view last;
  int64_t count = 0;
};

/// What the log's progress lines come to; a default Progress when it has none.
Progress progressOf(std::span<const std::string> log);

/// The text of the latest gist line without blanks at both ends, a view into the log. Nothing when
/// there is no gist line or the latest one is empty; earlier ones are not consulted.
std::optional<std::string_view> summaryOf(std::span<const std::string> log);

}  // namespace quillpost
