#include "base/clock.h"

#include <gtest/gtest.h>

#include <array>

namespace quillpost {
namespace {

using namespace std::chrono_literals;

TEST(SteadyClock, NeverGoesBack) {
  SteadyClock clock;
  Instant last = clock.now();
  for (int reading = 0; reading < 1000; ++reading) {
    const Instant next = clock.now();
    ASSERT_GE(next, last) << "reading " << reading;
    last = next;
  }
}

TEST(SteadyClock, LetsAtLeastTheDurationPass) {
  SteadyClock clock;
  // One microsecond is the only real time that any unit test waits for.
  const Instant before = clock.now();
  clock.sleepFor(1us);
  EXPECT_GE(clock.now() - before, 1us);
}

TEST(SteadyClock, ReturnsAtOnceWhenThereIsNothingToWaitFor) {
  SteadyClock clock;
  for (const Duration duration : std::array<Duration, 3>{0ns, -1ns, -24h}) {
    const Instant before = clock.now();
    clock.sleepFor(duration);
    EXPECT_LT(clock.now() - before, 1min) << duration.count() << " ns";
  }
}

}  // namespace
}  // namespace quillpost
