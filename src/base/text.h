#pragma once

// Small text tools that know nothing of Unicode beyond bytes. What a reader sees as characters,
// white space and case is in base/unicode.h.

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace quillpost::text {

/// Appends one piece: a text as it stands, an integer in decimal.
inline void append(std::string& out, std::string_view piece) { out.append(piece); }
// Without this one a literal would turn into a boolean, and be refused.
inline void append(std::string& out, const char* piece) { out.append(piece); }
void append(std::string& out, int64_t number);
void append(std::string& out, uint64_t number);
template <std::integral Number>
requires(!std::same_as<Number, bool> && !std::same_as<Number, char> &&
         !std::same_as<Number, int64_t> &&
         !std::same_as<Number, uint64_t>) void append(std::string& out, Number number) {
  if constexpr (std::is_signed_v<Number>) {
    append(out, static_cast<int64_t>(number));
  } else {
    append(out, static_cast<uint64_t>(number));
  }
}
void append(std::string& out, bool) = delete;
void append(std::string& out, char) = delete;

/// All pieces, texts and integers, one after the other.
template <class... Pieces>
std::string cat(const Pieces&... pieces) {
  std::string out;
  (append(out, pieces), ...);
  return out;
}

/// The plural ending: "s", or nothing when `count` is exactly 1.
constexpr std::string_view s(int64_t count) { return count == 1 ? "" : "s"; }

/// "y" when `count` is exactly 1, else "ies".
constexpr std::string_view yOrIes(int64_t count) { return count == 1 ? "y" : "ies"; }

/// The text with A to Z made small. Enough wherever the words that are looked for hold no letter
/// that some other script's capital folds to.
inline std::string lowered(std::string_view whole) {
  std::string out(whole);
  for (char& letter : out)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  return out;
}

/// The pieces between the separators, empty ones kept: always at least one.
std::vector<std::string_view> split(std::string_view whole, char separator);

/// What `textOf` gives for each piece, with `separator` between them; empty when there are none.
template <class Pieces, class TextOf = std::identity>
std::string join(const Pieces& pieces, std::string_view separator, TextOf textOf = {}) {
  std::string out;
  std::string_view between;
  for (const auto& piece : pieces) {
    out.append(between);
    append(out, std::invoke(textOf, piece));
    between = separator;
  }
  return out;
}

/// A whole decimal integer: an optional "+" or "-", then digits only. Nothing when `digits` has
/// anything else, no digit at all, or a value outside 64 bits.
std::optional<int64_t> parseInteger(std::string_view digits);

/// `a + b`, `a - b`, kept at the nearest 64-bit limit instead of overflowing.
int64_t saturatingAdd(int64_t a, int64_t b);
int64_t saturatingSubtract(int64_t a, int64_t b);

/// The size of a container as the signed integer that texts and rules count with.
template <class Container>
int64_t countOf(const Container& container) {
  return static_cast<int64_t>(container.size());
}

}  // namespace quillpost::text
