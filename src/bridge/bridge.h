#pragma once

// The app as a door: one request, perhaps one response.

#include "model/request.h"
#include "model/response.h"

#include <cstddef>
#include <optional>
#include <string>

namespace quillpost {

/// Reaches the app that owns the board. Why it could not be reached is never said.
struct Bridge {
  virtual ~Bridge() = default;

  /// The collaboration token as it is now, read afresh at every call; empty when there is none.
  virtual std::string currentToken() = 0;

  /// Sends one request once and waits for its answer. Nothing when no answer came, or one that is
  /// not a response.
  virtual std::optional<TeamworkResponse> send(const TeamworkRequest& request) = 0;

  /// How many bytes the answer to the last send() had; 0 when none came.
  virtual std::size_t lastReplyBytes() const = 0;
};

}  // namespace quillpost
