#pragma once

// Time that moves only when somebody lets it.

#include "base/clock.h"

#include <algorithm>
#include <vector>

namespace quillpost::testing {

/// A clock that stands still except for sleeps and `advance`. Starts at its zero.
class FakeClock final : public Clock {
 public:
  Instant now() override { return now_; }
  void sleepFor(Duration duration) override {
    sleeps.push_back(duration);
    advance(duration);
  }

  /// Lets time pass; a zero or negative duration changes nothing.
  void advance(Duration duration) { now_ += std::max(duration, Duration::zero()); }

  /// How long it has run since its zero.
  Duration elapsed() const { return now_.time_since_epoch(); }

  /// Every sleep asked for, in order, as it was asked for.
  std::vector<Duration> sleeps;

 private:
  Instant now_{};
};

}  // namespace quillpost::testing
