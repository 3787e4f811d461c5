#include "qp/task_view.h"

#include "base/text.h"
#include "harness/json_object.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using testing::objectFrom;

constexpr std::string_view backlog =
    R"({"yours":[],"forYou":[],)"
    R"("readyToClaim":[{"id":"t1","title":"Parse leases","state":"open",)"
    R"("summary":"Reads them."},)"
    R"({"id":"t2","title":"Print","state":"open","lastProgress":"leases"},)"
    R"({"id":"t3","title":"Draw","state":"open"}],"waiting":[{"id":"t4","title":"Wait"}],)"
    R"("hint":"h"})";

TaskView viewFrom(std::string_view options, bool asJson = false) {
  const json::TreeObject object = objectFrom(options);
  return taskViewFrom(Arguments(object), asJson);
}

std::string seen(std::string_view options) {
  return viewed(std::string(backlog), viewFrom(options)).json.value_or("as it is");
}

TEST(TaskView, LeavesASmallBacklogAsItIs) {
  EXPECT_EQ(seen("{}"), "as it is");
  EXPECT_EQ(seen(R"({"limit":3})"), "as it is");
  EXPECT_EQ(viewed("no json", viewFrom(R"({"bucket":"yours"})")).json, std::nullopt);
  EXPECT_EQ(viewed("[1]", viewFrom(R"({"bucket":"yours"})")).json, std::nullopt);
}

TEST(TaskView, CutsEachBucketAndSaysHowManyAreLeftOut) {
  const ViewedTasks one = viewed(std::string(backlog), viewFrom(R"({"limit":1})"));
  EXPECT_EQ(*one.json,
            R"({"yours":[],"forYou":[],"readyToClaim":[{"id":"t1","title":"Parse leases",)"
            R"("state":"open","summary":"Reads them."}],"waiting":[{"id":"t4","title":"Wait"}],)"
            R"("hint":"h"})");
  EXPECT_EQ(one.leftOut, "… 2 more under readyToClaim: qp tasks --all\n");
}

TEST(TaskView, ShowsOneBucketAndAFewFields) {
  EXPECT_EQ(seen(R"({"bucket":"waiting","fields":["title","id","nothing"]})"),
            R"({"waiting":[{"id":"t4","title":"Wait"}],"hint":"h"})");
}

TEST(TaskView, NamesTheFieldsThatNoTaskHas) {
  const auto leftOut = [](std::string_view options) {
    return viewed(std::string(backlog), viewFrom(options)).leftOut;
  };
  EXPECT_EQ(leftOut(R"({"fields":["title","nope","hint"]})"), "… no task here has nope or hint\n");
  EXPECT_EQ(leftOut(R"({"fields":["title","summary"]})"), "");
  EXPECT_EQ(leftOut(R"({"fields":["nope"],"bucket":"yours"})"), "");
}

TEST(TaskView, FindsAllTheWordsInIdTitleSummaryAndLastLine) {
  EXPECT_EQ(seen(R"({"grep":"LEASES","bucket":"readyToClaim","fields":["id"]})"),
            R"({"readyToClaim":[{"id":"t1"},{"id":"t2"}],"hint":"h"})");
  EXPECT_EQ(seen(R"({"grep":"leases  reads","bucket":"readyToClaim","fields":["id"]})"),
            R"({"readyToClaim":[{"id":"t1"}],"hint":"h"})");
  EXPECT_EQ(seen(R"({"grep":"open","bucket":"readyToClaim"})"),
            R"({"readyToClaim":[],"hint":"h"})");
}

TEST(TaskView, ShowsFiftyToAPersonAndAllToAProgram) {
  EXPECT_EQ(viewFrom("{}").limit, 50);
  EXPECT_EQ(viewFrom(R"({"all":true})").limit, std::nullopt);
  EXPECT_EQ(viewFrom("{}", true).limit, std::nullopt);
  EXPECT_EQ(viewFrom(R"({"limit":7,"all":true})", true).limit, std::nullopt);
  EXPECT_EQ(viewFrom(R"({"limit":7})", true).limit, 7);
}

}  // namespace
}  // namespace quillpost
