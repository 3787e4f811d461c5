#pragma once

// Texts for the tests of base/unicode.h, made from code points and from chance.

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace quillpost::unicode {

/// One code point in UTF-8. Also encodes what UTF-8 does not allow, so that a test can show such
/// bytes.
inline std::string encoded(uint32_t codePoint) {
  std::string out;
  const auto add = [&](uint32_t byte) { out += static_cast<char>(byte); };
  if (codePoint < 0x80) {
    add(codePoint);
  } else if (codePoint < 0x800) {
    add(0xC0 | codePoint >> 6);
    add(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    add(0xE0 | codePoint >> 12);
    add(0x80 | (codePoint >> 6 & 0x3F));
    add(0x80 | (codePoint & 0x3F));
  } else {
    add(0xF0 | codePoint >> 18);
    add(0x80 | (codePoint >> 12 & 0x3F));
    add(0x80 | (codePoint >> 6 & 0x3F));
    add(0x80 | (codePoint & 0x3F));
  }
  return out;
}

/// `piece`, `times` times.
inline std::string repeated(std::string_view piece, std::size_t times) {
  std::string out;
  out.reserve(piece.size() * times);
  for (; times > 0; --times) out += piece;
  return out;
}

/// The bytes in hexadecimal, for the message of a failure.
inline std::string hex(std::string_view bytes) {
  std::string out;
  for (const char byte : bytes) {
    constexpr const char* digits = "0123456789ABCDEF";
    out += digits[static_cast<unsigned char>(byte) >> 4];
    out += digits[static_cast<unsigned char>(byte) & 0xF];
    out += ' ';
  }
  return out;
}

/// A text of pieces chosen for how they join their neighbours, some of them not UTF-8.
inline std::string randomText(std::mt19937& random) {
  static const std::array<std::string, 26> pieces = {
      "a",      "B",      "plain ascii", " ",        "\t",       "\r",     "\n",
      "\r\n",   "\u0301", "e\u0301",     "\u00A0",   "\u2003",   "\u2028", "\u0085",
      "\u200D", "\u0600", "\u0903",      "\u1100",   "\u1161",   "\u11A8", "\U0001F1E6",
      "\u231A", "\xFF",   "\xC3",        "\xE2\x82", "\xF0\x9F",
  };
  std::string text;
  for (std::size_t left = random() % 24; left > 0; --left) {
    const std::size_t which = random() % (pieces.size() + 4);
    text += which < pieces.size() ? pieces[which] : std::string(1, static_cast<char>(random()));
  }
  return text;
}

}  // namespace quillpost::unicode
