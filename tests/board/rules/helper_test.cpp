#include "board/rules/helper.h"

#include "base/text.h"
#include "json/decoder.h"
#include "json/writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quillpost::board {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(HelperOutput, OfAHundredMegabytesTheLast64KilobytesAreKept) {
  Output output;
  const std::string piece(100'000, 'x');
  for (int i = 0; i < 1000; ++i) {
    addOutput(output, piece);
    ASSERT_LT(output.bytes.size(), 2 * outputKept);
  }
  addOutput(output, "\nthe end\n");
  const std::string text = outputText(output);
  const std::string first = text.substr(0, text.find('\n'));
  EXPECT_EQ(first, text::cat("(", 100'000'009 - outputKept, " earlier bytes are forgotten)"));
  EXPECT_THAT(text, EndsWith("xxx\nthe end"));
  EXPECT_EQ(text.size(), first.size() + outputKept);
}

TEST(HelperOutput, IsShownWithMarksForWhatSteersATerminalAndForWhatIsNoText) {
  Output output;
  addOutput(output, "\x1b[2Jred\r\xff\tend\n\n");
  EXPECT_EQ(outputText(output), "␛[2Jred␍\uFFFD\tend");
}

TEST(HelperOutput, BeginsWithAWholeCharacterWhenSomeIsForgotten) {
  Output output;
  std::string all;
  while (all.size() < outputKept + 2) all += "€";
  addOutput(output, all);
  EXPECT_THAT(outputText(output), HasSubstr("forgotten)\n€€"));
}

TEST(HelperOutput, ItsLastWordsAreItsLastLinesThatSaySomething) {
  Output output;
  EXPECT_EQ(lastOutput(output), "");
  addOutput(output, "one\ntwo\n\n  three\n \x1b[1mfour\n\n");
  EXPECT_EQ(lastOutput(output), "two / three / ␛[1mfour");
  addOutput(output, std::string(10'000, 'y') + "\nthe end");
  EXPECT_THAT(lastOutput(output), StartsWith("yyy"));
  EXPECT_THAT(lastOutput(output), EndsWith("y… / the end"));
  EXPECT_LT(lastOutput(output).size(), 500u);
}

TEST(HelperRecord, IsReadBackAsItWasWritten) {
  Helper helper{"scout", "reads", {"claude", "-p", "{prompt}"}, "/d", {"PATH=/bin"}, true, true};
  EXPECT_EQ(json::decode<Helper>(json::encode(helper)), helper);
  HelperRun run{"s", "KQ4", "scout", "t000001", "a", "AA2", RunState::failed, 7, 42, "b 9", "x"};
  EXPECT_EQ(json::decode<HelperRun>(json::encode(run)), run);
  EXPECT_FALSE(json::decode<Helper>(R"({"id":"scout"})")) << "without a directory";
}

}  // namespace
}  // namespace quillpost::board
