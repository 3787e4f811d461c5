#include "calls/arguments.h"

#include "harness/json_object.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillpost {
namespace {

using testing::objectFrom;

constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
constexpr int64_t highest = std::numeric_limits<int64_t>::max();

std::string inArgument(std::string_view value) {
  return std::string(R"({"x":)").append(value).append("}");
}

TEST(ArgumentsText, IsTakenOnlyFromAString) {
  struct Row {
    std::string_view value;
    std::optional<std::string> text;
  };
  for (const Row& row : {
           Row{R"("a")", "a"},
           Row{R"("")", ""},
           Row{R"(" kept ")", " kept "},
           Row{R"("é \u00e9 \ud83d\ude00")", "é é 😀"},
           Row{R"("a\u0000b")", std::string("a\0b", 3)},
           Row{"1", std::nullopt},
           Row{"true", std::nullopt},
           Row{"null", std::nullopt},
           Row{R"(["a"])", std::nullopt},
           Row{R"({"x":"a"})", std::nullopt},
       }) {
    const json::TreeObject object = objectFrom(inArgument(row.value));
    EXPECT_EQ(Arguments(object).text("x"), row.text) << row.value;
  }
}

TEST(ArgumentsFlag, IsTakenOnlyFromABoolean) {
  struct Row {
    std::string_view value;
    std::optional<bool> flag;
  };
  for (const Row& row : {
           Row{"true", true},
           Row{"false", false},
           Row{R"("true")", std::nullopt},
           Row{"1", std::nullopt},
           Row{"0", std::nullopt},
           Row{"null", std::nullopt},
           Row{"[true]", std::nullopt},
       }) {
    const json::TreeObject object = objectFrom(inArgument(row.value));
    EXPECT_EQ(Arguments(object).flag("x"), row.flag) << row.value;
  }
}

TEST(ArgumentsInteger, IsTakenFromANumberOrFromItsDigits) {
  struct Row {
    std::string_view value;
    std::optional<int64_t> integer;
  };
  for (const Row& row : {
           Row{"7", 7},
           Row{"-7", -7},
           Row{"0", 0},
           Row{"-0", 0},
           Row{"2.9", 2},
           Row{"-2.9", -2},
           Row{"0.999", 0},
           Row{"3e2", 300},
           Row{"3.0", 3},
           Row{"9007199254740993.0", 9007199254740993},
           Row{"9007199254740993.9", 9007199254740993},
           Row{"-9007199254740993.9", -9007199254740993},
           Row{"0.99999999999999999999", 0},
           Row{"-1.99999999999999999999", -1},
           Row{"9223372036854775807.9", highest},
           Row{"-9223372036854775808.9", lowest},
           Row{"-9223372036854775808.0", lowest},
           Row{"9223372036854775808.0", std::nullopt},
           Row{"9223372036854775809.0", std::nullopt},
           Row{"-9223372036854775809.0", std::nullopt},
           Row{"9223372036854775807", highest},
           Row{"-9223372036854775808", lowest},
           Row{"9223372036854775808", std::nullopt},
           Row{"-9223372036854775809", std::nullopt},
           Row{"18446744073709551615", std::nullopt},
           Row{"18446744073709551616", std::nullopt},
           Row{"-9223372036854777856", std::nullopt},
           Row{"1e30", std::nullopt},
           Row{"-1e30", std::nullopt},
           Row{"1e308", std::nullopt},
           Row{R"("7")", 7},
           Row{R"("+7")", 7},
           Row{R"("-7")", -7},
           Row{R"("007")", 7},
           Row{R"("9223372036854775807")", highest},
           Row{R"("-9223372036854775808")", lowest},
           Row{R"("9223372036854775808")", std::nullopt},
           Row{R"("-9223372036854775809")", std::nullopt},
           Row{R"("")", std::nullopt},
           Row{R"("7a")", std::nullopt},
           Row{R"("45s")", std::nullopt},
           Row{R"("2.9")", std::nullopt},
           Row{R"(" 7")", std::nullopt},
           Row{R"("7 ")", std::nullopt},
           Row{R"("+")", std::nullopt},
           Row{R"("-")", std::nullopt},
           Row{R"("+-7")", std::nullopt},
           Row{R"("--7")", std::nullopt},
           Row{R"("0x7")", std::nullopt},
           Row{R"("٧")", std::nullopt},
           Row{"true", std::nullopt},
           Row{"false", std::nullopt},
           Row{"null", std::nullopt},
           Row{"[7]", std::nullopt},
           Row{R"({"x":7})", std::nullopt},
       }) {
    const json::TreeObject object = objectFrom(inArgument(row.value));
    EXPECT_EQ(Arguments(object).integer("x"), row.integer) << row.value;
  }
}

TEST(ArgumentsTexts, KeepTheStringsOfAListInOrder) {
  using Texts = std::vector<std::string>;
  struct Row {
    std::string_view value;
    std::optional<Texts> texts;
  };
  for (const Row& row : {
           Row{"[]", Texts{}},
           Row{R"(["a",3,"b"])", Texts{"a", "b"}},
           Row{R"(["b","a","b",""])", Texts{"b", "a", "b", ""}},
           Row{R"([1,null,true,["a"],{"a":"a"}])", Texts{}},
           Row{R"("a")", std::nullopt},
           Row{R"({"0":"a"})", std::nullopt},
           Row{"null", std::nullopt},
           Row{"1", std::nullopt},
       }) {
    const json::TreeObject object = objectFrom(inArgument(row.value));
    EXPECT_EQ(Arguments(object).texts("x"), row.texts) << row.value;
  }
}

TEST(Arguments, AreAbsentWhenNothingOfTheirNameIsThere) {
  const json::TreeObject object = objectFrom(R"({"y":"a","X":1})");
  const Arguments arguments(object);
  EXPECT_EQ(arguments.text("x"), std::nullopt);
  EXPECT_EQ(arguments.flag("x"), std::nullopt);
  EXPECT_EQ(arguments.integer("x"), std::nullopt);
  EXPECT_EQ(arguments.texts("x"), std::nullopt);
}

TEST(Arguments, AreReadAsTheKindThatIsWanted) {
  const json::TreeObject object = objectFrom(R"({"t":"a","f":true,"i":"7","l":["a"]})");
  const Arguments arguments(object);
  std::optional<std::string> text;
  std::optional<bool> flag;
  std::optional<int64_t> integer;
  std::optional<std::vector<std::string>> texts;
  arguments.read("t", text);
  arguments.read("f", flag);
  arguments.read("i", integer);
  arguments.read("l", texts);
  EXPECT_EQ(text, "a");
  EXPECT_EQ(flag, true);
  EXPECT_EQ(integer, 7);
  EXPECT_EQ(texts, std::vector<std::string>{"a"});
  arguments.read("i", text);
  EXPECT_EQ(text, "7") << "digits given as text are still a text";
  arguments.read("f", text);
  EXPECT_EQ(text, std::nullopt) << "what was there is replaced by what is read";
}

}  // namespace
}  // namespace quillpost
