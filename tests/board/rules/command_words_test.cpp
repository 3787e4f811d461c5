#include "board/rules/command_words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Words = std::vector<std::string>;

TEST(CommandWords, ArePartedByBlanksAndKeptTogetherByQuotesAlone) {
  const std::pair<const char*, Words> rows[] = {
      {"claude", {"claude"}},
      {"  claude \t --model  sonnet ", {"claude", "--model", "sonnet"}},
      {"run 'a b' \"c d\"", {"run", "a b", "c d"}},
      {"run '' \"\"", {"run", "", ""}},
      {"run a'b c'd", {"run", "ab cd"}},
      {"run 'say \"no\"; $(x) `y` \\ ‘z’'", {"run", "say \"no\"; $(x) `y` \\ ‘z’"}},
      {"run \"it's; a | b > c\"", {"run", "it's; a | b > c"}},
      {"run * ? ~ # {a,b}", {"run", "*", "?", "~", "#", "{a,b}"}},
      {"./x=y --set a=b", {"./x=y", "--set", "a=b"}},
      {"run {prompt}", {"run", "{prompt}"}},
  };
  for (const auto& [command, expected] : rows) {
    std::string why;
    EXPECT_EQ(commandWords(command, why), expected) << command << ": " << why;
  }
}

TEST(CommandWords, WhatAShellWouldDoMoreWithIsRefusedByItsName) {
  const std::pair<const char*, const char*> rows[] = {
      {"a; b", "`;`"},
      {"a | b", "pipe"},
      {"a || b", "pipe"},
      {"a && b", "`&`"},
      {"a &", "`&`"},
      {"a > b", "redirect"},
      {"a < b", "redirect"},
      {"(a)", "bracket"},
      {"a\nb", "line break"},
      {"a `b`", "substitution"},
      {"a $(b)", "substitution"},
      {"a $HOME", "substitution"},
      {"a \"$HOME\"", "substitution"},
      {"a \"`b`\"", "substitution"},
      {"a $'b'", "substitution"},
      {"a \\ b", "backslash"},
      {"a \"b\\\"\"", "backslash"},
      {"a ‘b’", "quote that is neither"},
      {"a “b”", "quote that is neither"},
      {"a «b»", "quote that is neither"},
      {"a 'b", "quote without an end"},
      {"a \"b", "quote without an end"},
      {"X=1 a", "variable before"},
      {"", "needs a `command`"},
      {"  ", "needs a `command`"},
      {"'' a", "needs a `command`"},
      {"{prompt} a", "cannot be {prompt}"},
  };
  for (const auto& [command, words] : rows) {
    std::string why;
    EXPECT_FALSE(commandWords(command, why)) << command;
    EXPECT_THAT(why, HasSubstr(words)) << command;
  }
}

TEST(CommandWords, TheOpeningLineIsOneArgumentInItsPlaceOrAtTheEnd) {
  const std::string line = "Do; $(it) 'now'";
  EXPECT_THAT(withOpening({"run", "-p"}, line), ElementsAre("run", "-p", line));
  EXPECT_THAT(withOpening({"run", "{prompt}", "-x"}, line), ElementsAre("run", line, "-x"));
  EXPECT_THAT(withOpening({"run", "--say={prompt}.", "{prompt}{prompt}"}, line),
              ElementsAre("run", "--say=" + line + ".", line + line));
  EXPECT_THAT(withOpening({"run"}, "{prompt}"), ElementsAre("run", "{prompt}"));
}

TEST(CommandWords, AreShownSoThatNoneRunsIntoAnother) {
  EXPECT_EQ(shownWords({"run", "a b", "", "it's"}), R"('run' 'a b' '' 'it'\''s')");
}

}  // namespace
}  // namespace quillpost::board
