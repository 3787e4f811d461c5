#pragma once

// Ids that stand in the order of their numbers.

#include "base/text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board {

/// The number in decimal with leading zeros, so that texts are in the order of the numbers; as it
/// is when it has more digits.
inline std::string padded(int64_t number, std::size_t digits) {
  const std::string decimal = text::cat(number);
  return std::string(digits - std::min(digits, decimal.size()), '0') + decimal;
}

/// Wide enough for every 64-bit number that is not negative.
inline std::string padded(int64_t number) { return padded(number, 19); }

/// The id of the task of that number, "t" and six digits.
inline std::string taskID(int64_t number) { return "t" + padded(number, 6); }

/// The id of the discussion of that number, "d" and six digits.
inline std::string discussionID(int64_t number) { return "d" + padded(number, 6); }

/// The id of a line of a task's log. Lines of one task stand together and in order.
inline std::string lineID(std::string_view task, int64_t number) {
  return text::cat(task, "/", padded(number, 7));
}

/// An id as the board writes it: t000012 for t12 and for 12, d000003 for d3; what is no such id, as
/// it is.
inline std::string wholeID(std::string_view written) {
  const bool hasLetter = written.starts_with('t') || written.starts_with('d');
  const std::string_view digits = hasLetter ? written.substr(1) : written;
  const bool isNumber = digits.find_first_not_of("0123456789") == std::string_view::npos;
  const std::optional<int64_t> number = isNumber ? text::parseInteger(digits) : std::nullopt;
  if (!number) return std::string(written);
  return written.starts_with('d') ? discussionID(*number) : taskID(*number);
}

}  // namespace quillpost::board
