#pragma once

// The page about the command line, from its rows.

#include "docs/blocks.h"

namespace quillpost::docs {

/// The blocks of docs/qp.md: "verbs" is the table of the verbs.
Blocks commandBlocks();

}  // namespace quillpost::docs
