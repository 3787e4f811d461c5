#pragma once

// Doubles that stand for 64-bit integers.

#include <cmath>
#include <cstdint>
#include <optional>

namespace quillpost::json {

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
