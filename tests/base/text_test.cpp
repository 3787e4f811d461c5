#include "base/text.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillpost::text {
namespace {

constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
constexpr int64_t highest = std::numeric_limits<int64_t>::max();

TEST(Cat, PutsTextsAndIntegersOneAfterTheOther) {
  EXPECT_EQ(cat(), "");
  EXPECT_EQ(cat("only"), "only");
  EXPECT_EQ(cat("a", 1, std::string("b"), std::string_view("c"), -2, "", "d"), "a1bc-2d");
}

TEST(Cat, WritesEveryIntegerTypeInDecimal) {
  EXPECT_EQ(cat(lowest, " ", highest), "-9223372036854775808 9223372036854775807");
  EXPECT_EQ(cat(std::numeric_limits<uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(cat(0, " ", int8_t{-128}, " ", uint8_t{255}, " ", int16_t{-1}, " ", 65535u),
            "0 -128 255 -1 65535");
  EXPECT_EQ(cat(std::string("four").size(), " ", -1L, " ", -1LL, " ", 1ULL), "4 -1 -1 1");
}

TEST(Cat, KeepsZeroBytesOfTexts) {
  EXPECT_EQ(cat(std::string_view("a\0b", 3), 1), std::string("a\0b1", 4));
}

TEST(Append, AddsToWhatIsThere) {
  std::string out = "rev ";
  append(out, int64_t{-7});
  append(out, "/");
  append(out, uint64_t{8});
  append(out, 9);
  EXPECT_EQ(out, "rev -7/89");
}

TEST(Plural, IsSingularForExactlyOne) {
  struct Row {
    int64_t count;
    std::string_view s, yOrIes;
  };
  for (const Row& row : {Row{1, "", "y"}, Row{0, "s", "ies"}, Row{2, "s", "ies"},
                         Row{-1, "s", "ies"}, Row{11, "s", "ies"}, Row{highest, "s", "ies"}}) {
    SCOPED_TRACE(row.count);
    EXPECT_EQ(s(row.count), row.s);
    EXPECT_EQ(yOrIes(row.count), row.yOrIes);
  }
}

using Pieces = std::vector<std::string_view>;

TEST(Split, KeepsEmptyPiecesAndGivesAtLeastOne) {
  struct Row {
    std::string_view whole;
    Pieces pieces;
  };
  for (const Row& row : {
           Row{"", {""}},
           Row{"a", {"a"}},
           Row{"\n", {"", ""}},
           Row{"a\nb", {"a", "b"}},
           Row{"a\n", {"a", ""}},
           Row{"\na", {"", "a"}},
           Row{"a\n\nc", {"a", "", "c"}},
           Row{"\n\n", {"", "", ""}},
           Row{"a\r\nb", {"a\r", "b"}},
           Row{"é\nü", {"é", "ü"}},
       }) {
    EXPECT_EQ(split(row.whole, '\n'), row.pieces) << "of \"" << row.whole << '"';
  }
}

TEST(Split, TakesAnySeparator) {
  EXPECT_EQ(split("a,b\nc", ','), (Pieces{"a", "b\nc"}));
  EXPECT_EQ(split(std::string_view("a\0b", 3), '\0'), (Pieces{"a", "b"}));
}

TEST(Split, GivesViewsIntoTheWhole) {
  const std::string_view whole = "ab cd";
  EXPECT_EQ(split(whole, ' ').at(1).data(), whole.data() + 3);
}

TEST(Join, PutsTheSeparatorBetweenThePieces) {
  const std::vector<std::string> pieces = {"a", "", "c"};
  EXPECT_EQ(join(pieces, ", "), "a, , c");
  EXPECT_EQ(join(pieces, ""), "ac");
  EXPECT_EQ(join(std::vector<std::string>{"a"}, ", "), "a");
  EXPECT_EQ(join(std::vector<std::string>{}, ", "), "");
}

TEST(Join, TakesOfEachPieceWhatItIsToldTo) {
  struct Named {
    std::string name;
  };
  EXPECT_EQ(join(std::vector<Named>{{"a"}, {""}, {"c"}}, "; ", &Named::name), "a; ; c");
  EXPECT_EQ(join(std::vector<int64_t>{1, 2}, "-", [](int64_t number) { return number * 10; }),
            "10-20");
}

TEST(Join, PutsTogetherWhatSplitTookApart) {
  const std::string whole = "one\n\ntwo\nthree\n";
  std::vector<std::string> pieces;
  for (const std::string_view piece : split(whole, '\n')) pieces.emplace_back(piece);
  EXPECT_EQ(join(pieces, "\n"), whole);
}

TEST(ParseInteger, ReadsWholeDecimalIntegers) {
  struct Row {
    std::string_view digits;
    int64_t number;
  };
  for (const Row& row : {
           Row{"0", 0},
           Row{"-0", 0},
           Row{"+0", 0},
           Row{"7", 7},
           Row{"+5", 5},
           Row{"-5", -5},
           Row{"007", 7},
           Row{"-00000000000000000000000012", -12},
           Row{"9223372036854775807", highest},
           Row{"+9223372036854775807", highest},
           Row{"-9223372036854775808", lowest},
       }) {
    EXPECT_EQ(parseInteger(row.digits), row.number) << "of \"" << row.digits << '"';
  }
}

TEST(ParseInteger, GivesNothingForAnythingElse) {
  for (const std::string_view digits : {std::string_view(""),
                                        std::string_view("+"),
                                        std::string_view("-"),
                                        std::string_view("+-5"),
                                        std::string_view("-+5"),
                                        std::string_view("++5"),
                                        std::string_view("--5"),
                                        std::string_view(" 5"),
                                        std::string_view("5 "),
                                        std::string_view("5\n"),
                                        std::string_view("+ 5"),
                                        std::string_view("5.0"),
                                        std::string_view("5e2"),
                                        std::string_view("0x10"),
                                        std::string_view("1_000"),
                                        std::string_view("1,000"),
                                        std::string_view("five"),
                                        std::string_view("5a"),
                                        std::string_view("5\0", 2),
                                        std::string_view("٥"),
                                        std::string_view("５"),
                                        std::string_view("−5"),
                                        std::string_view("9223372036854775808"),
                                        std::string_view("+9223372036854775808"),
                                        std::string_view("-9223372036854775809"),
                                        std::string_view("99999999999999999999999999")}) {
    EXPECT_EQ(parseInteger(digits), std::nullopt) << "of \"" << digits << '"';
  }
}

TEST(Saturating, AddsAndSubtractsExactlyWithinTheLimits) {
  EXPECT_EQ(saturatingAdd(2, 3), 5);
  EXPECT_EQ(saturatingAdd(2, -3), -1);
  EXPECT_EQ(saturatingAdd(highest - 1, 1), highest);
  EXPECT_EQ(saturatingAdd(lowest + 1, -1), lowest);
  EXPECT_EQ(saturatingAdd(highest, lowest), -1);
  EXPECT_EQ(saturatingSubtract(2, 3), -1);
  EXPECT_EQ(saturatingSubtract(2, -3), 5);
  EXPECT_EQ(saturatingSubtract(highest - 1, -1), highest);
  EXPECT_EQ(saturatingSubtract(lowest + 1, 1), lowest);
  EXPECT_EQ(saturatingSubtract(highest, highest), 0);
  EXPECT_EQ(saturatingSubtract(lowest, lowest), 0);
  EXPECT_EQ(saturatingSubtract(-1, lowest), highest);
}

TEST(Saturating, StaysAtTheLimitBeyondIt) {
  EXPECT_EQ(saturatingAdd(highest, 1), highest);
  EXPECT_EQ(saturatingAdd(1, highest), highest);
  EXPECT_EQ(saturatingAdd(highest, highest), highest);
  EXPECT_EQ(saturatingAdd(lowest, -1), lowest);
  EXPECT_EQ(saturatingAdd(lowest, lowest), lowest);
  EXPECT_EQ(saturatingSubtract(highest, -1), highest);
  EXPECT_EQ(saturatingSubtract(0, lowest), highest);
  EXPECT_EQ(saturatingSubtract(highest, lowest), highest);
  EXPECT_EQ(saturatingSubtract(lowest, 1), lowest);
  EXPECT_EQ(saturatingSubtract(lowest, highest), lowest);
}

TEST(CountOf, IsTheSizeAsASignedInteger) {
  EXPECT_EQ(countOf(std::string("abc")), 3);
  EXPECT_EQ(countOf(std::vector<int>{}) - 1, -1);
}

}  // namespace
}  // namespace quillpost::text
