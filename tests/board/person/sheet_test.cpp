#include "board/person/sheet.h"

#include "json/decoder.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

Sheet sample() {
  Sheet sheet{5, 7, {}};
  sheet.sections.push_back({"task", {"id", "priority", "waitsOn", "title"}, {}});
  sheet.sections.back().add("t000001", "", "t000002\nt000003", "a\u202eb \"c\"");
  sheet.sections.push_back({"log", {"at", "text"}, {}});
  sheet.sections.back().add(12, "one");
  sheet.sections.back().add(13, "two");
  sheet.sections.push_back({"debates", {"id"}, {}});
  return sheet;
}

TEST(Sheets, TravelAsJson) {
  EXPECT_EQ(json::decode<Sheet>(json::encode(sample())), sample());
  EXPECT_FALSE(json::decode<Sheet>(std::string("{\"nowMs\":1}")));
}

TEST(Sheets, AreObjectsForPrograms) {
  EXPECT_EQ(sheetJson(sample()),
            R"({"nowMs":5,"rev":7,"task":{"id":"t000001","priority":null,)"
            R"("waitsOn":["t000002","t000003"],"title":"a\u202Eb \"c\""},)"
            R"("log":[{"at":12,"text":"one"},{"at":13,"text":"two"}],"debates":[]})"
            "\n");
}

TEST(Sheets, ACellIsFoundByItsColumn) {
  const Sheet sheet = sample();
  const Section& log = *sheet.find("log");
  EXPECT_EQ(cellOf(log, log.rows[1], "text"), "two");
  EXPECT_EQ(cellOf(log, log.rows[1], "by"), "");
  EXPECT_EQ(cellOf(log, {}, "text"), "") << "a row that is too short";
  EXPECT_EQ(sheet.find("brief"), nullptr);
}

}  // namespace
}  // namespace quillpost::board
