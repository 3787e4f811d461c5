#pragma once

// The one line of the stop hook.

#include <string_view>

namespace quillpost::texts {

/// What keeps the agent going when the board has something for it; ends with a line feed.
inline constexpr std::string_view stopHookLine =
    "Quillpost hook, automatic: board changed, call wait_for_changes, "
    "act on wakeReasons, then keep listening\n";

}  // namespace quillpost::texts
