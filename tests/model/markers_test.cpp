#include "model/markers.h"

#include "harness/golden.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::sameText;

std::string repeated(std::string_view piece, int times) {
  std::string out;
  for (; times > 0; --times) out += piece;
  return out;
}

TEST(CleanSummary, WhiteSpaceAndMarkersAtTheBeginningGo) {
  struct Row {
    std::string name;
    std::string text;
    std::string cleaned;
  };
  const std::vector<Row> rows = {
      {"empty", "", ""},
      {"plain", "done", "done"},
      {"white space", " \n\tdone at last\r\n ", "done at last"},
      {"a no-break space", "\u00A0done\u2028", "done"},
      {"one marker", "[[gist]] done", "done"},
      {"two markers", "[[gist]] [[gist]] done", "done"},
      {"white space between", " [[gist]] \n [[gist]]   done ", "done"},
      {"a marker further on stays", "done [[gist]] done", "done [[gist]] done"},
      {"a marker without its blank stays", "[[gist]]done", "[[gist]]done"},
      {"a marker alone has lost its blank", "[[gist]] ", "[[gist]]"},
      {"two markers alone", "[[gist]] [[gist]] ", "[[gist]]"},
      {"a marker with a line feed stays", "[[gist]]\ndone", "[[gist]]\ndone"},
      {"another case stays", "[[GIST]] done", "[[GIST]] done"},
      {"a hand-off stays", "[[for]] done", "[[for]] done"},
      {"only white space", " \n ", ""},
      {"ten thousand markers", repeated("[[gist]] ", 10000) + "done", "done"},
  };
  for (const Row& row : rows) EXPECT_EQ(cleanSummary(row.text), row.cleaned) << row.name;
}

TEST(AskMarker, AQuestionAloneStaysAsItIs) {
  EXPECT_EQ(askMarker({}, "May I?"), "May I?");
  EXPECT_EQ(askMarker({}, ""), "");
}

TEST(AskMarker, WhatWasGivenStandsBeforeTheQuestionUnderSortedKeys) {
  struct Row {
    std::string name;
    AskMarker ask;
    std::string marker;
  };
  const std::vector<Row> rows = {
      {"a kind", {.kind = "approval"}, R"([[ask:{"k":"approval"}]])"},
      {"options", {.options = {"Yes", "No"}}, R"([[ask:{"k":"respond","o":["Yes","No"]}]])"},
      {"a secret", {.secretName = "API_KEY"}, R"([[ask:{"k":"respond","s":"API_KEY"}]])"},
      {"an artifact", {.artifact = "docs/a.md"}, R"([[ask:{"a":"docs/a.md","k":"respond"}]])"},
      {"a consequence", {.consequence = "It ships"}, R"([[ask:{"c":"It ships","k":"respond"}]])"},
      {"an empty secret", {.secretName = ""}, R"([[ask:{"k":"respond","s":""}]])"},
      {"an empty artifact", {.artifact = ""}, R"([[ask:{"a":"","k":"respond"}]])"},
      {"an empty consequence", {.consequence = ""}, R"([[ask:{"c":"","k":"respond"}]])"},
      {"an empty option", {.options = {""}}, R"([[ask:{"k":"respond","o":[""]}]])"},
      {"everything",
       {.kind = "decision",
        .options = {"Keep", "Drop"},
        .secretName = "S",
        .artifact = "https://x.y/z",
        .consequence = "Größe — \"so\""},
       R"([[ask:{"a":"https://x.y/z","c":"Größe — \"so\"","k":"decision","o":["Keep","Drop"],)"
       R"("s":"S"}]])"},
      {"five options",
       {.kind = "decision", .options = {"1", "2", "3", "4", "5"}},
       R"([[ask:{"k":"decision","o":["1","2","3","4"]}]])"},
  };
  for (const Row& row : rows) {
    EXPECT_TRUE(sameText(row.marker + " Which one?", askMarker(row.ask, "Which one?"))) << row.name;
  }
}

TEST(AskMarker, AnEmptyQuestionLeavesTheBlank) {
  EXPECT_EQ(askMarker({.kind = "review"}, ""), R"([[ask:{"k":"review"}]] )");
}

TEST(AskMarker, OptionsAreCutTo80Characters) {
  const AskMarker ask = {.kind = "decision",
                         .options = {std::string(80, 'x'), std::string(81, 'y'),
                                     repeated("e\u0301", 81), repeated("👩‍🔬", 90)}};
  EXPECT_TRUE(sameText(R"([[ask:{"k":"decision","o":[")" + std::string(80, 'x') + R"(",")" +
                           std::string(80, 'y') + R"(",")" + repeated("e\u0301", 80) + R"(",")" +
                           repeated("👩‍🔬", 80) + R"("]}]] Q)",
                       askMarker(ask, "Q")));
}

TEST(AskMarker, OnlyTheConsequenceIsCutTo200Characters) {
  const std::string longText = repeated("ä", 201);
  const AskMarker ask = {
      .kind = "secret", .secretName = longText, .artifact = longText, .consequence = longText};
  EXPECT_TRUE(sameText(R"([[ask:{"a":")" + longText + R"(","c":")" + repeated("ä", 200) +
                           R"(","k":"secret","s":")" + longText + R"("}]] Q)",
                       askMarker(ask, "Q")));
  EXPECT_TRUE(sameText(R"([[ask:{"c":")" + repeated("ä", 200) + R"(","k":"respond"}]] Q)",
                       askMarker({.consequence = repeated("ä", 200)}, "Q")));
}

TEST(AskMarker, AQuestionIsNotCut) {
  const std::string question(500, 'q');
  EXPECT_EQ(askMarker({.kind = "respond"}, question), R"([[ask:{"k":"respond"}]] )" + question);
}

TEST(AskMarker, ATextThatIsNotUtf8LeavesTheQuestionAlone) {
  EXPECT_EQ(askMarker({.kind = "secret", .secretName = "\xff"}, "Q"), "Q");
}

}  // namespace
}  // namespace quillpost
