#include "qp/terminal_text.h"

#include "base/unicode.h"

#include <cstddef>
#include <cstdint>

namespace quillpost {
namespace {

constexpr std::string_view unknownByte = "\uFFFD";

/// What a C0 control or DEL is drawn as: the picture that Unicode has for it.
std::string pictureOf(unsigned char control) {
  std::string picture;
  constexpr unsigned char del = 0x7F;
  unicode::append(picture, control == del ? U'\u2421' : U'\u2400' + control);
  return picture;
}

/// The number of a character of two or three bytes; 0 for every other, since none of these steers.
uint32_t numberOf(std::string_view character) {
  const auto bits = [character](std::size_t at, uint32_t mask) {
    return static_cast<unsigned char>(character[at]) & mask;
  };
  if (character.size() == 2) return bits(0, 0x1F) << 6U | bits(1, 0x3F);
  if (character.size() == 3) return bits(0, 0x0F) << 12U | bits(1, 0x3F) << 6U | bits(2, 0x3F);
  return 0;
}

/// Characters of several bytes that steer a terminal or turn the writing about.
bool steers(std::string_view character) {
  const uint32_t number = numberOf(character);
  const auto isIn = [number](uint32_t first, uint32_t last) {
    return number >= first && number <= last;
  };
  // The second row of controls; then marks, overrides and isolates of the direction of writing.
  return isIn(0x80, 0x9F) || number == 0x061C || isIn(0x200E, 0x200F) || isIn(0x202A, 0x202E) ||
         isIn(0x2066, 0x2069);
}

/// Whether it is a control that is drawn as a picture: all of one byte but line feed and tab.
bool isDrawn(unsigned char byte) {
  constexpr unsigned char del = 0x7F;
  return byte == del || (byte < 0x20 && byte != '\n' && byte != '\t');
}

/// How many bytes the character at the start has; 0 when it is none in UTF-8.
std::size_t lengthOfFirst(std::string_view text) {
  for (std::size_t length = 1; length <= 4 && length <= text.size(); ++length)
    if (unicode::isValid(text.substr(0, length))) return length;
  return 0;
}

}  // namespace

std::string withVisibleControls(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1 : lengthOfFirst(text);
    const std::string_view character = text.substr(0, length);
    if (length == 0 || steers(character)) {
      out += unknownByte;
    } else if (isDrawn(first)) {
      out += pictureOf(first);
    } else {
      out += character;
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

std::string inOneLine(std::string_view text) {
  std::string out;
  for (const char letter : withVisibleControls(text)) {
    const bool isBlank = letter == '\n' || letter == '\t' || letter == ' ';
    if (!isBlank) {
      out.push_back(letter);
    } else if (!out.empty() && out.back() != ' ') {
      out.push_back(' ');
    }
  }
  if (out.ends_with(' ')) out.pop_back();
  return out;
}

}  // namespace quillpost
