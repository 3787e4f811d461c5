// Whole sessions by chance on virtual time. At every step the judge holds them to what must never
// break: one answer for each request, in order; whole JSON lines; waits, heartbeats and progress in
// time; the cursor as the app said it; no token shown; no memory gathered.
//
//   simulation_test                           the sessions of every change
//   simulation_test --sessions=1000000        a longer run
//   simulation_test --seed=N --sessions=1     one session again; tells what happened in it

#include "harness/chance.h"
#include "harness/sanitized.h"
#include "simulation/session.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::simulation {
namespace {

/// As many are played with every change.
constexpr uint64_t usualSessions = QUILLPOST_SANITIZED ? 1'000 : 20'000;

TEST(Simulation, BreaksNoRuleInAnySession) {
  Tally tally;
  testing::playByChance(usualSessions, tally, playSession);
}

TEST(Simulation, ReachesEveryEndOfCallsAndWaits) {
  Tally tally;
  constexpr uint64_t sessions = 600;
  for (uint64_t seed = 1; seed <= sessions; ++seed) playSession(seed, tally);
  for (const std::string_view what :
       {"answers", "calls answered", "calls not reached", "calls refused", "calls without a token",
        "clients gone", "errors", "heartbeats", "polls", "progress notes", "waits ended by news",
        "waits ended in words", "waits held to their end", "waits outside a Thread"}) {
    EXPECT_GT(tally[std::string(what)], 0) << what;
  }
}

TEST(Simulation, IsTheSameForTheSameSeed) {
  Tally tally;
  for (const uint64_t seed : {uint64_t{3}, uint64_t{77}, uint64_t{1234567}}) {
    std::string one, two;
    playSession(seed, tally, &one);
    playSession(seed, tally, &two);
    EXPECT_EQ(one, two) << seed;
    EXPECT_NE(one, "") << seed;
  }
}

}  // namespace
}  // namespace quillpost::simulation
