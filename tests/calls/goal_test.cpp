#include "calls/goal.h"

#include "harness/json_object.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

struct GoalRow {
  std::string_view name;
  std::string_view arguments;
  std::optional<std::string> goal;
};

TEST(Goal, IsOneLineOfWhatWasGiven) {
  // clang-format off
  const GoalRow rows[] = {
      {"nothing", R"({})", std::nullopt},
      {"extras alone", R"({"purpose":"p"})", std::nullopt},
      {"the description alone", R"({"description":"Ship it"})", "Ship it"},
      {"the older name alone", R"({"name":"X"})", "X"},
      {"both", R"({"name":"X","description":"Ship it"})", "Ship it"},
      {"a description of another kind", R"({"name":"X","description":7})", "X"},
      {"neither is a text", R"({"name":["X"],"description":7,"purpose":"p"})", std::nullopt},
      {"an empty description is one", R"({"name":"X","description":""})", ""},
      {"an empty description with an extra", R"({"description":"","purpose":"p"})",
       " — Purpose: p"},
      {"an extra, and one that is empty",
       R"({"description":"Ship the importer","purpose":"users asked","nonGoals":""})",
       "Ship the importer — Purpose: users asked"},
      {"all of them, in their own order",
       R"({"acceptableRisk":"r","nonGoals":"n","constraints":"c","purpose":"p","description":"d"})",
       "d — Purpose: p — Constraints: c — Non-goals: n — Acceptable risk: r"},
      {"extras of another kind", R"({"description":"d","purpose":1,"constraints":null})", "d"},
      {"extras behind the older name", R"({"name":"X","acceptableRisk":"r"})",
       "X — Acceptable risk: r"},
      {"texts stay as they are", R"({"description":" a\nb ","purpose":" "})",
       " a\nb  — Purpose:  "},
  };
  // clang-format on
  for (const GoalRow& row : rows) {
    const json::TreeObject object = testing::objectFrom(row.arguments);
    EXPECT_EQ(composeGoal(Arguments(object)), row.goal) << row.name;
  }
}

}  // namespace
}  // namespace quillpost
