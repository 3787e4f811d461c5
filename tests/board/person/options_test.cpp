#include "board/person/options.h"

#include "board/verbs/person.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Words = std::vector<std::string>;

std::optional<Line> read(const Words& arguments) {
  Misuse misuse;
  std::optional<Line> line = readLine(arguments, misuse);
  EXPECT_NE(line.has_value(), !misuse.why.empty());
  return line;
}

std::string whyNot(const Words& arguments) {
  Misuse misuse;
  EXPECT_FALSE(readLine(arguments, misuse));
  return misuse.why;
}

TEST(Options, WithoutAnyTheBoardIsServed) {
  const auto line = read({});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->command->name, "serve");
  EXPECT_EQ(line->leaseMs, 900'000);
  EXPECT_EQ(line->suffix, "");
}

TEST(Options, MayStandBeforeOrAfterTheCommand) {
  for (const Words& arguments : {Words{"--dir", "/d", "answer", "t000001", "yes"},
                                 {"answer", "--dir", "/d", "t000001", "yes"},
                                 {"answer", "t000001", "yes", "--dir=/d"}}) {
    const auto line = read(arguments);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->directory, "/d");
    EXPECT_EQ(line->request.method, personAnswer);
    EXPECT_EQ(line->request.taskID, "t000001");
    EXPECT_EQ(line->request.body, "yes");
  }
}

TEST(Options, EachFillsItsOwnPlace) {
  const auto line = read({"--dir", "/d", "--db", "/b", "--suffix", "s", "--thread", "t", "--log"});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->directory, "/d");
  EXPECT_EQ(line->database, "/b");
  EXPECT_EQ(line->suffix, "s");
  EXPECT_EQ(line->thread, "t");
  EXPECT_EQ(line->request.name, "t");
  EXPECT_TRUE(line->isLogged);
}

TEST(Options, OneNameMayMeanTwoThingsAndIsReadForItsCommandWhereverItStands) {
  for (const Words& arguments : {Words{"page", "--open"}, {"--open", "page"}, {"--open"}}) {
    const auto line = read(arguments);
    ASSERT_TRUE(line);
    EXPECT_TRUE(line->opensBrowser);
    EXPECT_FALSE(line->openOnly);
  }
  for (const Words& arguments : {Words{"show", "--open"}, {"--open", "watch"}}) {
    const auto line = read(arguments);
    ASSERT_TRUE(line);
    EXPECT_TRUE(line->openOnly);
    EXPECT_FALSE(line->opensBrowser);
  }
  EXPECT_EQ(whyNot({"threads", "--open"}), "threads takes no --open");
}

TEST(Options, WordsAfterTheIdNeedNoQuotes) {
  const auto line = read({"comment", "3", "use", "the", "second", "one"});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->request.taskID, "3");
  EXPECT_EQ(line->request.body, "use the second one");
  EXPECT_EQ(read({"add", "Show", "the", "bread", "--priority", "2"})->request.title,
            "Show the bread");
}

TEST(Options, AfterTwoDashesAWordMayBeginWithAnything) {
  const auto line = read({"say", "KQ3", "--", "--help", "yourself"});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->request.to, "KQ3");
  EXPECT_EQ(line->request.body, "--help yourself");
  EXPECT_EQ(read({"say", "KQ3", "-5 degrees"})->request.body, "-5 degrees");
}

TEST(Options, WhatIsRunKeepsItsOwnOptions) {
  const auto line = read({"run", "--thread", "x", "codex", "--no-daemon", "--help"});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->thread, "x");
  EXPECT_THAT(line->words, ElementsAre("codex", "--no-daemon", "--help"));
  EXPECT_THAT(read({"run", "--", "--odd", "--thread"})->words, ElementsAre("--odd", "--thread"));
  EXPECT_THAT(read({"run", "a", "--", "b"})->words, ElementsAre("a", "--", "b"));
}

TEST(Options, TimesAreSecondsOrHaveAUnit) {
  EXPECT_EQ(read({"--lease", "5"})->leaseMs, 5'000);
  EXPECT_EQ(read({"serve", "--lease", "15m"})->leaseMs, 900'000);
  EXPECT_EQ(read({"history", "--since", "2h"})->sinceMs, 7'200'000);
  EXPECT_EQ(spanFrom("3d"), 259'200'000);
  for (const char* wrong :
       {"0", "-1", "x", "", "m", "1.5h", "99999999999999", "2147483648", "25000d"})
    EXPECT_FALSE(spanFrom(wrong)) << wrong;
}

TEST(Options, ListsAreWithCommasOrRepeated) {
  const auto line = read({"add", "x", "--waits-on", "1,2", "--waits-on", "t3", "--resources", ""});
  ASSERT_TRUE(line);
  EXPECT_THAT(*line->request.waitsOn, ElementsAre("1", "2", "t3"));
  EXPECT_TRUE(line->request.resources->empty());
}

TEST(Options, TheSquadIsOnOrOff) {
  EXPECT_EQ(read({"squad", "on"})->request.approve, true);
  EXPECT_EQ(read({"squad", "off"})->request.approve, false);
  EXPECT_FALSE(read({"squad", "maybe"}));
}

TEST(Options, WhatMakesNoSenseIsRefusedWithTheCommandThatWasMeant) {
  struct Wrong {
    Words arguments;
    std::string why;
    std::string command;
  };
  const Wrong wrongs[] = {
      {{"frobnicate"}, "there is no command frobnicate", ""},
      {{"anwser", "t1", "x"}, "there is no command anwser; did you mean answer?", ""},
      {{"--frobnicate", "x"}, "there is no option --frobnicate", "serve"},
      {{"show", "--opne"}, "there is no option --opne; did you mean --open?", "show"},
      {{"--dir"}, "--dir wants a value", "serve"},
      {{"--dir", ""}, "\"\" makes no sense for --dir", "serve"},
      {{"show", "--log"}, "show takes no --log", "show"},
      {{"show", "--json=yes"}, "--json takes no value", "show"},
      {{"answer", "t000001"}, "answer takes: WHAT TEXT...", "answer"},
      {{"show", "t1", "t2"}, "show takes: [WHAT]", "show"},
      {{"threads", "x"}, "threads takes no words", "threads"},
      {{"say"}, "say takes: HANDLE|all TEXT...", "say"},
      {{"add", "x", "--priority", "high"}, "\"high\" makes no sense for --priority", "add"},
      {{"run"}, "run takes: COMMAND...", "run"},
      {{"thread", ""}, "thread takes: NAME", "thread"},
      {{"backup", ""}, "backup takes: FILE", "backup"},
  };
  for (const Wrong& wrong : wrongs) {
    Misuse misuse;
    EXPECT_FALSE(readLine(wrong.arguments, misuse)) << wrong.why;
    EXPECT_THAT(misuse.why, HasSubstr(wrong.why));
    EXPECT_EQ(misuse.command == nullptr ? "" : misuse.command->name, wrong.command) << wrong.why;
  }
  EXPECT_THAT(whyNot({"say", "all", "--what"}), HasSubstr("write -- before a text"));
}

TEST(Options, HelpIsACommandWithTheOtherForAWord) {
  for (const Words& arguments :
       {Words{"show", "--help"}, {"--help", "show"}, {"show", "x", "-h"}}) {
    const auto line = read(arguments);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->command->name, "help");
    EXPECT_THAT(line->words, ElementsAre("show"));
  }
  EXPECT_TRUE(read({"--help"})->words.empty());
  EXPECT_THAT(read({"help", "show"})->words, ElementsAre("show"));
}

TEST(Options, ATextMayComeFromStandardInputButOnlyOne) {
  const auto whole = [] { return std::string("two\nlines\n\n"); };
  auto line = read({"comment", "t1", "-"});
  ASSERT_TRUE(line);
  EXPECT_TRUE(fillFromInput(*line, whole));
  EXPECT_EQ(line->request.body, "two\nlines\n") << "one line feed at the end is dropped";
  line = read({"add", "-", "--body", "-"});
  EXPECT_FALSE(fillFromInput(*line, whole));
  line = read({"comment", "t1", "a", "-", "b"});
  EXPECT_TRUE(fillFromInput(*line, [] { return std::string("never asked for"); }));
  EXPECT_EQ(line->request.body, "a - b");
}

TEST(Options, ACommandOfTwoWordsHandsOnWhatStandsBehindItsOwn) {
  for (const Words& arguments :
       {Words{"helper", "allow", "scout", "--explanation", "reads", "--", "run", "--json", "a b"},
        {"helper", "allow", "--explanation=reads", "scout", "run", "--json", "a b"}}) {
    const auto line = read(arguments);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->request.method, personHelperAllow);
    EXPECT_EQ(line->request.agent, "scout");
    EXPECT_EQ(line->request.explanation, "reads");
    EXPECT_THAT(line->words, ElementsAre("run", "--json", "a b"));
    EXPECT_FALSE(line->asJson);
  }
  const auto help = read({"helper", "allow", "--help"});
  ASSERT_TRUE(help);
  EXPECT_THAT(help->words, ElementsAre("helper allow"));
  EXPECT_THAT(whyNot({"helper"}), HasSubstr("allow, list, forget, approve, refuse"));
  EXPECT_THAT(whyNot({"helper", "fire"}), HasSubstr("wants one of"));
  EXPECT_THAT(whyNot({"helper", "allow", "scout"}), HasSubstr("HELPER COMMAND..."));
  EXPECT_THAT(whyNot({"helper", "list", "--yes"}), HasSubstr("takes no --yes"));
}

}  // namespace
}  // namespace quillpost::board
