#include "json/escapes.h"

#include "json/value.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace quillpost::json {
namespace {

using namespace std::string_view_literals;

std::string disguised(std::string_view json) {
  std::string out(json);
  disguiseEscapes(out);
  return out;
}

/// What the inside of a string literal stands for, by way of the disguise.
std::optional<std::string> meaningOf(std::string_view inside) {
  std::string out = "before";
  if (!appendUndisguised(out, disguised(inside))) return std::nullopt;
  EXPECT_EQ(out.substr(0, 6), "before");
  return out.substr(6);
}

TEST(Disguise, ReplacesBackslashesAndWhatTheyProtect) {
  struct Row {
    std::string_view json, disguised;
  };
  for (const Row& row : {
           Row{"", ""},
           Row{R"({"a":[1,"é"]})", R"({"a":[1,"é"]})"},
           Row{R"("a\nb")", "\"a\xFFnb\""},
           Row{R"("\"")", "\"\xFF\xFE\""},
           Row{R"("\\")", "\"\xFF\xFD\""},
           Row{R"("\\\"")", "\"\xFF\xFD\xFF\xFE\""},
           Row{R"("\\n")", "\"\xFF\xFDn\""},
           Row{R"("\u0022")", "\"\xFFu0022\""},
           Row{R"(\)", "\xFF"},
           Row{R"(\\)", "\xFF\xFD"},
           Row{R"(\\\)", "\xFF\xFD\xFF"},
           Row{R"({\"a":1})", "{\xFF\xFE\x61\":1}"},
       })
    EXPECT_EQ(disguised(row.json), row.disguised) << row.json;
}

TEST(Disguise, IsSeenWhereItIs) {
  EXPECT_FALSE(hasDisguisedEscapes(""));
  EXPECT_FALSE(hasDisguisedEscapes("plain é \"n\""));
  EXPECT_TRUE(hasDisguisedEscapes(disguised(R"(\n)")));
  EXPECT_TRUE(hasDisguisedEscapes(disguised(R"(plain\")")));
}

TEST(Undisguise, GivesWhatEachEscapeMeans) {
  struct Row {
    std::string_view inside, text;
  };
  for (const Row& row : {
           Row{"", ""},
           Row{"plain é", "plain é"},
           Row{R"(\"\\\/\b\f\n\r\t)", "\"\\/\b\f\n\r\t"},
           Row{R"(a\nb\\n\\\nc)", "a\nb\\n\\\nc"},
           Row{R"(\u0041\u00e9\u00E9\u2014\uffff)", "Aéé—\uFFFF"},
           Row{R"(\u0000)", "\0"sv},
           Row{R"(\u007f\u0080\u07ff\u0800\ud7ff\ue000)", "\x7F\u0080\u07FF\u0800\uD7FF\uE000"},
           Row{R"(\ud800\udc00\uDBFF\uDFFF\ud83d\ude00.)", "\U00010000\U0010FFFF😀."},
           Row{R"(\u00411)", "A1"},
       })
    EXPECT_EQ(meaningOf(row.inside), row.text) << row.inside;
}

TEST(Undisguise, RefusesWhatIsNoEscape) {
  for (const std::string_view inside : {
           R"(\)",
           R"(\a)",
           R"(\v)",
           R"(\0)",
           R"(\')",
           R"(\x41)",
           R"(\N)",
           R"(\U0041)",
           R"(\é)",
           R"(\u)",
           R"(\u004)",
           R"(\u004g)",
           R"(\u 041)",
           R"(\u+041)",
           R"(\u-041)",
           R"(\u0x41)",
           R"(\u00\u0041)",
           R"(\ud83d)",
           R"(\ud83d.)",
           R"(\ud83d\n)",
           R"(\ud83d\u0041)",
           R"(\ud83d\ud83d)",
           R"(\ud83d\u)",
           R"(\ud83d\ude0)",
           R"(\ude00)",
           R"(\ude00\ud83d)",
           R"(\ud83dude00)",
           R"(\ud83d\\ude00)",
           R"(\u\u0041)",
           "\\\n",
       })
    EXPECT_EQ(meaningOf(inside), std::nullopt) << inside;
}

TEST(Undisguise, AgreesWithTheTreesParser) {
  constexpr std::array pieces = {
      "\\"sv,      "\\\\"sv,  "\\\""sv, "\\n"sv,   "\\u"sv, "\\ud83d"sv, "\\ude00"sv, "\\u00e9"sv,
      "\\uFFFF"sv, "u0041"sv, "d83d"sv, "00"sv,    "n"sv,   "/"sv,       "plain"sv,   "é"sv,
      "\\/"sv,     "\\t"sv,   "😀"sv,    "\\u12"sv, "b"sv,   "\\q"sv,
  };
  std::mt19937 random(20240611);
  int valid = 0;
  constexpr int rounds = 20'000;
  for (int round = 0; round < rounds; ++round) {
    std::string inside;
    for (std::size_t left = random() % 6; left > 0; --left)
      inside += pieces[random() % pieces.size()];
    // Not an inside: a backslash before an escaped quote escapes the backslash.
    if (disguised(inside).find('"') != std::string::npos) continue;
    const std::optional<Tree> tree = parse("\"" + inside + "\"");
    const std::optional<std::string> text = meaningOf(inside);
    ASSERT_EQ(text.has_value(), tree.has_value()) << inside;
    if (!tree) continue;
    ++valid;
    ASSERT_EQ(*text, std::string_view(tree->get_string())) << inside;
  }
  EXPECT_GT(valid, rounds / 10);
  EXPECT_LT(valid, rounds * 9 / 10);
}

}  // namespace
}  // namespace quillpost::json
