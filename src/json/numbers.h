#pragma once

// Numbers as JSON writes them: the double nearest to one, and the integer that its digits are.

#include <cstdint>
#include <optional>
#include <string_view>

namespace quillpost::json {

/// The double nearest to a number written as JSON writes it; nothing when it is too large for one.
/// The parser's own conversion is quicker and often misses by the last digit, which would give a
/// client another id than the one it sent.
std::optional<double> nearestDouble(std::string_view number);

/// A number without its fraction.
struct Whole {
  uint64_t magnitude = 0;
  bool isNegative = false;
  /// Whether there was no fraction but nought.
  bool isIntegral = true;

  /// The same as a signed integer; nothing when it is outside 64 bits.
  std::optional<int64_t> asInteger() const;

  bool operator==(const Whole&) const = default;
};

/// What a number, written as JSON writes it, is by its digits: a double has sixteen of them, and
/// would make 9007199254740992 of 9007199254740993.0. Nothing when its magnitude exceeds 64 bits.
/// Takes time by its length, whatever its exponent.
std::optional<Whole> wholeByDigits(std::string_view number);

/// The double without its fraction. Nothing outside 64 bits, and for -0x1p63: every number that
/// truncates to that and is kept as a double lies below it.
std::optional<int64_t> truncated(double number);

}  // namespace quillpost::json
