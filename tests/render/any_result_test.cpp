// Whatever the app answers, the result is valid UTF-8, and JSON where it is meant to be.

#include "base/unicode.h"
#include "harness/dice.h"
#include "harness/plain_text.h"
#include "harness/result_shape.h"
#include "json/record.h"
#include "json/value.h"
#include "model/coding.h"
#include "render/result.h"
#include "render/wait_outcome.h"
#include "tools/tool_name.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using Kind = TeamworkResponse::Kind;
using Profile = TeamworkClientProfile::Profile;

using testing::Dice;

SeatState anyState(Dice& dice) {
  SeatState state;
  dice.fill(state.selfFingerprint);
  dice.fill(state.selfHandle);
  dice.fill(state.lastObligations);
  dice.fill(state.lastAudience);
  dice.fill(state.waitSeq);
  constexpr std::array profiles = {Profile::claude, Profile::codex, Profile::antigravity,
                                   Profile::cursor, Profile::unknown};
  state.clientProfile = profiles.at(dice.below(profiles.size()));
  return state;
}

void expectObject(const std::string& text) {
  const std::optional<json::Tree> tree = json::parse(text);
  ASSERT_TRUE(tree.has_value()) << text;
  EXPECT_TRUE(tree->is_object()) << text;
}

TEST(AnyResult, IsValidTextAndJsonWhereItIsMeantToBe) {
  Dice dice(20240607);
  int objects = 0;
  for (int turn = 0; turn < 2000; ++turn) {
    TeamworkResponse response;
    dice.fill(response);
    constexpr const auto& kinds = json::Names<Kind>::rows;
    response.kind = kinds.at(static_cast<std::size_t>(turn) % kinds.size()).value;
    SeatState state = anyState(dice);
    absorbAnswer(state, response);
    ResultRequest request;
    request.tool = dice.oneOf(toolNames);
    for (std::optional<int64_t>* number :
         {&request.body.offset, &request.body.limit, &request.log.offset, &request.log.limit})
      dice.fill(*number);
    request.includeAll = dice.flip();

    const json::EscapedText result = composeResult(response, request, state);
    const std::string text = testing::plainText(result);
    ASSERT_TRUE(unicode::isValid(text)) << encodeResponse(response).value_or("");
    EXPECT_EQ(result.json() + result.sentences(), text);
    if (testing::isObjectResult(response)) {
      ++objects;
      expectObject(text);
      EXPECT_EQ(result.sentences(), "");
    } else {
      const std::optional<json::Tree> begins = json::parse(result.json());
      EXPECT_EQ(begins && begins->is_array(), response.kind == Kind::agents) << text;
      EXPECT_EQ(result.json().empty(), response.kind != Kind::agents) << text;
      const bool owes = response.obligations && !response.obligations->clear;
      EXPECT_EQ(text.find("\n\nobligations: ") != std::string::npos, owes) << text;
    }
    if (::testing::Test::HasFailure()) return;
  }
  EXPECT_GT(objects, 500);
}

TEST(AnyWaitOutcome, IsAJsonObject) {
  Dice dice(7);
  for (int turn = 0; turn < 2000; ++turn) {
    TeamworkChangeFeed feed;
    dice.fill(feed);
    std::vector<std::string> watching;
    dice.fill(watching);
    WaitOutcome outcome;
    if (dice.flip()) outcome.feed = &feed;
    outcome.watching = watching;
    dice.fill(outcome.heldSeconds);
    dice.fill(outcome.shortenedFrom);
    outcome.timedOut = dice.flip();
    outcome.cannotHoldLong = dice.flip();

    const std::string text = testing::plainText(waitOutcome(outcome, anyState(dice)));
    ASSERT_TRUE(unicode::isValid(text)) << text;
    expectObject(text);
    if (::testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace quillpost
