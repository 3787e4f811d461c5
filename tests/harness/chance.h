#pragma once

// Tests that play sessions by chance: which they play, and what they tell of them. A test program
// takes `--seed=N` and `--sessions=N` for another run than the usual one.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace quillpost::testing {

/// How often each thing happened in the sessions.
using Tally = std::map<std::string, int64_t, std::less<>>;

/// Which sessions this run plays, each by the seed after the last one's: as many as are usual for a
/// test, until the main function is told another number (harness/main.cpp).
struct ChanceRun {
  uint64_t seed = 1;
  std::optional<uint64_t> sessions;
};
ChanceRun& chanceRun();

/// Plays the sessions of this run, `usual` of them unless it was told otherwise, up to the first in
/// which something is wrong; prints what was counted, and of a single one what happened.
/// `playSession` takes a seed, a Tally and where to write what happens (nowhere when null), and
/// says what was wrong. How many were to be played.
template <class PlaySession>
uint64_t playByChance(uint64_t usual, Tally& tally, PlaySession playSession) {
  const uint64_t first = chanceRun().seed;
  const uint64_t sessions = chanceRun().sessions.value_or(usual);
  std::printf("seeds %llu to %llu\n", static_cast<unsigned long long>(first),
              static_cast<unsigned long long>(first + sessions - 1));
  for (uint64_t seed = first; seed < first + sessions; ++seed) {
    std::string trace;
    const std::optional<std::string> wrong =
        playSession(seed, tally, sessions == 1 ? &trace : nullptr);
    if (wrong) {
      if (trace.empty()) playSession(seed, tally, &trace);
      ADD_FAILURE() << *wrong << "\nagain with --seed=" << seed << " --sessions=1\n" << trace;
      break;
    }
    if (!trace.empty()) std::puts(trace.c_str());
  }
  for (const auto& [what, count] : tally)
    std::printf("%10lld %s\n", static_cast<long long>(count), what.c_str());
  return sessions;
}

}  // namespace quillpost::testing
