#pragma once

// A name for a secret: the same for the same text, and nobody gets from it to the text.

#include <string>
#include <string_view>

namespace quillpost {

/// The SHA-256 of the bytes, as 64 lower-case hexadecimal digits.
std::string sha256Hex(std::string_view bytes);

}  // namespace quillpost
