#include "harness/chance.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillpost::testing {
namespace {

/// The run that the test's own one is put back for.
struct Chance : ::testing::Test {
  ~Chance() override { chanceRun() = usual; }
  const ChanceRun usual = chanceRun();
};

/// What the last run of `playFrom` played.
std::vector<uint64_t>& played() {
  static std::vector<uint64_t> seeds;
  return seeds;
}

/// Counts each seed; in that of 7 something is wrong.
std::optional<std::string> play(uint64_t seed, Tally& tally, std::string* trace) {
  played().push_back(seed);
  ++tally["sessions"];
  if (trace != nullptr) *trace = "what happened";
  return seed == 7 ? std::optional<std::string>("seven") : std::nullopt;
}

void playFrom(uint64_t seed, std::optional<uint64_t> sessions) {
  played().clear();
  chanceRun() = {.seed = seed, .sessions = sessions};
  Tally tally;
  EXPECT_EQ(playByChance(3, tally, play), sessions.value_or(3));
  EXPECT_EQ(tally["sessions"], static_cast<int64_t>(played().size()));
}

TEST_F(Chance, PlaysAsManySessionsAsAreUsualOrToldEachBySeed) {
  playFrom(1, std::nullopt);
  EXPECT_EQ(played(), (std::vector<uint64_t>{1, 2, 3}));
  playFrom(8, 2);
  EXPECT_EQ(played(), (std::vector<uint64_t>{8, 9}));
  playFrom(3, 1);
  EXPECT_EQ(played(), (std::vector<uint64_t>{3}));
}

TEST_F(Chance, EndsWithTheFirstThatIsWrongAndTellsHowToPlayItAgain) {
  EXPECT_NONFATAL_FAILURE(playFrom(6, 5), "seven\nagain with --seed=7 --sessions=1\nwhat happened");
  EXPECT_EQ(played(), (std::vector<uint64_t>{6, 7, 7}));
}

}  // namespace
}  // namespace quillpost::testing
