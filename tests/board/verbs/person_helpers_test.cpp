#include "board/helped.h"
#include "board/rules/command_words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A request of the person's about a helper that is described by its row.
TeamworkResponse told(Desk& desk, std::string_view method, const Helper& helper,
                      const std::string& command = "") {
  TeamworkRequest request = requestOf("", method);
  request.body = json::encode(helper);
  if (!command.empty()) request.command = command;
  return carryOutForPerson(desk.board, request, desk.at);
}

Helper scout() {
  return {"scout", "reads", {"scout", "-p"}, "/d", {"PATH=/bin", "QUILLPOST_SESSION_ID=x"},
          true,    true};
}

TEST(PersonsHelpers, OneIsAllowedInExactlyTheseWordsAndTheSquadIsOnFromThen) {
  Desk desk;
  const auto response = told(desk, personHelperAllow, scout());
  ASSERT_TRUE(wasWritten(response));
  EXPECT_EQ(response.message,
            "Agents may now have \"scout\" started, which runs 'scout' '-p' in /d. The squad is "
            "on.");
  const Helper& helper = *desk.board.helpers.find("scout");
  EXPECT_THAT(helper.words, ElementsAre("scout", "-p"));
  EXPECT_THAT(helper.variables, ElementsAre("PATH=/bin")) << "a seat's are the board's to give";
  EXPECT_TRUE(helper.runsWithoutApprovals && helper.hasTools);
  EXPECT_TRUE(desk.board.thread().squadOn);
  EXPECT_THAT(told(desk, personHelperAllow, scout()).message.value_or(""),
              HasSubstr("takes the place"));
}

TEST(PersonsHelpers, OneThatMakesNoSenseIsRefused) {
  Desk desk;
  const auto refuses = [&](auto&& change, std::string_view words) {
    Helper helper = scout();
    change(helper);
    EXPECT_TRUE(wasRefused(told(desk, personHelperAllow, helper), words));
  };
  refuses([](Helper& helper) { helper.id = ""; }, "1 to 48");
  refuses([](Helper& helper) { helper.id = std::string(49, 'n'); }, "1 to 48");
  refuses([](Helper& helper) { helper.explanation = std::string(281, 'n'); }, "280");
  refuses([](Helper& helper) { helper.directory = "here"; }, "directory");
  refuses([](Helper& helper) { helper.words.clear(); }, "`command`");
  EXPECT_TRUE(wasRefused(desk.person(personHelperAllow, R"("body":"nonsense")"), "no helper"));
  EXPECT_TRUE(wasRefused(desk.person(personHelperApprove), "no helper"));
  EXPECT_TRUE(desk.board.helpers.empty());
  EXPECT_FALSE(desk.board.thread().squadOn);
}

TEST(PersonsHelpers, OneIsForgottenAndThoseThatRunGoOn) {
  HelpedDesk desk;
  const std::string handle = desk.working("AA2");
  EXPECT_TRUE(wasWritten(desk.person(personHelperForget, R"("agent":"scout")")));
  EXPECT_TRUE(desk.board.helpers.empty());
  EXPECT_EQ(desk.stateOf(handle), "running");
  EXPECT_TRUE(wasRefused(desk.person(personHelperForget, R"("agent":"scout")"), "scout"));
}

TEST(PersonsHelpers, ASuggestionIsApprovedAsItWasShownAndNoOther) {
  Desk desk;
  const auto suggest = [&](std::string_view command) {
    desk.ask("AA2", "suggest_helper",
             text::cat(R"("agent":"scout","explanation":"reads","command":")", command, "\""));
  };
  suggest("scout 'a b'");
  Helper here = scout();
  here.words = {"evil"};
  here.explanation.clear();
  suggest("other");
  EXPECT_TRUE(wasRefused(told(desk, personHelperApprove, here, "'scout' 'a b'"), "replaced"));
  EXPECT_TRUE(wasRefused(told(desk, personHelperApprove, here), "replaced"));
  EXPECT_TRUE(desk.board.helpers.empty());
  suggest("scout 'a b'");
  ASSERT_TRUE(wasWritten(told(desk, personHelperApprove, here, "'scout' 'a b'")));
  const Helper& helper = *desk.board.helpers.find("scout");
  EXPECT_THAT(helper.words, ElementsAre("scout", "a b"));
  EXPECT_EQ(helper.explanation, "reads");
  EXPECT_TRUE(desk.board.suggestions.empty());
  EXPECT_THAT(desk.wakes("AA2"), ElementsAre("humanSaid"));
  EXPECT_TRUE(wasRefused(told(desk, personHelperApprove, here, "'scout' 'a b'"), "suggested"));
}

TEST(PersonsHelpers, ASuggestionIsRefusedAndItsAgentTold) {
  HelpedDesk desk;
  desk.ask("BB3", "suggest_helper", R"("agent":"mate","explanation":"x","command":"mate")");
  EXPECT_TRUE(wasWritten(desk.person(personHelperRefuse, R"("agent":"mate")")));
  EXPECT_TRUE(desk.board.suggestions.empty());
  EXPECT_EQ(desk.board.helpers.find("mate"), nullptr);
  EXPECT_THAT(desk.told("BB3"), ElementsAre(HasSubstr("does not allow the helper \"mate\"")));
  EXPECT_TRUE(wasRefused(desk.person(personHelperRefuse, R"("agent":"mate")"), "mate"));
}

}  // namespace
}  // namespace quillpost::board
