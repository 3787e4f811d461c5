#pragma once

// The ends of the integers that a record can hold.

#include <cstdint>
#include <limits>

namespace quillpost::testing {

inline constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
inline constexpr int64_t highest = std::numeric_limits<int64_t>::max();

}  // namespace quillpost::testing
