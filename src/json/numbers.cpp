#include "json/numbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace quillpost::json {
namespace {

/// What stands behind an "e", which the parser has seen to fit 32 bits; 0 when there is none.
int64_t exponentOf(std::string_view number) {
  const std::size_t letter = number.find_first_of("eE");
  if (letter == std::string_view::npos) return 0;
  std::string_view digits = number.substr(letter + 1);
  if (digits.starts_with('+')) digits.remove_prefix(1);
  int64_t exponent = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
  return exponent;
}

/// Puts one more digit at the end of a magnitude. False when it then exceeds 64 bits.
bool appendDigit(uint64_t& magnitude, uint64_t digit) {
  constexpr uint64_t base = 10;
  if (magnitude > (std::numeric_limits<uint64_t>::max() - digit) / base) return false;
  magnitude = magnitude * base + digit;
  return true;
}

}  // namespace

std::optional<double> nearestDouble(std::string_view number) {
  const double nearest = std::strtod(std::string(number).c_str(), nullptr);
  return std::isfinite(nearest) ? std::optional(nearest) : std::nullopt;
}

std::optional<int64_t> Whole::asInteger() const {
  constexpr uint64_t highest = std::numeric_limits<int64_t>::max();
  if (magnitude > highest + (isNegative ? 1 : 0)) return std::nullopt;
  return static_cast<int64_t>(isNegative ? 0 - magnitude : magnitude);
}

std::optional<Whole> wholeByDigits(std::string_view number) {
  Whole whole{.isNegative = number.starts_with('-')};
  if (whole.isNegative) number.remove_prefix(1);
  const std::string_view digits = number.substr(0, number.find_first_of("eE"));
  // How many digits are still left of the point once the exponent has moved it.
  int64_t left =
      exponentOf(number) + static_cast<int64_t>(digits.substr(0, digits.find('.')).size());
  for (const char letter : digits) {
    if (letter == '.') continue;
    const auto digit = static_cast<uint64_t>(letter - '0');
    if (left-- <= 0) {
      whole.isIntegral = whole.isIntegral && digit == 0;
    } else if (!appendDigit(whole.magnitude, digit)) {
      return std::nullopt;
    }
  }
  // Nought stays nought, and anything else soon exceeds its limit, however large the exponent.
  for (; left > 0 && whole.magnitude != 0; --left)
    if (!appendDigit(whole.magnitude, 0)) return std::nullopt;
  return whole;
}

std::optional<int64_t> truncated(double number) {
  constexpr double limit = 0x1p63;
  if (!(number > -limit && number < limit)) return std::nullopt;
  return static_cast<int64_t>(number);
}

}  // namespace quillpost::json
