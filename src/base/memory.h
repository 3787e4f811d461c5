#pragma once

// When memory that the program no longer needs goes back to the system: not between ordinary
// calls, and soon after a big one.

#include <cstddef>

namespace quillpost {

/// Keeps the memory of ordinary calls for the next one. Left to itself the allocator hands the
/// larger buffers back after each call and asks for them again in the next, which took a quarter of
/// the time of a reply of one megabyte. For the start of the program.
void keepMemoryBetweenCalls();

/// Gives back what something large took, so that one big reply does not make the process big for
/// the rest of its life. It is told what came through and when there is time; giving back costs a
/// walk over the heap, and is done only after something large.
class MemoryKeeper {
 public:
  /// In bytes. What took this much is beyond a board of a thousand tasks.
  static constexpr std::size_t largeBytes = std::size_t{2} << 20;

  /// Something of this size has come through.
  void took(std::size_t bytes) { holdsMuch_ = holdsMuch_ || bytes >= largeBytes; }

  /// Whether something large has come through since memory was last given back.
  bool holdsMuch() const { return holdsMuch_; }

  /// For a quiet moment: hands the pages that are free inside the allocator back to the system.
  /// Does nothing when nothing large has come through, and where the allocator does it by itself.
  void giveBack();

 private:
  bool holdsMuch_ = false;
};

}  // namespace quillpost
