#pragma once

// Memory that the program no longer needs, given back to the system.

namespace quillpost {

/// Hands the pages that are free inside the allocator back to the system, so that one big reply
/// does not make the process big for the rest of its life. Costs a walk over the heap: for after
/// something big, not for every message. Does nothing where the allocator does this by itself.
void returnFreeMemory();

}  // namespace quillpost
