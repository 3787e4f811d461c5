#include "harness/fake_clock.h"

#include <gtest/gtest.h>

#include <chrono>

namespace quillpost::testing {
namespace {

using namespace std::chrono_literals;

TEST(FakeClock, StandsStillUntilItIsMoved) {
  FakeClock clock;
  const Instant start = clock.now();
  EXPECT_EQ(clock.now(), start);
  clock.advance(3s);
  EXPECT_EQ(clock.now() - start, 3s);
  EXPECT_EQ(clock.elapsed(), 3s);
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST(FakeClock, MovesByEachSleepAndWritesItDown) {
  FakeClock clock;
  clock.sleepFor(150ms);
  clock.sleepFor(2s);
  EXPECT_EQ(clock.elapsed(), 2150ms);
  EXPECT_EQ(clock.sleeps, (std::vector<Duration>{150ms, 2s}));
}

TEST(FakeClock, NeverMovesBack) {
  FakeClock clock;
  clock.advance(1s);
  clock.sleepFor(-5s);
  EXPECT_EQ(clock.elapsed(), 1s);
  EXPECT_EQ(clock.sleeps, (std::vector<Duration>{-5s}));
}

}  // namespace
}  // namespace quillpost::testing
