#pragma once

// Time comes into the program through this door and nowhere else, so that a test can move it.

#include <chrono>
#include <thread>

namespace quillpost {

using Duration = std::chrono::nanoseconds;
/// A point on a clock that only moves forward; its zero has no meaning.
using Instant = std::chrono::time_point<std::chrono::steady_clock, Duration>;

/// Tells the time and lets it pass.
struct Clock {
  virtual ~Clock() = default;
  /// The present instant; never earlier than one given before.
  virtual Instant now() = 0;
  /// Blocks the calling thread for at least `duration`; at once when it is zero or negative.
  virtual void sleepFor(Duration duration) = 0;
};

/// The machine's monotonic clock.
struct SteadyClock final : Clock {
  Instant now() override { return std::chrono::steady_clock::now(); }
  void sleepFor(Duration duration) override { std::this_thread::sleep_for(duration); }
};

}  // namespace quillpost
