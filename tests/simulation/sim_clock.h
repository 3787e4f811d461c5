#pragma once

// Virtual time that runs in order except when the machine sleeps in between.

#include "base/clock.h"
#include "harness/dice.h"

#include <algorithm>
#include <chrono>

namespace quillpost::simulation {

using testing::Dice;

/// Moves by sleeps and by `advance`, and, while it may, by jumps ahead that nobody asked for.
class SimClock final : public Clock {
 public:
  explicit SimClock(Dice& dice) : dice_(dice) {}

  Instant now() override {
    if (mayJump && dice_.oneIn(400)) jump();
    return now_;
  }
  void sleepFor(Duration duration) override {
    lastSleep_ = duration;
    advance(duration);
    if (dice_.oneIn(100)) jump();
  }

  /// Lets time pass as whatever is under way takes it.
  void advance(Duration duration) { now_ += std::max(duration, Duration::zero()); }

  /// The present instant, without a chance that it moves.
  Instant instant() const { return now_; }
  /// How much time has run in order: the jumps are not counted, so that what must happen within
  /// some seconds can be held to them.
  Duration ran() const { return now_.time_since_epoch() - jumped_; }
  Duration lastSleep() const { return lastSleep_; }

  /// Whether the clock may jump when it is merely looked at.
  bool mayJump = false;

 private:
  void jump() {
    const Duration by =
        std::chrono::milliseconds(1 + static_cast<int64_t>(dice_.below(10'000'000)));
    now_ += by;
    jumped_ += by;
  }

  Dice& dice_;
  Instant now_{};
  Duration jumped_{};
  Duration lastSleep_{};
};

}  // namespace quillpost::simulation
