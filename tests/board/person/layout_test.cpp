#include "base/columns.h"
#include "base/text.h"
#include "board/person/sheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr int64_t nowMs = 1'700'000'000'000;

Sheet sheetOf(Section section) { return {nowMs, 1, {std::move(section)}}; }

Section tasks() {
  Section section{"ready", {"id", "holder", "since", "title", "note"}, {}};
  section.add("t000001", "KQ3", nowMs - 90'000, std::string(60, 'a'), std::string(100, 'n'));
  section.add("t000002", "", nowMs - 7'300'000, "短い題名", "");
  return section;
}

TEST(Layout, WithoutATerminalNothingIsCut) {
  EXPECT_EQ(
      sheetText(sheetOf(tasks()), {}),
      text::cat("READY\n  t000001  KQ3  90s  ", std::string(60, 'a'), "\n                     ",
                std::string(100, 'n'), "\n  t000002       2h   短い題名\n"));
}

TEST(Layout, OnATerminalNoLineIsWiderThanIt) {
  for (const std::size_t width : {40u, 60u, 80u, 120u}) {
    const std::string text = sheetText(sheetOf(tasks()), {width, false});
    for (const std::string_view line : text::split(text, '\n'))
      EXPECT_LE(unicode::columnsOf(line), width) << line;
    EXPECT_THAT(text, HasSubstr("t000002"));
  }
}

TEST(Layout, WordsGiveWayAndNotIds) {
  const std::string text = sheetText(sheetOf(tasks()), {44, false});
  EXPECT_THAT(text, HasSubstr("  t000001  KQ3  90s  aaaaaaaaaaaaaaaaaaaaaa…\n"));
}

TEST(Layout, OfTwoColumnsOfWordsTheShorterKeepsItsWidth) {
  Section section{"agents", {"handle", "name", "status"}, {}};
  section.add("KQ3", "Ada", std::string(80, 's'));
  EXPECT_EQ(sheetText(sheetOf(section), {50, false}),
            text::cat("AGENTS\n  KQ3  Ada  ", std::string(37, 's'), "…\n"));
}

TEST(Layout, LongWordsOfALogGoOnBelowThemselves) {
  Section section{"volleys", {"by", "text"}, {}};
  section.add("KQ3", "one two three four\nfive");
  EXPECT_EQ(sheetText(sheetOf(section), {20, false}),
            "VOLLEYS\n  KQ3  one two three\n       four\n       five\n");
  EXPECT_EQ(sheetText(sheetOf(section), {}), "VOLLEYS\n  KQ3  one two three four\n       five\n");
  section.rows.clear();
  section.add("KQ3", std::string(30, 'x'));
  EXPECT_EQ(sheetText(sheetOf(section), {20, false}),
            "VOLLEYS\n  KQ3  xxxxxxxxxxxxx\n       xxxxxxxxxxxxx\n       xxxx\n")
      << "a word that is too long is broken";
}

TEST(Layout, ANeedIsABlockWithWhatCanBeDone) {
  Section section{"needs", {"id", "kind", "from", "since", "question", "options", "do"}, {}};
  section.add("t000007", "question", "KQ3", nowMs - 240'000, "Which day?", "Monday\nTuesday",
              "quillpost-board answer t000007 NUMBER");
  EXPECT_EQ(sheetText(sheetOf(section), {80, false}),
            "NEEDS YOU\n"
            "  t000007  question  from KQ3  4m ago\n"
            "           Which day?\n"
            "           1) Monday   2) Tuesday\n"
            "           > quillpost-board answer t000007 NUMBER\n");
}

TEST(Layout, ColourIsThereOnlyWhereItIsWanted) {
  EXPECT_EQ(sheetText(sheetOf(tasks()), {80, false}).find('\x1b'), std::string::npos);
  const std::string text = sheetText(sheetOf(tasks()), {80, true});
  EXPECT_THAT(text, HasSubstr("\x1b[36mREADY\x1b[0m"));
  EXPECT_THAT(text, HasSubstr("\x1b[1mt000001\x1b[0m"));
}

TEST(Layout, TimesAreSaidInOneUnit) {
  const auto shown = [](int64_t agoMs) {
    Section section{"ready", {"since"}, {}};
    section.add(nowMs - agoMs);
    return sheetText(sheetOf(section), {});
  };
  constexpr int64_t minute = 60'000, hour = 60 * minute;
  EXPECT_EQ(shown(0), "READY\n  0s\n");
  EXPECT_EQ(shown(-5'000), "READY\n  0s\n") << "a clock that was set back";
  EXPECT_EQ(shown(119'000), "READY\n  119s\n");
  EXPECT_EQ(shown(119 * minute), "READY\n  119m\n");
  EXPECT_EQ(shown(47 * hour), "READY\n  47h\n");
  EXPECT_EQ(shown(49 * hour), "READY\n  2d\n");
}

TEST(Layout, AClockSaysTheDateOfWhatIsLongAgo) {
  const auto shown = [](int64_t agoMs) {
    Section section{"moves", {"at", "what"}, {}};
    section.add(nowMs - agoMs, "x");
    return sheetText(sheetOf(section), {});
  };
  EXPECT_THAT(shown(1000), ::testing::MatchesRegex("MOVES\n  [0-9]+:[0-9]+:[0-9]+  x\n"));
  EXPECT_THAT(shown(40 * 3'600'000),
              ::testing::MatchesRegex("MOVES\n  [A-Z][a-z]+ [0-9]+ [0-9]+:[0-9]+  x\n"));
}

TEST(Layout, WhatSaysNothingIsLeftOut) {
  Section section{"task", {"id", "state", "holder", "priority", "title", "waitsOn"}, {}};
  section.add("t000001", "ready", "", "", "Title", "");
  EXPECT_EQ(sheetText(sheetOf(section), {80, false}), "  t000001  ready\n  Title\n");
  EXPECT_EQ(sheetText(sheetOf({"needs", {"id"}, {}}), {80, false}), "");
  Section unknown{"unheard", {"of"}, {}};
  unknown.add("words");
  EXPECT_EQ(sheetText(sheetOf(unknown), {80, false}), "  words\n")
      << "a board of a later version says more than is known here";
}

TEST(Layout, RowsThatAreTooShortAreReadAsFarAsTheyGo) {
  Section section{"ready", {"id", "title"}, {{{"t000001"}}}};
  EXPECT_THAT(sheetText(sheetOf(section), {80, false}), HasSubstr("t000001"));
  EXPECT_THAT(sheetText(sheetOf(section), {80, false}), Not(HasSubstr("(")));
}

}  // namespace
}  // namespace quillpost::board
