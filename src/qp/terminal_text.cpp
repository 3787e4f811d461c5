#include "qp/terminal_text.h"

#include "base/unicode.h"

#include <array>
#include <cstddef>

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

/// Characters of several bytes that steer a terminal or turn the writing about.
bool steers(std::string_view character) {
  constexpr std::array<std::string_view, 12> turns = {"\u061C", "\u200E", "\u200F", "\u202A",
                                                      "\u202B", "\u202C", "\u202D", "\u202E",
                                                      "\u2066", "\u2067", "\u2068", "\u2069"};
  for (const std::string_view turn : turns)
    if (character == turn) return true;
  // The second row of controls, U+0080 to U+009F.
  return character.size() == 2 && character[0] == '\xC2' &&
         static_cast<unsigned char>(character[1]) < 0xA0;
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
    if (length == 0) {
      out += unknownByte;
    } else if (first == '\n' || first == '\t') {
      out += character;
    } else if (first < 0x20 || first == 0x7F) {
      out += pictureOf(first);
    } else if (steers(character)) {
      out += unknownByte;
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
