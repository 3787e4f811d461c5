#include "board/rules/ask.h"

#include "base/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

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

TEST(Asks, EachPartOfAMarkerIsCutWithANotice) {
  const std::string fits = R"([[ask:{"k":"review","a":"a/b","o":["red"]}]] Which?)";
  std::string notice;
  EXPECT_EQ(cutAsk(fits, notice), fits);
  EXPECT_EQ(cutAsk("Which?", notice), "Which?");
  EXPECT_EQ(notice, "");
  const std::string large(1 << 20, 'x');
  for (const auto& [part, word] : {std::pair("a", "artifact"),
                                   {"c", "consequence"},
                                   {"s", "secret"},
                                   {"o", "blockerOptions"}}) {
    const bool isList = *part == 'o';
    notice.clear();
    const std::string kept =
        cutAsk(text::cat(R"([[ask:{"k":"secret",")", part, R"(":)", isList ? "[" : "", "\"", large,
                         "\"", isList ? "]" : "", "}]] Which?"),
               notice);
    EXPECT_LT(kept.size(), 2100u) << part;
    EXPECT_EQ(splitAsk(kept).question, "Which?") << part;
    EXPECT_TRUE(isForSecret(splitAsk(kept))) << part;
    EXPECT_THAT(notice, ::testing::HasSubstr(word));
  }
}

TEST(Asks, AnOptionMayBeAnsweredByItsNumber) {
  const Ask ask = splitAsk(R"([[ask:{"k":"decision","o":["red","blue"]}]] Which?)");
  EXPECT_EQ(spellOut(ask, "2"), "blue");
  EXPECT_EQ(spellOut(ask, "3"), std::nullopt);
  EXPECT_EQ(spellOut(ask, "0"), std::nullopt);
  EXPECT_EQ(spellOut(ask, "green"), "green");
  EXPECT_EQ(spellOut(splitAsk("How many?"), "2"), "2");
  EXPECT_EQ(spellOut(splitAsk(R"([[ask:{"k":"decision","o":["80","443"]}]] Port?)"), "443"), "443");
  EXPECT_EQ(numbered(*ask.payload->o), "1) red, 2) blue");
}

}  // namespace
}  // namespace quillpost::board
