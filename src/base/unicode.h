#pragma once

// Text as a reader sees it: valid UTF-8, white space, case, user-perceived characters.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::unicode {

/// Whether `bytes` is well-formed UTF-8 (no surrogates, no overlong forms, nothing cut off).
bool isValid(std::string_view bytes);

/// One code point of a text, and its bytes: 1 to 4.
struct CodePoint {
  int32_t value = 0;
  std::size_t length = 0;
};

/// The first one; nothing when `bytes` is empty or does not begin with well-formed UTF-8.
std::optional<CodePoint> firstCodePoint(std::string_view bytes);

/// Appends one code point, which must be at most U+10FFFF and no surrogate.
void append(std::string& out, char32_t codePoint);

/// Without white space and newlines at both ends: categories Zs, Zl, Zp, U+0009 to U+000D, U+0085.
/// Bytes that are not UTF-8 count as ordinary characters.
std::string_view trim(std::string_view whole);

/// Without blanks at both ends: category Zs and U+0009.
std::string_view trimBlanks(std::string_view whole);

/// Equal under Unicode full case folding. Texts that are not UTF-8 are equal only byte by byte.
bool equalIgnoringCase(std::string_view a, std::string_view b);

/// How many user-perceived characters (extended grapheme clusters) there are; CR LF is one. A byte
/// that is not UTF-8 counts as one.
std::size_t countCharacters(std::string_view whole);

/// The first `count` user-perceived characters; the whole text when it has no more than that.
/// Looks no further than it must.
std::string_view firstCharacters(std::string_view whole, std::size_t count);

}  // namespace quillpost::unicode
