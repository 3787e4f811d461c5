#pragma once

// Whether a verb would work from here, and what to do when it would not.

#include "qp/desk.h"
#include "qp/status.h"

namespace quillpost {

/// Looks at everything that a verb needs and prints a line for each. Never prints the token or the
/// session's id. Done only when a verb would work, else no board.
Status doctor(const Surroundings& around);

}  // namespace quillpost
