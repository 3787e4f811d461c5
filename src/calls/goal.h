#pragma once

// The goal as one line.

#include "calls/arguments.h"

#include <optional>
#include <string>

namespace quillpost {

/// What set_goal sends: the description, or the name that older agents give instead, followed by
/// the labelled extras that are there and not empty. Nothing when neither is given.
std::optional<std::string> composeGoal(const Arguments& arguments);

}  // namespace quillpost
