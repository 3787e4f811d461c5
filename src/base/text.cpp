#include "base/text.h"

#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace quillpost::text {

namespace {

/// Room for the longest 64-bit integer: a sign and twenty digits.
constexpr std::size_t longestInteger = 21;

using Limits = std::numeric_limits<int64_t>;

}  // namespace

void append(std::string& out, int64_t number) {
  std::array<char, longestInteger> digits;
  out.append(digits.data(),
             std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void append(std::string& out, uint64_t number) {
  std::array<char, longestInteger> digits;
  out.append(digits.data(),
             std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

std::vector<std::string_view> split(std::string_view whole, char separator) {
  std::vector<std::string_view> pieces;
  for (std::size_t end = whole.find(separator); end != std::string_view::npos;
       end = whole.find(separator)) {
    pieces.push_back(whole.substr(0, end));
    whole.remove_prefix(end + 1);
  }
  pieces.push_back(whole);
  return pieces;
}

std::optional<int64_t> parseInteger(std::string_view digits) {
  // The library reads "-5" but not "+5", and must not be handed the rest of "+-5".
  if (digits.starts_with('+')) {
    digits.remove_prefix(1);
    if (digits.starts_with('-')) return std::nullopt;
  }
  int64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const std::from_chars_result read = std::from_chars(digits.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

int64_t saturatingAdd(int64_t a, int64_t b) {
  if (b > 0 && a > Limits::max() - b) return Limits::max();
  if (b < 0 && a < Limits::min() - b) return Limits::min();
  return a + b;
}

int64_t saturatingSubtract(int64_t a, int64_t b) {
  if (b < 0 && a > Limits::max() + b) return Limits::max();
  if (b > 0 && a < Limits::min() + b) return Limits::min();
  return a - b;
}

}  // namespace quillpost::text
