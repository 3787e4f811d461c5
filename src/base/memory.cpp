#include "base/memory.h"

#include <cstdlib>  // says whether the C library is the one that needs to be asked

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace quillpost {

void returnFreeMemory() {
#if defined(__GLIBC__)
  ::malloc_trim(0);
#endif
}

}  // namespace quillpost
