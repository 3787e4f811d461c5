#pragma once

// The manual page, from the same rows as the program.

#include <string>

namespace quillpost {

/// The page qp(1) in the language of mdoc.
std::string manualPage();

}  // namespace quillpost
