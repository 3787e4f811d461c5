#include "render/discussion.h"

#include "harness/golden.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::expanded;
using testing::objectText;
using testing::sameText;

std::string discussionText(const TeamworkDiscussion& discussion) {
  return objectText([&](json::Object& out) { addDiscussion(out, discussion); });
}

TeamworkDiscussion freshDiscussion() {
  TeamworkDiscussion discussion;
  discussion.id = "d123456";
  discussion.state = "open";
  discussion.question = "Which?";
  discussion.openedBy = "KQ3";
  return discussion;
}

TEST(AddDiscussion, ShowsNineMembersOfAFreshOne) {
  EXPECT_EQ(discussionText(freshDiscussion()),
            R"({"id":"d123456","state":"open","question":"Which?","addressedTo":[],"volleys":[],)"
            R"("owingParties":[],"yourTurn":false,"volleysSinceHuman":0,)"
            R"("roundBudget":"0/8 volleys since last human input — escalates to the human at )"
            R"(the cap"})");
}

TEST(AddDiscussion, ShowsAllMembersInOrder) {
  TeamworkDiscussion discussion = freshDiscussion();
  discussion.taskID = "t1";
  discussion.addressedTo = {"M2X", "ZZ9"};
  discussion.volleys = {{"KQ3", "say \"A\"", 1}, {"M2X", "two\nlines", 2}, {"", "", 3}};
  discussion.owingParties = {"M2X"};
  discussion.volleysSinceHuman = 3;
  discussion.yourTurn = true;
  discussion.resolution = "A";
  discussion.resolvedBy = "KQ3";
  discussion.escalated = true;
  EXPECT_EQ(discussionText(discussion),
            R"({"id":"d123456","state":"open","question":"Which?","addressedTo":["M2X","ZZ9"],)"
            R"("volleys":["[KQ3] say \"A\"","[M2X] two\nlines","[] "],"owingParties":["M2X"],)"
            R"("yourTurn":true,"volleysSinceHuman":3,)"
            R"("roundBudget":"3/8 volleys since last human input — escalates to the human at )"
            R"(the cap","resolution":"A","escalated":true})");
}

TEST(AddDiscussion, DoesNotClampTheRoundBudget) {
  TeamworkDiscussion discussion = freshDiscussion();
  discussion.volleysSinceHuman = 9;
  EXPECT_NE(discussionText(discussion)
                .find(R"("volleysSinceHuman":9,"roundBudget":"9/8 volleys since last human )"
                      R"(input — escalates to the human at the cap"})"),
            std::string::npos);
}

TEST(AddDiscussion, LeavesOutAnEmptyResolution) {
  TeamworkDiscussion discussion = freshDiscussion();
  discussion.resolution = "";
  EXPECT_EQ(discussionText(discussion), discussionText(freshDiscussion()));
}

TEST(DiscussionHint, DependsOnTheVerbAndOnWhereTheDiscussionHangs) {
  struct Row {
    std::string_view verb;
    bool boardLevel;
    std::string_view expected;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"open_discussion",    true,  "{{discussionOpened(d123456, boardDiscussion)}}"},
      {"open_discussion",    false, "{{discussionOpened(d123456, taskDiscussion)}}"},
      {"reply_discussion",   true,  "{{volleyPosted(boardDiscussion)}}"},
      {"reply_discussion",   false, "{{volleyPosted(taskDiscussion)}}"},
      {"resolve_discussion", true,  "{{boardDiscussion.resolved}}"},
      {"resolve_discussion", false, "{{taskDiscussion.resolved}}"},
  };
  // clang-format on
  for (const Row& row : rows) {
    EXPECT_TRUE(sameText(expanded(row.expected),
                         discussionHint(row.verb, "d123456", row.boardLevel).value_or("nothing")))
        << row.verb << " " << row.boardLevel;
  }
}

TEST(DiscussionHint, IsAbsentForEveryOtherVerb) {
  for (const std::string_view verb : {"read_plan", "comment_task", "", "Open_discussion"})
    EXPECT_EQ(discussionHint(verb, "d123456", true), std::nullopt) << verb;
}

}  // namespace
}  // namespace quillpost
