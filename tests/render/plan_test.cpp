#include "render/plan.h"

#include "harness/golden.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::expanded;
using testing::goldenText;
using testing::objectText;
using testing::sameText;

std::string planText(const TeamworkPlan& plan, const Page& page) {
  return objectText([&](json::Object& out) { addPlan(out, plan, page); });
}

TEST(AddPlan, ShowsSixMembersAndTheDiscussionsOfAnEmptyOne) {
  EXPECT_EQ(planText({}, {}),
            R"({"thread":"","goalLocked":false,"dispatched":false,"shared":false,)"
            R"("otherLocalAgents":0,"otherDevices":0,"discussions":[]})");
}

TEST(AddPlan, ShowsAllMembersInOrder) {
  TeamworkPlan plan;
  plan.threadName = "Importer";
  plan.goal = "Ship it\nsoon";
  plan.charter = "Owns the importer";
  plan.goalLocked = true;
  plan.dispatched = true;
  plan.shared = true;
  plan.otherLocalAgents = 1;
  plan.otherDevices = 2;
  plan.goalComplete = true;
  plan.pendingGoalComplete = true;
  plan.discussions.resize(2);
  plan.discussions[0].id = "d000001";
  plan.discussions[1].id = "d000002";
  const std::string rest =
      R"(,"state":"","question":"","addressedTo":[],"volleys":[],"owingParties":[],)"
      R"("yourTurn":false,"volleysSinceHuman":0,"roundBudget":"0/8 volleys since last human )"
      R"(input — escalates to the human at the cap"})";
  EXPECT_TRUE(sameText(R"({"thread":"Importer","goalLocked":true,"dispatched":true,"shared":true,)"
                       R"("otherLocalAgents":1,"otherDevices":2,"goal":"Ship it\nsoon",)"
                       R"("goalComplete":true,"pendingGoalComplete":true,)"
                       R"("charter":"Owns the importer","discussions":[{"id":"d000001")" +
                           rest + R"(,{"id":"d000002")" + rest + "]}",
                       planText(plan, {})));
}

TEST(AddPlan, NumbersTheGoalsLinesOnlyWhenAPageIsAskedFor) {
  struct Row {
    std::string_view name;
    Page page;
    std::string_view goal;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"no page",          {std::nullopt, std::nullopt}, R"("goal":"a\nb\nc\n",)"},
      {"an offset",        {2, std::nullopt},            R"~("goal":"2\tb\n3\tc\n\n(Lines 2–3 of 3.)",)~"},
      {"a limit",          {std::nullopt, 2},            R"~("goal":"1\ta\n2\tb\n\n(Lines 1–2 of 3. Pass offset=3 to continue.)",)~"},
      {"both",             {2, 1},                       R"~("goal":"2\tb\n\n(Lines 2–2 of 3. Pass offset=3 to continue.)",)~"},
      {"the first line on", {1, std::nullopt},           R"("goal":"1\ta\n2\tb\n3\tc",)"},
  };
  // clang-format on
  TeamworkPlan plan;
  plan.goal = "a\nb\nc\n";
  for (const Row& row : rows)
    EXPECT_NE(planText(plan, row.page).find(row.goal), std::string::npos)
        << row.name << ": " << planText(plan, row.page);
}

TEST(AddPlan, LeavesOutAnEmptyGoalEvenAsAPage) {
  EXPECT_EQ(planText({}, {.offset = 1, .limit = 5}), planText({}, {}));
}

TeamworkObligations owingReply() {
  TeamworkObligations obligations;
  obligations.clear = false;
  obligations.oweReply.resize(1);
  return obligations;
}

struct StepRow {
  std::string_view name;
  void (*change)(TeamworkPlan&);
  std::string_view expected;
};

TEST(NextStep, FollowsFromTheGoalAndTheAudience) {
  // clang-format off
  const std::vector<StepRow> rows = {
      {"an empty plan",           [](TeamworkPlan&) {},                                                            "firstAgentUnsynced"},
      {"a goal",                  [](TeamworkPlan& p) { p.goal = "g"; },                                           "goalSet"},
      {"a goal in white space",   [](TeamworkPlan& p) { p.goal = " \n\tg \n"; },                                   "goalSet"},
      {"only white space",        [](TeamworkPlan& p) { p.goal = " \n\t\u00a0\u2028 \n"; },                        "firstAgentUnsynced"},
      {"white space, shared",     [](TeamworkPlan& p) { p.goal = " \n"; p.shared = true; },                        "firstAgentAlone"},
      {"proposed",                [](TeamworkPlan& p) { p.goal = "g"; p.pendingGoalComplete = true; },             "completionProposed"},
      {"proposed without a goal", [](TeamworkPlan& p) { p.pendingGoalComplete = true; p.shared = true; },          "completionProposed"},
      {"complete and proposed",   [](TeamworkPlan& p) { p.goalComplete = p.pendingGoalComplete = true; },          "goalComplete"},
      {"complete for many",       [](TeamworkPlan& p) { p.goalComplete = true; p.goal = "g"; p.otherDevices = 2; p.shared = true; }, "goalComplete"},
      {"a goal and devices",      [](TeamworkPlan& p) { p.goal = "g"; p.otherDevices = 1; },                       "goalSet"},
      {"proposed and devices",    [](TeamworkPlan& p) { p.pendingGoalComplete = true; p.otherDevices = 1; },       "completionProposed"},
      {"devices, shared",         [](TeamworkPlan& p) { p.otherDevices = 1; p.shared = true; },                    "firstAgentPeersLive"},
      {"devices, not shared",     [](TeamworkPlan& p) { p.otherDevices = 2; },                                     "firstAgentUnsynced"},
      {"devices and locals, not shared", [](TeamworkPlan& p) { p.otherDevices = 2; p.otherLocalAgents = 3; },      "firstAgentUnsynced"},
      {"shared, nobody",          [](TeamworkPlan& p) { p.shared = true; },                                        "firstAgentAlone"},
      {"shared, fewer than none", [](TeamworkPlan& p) { p.shared = true; p.otherDevices = p.otherLocalAgents = -1; }, "firstAgentAlone"},
      {"shared, a local agent",   [](TeamworkPlan& p) { p.shared = true; p.otherLocalAgents = 1; },                "firstAgentPeersLive"},
      {"shared, a local agent, fewer devices than none", [](TeamworkPlan& p) { p.shared = true; p.otherLocalAgents = 1; p.otherDevices = -1; }, "firstAgentPeersLive"},
      {"locals, not shared",      [](TeamworkPlan& p) { p.otherLocalAgents = 3; },                                 "firstAgentUnsynced"},
  };
  // clang-format on
  for (const StepRow& row : rows) {
    TeamworkPlan plan;
    row.change(plan);
    EXPECT_TRUE(sameText(goldenText(row.expected), nextStep(plan, std::nullopt))) << row.name;
  }
}

TEST(NextStep, HoldsAnAgentThatOwesBackFromStandingDown) {
  TeamworkPlan plan;
  plan.goalComplete = true;
  EXPECT_TRUE(
      sameText(goldenText("goalCompleteButOwing(1 reply owed)"), nextStep(plan, owingReply())));
  TeamworkObligations clear = owingReply();
  clear.clear = true;
  EXPECT_TRUE(sameText(goldenText("goalComplete"), nextStep(plan, clear)));
  TeamworkObligations nothing;
  nothing.clear = false;
  EXPECT_TRUE(sameText(
      "The goal is complete but your obligations are NOT clear (nothing outstanding) — settle them "
      "(answer or resolve your open discussions) before standing down.",
      nextStep(plan, nothing)));
}

TEST(NextStep, DisregardsWhatIsOwedUntilTheGoalIsComplete) {
  TeamworkPlan plan;
  plan.goal = "g";
  EXPECT_TRUE(sameText(goldenText("goalSet"), nextStep(plan, owingReply())));
}

}  // namespace
}  // namespace quillpost
