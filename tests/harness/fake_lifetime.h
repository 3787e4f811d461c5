#pragma once

// Whoever waits, as a test has it: there until it says otherwise.

#include "qp/lifetime.h"

#include <cstdint>

namespace quillpost::testing {

/// Gone after so many questions; there for ever unless a test says otherwise.
class FakeLifetime final : public Lifetime {
 public:
  void begin() override { ++begun; }
  bool isOver() override { return asked++ >= leavesAfter; }
  bool isUnread() const override { return unread; }

  int64_t leavesAfter = INT64_MAX;
  int64_t asked = 0;
  int64_t begun = 0;
  bool unread = false;
};

}  // namespace quillpost::testing
