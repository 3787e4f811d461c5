#pragma once

// Which release this is.

#include <string_view>

namespace quillpost {

/// The version of the project as the build names it, such as "1.0.0".
std::string_view programVersion();

}  // namespace quillpost
