#include "json/value.h"

#include <boost/json/monotonic_resource.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

namespace quillpost::json {
namespace {

/// What comes back when a text is read as a tree and written again; nothing when it is not read.
std::optional<std::string> echoed(std::string_view text) {
  const std::optional<Tree> tree = parse(text);
  if (!tree) return std::nullopt;
  std::string out;
  appendTree(out, *tree);
  return out;
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string out;
  for (std::size_t i = 0; i < times; ++i) out += piece;
  return out;
}

TEST(Trees, ComeBackAsTheyWere) {
  for (const std::string_view text : {
           "null",
           "true",
           "false",
           "0",
           "7",
           "-1",
           "9007199254740993",
           "9223372036854775807",
           "-9223372036854775808",
           "9223372036854775808",
           "18446744073709551615",
           R"("")",
           R"("req-1")",
           R"("\"\\\b\f\n\r\t\u0000\u001f")",
           R"("é—😀 / ")",
           "[]",
           "{}",
           R"([1,"a",null,[true],{"b":[]}])",
           R"({"z":1,"a":{"nested":["x",18446744073709551615]},"m":null})",
       })
    EXPECT_EQ(echoed(text), text);
}

TEST(Trees, AreWrittenCompactlyAndWithoutNeedlessEscapes) {
  EXPECT_EQ(echoed(" { \"a\" : [ 1 , 2 ] }\r\n"), R"({"a":[1,2]})");
  EXPECT_EQ(echoed(R"("\u00e9\/\u0041\ud83d\ude00")"), R"("é/A😀")");
}

TEST(Trees, AreAppendedToWhatIsThere) {
  std::string out = "\"id\":";
  appendTree(out, *parse(R"("a")"));
  EXPECT_EQ(out, R"("id":"a")");
}

TEST(Trees, MayHoldVeryLongTexts) {
  for (const std::size_t size : {1023U, 1024U, 1025U, 4096U, 100000U}) {
    const std::string text = "\"" + repeated("é\\n", size) + "\"";
    EXPECT_EQ(echoed(text), text) << size;
  }
}

TEST(Fractions, ComeBackAsTheSameNumber) {
  for (const char* const text : {"0.5", "-0.0", "1e2", "3.0", "0.1", "1700767420.1937029", "1e-400",
                                 "5e-324", "1.7976931348623157e308", "18446744073709551616"}) {
    const std::optional<std::string> back = echoed(text);
    ASSERT_TRUE(back) << text;
    EXPECT_EQ(std::strtod(back->c_str(), nullptr), std::strtod(text, nullptr)) << *back;
  }
}

TEST(Fractions, ComeBackAsTheSameNumberWhateverTheirDigits) {
  std::mt19937_64 random(20240607);
  for (int round = 0; round < 20000; ++round) {
    const uint64_t bits = random();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    if (!std::isfinite(number)) continue;
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", number);
    const std::optional<std::string> back = echoed(text);
    ASSERT_TRUE(back) << text;
    ASSERT_EQ(std::strtod(back->c_str(), nullptr), number) << text << " became " << *back;
  }
}

TEST(Fractions, OfIntegersWithMoreDigitsThanADoubleComeBackDigitForDigit) {
  struct Row {
    std::string_view text, back;
  };
  for (const Row& row : {
           Row{"9007199254740993.0", "9007199254740993"},
           Row{"-9.007199254740993e15", "-9007199254740993"},
           Row{"9223372036854775807.0", "9223372036854775807"},
           Row{"-9223372036854775808.0", "-9223372036854775808"},
           Row{"9223372036854775809.0", "9223372036854775809"},
           Row{"18446744073709551615.0", "18446744073709551615"},
       })
    EXPECT_EQ(echoed(row.text), row.back);
}

TEST(Fractions, AreRoundedToADoubleThatTruncatesAsTheyDo) {
  struct Row {
    std::string_view text;
    double kept;
  };
  for (const Row& row : {
           Row{"0.99999999999999999999", std::nextafter(1.0, 0)},
           Row{"-0.99999999999999999999", std::nextafter(-1.0, 0)},
           Row{"1.00000000000000000001", 1.0},
           Row{"3.99999999999999999999", std::nextafter(4.0, 0)},
           Row{"4503599627370496.9999999", 4503599627370496.0},
           Row{"4503599627370495.9999999", 4503599627370495.5},
           Row{"0.3", 0.3},
           Row{"10000000000000000000.0", 1e19},
           Row{"18446744073709551616.0", 0x1p64},
           Row{"-9223372036854775809.0", -0x1p63},
       }) {
    const std::optional<Tree> tree = parse(row.text);
    ASSERT_TRUE(tree && tree->is_double()) << row.text;
    EXPECT_EQ(tree->get_double(), row.kept) << row.text;
  }
}

TEST(Fractions, BecomeIntegersWhereDoublesAreTooSparse) {
  EXPECT_EQ(echoed("9007199254740993.5"), "9007199254740993");
  EXPECT_EQ(echoed("9223372036854775807.5"), "9223372036854775807");
  EXPECT_EQ(echoed("-9223372036854775808.5"), "-9223372036854775808");
}

TEST(Fractions, ThatAreTooLargeMakeTheTextNoJson) {
  for (const std::string_view text :
       {"1e400", "-1e400", R"({"id":1e400})", R"([[{"a":[-1e999]}]])", "1.7976931348623159e308",
        "1e99999999999", "0e2147483648", "1e-2147483649"})
    EXPECT_EQ(echoed(text), std::nullopt) << text;
  EXPECT_EQ(echoed(std::string(400, '9')), std::nullopt);
}

TEST(Trees, AreNothingForATextThatIsNotJson) {
  using namespace std::string_view_literals;
  for (const std::string_view text : {
           ""sv,
           " "sv,
           "{"sv,
           "{}}"sv,
           "{} {}"sv,
           "1 2"sv,
           "nul"sv,
           "True"sv,
           "01"sv,
           "+1"sv,
           "1."sv,
           "[1,]"sv,
           "{\"a\"}"sv,
           "{\"a\":1,}"sv,
           "{a:1}"sv,
           "'a'"sv,
           "\"a"sv,
           "\"\\x\""sv,
           "\"a\nb\""sv,
           "\"\x80\""sv,
           "\"\xc3\""sv,
           "\"\xed\xa0\x80\""sv,
           "\"\\ud800\""sv,
           "\"\\udc00\\ud800\""sv,
           "\xef\xbb\xbf{}"sv,
           "{}\0"sv,
           "\"\0\""sv,
           "/**/{}"sv,
           "NaN"sv,
           "-Infinity"sv,
       })
    EXPECT_EQ(echoed(text), std::nullopt) << "\"" << text << "\"";
}

TEST(Trees, MayNestFiveHundredLevels) {
  const std::string lists = repeated("[", 500) + repeated("]", 500);
  EXPECT_EQ(echoed(lists), lists);
  const std::string objects = repeated("{\"a\":", 499) + "{}" + repeated("}", 499);
  EXPECT_EQ(echoed(objects), objects);
}

TEST(Trees, OfAMillionLevelsAreNothing) {
  constexpr std::size_t million = 1000000;
  EXPECT_EQ(echoed(repeated("[", million)), std::nullopt);
  EXPECT_EQ(echoed(repeated("[", million) + repeated("]", million)), std::nullopt);
  EXPECT_EQ(echoed(repeated("{\"a\":", million) + "1" + repeated("}", million)), std::nullopt);
}

TEST(Trees, HoldTheLastOfTwoEqualKeysWhole) {
  struct Row {
    std::string_view text, back;
  };
  for (const Row& row : {
           Row{R"({"a":1,"b":2,"a":[3],"a":4})", R"({"a":4,"b":2})"},
           Row{R"({"a":{"x":1},"a":{"y":2}})", R"({"a":{"y":2}})"},
           Row{R"({"a":[1],"a":[2]})", R"({"a":[2]})"},
           Row{R"({"a":1,"a":null})", R"({"a":null})"},
           Row{R"({"a":1,"\u0061":2})", R"({"a":2})"},
           Row{R"([{"a":{"b":1,"b":2}}])", R"([{"a":{"b":2}}])"},
       })
    EXPECT_EQ(echoed(row.text), row.back) << row.text;
}

TEST(Trees, HoldTheLastOfTwoEqualKeysOfManyToo) {
  std::string text = "{";
  for (int i = 0; i < 300; ++i)
    text += "\"k" + std::to_string(i % 100) + "\":" + std::to_string(i) + ",";
  const std::optional<Tree> tree = parse(text + "\"k7\":null}");
  ASSERT_TRUE(tree);
  EXPECT_EQ(tree->get_object().size(), 100U);
  EXPECT_EQ(*find(tree->get_object(), "k0"), 200);
  EXPECT_EQ(*find(tree->get_object(), "k99"), 299);
  EXPECT_TRUE(find(tree->get_object(), "k7")->is_null());
}

TEST(Trees, TakeTheirMemoryFromTheStorage) {
  boost::json::monotonic_resource arena;
  const std::optional<Tree> tree = parse(R"({"a":["text"]})", &arena);
  ASSERT_TRUE(tree);
  EXPECT_EQ(tree->storage().get(), &arena);
  EXPECT_EQ(find(tree->get_object(), "a")->storage().get(), &arena);
}

TEST(Members, AreFoundByNameAndKind) {
  const std::optional<Tree> tree =
      parse(R"({"text":"t","empty":"","object":{"a":1},"null":null,"number":1,"list":["t"]})");
  ASSERT_TRUE(tree);
  const TreeObject& object = tree->get_object();

  ASSERT_NE(find(object, "number"), nullptr);
  EXPECT_EQ(find(object, "number")->get_int64(), 1);
  ASSERT_NE(find(object, "null"), nullptr);
  EXPECT_TRUE(find(object, "null")->is_null());
  EXPECT_EQ(find(object, "missing"), nullptr);
  EXPECT_EQ(find(object, "Text"), nullptr);

  EXPECT_EQ(findText(object, "text"), "t");
  EXPECT_EQ(findText(object, "empty"), "");
  for (const std::string_view key : {"object", "null", "number", "list", "missing", ""})
    EXPECT_EQ(findText(object, key), std::nullopt) << key;

  ASSERT_NE(findObject(object, "object"), nullptr);
  EXPECT_EQ(findObject(object, "object")->size(), 1U);
  for (const std::string_view key : {"text", "null", "number", "list", "missing"})
    EXPECT_EQ(findObject(object, key), nullptr) << key;
}

TEST(Members, KeepTheZeroBytesOfTheirTexts) {
  const std::optional<Tree> tree = parse(R"({"text":"a\u0000b"})");
  ASSERT_TRUE(tree);
  EXPECT_EQ(findText(tree->get_object(), "text"), std::string_view("a\0b", 3));
}

}  // namespace
}  // namespace quillpost::json
