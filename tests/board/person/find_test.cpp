#include "board/person/find.h"

#include "board/desk.h"
#include "board/person/sheets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> foundOn(const Desk& desk, std::string_view words,
                                 std::string_view column = "id") {
  return columnOf(foundSheet(desk.board, words, desk.at), "found", column);
}

TEST(Search, LooksInIdsTitlesBriefsAndLogs) {
  Desk desk;
  desk.add("Publish bread.json", R"("body":"Read the till. No prices.")");
  desk.add("Say when the bakery is closed");
  desk.claim("AA2", "t000002");
  desk.ask("AA2", "comment_task", R"("taskID":"t000002","note":"The till is closed on Sundays")");
  EXPECT_THAT(foundOn(desk, "000002"), ElementsAre("t000002"));
  EXPECT_THAT(foundOn(desk, "BREAD", "where"), ElementsAre("title"));
  EXPECT_THAT(foundOn(desk, "till"), ElementsAre("t000002", "t000001"));
  EXPECT_THAT(foundOn(desk, "till", "where"), ElementsAre("log", "brief"));
  EXPECT_THAT(foundOn(desk, " till is ", "text"), ElementsAre(HasSubstr("The till is closed")));
  EXPECT_THAT(foundOn(desk, "croissant"), IsEmpty());
}

TEST(Search, ForNothingFindsNothing) {
  Desk desk;
  desk.add("one");
  EXPECT_THAT(foundOn(desk, ""), IsEmpty());
  EXPECT_THAT(foundOn(desk, " \n "), IsEmpty());
}

TEST(Search, TellsThePlaceAndCutsNoCharacter) {
  Desk desk;
  std::string brief;
  for (int i = 0; i < 200; ++i) brief += "\u00e4";
  desk.add("long", text::cat(R"("body":")", brief, "Nadel", brief, brief, "\""));
  const std::vector<std::string> text = foundOn(desk, "nadel", "text");
  ASSERT_EQ(text.size(), 1u);
  EXPECT_TRUE(text[0].starts_with("\u2026\u00e4")) << text[0];
  EXPECT_THAT(text[0], HasSubstr("\u00e4Nadel\u00e4"));
  EXPECT_LT(text[0].size(), 600u);
}

TEST(Search, StopsAtALimit) {
  Desk desk;
  for (std::size_t i = 0; i < foundAtMost + 5; ++i) {
    Task task;
    task.id = taskID(static_cast<int64_t>(i) + 1);
    task.title = "same";
    desk.board.tasks.put(task);
  }
  EXPECT_EQ(foundOn(desk, "same").size(), foundAtMost);
}

TEST(Search, LooksInDiscussionsToo) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  desk.ask("AA2", "open_discussion", R"("body":"Oak or steel?","tags":["BB3"])");
  EXPECT_THAT(foundOn(desk, "steel", "where"), ElementsAre("question"));
  desk.person(personReply, R"("taskID":"d1","body":"Take ash")");
  EXPECT_THAT(foundOn(desk, "ash", "where"), ElementsAre("volley"));
}

}  // namespace
}  // namespace quillpost::board
