#include "qp/memory.h"

#include "base/files.h"

#include <gtest/gtest.h>

#include <string>

namespace quillpost {
namespace {

SeatMemory fullMemory() {
  SeatMemory memory;
  memory.threadTag = "T-abc123";
  memory.state.lastSeenRev = 41;
  memory.state.hasCursor = true;
  memory.state.waitSeq = 7;
  memory.state.selfFingerprint = "#a3f9";
  memory.state.selfHandle = "KQ3";
  memory.state.lastObligations.emplace().tasksHeld = {"t000001"};
  memory.state.lastObligations->clear = false;
  memory.state.lastAudience.emplace().shared = true;
  return memory;
}

SeatMemory at(int64_t rev, std::string_view thread = "T-1") {
  SeatMemory memory;
  memory.threadTag = thread;
  memory.state.lastSeenRev = rev;
  memory.state.hasCursor = true;
  return memory;
}

int64_t revisionOf(const SeatMemory& kept, const SeatMemory& before, const SeatMemory& after) {
  return merged(kept, {.before = before, .after = after}).state.lastSeenRev;
}

TEST(Memory, ComesBackAsItWasWritten) {
  const SeatMemory memory = fullMemory();
  const std::optional<SeatMemory> back = decodeMemory(encodeMemory(memory));
  ASSERT_TRUE(back);
  EXPECT_TRUE(isSame(*back, memory));
  EXPECT_EQ(back->state.lastSeenRev, 41);
  EXPECT_TRUE(back->state.hasCursor);
  EXPECT_EQ(back->state.waitSeq, 7);
  EXPECT_EQ(back->state.selfFingerprint, "#a3f9");
  EXPECT_EQ(back->state.selfHandle, "KQ3");
  EXPECT_EQ(back->state.lastObligations, memory.state.lastObligations);
  EXPECT_EQ(back->state.lastAudience, memory.state.lastAudience);
  EXPECT_EQ(back->threadTag, "T-abc123");
}

TEST(Memory, OfAnEmptySeatComesBackEmpty) {
  const std::optional<SeatMemory> back = decodeMemory(encodeMemory({}));
  ASSERT_TRUE(back);
  EXPECT_FALSE(back->state.hasCursor);
  EXPECT_EQ(back->state.selfHandle, std::nullopt);
  EXPECT_EQ(back->state.lastObligations, std::nullopt);
}

TEST(Memory, ThatIsMalformedOrOfAnotherVersionIsNone) {
  const std::string good = encodeMemory(fullMemory());
  EXPECT_FALSE(decodeMemory("{}"));
  EXPECT_FALSE(decodeMemory("[]"));
  for (std::size_t length = 0; length < good.size(); ++length)
    EXPECT_FALSE(decodeMemory(good.substr(0, length))) << length;
  const auto with = [&](std::string_view from, std::string_view to) {
    std::string text = good;
    text.replace(text.find(from), from.size(), to);
    return text;
  };
  EXPECT_FALSE(decodeMemory(with("\"version\":1", "\"version\":2")));
  EXPECT_FALSE(decodeMemory(with("\"rev\":41", "\"rev\":\"41\"")));
  EXPECT_FALSE(decodeMemory(with("\"waits\":7", "\"waits\":-7")));
}

TEST(Memory, StaysSmallWhateverIsOwed) {
  SeatMemory memory = fullMemory();
  memory.state.lastObligations->tasksHeld.assign(200'000, "t000001");
  const std::string text = encodeMemory(memory);
  EXPECT_LT(text.size(), files::smallFileLimit);
  const std::optional<SeatMemory> back = decodeMemory(text);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->state.lastObligations, std::nullopt);
  EXPECT_EQ(back->state.lastSeenRev, 41);
}

TEST(Memory, TakesTheRevisionOfAnotherThreadWhateverItIs) {
  EXPECT_EQ(revisionOf(at(10), at(10), at(12)), 12);
  EXPECT_EQ(revisionOf(at(15), at(10), at(12)), 15) << "a quicker command has seen more";
  EXPECT_EQ(revisionOf({}, {}, at(3)), 3);
  EXPECT_EQ(revisionOf(at(400, "T-1"), at(400, "T-1"), at(5, "T-2")), 5);
  EXPECT_EQ(revisionOf(at(9, "T-2"), at(400, "T-1"), at(5, "T-2")), 9);
  EXPECT_EQ(revisionOf(at(10), at(10), at(3, "")), 3)
      << "a board that tells no tag may go back too";
  EXPECT_EQ(revisionOf(at(12), at(10), at(11, "")), 12) << "and is no other board for that";
}

TEST(Memory, TakesTheThreadOfTheCommandWhenItIsKnown) {
  const auto threadOf = [](const SeatMemory& kept, const SeatMemory& after) {
    return merged(kept, {.before = kept, .after = after}).threadTag;
  };
  EXPECT_EQ(threadOf(at(10, "T-1"), at(10, "T-2")), "T-2");
  EXPECT_EQ(threadOf(at(10, "T-1"), at(10, "")), "T-1");
}

TEST(Memory, LearnsWhatTheCommandLearntAndNothingElse) {
  SeatMemory before = fullMemory(), kept = fullMemory(), after = fullMemory();
  kept.state.selfHandle = "NEW";
  after.state.lastSeenRev = 50;
  const SeatMemory result = merged(kept, {.before = before, .after = after});
  EXPECT_EQ(result.state.selfHandle, "NEW");
  EXPECT_EQ(result.state.lastSeenRev, 50);
}

}  // namespace
}  // namespace quillpost
