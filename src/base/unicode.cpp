#include "base/unicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

namespace quillpost::unicode {

namespace {

bool isAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// How many ASCII bytes `bytes` begins with.
std::size_t asciiPrefix(std::string_view bytes) {
  constexpr uint64_t highBits = 0x8080808080808080;
  std::size_t length = 0;
  for (uint64_t word = 0; bytes.size() - length >= sizeof word; length += sizeof word) {
    std::memcpy(&word, bytes.data() + length, sizeof word);
    if ((word & highBits) != 0) break;
  }
  while (length < bytes.size() && isAscii(bytes[length])) ++length;
  return length;
}

const utf8proc_uint8_t* unsignedBytes(std::string_view bytes) {
  return reinterpret_cast<const utf8proc_uint8_t*>(bytes.data());
}

}  // namespace

std::optional<CodePoint> firstCodePoint(std::string_view bytes) {
  if (bytes.empty()) return std::nullopt;
  if (isAscii(bytes.front())) return CodePoint{bytes.front(), 1};
  utf8proc_int32_t value = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(unsignedBytes(bytes), static_cast<utf8proc_ssize_t>(bytes.size()), &value);
  if (length <= 0) return std::nullopt;
  return CodePoint{value, static_cast<std::size_t>(length)};
}

namespace {

/// Nothing when `bytes` is empty or does not end with well-formed UTF-8.
std::optional<CodePoint> lastCodePoint(std::string_view bytes) {
  constexpr std::size_t longest = 4;  // bytes of one code point
  const std::size_t furthest = std::min(longest, bytes.size());
  std::size_t length = 1;
  while (length < furthest && (bytes[bytes.size() - length] & 0xC0) == 0x80) ++length;
  if (length > furthest) return std::nullopt;
  const std::optional<CodePoint> last = firstCodePoint(bytes.substr(bytes.size() - length));
  if (!last || last->length != length) return std::nullopt;
  return last;
}

bool isBlank(int32_t codePoint) {
  if (codePoint < 0x80) return codePoint == ' ' || codePoint == '\t';
  return utf8proc_category(codePoint) == UTF8PROC_CATEGORY_ZS;
}

bool isWhiteSpace(int32_t codePoint) {
  if (codePoint < 0x80) return codePoint == ' ' || (codePoint >= 0x09 && codePoint <= 0x0D);
  const utf8proc_category_t category = utf8proc_category(codePoint);
  return codePoint == 0x85 || category == UTF8PROC_CATEGORY_ZS ||
         category == UTF8PROC_CATEGORY_ZL || category == UTF8PROC_CATEGORY_ZP;
}

std::string_view withoutAtEnds(std::string_view whole, bool (*isUnwanted)(int32_t)) {
  std::optional<CodePoint> end = firstCodePoint(whole);
  for (; end && isUnwanted(end->value); end = firstCodePoint(whole)) {
    whole.remove_prefix(end->length);
  }
  end = lastCodePoint(whole);
  for (; end && isUnwanted(end->value); end = lastCodePoint(whole)) {
    whole.remove_suffix(end->length);
  }
  return whole;
}

/// Under full case folding; nothing when `whole` is not UTF-8.
std::optional<std::string> folded(std::string_view whole) {
  struct Free {
    void operator()(utf8proc_uint8_t* allocation) const { std::free(allocation); }
  };
  utf8proc_uint8_t* mapped = nullptr;
  const utf8proc_ssize_t length =
      utf8proc_map(unsignedBytes(whole), static_cast<utf8proc_ssize_t>(whole.size()), &mapped,
                   UTF8PROC_CASEFOLD);
  const std::unique_ptr<utf8proc_uint8_t, Free> owner(mapped);
  if (length < 0) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length));
}

char lowered(char ascii) {
  return ascii >= 'A' && ascii <= 'Z' ? static_cast<char>(ascii - 'A' + 'a') : ascii;
}

/// The length in bytes of the first user-perceived character of a text that is not empty.
std::size_t firstCharacterLength(std::string_view rest) {
  if (rest.size() == 1) return 1;
  // Of two ASCII characters only CR LF holds together; the second decides it for the first.
  if (isAscii(rest[0]) && isAscii(rest[1])) return rest.starts_with("\r\n") ? 2 : 1;
  std::optional<CodePoint> last = firstCodePoint(rest);
  if (!last) return 1;
  std::size_t length = last->length;
  // The state may start afresh here, because every character starts at a break.
  utf8proc_int32_t state = 0;
  while (const std::optional<CodePoint> next = firstCodePoint(rest.substr(length))) {
    if (utf8proc_grapheme_break_stateful(last->value, next->value, &state)) break;
    length += next->length;
    last = next;
  }
  return length;
}

/// How many bytes `rest` begins with that are ASCII and that nothing after them can join.
std::size_t unjoinedAsciiPrefix(std::string_view rest) {
  const std::size_t length = asciiPrefix(rest);
  if (length == 0 || length == rest.size()) return length;
  // A combining mark joins the letter before it, but no control character.
  return rest[length - 1] < ' ' ? length : length - 1;
}

std::size_t countLineEndPairs(std::string_view ascii) {
  std::size_t count = 0;
  for (std::size_t at = ascii.find('\r'); at != std::string_view::npos;
       at = ascii.find('\r', at + 1)) {
    if (ascii.substr(at + 1).starts_with('\n')) ++count;
  }
  return count;
}

}  // namespace

bool isValid(std::string_view bytes) {
  for (bytes.remove_prefix(asciiPrefix(bytes)); !bytes.empty();
       bytes.remove_prefix(asciiPrefix(bytes))) {
    const std::optional<CodePoint> first = firstCodePoint(bytes);
    if (!first) return false;
    bytes.remove_prefix(first->length);
  }
  return true;
}

void append(std::string& out, char32_t codePoint) {
  std::array<utf8proc_uint8_t, 4> bytes{};
  const utf8proc_ssize_t length =
      utf8proc_encode_char(static_cast<utf8proc_int32_t>(codePoint), bytes.data());
  out.append(bytes.begin(), bytes.begin() + length);
}

std::string_view trim(std::string_view whole) { return withoutAtEnds(whole, isWhiteSpace); }

std::string_view trimBlanks(std::string_view whole) { return withoutAtEnds(whole, isBlank); }

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (asciiPrefix(a) == a.size() && asciiPrefix(b) == b.size()) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowered(x) == lowered(y); });
  }
  const std::optional<std::string> foldedA = folded(a);
  return foldedA && foldedA == folded(b);
}

std::size_t countCharacters(std::string_view whole) {
  std::size_t count = 0;
  while (!whole.empty()) {
    if (const std::size_t ascii = unjoinedAsciiPrefix(whole); ascii > 0) {
      count += ascii - countLineEndPairs(whole.substr(0, ascii));
      whole.remove_prefix(ascii);
    } else {
      ++count;
      whole.remove_prefix(firstCharacterLength(whole));
    }
  }
  return count;
}

std::string_view firstCharacters(std::string_view whole, std::size_t count) {
  // No character is shorter than a byte.
  if (whole.size() <= count) return whole;
  const std::string_view oneByteMore = whole.substr(0, count + 1);
  if (asciiPrefix(oneByteMore) > count && oneByteMore.find('\r') == std::string_view::npos) {
    return whole.substr(0, count);
  }
  std::size_t length = 0;
  for (; count > 0 && length < whole.size(); --count) {
    length += firstCharacterLength(whole.substr(length));
  }
  return whole.substr(0, length);
}

}  // namespace quillpost::unicode
