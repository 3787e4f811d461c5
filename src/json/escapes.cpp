#include "json/escapes.h"

#include "base/unicode.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace quillpost::json {
namespace {

// Bytes that stand nowhere in UTF-8.
constexpr char mark = '\xFF';
constexpr char quote = '\xFE';
constexpr char backslash = '\xFD';

/// What may follow the mark but for a code unit, and what each of it means.
constexpr std::string_view letters = "\xFE\xFD/bfnrt";
constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
static_assert(letters.size() == meanings.size());

/// Takes the four digits of a UTF-16 code unit from the front; nothing when they are not there.
std::optional<uint16_t> takeCodeUnit(std::string_view& text) {
  constexpr std::size_t length = 4;
  constexpr int base = 16;
  if (text.size() < length) return std::nullopt;
  uint16_t unit = 0;
  const char* const end = text.data() + length;
  if (std::from_chars(text.data(), end, unit, base).ptr != end) return std::nullopt;
  text.remove_prefix(length);
  return unit;
}

/// Takes a code point from behind the mark and the letter of its first code unit.
std::optional<char32_t> takeCodePoint(std::string_view& text) {
  constexpr char32_t firstHigh = 0xD800;
  constexpr char32_t firstLow = 0xDC00;
  constexpr char32_t lastLow = 0xDFFF;
  constexpr char32_t firstBeyond = 0x10000;
  constexpr int bitsOfHalf = 10;
  const std::optional<uint16_t> unit = takeCodeUnit(text);
  if (!unit || *unit < firstHigh || *unit > lastLow) return unit;
  if (*unit >= firstLow || !text.starts_with(std::string_view("\xFFu"))) return std::nullopt;
  text.remove_prefix(2);
  const std::optional<uint16_t> low = takeCodeUnit(text);
  if (!low || *low < firstLow || *low > lastLow) return std::nullopt;
  return firstBeyond + ((*unit - firstHigh) << bitsOfHalf) + (*low - firstLow);
}

}  // namespace

void disguiseEscapes(std::string& json) {
  for (std::size_t at = json.find('\\'); at != std::string::npos; at = json.find('\\', at + 2)) {
    json[at] = mark;
    if (at + 1 == json.size()) return;
    char& escaped = json[at + 1];
    if (escaped == '"') escaped = quote;
    if (escaped == '\\') escaped = backslash;
  }
}

bool hasDisguisedEscapes(std::string_view inside) {
  return inside.find(mark) != std::string_view::npos;
}

bool appendUndisguised(std::string& out, std::string_view inside) {
  while (true) {
    const std::size_t plain = inside.find(mark);
    out.append(inside.substr(0, plain));
    if (plain == std::string_view::npos) return true;
    inside.remove_prefix(plain + 1);
    if (inside.empty()) return false;
    const char letter = inside.front();
    inside.remove_prefix(1);
    if (letter == 'u') {
      const std::optional<char32_t> codePoint = takeCodePoint(inside);
      if (!codePoint) return false;
      unicode::append(out, *codePoint);
    } else {
      const std::size_t known = letters.find(letter);
      if (known == std::string_view::npos) return false;
      out.push_back(meanings[known]);
    }
  }
}

}  // namespace quillpost::json
