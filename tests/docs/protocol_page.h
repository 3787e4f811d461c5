#pragma once

// docs/protocol.md: what goes over the app's socket, from the field tables of the records.

#include "docs/blocks.h"

namespace quillpost::docs {

/// The blocks of the page: the methods, the kinds of an answer, and one table for each record, the
/// last three by the record's name.
Blocks protocolBlocks();

}  // namespace quillpost::docs
