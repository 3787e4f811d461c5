#include "board/page/deeds.h"

#include "board/rules/helper.h"
#include "board/verbs/person.h"
#include "json/decoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

const Surroundings terminal{"/bin/sh", {"HOME=/h", "SECRET=no", "PATH=/usr/bin"}};

/// What the page's program makes of a deed.
std::optional<TeamworkRequest> deedOf(const std::string& body, std::string& why) {
  return deedOf(body, terminal, why);
}

TEST(Deeds, BecomeTheRequestThatACommandWouldSend) {
  std::string why;
  const auto deed = deedOf(
      R"({"method":"person_edit","name":"T-abc234","taskID":"t000001","title":"x","body":"y",
          "priority":3,"taskType":"bug","resources":["a"],"waitsOn":["t2"],"assignedRole":"r",
          "routedToFingerprint":"KQ3"})",
      why);
  ASSERT_TRUE(deed) << why;
  TeamworkRequest wanted;
  wanted.method = personEdit;
  wanted.name = "T-abc234";
  wanted.taskID = "t000001";
  wanted.title = "x";
  wanted.body = "y";
  wanted.priority = 3;
  wanted.taskType = "bug";
  wanted.resources = {{"a"}};
  wanted.waitsOn = {{"t2"}};
  wanted.assignedRole = "r";
  wanted.routedToFingerprint = "KQ3";
  EXPECT_EQ(*deed, wanted);
  const auto other = deedOf(
      R"({"method":"person_answer","taskID":"t1","to":"KQ3","body":"b","releaseReason":"r",
          "blockerQuestion":"q","approve":true,"acknowledgeOpenTasks":true,"agent":"scout",
          "command":"'scout'"})",
      why);
  ASSERT_TRUE(other) << why;
  wanted = {};
  wanted.method = personAnswer;
  wanted.taskID = "t1";
  wanted.to = "KQ3";
  wanted.body = "b";
  wanted.releaseReason = "r";
  wanted.blockerQuestion = "q";
  wanted.approve = true;
  wanted.acknowledgeOpenTasks = true;
  wanted.agent = "scout";
  wanted.command = "'scout'";
  EXPECT_EQ(*other, wanted);
}

TEST(Deeds, AHelperIsAllowedWithTheTerminalsDirectoryAndVariablesWhateverThePageSays) {
  const char* allowing = R"({"method":"person_helper_allow","agent":"scout","explanation":"reads",
      "words":["scout","a b"],"runsWithoutApprovals":true,"quillpostTools":true,
      "directory":"/evil","variables":["LD_PRELOAD=/evil"],
      "body":"{\"id\":\"evil\",\"directory\":\"/evil\"}"})";
  std::string why;
  const auto deed = deedOf(allowing, why);
  ASSERT_TRUE(deed) << why;
  EXPECT_EQ(deed->method, personHelperAllow);
  const auto helper = json::decode<Helper>(deed->body.value_or(""));
  ASSERT_TRUE(helper);
  EXPECT_EQ(helper->id, "scout");
  EXPECT_EQ(helper->explanation, "reads");
  EXPECT_THAT(helper->words, ElementsAre("scout", "a b"));
  EXPECT_EQ(helper->directory, std::filesystem::canonical(".").string());
  EXPECT_THAT(helper->variables, ElementsAre("HOME=/h", HasSubstr("/usr/bin")));
  EXPECT_TRUE(helper->runsWithoutApprovals && helper->hasTools);
}

TEST(Deeds, ASuggestionIsApprovedWithTheArgumentsThatWereShown) {
  std::string why;
  const auto deed =
      deedOf(R"({"method":"person_helper_approve","agent":"scout","command":"'scout' '-p'"})", why);
  ASSERT_TRUE(deed) << why;
  EXPECT_EQ(deed->command, "'scout' '-p'");
  const auto helper = json::decode<Helper>(deed->body.value_or(""));
  ASSERT_TRUE(helper);
  EXPECT_EQ(helper->id, "scout");
  EXPECT_TRUE(helper->words.empty()) << "the board has them";
  EXPECT_FALSE(helper->runsWithoutApprovals || helper->hasTools);
  for (const std::string_view method : {personHelperRefuse, personHelperForget}) {
    const auto other = deedOf(text::cat(R"({"method":")", method, R"(","agent":"scout"})"), why);
    ASSERT_TRUE(other) << why;
    EXPECT_EQ(other->agent, "scout");
    EXPECT_EQ(other->body, std::nullopt);
  }
}

TEST(Deeds, NoFileSeatOrTokenIsWithinReachOfThePage) {
  for (const std::string_view method : {personExport, personImport, personBackup, personCheck,
                                        personSeat, personSeats, personThread, personUnseat}) {
    EXPECT_FALSE(isDeedOfPage(method)) << method;
  }
  std::string why;
  EXPECT_FALSE(deedOf(R"({"method":"person_export","body":"/tmp/x"})", why));
  EXPECT_EQ(why, "the page has no such button");
  EXPECT_FALSE(deedOf(R"({"method":"add_task","title":"x"})", why));
}

TEST(Deeds, NothingSaysWhoAsks) {
  std::string why;
  const auto deed = deedOf(
      R"({"method":"person_add","title":"x","token":"t","sessionID":"s","protocolVersion":9})",
      why);
  ASSERT_TRUE(deed) << why;
  EXPECT_EQ(deed->token, "");
  EXPECT_EQ(deed->sessionID, "");
  EXPECT_EQ(deed->protocolVersion, TeamworkRequest{}.protocolVersion);
}

TEST(Deeds, WhatIsNoSuchObjectIsRefusedInWords) {
  for (const char* body : {"", "[]", "null", "{}", "{\"method\":1}", "{\"method\":\"person_add\"",
                           R"({"method":"person_add","priority":"x"})",
                           R"({"method":"person_helper_allow","words":"x"})", "\xff"}) {
    std::string why;
    EXPECT_FALSE(deedOf(body, why)) << body;
    EXPECT_EQ(why, "that is not what the page writes") << body;
  }
}

}  // namespace
}  // namespace quillpost::board
