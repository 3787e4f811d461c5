#include "board/page/deeds.h"

#include "board/verbs/person.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

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
          "blockerQuestion":"q","approve":true,"acknowledgeOpenTasks":true})",
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
  EXPECT_EQ(*other, wanted);
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
                           R"({"method":"person_add","priority":"x"})", "\xff"}) {
    std::string why;
    EXPECT_FALSE(deedOf(body, why)) << body;
    EXPECT_EQ(why, "that is not what the page writes") << body;
  }
}

}  // namespace
}  // namespace quillpost::board
