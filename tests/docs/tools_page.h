#pragma once

// docs/tools.md: what a client is told about each tool.

#include "docs/blocks.h"

namespace quillpost::docs {

/// The blocks of the page: the list of the tools, and one section for each.
Blocks toolBlocks();

}  // namespace quillpost::docs
