#include "harness/golden_text.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace quillpost::testing {
namespace {

TEST(GoldenText, IsQuotedByNameInAPattern) {
  const std::string text = goldenText("access");
  ASSERT_NE(text, "");
  EXPECT_EQ(expanded("{{access}}|{{access}}."), text + "|" + text + ".");
  EXPECT_EQ(expanded("{ {access} }"), "{ {access} }");
}

TEST(GoldenText, IsEscapedInJson) {
  const std::string text = goldenText("serverInstructions");
  ASSERT_NE(text.find('\n'), std::string::npos) << "a text of several lines is needed";
  EXPECT_EQ(expanded("{{serverInstructions}}", Quoting::json).find('\n'), std::string::npos);
}

TEST(GoldenText, OfAnUnknownNameIsAFailure) {
  EXPECT_NONFATAL_FAILURE(goldenText("no such"), "no such is no golden text");
  EXPECT_NONFATAL_FAILURE(expanded("a {{no such"), "no such is no golden text");
}

TEST(GoldenText, StandsForItselfInJsonWhenItIsLong) {
  const std::string pattern = R"({"text":"\"{{serverInstructions}}\n{{hint of add_task}}"})";
  const std::string json = expanded(pattern, Quoting::json);
  EXPECT_GT(json.size(), 3000U);
  EXPECT_EQ(abbreviatedJson(json), pattern);
}

}  // namespace
}  // namespace quillpost::testing
