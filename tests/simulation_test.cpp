// Whole sessions by chance on virtual time. At every step the judge holds them to what must never
// break: one answer for each request, in order; whole JSON lines; waits, heartbeats and progress in
// time; the cursor as the app said it; no token shown; no memory gathered.
//
//   simulation_test                           the sessions of every change
//   simulation_test --sessions=1000000        a longer run
//   simulation_test --seed=N --sessions=1     one session again; tells what happened in it

#include "base/text.h"
#include "harness/sanitized.h"
#include "simulation/session.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::simulation {
namespace {

/// Which sessions are played: `sessions` of them, each by the seed after the last one's.
struct Run {
  uint64_t seed = 1;
  uint64_t sessions = QUILLPOST_SANITIZED ? 4'000 : 20'000;
};
Run run;

TEST(Simulation, BreaksNoRuleInAnySession) {
  std::printf("seeds %llu to %llu\n", static_cast<unsigned long long>(run.seed),
              static_cast<unsigned long long>(run.seed + run.sessions - 1));
  Tally tally;
  for (uint64_t seed = run.seed; seed < run.seed + run.sessions; ++seed) {
    const std::optional<std::string> wrong = playSession(seed, tally);
    if (wrong) {
      std::string trace;
      playSession(seed, tally, &trace);
      ADD_FAILURE() << *wrong << "\nagain with --seed=" << seed << " --sessions=1\n" << trace;
      break;
    }
  }
  if (run.sessions == 1) {
    std::string trace;
    playSession(run.seed, tally, &trace);
    std::puts(trace.c_str());
  }
  for (const auto& [what, count] : tally)
    std::printf("%10lld %s\n", static_cast<long long>(count), what.c_str());
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

/// Takes our own flags. False for one that nobody knows.
static bool readFlags(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    const std::string_view flag = arguments[i];
    const std::size_t equals = flag.find('=');
    const std::optional<int64_t> number =
        text::parseInteger(equals == std::string_view::npos ? "" : flag.substr(equals + 1));
    if (!number || *number < 0) return false;
    if (flag.starts_with("--seed=")) {
      run.seed = static_cast<uint64_t>(*number);
    } else if (flag.starts_with("--sessions=")) {
      run.sessions = static_cast<uint64_t>(*number);
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace quillpost::simulation

int main(int count, char** arguments) {
  ::testing::InitGoogleTest(&count, arguments);
  if (!quillpost::simulation::readFlags(count, arguments)) {
    std::fputs("usage: simulation_test [--seed=N] [--sessions=N]\n", stderr);
    return 2;
  }
  return RUN_ALL_TESTS();
}
