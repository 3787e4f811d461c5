#include "board/rules/ask.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

TEST(Asks, APlainQuestionHasNoMarker) {
  const Ask ask = splitAsk("Which?");
  EXPECT_FALSE(ask.payload);
  EXPECT_EQ(ask.question, "Which?");
}

TEST(Asks, AMarkerIsTakenOffEvenWhenItHoldsItsOwnEnd) {
  const Ask ask = splitAsk(R"([[ask:{"k":"decision","o":["a ]] b","c"]}]] Which?)");
  ASSERT_TRUE(ask.payload);
  EXPECT_EQ(ask.payload->k, "decision");
  EXPECT_THAT(*ask.payload->o, ElementsAre("a ]] b", "c"));
  EXPECT_EQ(ask.question, "Which?");
}

TEST(Asks, ABrokenMarkerIsPartOfTheQuestion) {
  for (const char* text : {"[[ask:{}]] Which?", "[[ask:nonsense]] Which?", "[[ask:"}) {
    EXPECT_FALSE(splitAsk(text).payload) << text;
    EXPECT_EQ(splitAsk(text).question, text);
  }
}

TEST(Asks, AnOptionMayBeAnsweredByItsNumber) {
  const Ask ask = splitAsk(R"([[ask:{"k":"decision","o":["red","blue"]}]] Which?)");
  EXPECT_EQ(spellOut(ask, "2"), "blue");
  EXPECT_EQ(spellOut(ask, "3"), "3");
  EXPECT_EQ(spellOut(ask, "0"), "0");
  EXPECT_EQ(spellOut(ask, "green"), "green");
  EXPECT_EQ(spellOut(splitAsk("How many?"), "2"), "2");
}

}  // namespace
}  // namespace quillpost::board
