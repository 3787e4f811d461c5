#pragma once

// Whether somebody else is at work on a path, for a hook before a commit.

#include "qp/desk.h"
#include "qp/status.h"

#include <span>
#include <string>
#include <string_view>

namespace quillpost {

/// Prints who holds what, and refuses, when a claimed task of another agent names one of the paths
/// or a folder or pattern over it. Done in every other case, when the board cannot be asked too: a
/// hook must never trap a person. Without a path it is a misuse.
Status guard(std::span<const std::string> paths, const Surroundings& around);

/// Whether a resource that a task names is the path, a folder above it, or a pattern for it. Both
/// are looked at without "./" in front and "/" at the end; a path of the same folder counts.
bool coversPath(std::string_view resource, std::string_view path);

}  // namespace quillpost
