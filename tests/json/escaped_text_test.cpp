#include "json/escaped_text.h"

#include "json/writer.h"

#include <gtest/gtest.h>

namespace quillpost::json {
namespace {

TEST(EscapedText, KnowsTheJsonThatItBeginsWith) {
  EscapedText both;
  Array(both).add("a\"\\\n\x01é😀");
  both.append("\n\nsaid \"so\"").append(" twice");
  { Object(both).add("later", true); }
  EXPECT_EQ(both.json(), R"(["a\"\\\n\u0001é😀"])");
  EXPECT_EQ(both.sentences(), "\n\nsaid \"so\" twice{\"later\":true}");

  EscapedText whole;
  Object(whole).add("key", "value");
  EXPECT_EQ(whole.json(), R"({"key":"value"})");
  EXPECT_EQ(whole.sentences(), "");

  const EscapedText sentence(R"({"looks":"like it"})");
  EXPECT_EQ(sentence.json(), "");
  EXPECT_EQ(sentence.sentences(), R"({"looks":"like it"})");

  EXPECT_EQ(EscapedText().json(), "");
  EXPECT_EQ(EscapedText().sentences(), "");
}

}  // namespace
}  // namespace quillpost::json
