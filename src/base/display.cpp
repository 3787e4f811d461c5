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
/// What a person cannot see, or takes for a blank: two texts that differ in these look alike.
constexpr Range unseen[] = {
    {0x0009, 0x000A},  // tabs and line feeds
    {0x00A0, 0x00A0},  // a blank that keeps words
    {0x00AD, 0x00AD},  // a soft hyphen
    {0x034F, 0x034F},  // a joiner of graphemes
    {0x115F, 0x1160},  // fillers
    {0x1680, 0x1680},  // a blank
    {0x17B4, 0x17B5},  // vowels without a shape
    {0x180B, 0x180F},  // variations and a separator
    {0x2000, 0x200D},  // blanks, joiners and what has no width
    {0x202F, 0x202F},  // a blank
    {0x205F, 0x206F},  // a blank, and operators without a shape
    {0x2800, 0x2800},  // a pattern of no dots
    {0x3000, 0x3000},  // a wide blank
    {0x3164, 0x3164},  // a filler
    {0xFE00, 0xFE0F},  // variations
    {0xFEFF, 0xFEFF},  // a mark of the order of bytes
    {0xFFA0, 0xFFA0},  // a filler
    {0xFFF0, 0xFFFB},  // annotations
    {0xE0000, 0xE0FFF},  // tags and variations
};
// clang-format on

constexpr int32_t del = 0x7F;

bool isMarked(int32_t value, Marks marks) {
  const auto holds = [value](const Range& range) {
    return value >= range.first && value <= range.last;
  };
  if (marks == Marks::all && std::ranges::any_of(unseen, holds)) return true;
  return value != '\n' && value != '\t' && std::ranges::any_of(steering, holds);
}

std::string hexOf(int32_t value) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string hex;
  for (int shift = value > 0xFFFF ? 16 : 12; shift >= 0; shift -= 4)
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
    } else if (isMarked(first->value, marks)) {
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
