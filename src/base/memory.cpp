#include "base/memory.h"

#include <cstdlib>  // says whether the C library is the one that needs to be asked
#include <utility>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace quillpost {

void keepMemoryBetweenCalls() {
#if defined(__GLIBC__)
  constexpr int largestBuffer = 32 << 20;  // bytes; the most that the allocator takes here
  ::mallopt(M_MMAP_THRESHOLD, largestBuffer);
  ::mallopt(M_TRIM_THRESHOLD, 2 * largestBuffer);
#endif
}

void MemoryKeeper::giveBack() {
  if (!std::exchange(holdsMuch_, false)) return;
#if defined(__GLIBC__)
  ::malloc_trim(0);
#endif
}

}  // namespace quillpost
