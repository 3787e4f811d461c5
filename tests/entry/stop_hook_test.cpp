#include "entry/stop_hook.h"

#include "harness/fake_bridge.h"
#include "harness/fake_environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <vector>

namespace quillpost {
namespace {

using testing::FakeAnswer;
using testing::FakeBridge;
using testing::FakeClock;
using Kind = TeamworkResponse::Kind;

std::optional<TeamworkResponse> answerOf(Kind kind, std::optional<bool> wakePending) {
  TeamworkResponse response;
  response.kind = kind;
  response.wakePending = wakePending;
  return response;
}

const HookResult silent{0, ""};

struct StopHook : ::testing::Test {
  FakeClock clock;
  FakeBridge bridge{clock};
  const testing::FakeEnvironment environment{};
  Seat seat{.doors = {.clock = clock, .environment = environment, .bridge = bridge},
            .sessionID = "S1"};
};

TEST_F(StopHook, AsksOnceWithNothingButTheEnvelope) {
  runStopHook(seat);
  EXPECT_EQ(bridge.requests,
            std::vector<std::string>{
                R"({"protocolVersion":1,"token":"tok","sessionID":"S1","method":"wake_query"})"});
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST_F(StopHook, KeepsTheAgentGoingOnlyForAWakeThatIsPending) {
  struct Row {
    const char* name;
    std::optional<TeamworkResponse> answer;
    bool keepsGoing;
  };
  const Row rows[] = {
      {"a pending wake", answerOf(Kind::wake, true), true},
      {"no pending wake", answerOf(Kind::wake, false), false},
      {"a wake that says nothing", answerOf(Kind::wake, std::nullopt), false},
      {"changes, though pending", answerOf(Kind::changes, true), false},
      {"an error, though pending", answerOf(Kind::error, true), false},
      {"empty, though pending", answerOf(Kind::empty, true), false},
      {"no answer", std::nullopt, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    bridge.requests.clear();
    bridge.otherwise = [&](const TeamworkRequest&) { return FakeAnswer{.response = row.answer}; };
    const HookResult result = runStopHook(seat);
    EXPECT_EQ(result.status, row.keepsGoing ? 2 : 0);
    EXPECT_EQ(result.line.empty(), !row.keepsGoing);
    EXPECT_EQ(bridge.requests.size(), 1u) << "one question, whatever came of it";
  }
}

TEST_F(StopHook, SaysExactlyOneLine) {
  bridge.answers("wake_query", *answerOf(Kind::wake, true));
  const std::string_view line = runStopHook(seat).line;
  EXPECT_EQ(line,
            "Quillpost hook, automatic: board changed, call wait_for_changes, act on wakeReasons, "
            "then keep listening\n");
  EXPECT_EQ(line.size(), 105u);
}

TEST_F(StopHook, AsksNothingWithoutASessionOrAToken) {
  bridge.otherwise = [](const TeamworkRequest&) {
    return FakeAnswer{.response = answerOf(Kind::wake, true)};
  };
  bridge.token = "";
  EXPECT_EQ(runStopHook(seat), silent);
  bridge.token = "tok";
  seat.sessionID = "";
  EXPECT_EQ(runStopHook(seat), silent);
  EXPECT_TRUE(bridge.requests.empty());
}

/// Gives its pieces one after the other, then the end.
struct PieceInput final : Input {
  std::size_t read(std::span<char> room) override {
    ++reads;
    if (pieces.empty()) return 0;
    const std::size_t size = std::min(pieces.front(), room.size());
    pieces.front() -= size;
    if (pieces.front() == 0) pieces.pop_front();
    return size;
  }

  bool comesWithin(Duration /*atMost*/) override { return true; }

  std::deque<std::size_t> pieces;
  int reads = 0;
};

TEST(Drain, ReadsToTheEndAndNoFurther) {
  PieceInput input;
  input.pieces = {1, 10'000'000, 3};
  drain(input);
  EXPECT_TRUE(input.pieces.empty());
  const int reads = input.reads;
  drain(input);
  EXPECT_EQ(input.reads, reads + 1);
}

}  // namespace
}  // namespace quillpost
