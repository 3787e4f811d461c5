#include "board/person/display.h"

#include "base/text.h"
#include "base/unicode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quillpost::board {

namespace {

struct Range {
  uint32_t first;
  uint32_t last;
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

constexpr uint32_t del = 0x7F;

/// The first character of a text: its number and its bytes; none when it begins with a byte that is
/// no UTF-8.
struct CodePoint {
  uint32_t value = 0;
  std::size_t length = 0;
};

CodePoint firstOf(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (text.size() < length || !unicode::isValid(text.substr(0, length))) return {};
  uint32_t value = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i)
    value = value << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
  return {value, length};
}

bool steers(uint32_t value) {
  if (value == '\n' || value == '\t') return false;
  return std::ranges::any_of(steering, [value](const Range& range) {
    return value >= range.first && value <= range.last;
  });
}

std::string hexOf(uint32_t value) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string hex;
  for (int shift = 12; shift >= 0; shift -= 4) hex += digits[value >> shift & 15U];
  return hex;
}

std::string markFor(uint32_t value, Marks marks) {
  if (marks == Marks::escapes) return "\\u" + hexOf(value);
  std::string picture;
  if (value < ' ' || value == del) {
    unicode::append(picture, value == del ? U'\u2421' : U'\u2400' + value);
    return picture;
  }
  return text::cat("<U+", hexOf(value), ">");
}

}  // namespace

std::string displayed(std::string_view text, Marks marks) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const CodePoint first = firstOf(text);
    if (first.length == 0) {
      out += "\uFFFD";
    } else if (steers(first.value)) {
      out += markFor(first.value, marks);
    } else {
      out += text.substr(0, first.length);
    }
    text.remove_prefix(first.length == 0 ? 1 : first.length);
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

}  // namespace quillpost::board
