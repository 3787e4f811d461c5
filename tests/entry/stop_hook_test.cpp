#include "entry/stop_hook.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <vector>

namespace quillpost {
namespace {

using Kind = TeamworkResponse::Kind;

/// Gives one answer and keeps what it was sent.
struct OneAnswer final : Bridge {
  std::string currentToken() override { return token; }
  std::optional<TeamworkResponse> send(const TeamworkRequest& request) override {
    sent.push_back(request);
    return answer;
  }
  std::size_t lastReplyBytes() const override { return 0; }

  std::string token = "t0k";
  std::optional<TeamworkResponse> answer;
  std::vector<TeamworkRequest> sent;
};

std::optional<TeamworkResponse> answerOf(Kind kind, std::optional<bool> wakePending) {
  TeamworkResponse response;
  response.kind = kind;
  response.wakePending = wakePending;
  return response;
}

const HookResult silent{0, ""};

TEST(StopHook, AsksWithNothingButTheEnvelope) {
  OneAnswer bridge;
  runStopHook("S1", bridge);
  TeamworkRequest expected;
  expected.protocolVersion = 1;
  expected.token = "t0k";
  expected.sessionID = "S1";
  expected.method = "wake_query";
  ASSERT_EQ(bridge.sent.size(), 1u);
  EXPECT_TRUE(bridge.sent.front() == expected);
}

TEST(StopHook, KeepsTheAgentGoingOnlyForAWakeThatIsPending) {
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
    OneAnswer bridge;
    bridge.answer = row.answer;
    const HookResult result = runStopHook("S1", bridge);
    EXPECT_EQ(result.status, row.keepsGoing ? 2 : 0);
    EXPECT_EQ(result.line.empty(), !row.keepsGoing);
    // One question, whatever came of it.
    EXPECT_EQ(bridge.sent.size(), 1u);
  }
}

TEST(StopHook, SaysExactlyOneLine) {
  OneAnswer bridge;
  bridge.answer = answerOf(Kind::wake, true);
  EXPECT_EQ(runStopHook("S1", bridge).line,
            "Quillpost hook, automatic: board changed, call wait_for_changes, act on wakeReasons, "
            "then keep listening\n");
  EXPECT_EQ(runStopHook("S1", bridge).line.size(), 105u);
}

TEST(StopHook, AsksNothingWithoutASessionOrAToken) {
  OneAnswer bridge;
  bridge.answer = answerOf(Kind::wake, true);
  EXPECT_EQ(runStopHook("", bridge), silent);
  bridge.token = "";
  EXPECT_EQ(runStopHook("S1", bridge), silent);
  EXPECT_TRUE(bridge.sent.empty());
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
