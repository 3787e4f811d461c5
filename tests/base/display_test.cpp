#include "base/display.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillpost {
namespace {

using namespace std::string_literals;

struct Sample {
  const char* name;
  std::string text;
  std::string shown;
};

// clang-format off
const Sample samples[] = {
    {"words",                     "Plain wörds, 板 and \U0001F600.", "Plain wörds, 板 and \U0001F600."},
    {"line feeds and tabs stay",  "a\n\tb",            "a\n\tb"},
    {"NUL",                       "a\0b"s,             "a␀b"},
    {"a bell",                    "\a",                "␇"},
    {"a colour",                  "\x1b[31mred\x1b[0m", "␛[31mred␛[0m"},
    {"the clipboard",             "\x1b]52;c;cm0gLXJm\a", "␛]52;c;cm0gLXJm␇"},
    {"a carriage return",         "good\rbad",         "good␍bad"},
    {"a backspace",               "a\bb",              "a␈b"},
    {"the last of C0",            "\x1f",              "␟"},
    {"DEL",                       "\x7f",              "␡"},
    {"the first of C1",           "\u0080",            "<U+0080>"},
    {"CSI in one character",      "\u009b31m",         "<U+009B>31m"},
    {"the last of C1",            "\u009f",            "<U+009F>"},
    {"a blank that keeps words",  "\u00a0",            "\u00a0"},
    {"an override",               "exe.\u202efdp",     "exe.<U+202E>fdp"},
    {"embeddings",                "\u202a\u202b\u202c\u202d", "<U+202A><U+202B><U+202C><U+202D>"},
    {"isolates",                  "\u2066\u2067\u2068\u2069", "<U+2066><U+2067><U+2068><U+2069>"},
    {"marks of a direction",      "\u200e\u200f\u061c", "<U+200E><U+200F><U+061C>"},
    {"a joiner in a picture",     "\U0001F469\u200d\U0001F4BB", "\U0001F469\u200d\U0001F4BB"},
    {"separators",                "a\u2028b\u2029",    "a<U+2028>b<U+2029>"},
    {"a byte that is no text",    "a\xff",             "a\uFFFD"},
    {"a character cut off",       "a\xe6\x9d",         "a\uFFFD\uFFFD"},
    {"C1 as a bare byte",         "\x9b",              "\uFFFD"},
    {"an overlong escape",        "\xc0\x9b",          "\uFFFD\uFFFD"},
    {"nothing",                   "",                  ""},
};
// clang-format on

TEST(Display, NothingThatSteersATerminalIsPrinted) {
  for (const Sample& sample : samples)
    EXPECT_EQ(displayed(sample.text), sample.shown) << sample.name;
}

TEST(Display, WhatCannotBeSeenIsMarkedWhereNothingMayLookLikeSomethingElse) {
  const Sample exact[] = {
      {"what can be seen", "Plain wörds, 板 and \U0001F600.", "Plain wörds, 板 and \U0001F600."},
      {"line feeds and tabs", "a\n\tb", "a␊␉b"},
      {"blanks that are no blank", "a\u00a0b\u2003c\u3000", "a<U+00A0>b<U+2003>c<U+3000>"},
      {"what has no width", "sc\u200bo\u00adut\ufeff", "sc<U+200B>o<U+00AD>ut<U+FEFF>"},
      {"a tag", "\U000E0041", "<U+E0041>"},
      {"several blanks", "a  b ", "a  b "},
      {"an override", "\u202e", "<U+202E>"},
      {"a byte that is no text", "a\xff", "a\uFFFD"},
  };
  for (const Sample& sample : exact)
    EXPECT_EQ(displayed(sample.text, Marks::all), sample.shown) << sample.name;
}

TEST(Display, NoControlComesThroughWhateverTheText) {
  for (int lead = 0; lead < 256; ++lead) {
    for (int next = 0; next < 256; ++next) {
      const std::string text{static_cast<char>(lead), static_cast<char>(next)};
      for (const char letter : displayed(text)) {
        const auto byte = static_cast<unsigned char>(letter);
        EXPECT_TRUE(byte == '\n' || byte == '\t' || (byte >= ' ' && byte != 0x7f)) << lead << next;
      }
    }
  }
}

TEST(Display, JsonStaysWhatItWas) {
  EXPECT_EQ(displayed("\"a\u202eb\u009bc\"", Marks::escapes), R"("a\u202Eb\u009Bc")");
}

TEST(Display, InALineWhiteSpaceIsOneBlank) {
  EXPECT_EQ(displayedInLine(" a\n\n b\tc \n"), "a b c");
  EXPECT_EQ(displayedInLine("\n"), "");
  EXPECT_EQ(displayedInLine("a\x1b\n"), "a␛");
}

}  // namespace
}  // namespace quillpost
