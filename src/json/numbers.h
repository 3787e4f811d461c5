#pragma once

// Numbers as doubles, and doubles that stand for 64-bit integers.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::json {

/// The double nearest to a number written as JSON writes it; nothing when it is too large for one.
/// The parser's own conversion is quicker and often misses by the last digit, which would give a
/// client another id than the one it sent.
inline std::optional<double> nearestDouble(std::string_view number) {
  const double nearest = std::strtod(std::string(number).c_str(), nullptr);
  return std::isfinite(nearest) ? std::optional(nearest) : std::nullopt;
}

/// The number without its fraction; nothing when that is outside 64 bits or not a number.
inline std::optional<int64_t> truncated(double number) {
  constexpr double limit = 0x1p63;  // the first double that no longer fits
  const double whole = std::trunc(number);
  if (!(whole >= -limit && whole < limit)) return std::nullopt;
  return static_cast<int64_t>(whole);
}

/// The integer that `number` is; nothing when it has a fraction or is outside 64 bits.
inline std::optional<int64_t> integralValue(double number) {
  return std::trunc(number) == number ? truncated(number) : std::nullopt;
}

}  // namespace quillpost::json
