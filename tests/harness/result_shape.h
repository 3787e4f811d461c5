#pragma once

// Which results are JSON.

#include "model/response.h"

namespace quillpost::testing {

/// Whether the result of an ordinary call is one JSON object; otherwise it is sentences, or begins
/// with an array.
inline bool isObjectResult(const TeamworkResponse& response) {
  using Kind = TeamworkResponse::Kind;
  switch (response.kind) {
    case Kind::registered:
      return response.agent.has_value();
    case Kind::tasks:
      return response.tasks && !response.tasks->empty();
    case Kind::task:
      return response.task.has_value();
    case Kind::plan:
      return response.plan.has_value();
    case Kind::changes:
      return true;
    case Kind::discussion:
      return response.discussion.has_value();
    default:
      return false;
  }
}

}  // namespace quillpost::testing
