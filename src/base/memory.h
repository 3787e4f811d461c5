#pragma once

// When memory that the program no longer needs goes back to the system: not between ordinary
// calls, and at once after a big one.

namespace quillpost {

/// Keeps the memory of ordinary calls for the next one. Left to itself the allocator hands the
/// larger buffers back after each call and asks for them again in the next, which took a quarter of
/// the time of a reply of one megabyte. For the start of the program.
void keepMemoryBetweenCalls();

/// Hands the pages that are free inside the allocator back to the system, so that one big reply
/// does not make the process big for the rest of its life. Costs a walk over the heap: for after
/// something big, not for every message. Does nothing where the allocator does this by itself.
void returnFreeMemory();

}  // namespace quillpost
