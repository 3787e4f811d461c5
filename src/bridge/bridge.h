#pragma once

// The app as a door: one request, perhaps one response.

#include "model/request.h"
#include "model/response.h"

#include <cstddef>
#include <optional>
#include <string>

namespace quillpost {

/// What came of one exchange.
struct Exchange {
  /// Nothing when no answer came, or one that is not a response.
  std::optional<TeamworkResponse> response = std::nullopt;
  /// The size of the answer as it came, its terminator not counted; 0 when none came.
  std::size_t bytes = 0;
};

/// Reaches the app that owns the board. Why it could not be reached is never said.
struct Bridge {
  virtual ~Bridge() = default;

  /// The collaboration token as it is now, read afresh at every call; empty when there is none.
  virtual std::string currentToken() = 0;

  /// Sends one request once and waits for its answer.
  virtual Exchange send(const TeamworkRequest& request) = 0;
};

}  // namespace quillpost
