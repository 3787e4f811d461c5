#pragma once

// A reader of the program's words who keeps them, and may go away.

#include "base/output.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::testing {

/// Keeps what was written.
class FakeOutput final : public Output {
 public:
  bool write(std::string_view message) override {
    if (message.empty()) return true;
    if (leavesAfter == 0) return false;
    --leavesAfter;
    ++writes;
    text += message;
    return true;
  }

  std::string text;
  int64_t writes = 0;
  /// How many messages he reads before he goes.
  int64_t leavesAfter = INT64_MAX;
};

}  // namespace quillpost::testing
