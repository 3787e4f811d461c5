#include "base/display.h"

#include "base/text.h"
#include "base/unicode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace quillpost {

namespace {

struct Range {
  int32_t first;
  int32_t last;
};

// clang-format off
/// What is never printed as it is, but for line feeds and tabs.
constexpr Range steering[] = {
    {0x0000, 0x001F},  // C0
    {0x007F, 0x009F},  // DEL and C1
    {0x061C, 0x061C},  // the Arabic letter mark
    {0x200E, 0x200F},  // marks of a direction
    {0x2028, 0x2029},  // separators of lines and paragraphs
    {0x202A, 0x202E},  // embeddings and overrides
    {0x2066, 0x2069},  // isolates
};
// clang-format on

constexpr int32_t del = 0x7F;

bool steers(int32_t value) {
  if (value == '\n' || value == '\t') return false;
  return std::ranges::any_of(steering, [value](const Range& range) {
    return value >= range.first && value <= range.last;
  });
}

std::string hexOf(int32_t value) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string hex;
  for (int shift = 12; shift >= 0; shift -= 4)
    hex += digits[static_cast<uint32_t>(value) >> shift & 15U];
  return hex;
}

std::string markFor(int32_t value, Marks marks) {
  if (marks == Marks::escapes) return "\\u" + hexOf(value);
  std::string picture;
  if (value < ' ' || value == del) {
    unicode::append(picture, value == del ? U'\u2421' : U'\u2400' + static_cast<char32_t>(value));
    return picture;
  }
  return text::cat("<U+", hexOf(value), ">");
}

}  // namespace

std::string displayed(std::string_view text, Marks marks) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::optional<unicode::CodePoint> first = unicode::firstCodePoint(text);
    if (!first) {
      out += "\uFFFD";
    } else if (steers(first->value)) {
      out += markFor(first->value, marks);
    } else {
      out += text.substr(0, first->length);
    }
    text.remove_prefix(first ? first->length : 1);
  }
  return out;
}

std::string displayedInLine(std::string_view text) {
  std::string out;
  for (const char letter : displayed(text)) {
    const bool isBlank = letter == '\n' || letter == '\t' || letter == ' ';
    if (!isBlank) {
      out += letter;
    } else if (!out.empty() && out.back() != ' ') {
      out += ' ';
    }
  }
  if (out.ends_with(' ')) out.pop_back();
  return out;
}

}  // namespace quillpost
