#include "calls/hold_budget.h"

#include "harness/fake_environment.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <map>
#include <string>

namespace quillpost {
namespace {

using Profile = TeamworkClientProfile::Profile;

constexpr const char* budgetVariable = "QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS";
constexpr const char* maximumVariable = "QUILLPOST_COLLAB_WAIT_MAX_SECONDS";

constexpr std::array<Profile, 5> profiles = {Profile::claude, Profile::codex, Profile::antigravity,
                                             Profile::cursor, Profile::unknown};

HoldSettings settingsFrom(std::map<std::string, std::string> variables) {
  return readHoldSettings(testing::FakeEnvironment(std::move(variables)));
}

TEST(HoldSettings, AreWholeDecimalIntegersOrUnset) {
  struct Row {
    std::string value;
    std::optional<int64_t> seconds;
  };
  for (const Row& row : {
           Row{"45", 45},
           Row{"+45", 45},
           Row{"-45", -45},
           Row{"0", 0},
           Row{"045", 45},
           Row{"9223372036854775807", std::numeric_limits<int64_t>::max()},
           Row{"9223372036854775808", std::nullopt},
           Row{"", std::nullopt},
           Row{"45s", std::nullopt},
           Row{" 45", std::nullopt},
           Row{"45\n", std::nullopt},
           Row{"45.0", std::nullopt},
           Row{"+", std::nullopt},
           Row{"\xff", std::nullopt},
       }) {
    EXPECT_EQ(settingsFrom({{budgetVariable, row.value}}).budget, row.seconds) << row.value;
    EXPECT_EQ(settingsFrom({{maximumVariable, row.value}}).maximum, row.seconds) << row.value;
  }
  EXPECT_EQ(settingsFrom({}).budget, std::nullopt);
  EXPECT_EQ(settingsFrom({}).maximum, std::nullopt);
}

TEST(HoldBudget, DependsOnTheClientAndOnTheTwoVariables) {
  struct Row {
    std::string name;
    std::map<std::string, std::string> variables;
    std::array<int64_t, 5> budgets;  // claude, codex, antigravity, cursor, unknown
  };
  for (const Row& row : {
           Row{"nothing set", {}, {30, 30, 30, 30, 30}},
           Row{"a budget of 5", {{budgetVariable, "5"}}, {15, 15, 15, 15, 15}},
           Row{"a budget of -5", {{budgetVariable, "-5"}}, {15, 15, 15, 15, 15}},
           Row{"a budget of 20", {{budgetVariable, "20"}}, {20, 20, 20, 20, 20}},
           Row{"a budget of 600", {{budgetVariable, "600"}}, {600, 600, 600, 30, 30}},
           Row{"a budget of 3600", {{budgetVariable, "3600"}}, {3600, 3600, 3600, 30, 30}},
           Row{"a budget of 99999", {{budgetVariable, "99999"}}, {3600, 3600, 3600, 30, 30}},
           Row{"a budget that is no number", {{budgetVariable, "5m"}}, {30, 30, 30, 30, 30}},
           Row{"a maximum of 60", {{maximumVariable, "60"}}, {110, 30, 30, 30, 30}},
           Row{"a maximum of 500", {{maximumVariable, "500"}}, {500, 30, 30, 30, 30}},
           Row{"a maximum of 99999", {{maximumVariable, "99999"}}, {3600, 30, 30, 30, 30}},
           Row{"a maximum that is no number", {{maximumVariable, "1e3"}}, {30, 30, 30, 30, 30}},
           Row{"both", {{budgetVariable, "45"}, {maximumVariable, "500"}}, {45, 45, 45, 30, 30}},
           Row{"a maximum and a budget that is no number",
               {{budgetVariable, ""}, {maximumVariable, "500"}},
               {500, 30, 30, 30, 30}},
       }) {
    for (std::size_t i = 0; i < profiles.size(); ++i) {
      EXPECT_EQ(holdBudget(profiles[i], settingsFrom(row.variables)), row.budgets[i])
          << row.name << ", client " << i;
    }
  }
}

TEST(HoldBudget, IsTooShortForSomeClients) {
  struct Row {
    std::string name;
    std::map<std::string, std::string> variables;
    std::array<bool, 5> cannotHold;
  };
  for (const Row& row : {
           Row{"nothing set", {}, {false, true, false, true, true}},
           Row{"a budget", {{budgetVariable, "600"}}, {false, false, false, true, true}},
           Row{"a budget that is no number",
               {{budgetVariable, "long"}},
               {false, true, false, true, true}},
           Row{"a maximum", {{maximumVariable, "600"}}, {false, true, false, true, true}},
       }) {
    for (std::size_t i = 0; i < profiles.size(); ++i) {
      EXPECT_EQ(cannotHoldLong(profiles[i], settingsFrom(row.variables)), row.cannotHold[i])
          << row.name << ", client " << i;
    }
  }
}

TEST(Hold, IsWhatWasAskedWithinTheBudget) {
  constexpr int64_t highest = std::numeric_limits<int64_t>::max();
  struct Row {
    std::optional<int64_t> asked, budget, seconds;
    bool isShortened;
  };
  for (const Row& row : {
           Row{std::nullopt, 30, 30, false},
           Row{10, 30, 10, false},
           Row{30, 30, 30, false},
           Row{31, 30, 30, true},
           Row{highest, 30, 30, true},
           Row{1, 30, 1, false},
           Row{0, 30, 1, false},
           Row{-1, 30, 1, false},
           Row{-highest - 1, 30, 1, false},
           Row{3600, 3600, 3600, false},
           Row{3601, 3600, 3600, true},
           Row{std::nullopt, std::nullopt, std::nullopt, false},
           Row{0, std::nullopt, 1, false},
           Row{100'000, std::nullopt, 100'000, false},
           Row{highest, std::nullopt, 31'536'000, true},
       }) {
    const Hold hold = holdFor(row.asked, row.budget);
    EXPECT_EQ(hold.seconds, row.seconds)
        << row.asked.value_or(-99) << " of " << row.budget.value_or(-99);
    EXPECT_EQ(hold.isShortened, row.isShortened)
        << row.asked.value_or(-99) << " of " << row.budget.value_or(-99);
  }
}

}  // namespace
}  // namespace quillpost
