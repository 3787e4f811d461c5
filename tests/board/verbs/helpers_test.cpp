#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

TEST(Helpers, NoneIsAllowedSoWorkIsFiledAndNothingStarts) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const auto response = desk.ask("AA2", "request_hands", R"("title":"lift","body":"the brief")");
  EXPECT_TRUE(wasWritten(response));
  EXPECT_THAT(response.notice.value_or(""), HasSubstr("suggest_helper"));
  ASSERT_EQ(desk.board.tasks.size(), 1u);
  EXPECT_EQ(briefOf(desk.board, "t000001"), "the brief");
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "request_hands", Desk::on("t000001"))));
  EXPECT_EQ(desk.board.tasks.size(), 1u);
}

TEST(Helpers, AskingWronglyIsRefused) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const std::string id = desk.add("one");
  for (const auto& [members, words] : {std::pair<std::string, const char*>{"", "never both"},
                                       {Desk::on(id) + R"(,"title":"x")", "never both"},
                                       {R"("title":"x","to":"laptop")", "device"},
                                       {R"("title":"x","agent":"mate")", "mate"},
                                       {Desk::on("t777777"), "t777777"}}) {
    EXPECT_TRUE(wasRefused(desk.ask("AA2", "request_hands", members), words)) << members;
  }
  EXPECT_EQ(desk.board.tasks.size(), 1u);
}

TEST(Helpers, ASuggestionIsOneSimpleCommandAndReplacesItsNamesake) {
  Desk desk;
  const auto suggest = [&](std::string_view name, std::string_view command) {
    return desk.ask(
        "AA2", "suggest_helper",
        text::cat(R"("agent":")", name, R"(","command":")", command, R"(","explanation":"fast")"));
  };
  for (const char* command : {"a; b", "a | b", "a > b", "a $(b)", "a && b", " "})
    EXPECT_TRUE(wasRefused(suggest("mate", command), "command")) << command;
  EXPECT_TRUE(wasRefused(suggest(std::string(49, 'n'), "run"), "48"));
  EXPECT_TRUE(wasWritten(suggest(std::string(48, 'n'), "run")));
  EXPECT_TRUE(wasWritten(suggest("mate", "run --slow")));
  EXPECT_TRUE(wasWritten(suggest("mate", "run --fast {prompt}")));
  EXPECT_EQ(desk.board.suggestions.size(), 2u);
  EXPECT_EQ(desk.board.suggestions.find("mate")->command, "run --fast {prompt}");
}

}  // namespace
}  // namespace quillpost::board
