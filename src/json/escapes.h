#pragma once

// The escapes of JSON's strings, undone after the parser has run instead of inside it. Boost.JSON
// copies a string byte by byte from its first escape on, which took a fifth of the time of a long
// reply, whose bodies have an escape in every line. Disguised escapes are ordinary bytes to it, and
// what stands between them is then copied as a whole.

#include <string>
#include <string_view>

namespace quillpost::json {

/// Puts bytes that no UTF-8 text has in the place of every backslash in `json`, and of a quote or
/// backslash that is escaped by one. `json` must be UTF-8; its size stays the same. What was JSON
/// is read as JSON by a parser that does not check its strings for UTF-8, and so are strings with
/// escapes that JSON does not have: appendUndisguised() finds those.
void disguiseEscapes(std::string& json);

/// Whether the inside of a string, as the parser gives it, has disguised escapes.
bool hasDisguisedEscapes(std::string_view inside);

/// Appends what the inside of a string stands for. False when it has an escape that JSON does not,
/// or one half of a surrogate pair without the other; what was appended then means nothing.
bool appendUndisguised(std::string& out, std::string_view inside);

}  // namespace quillpost::json
