#include "base/version.h"

namespace quillpost {

// Defined for this file alone, so that a new version compiles one file anew.
std::string_view programVersion() { return QUILLPOST_VERSION; }

}  // namespace quillpost
