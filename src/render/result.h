#pragma once

// The app's answer as the one text that the agent reads.

#include "json/writer.h"
#include "model/response.h"
#include "model/seat_state.h"
#include "render/pages.h"

#include <string>
#include <string_view>

namespace quillpost {

/// What of a tool call shapes its result.
struct ResultRequest {
  /// The tool that was called.
  std::string_view tool;
  /// The page of a task's body, or of the plan's goal.
  Page body;
  /// The page of a task's log.
  Page log;
  /// Whether the briefing lists finished and declined tasks.
  bool includeAll = false;
};

/// The result text: compact JSON or sentences, by the answer's kind. `state` has absorbed the
/// answer already. What the answer lacks is left out or put into words.
json::EscapedText composeResult(const TeamworkResponse& response, const ResultRequest& request,
                                const SeatState& state);

}  // namespace quillpost
