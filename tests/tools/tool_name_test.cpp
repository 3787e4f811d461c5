#include "tools/tool_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace quillpost {
namespace {

constexpr char listed[] = "claim_task";
constexpr char misspelt[] = "claim_tasks";
constexpr char empty[] = "";
constexpr char wait[] = "wait_for_changes";
constexpr char alias[] = "wait_for_tasks";
constexpr char methodOnly[] = "poll_changes";

/// Whether `Name(Text)` compiles.
template <class Name, const char* Text>
concept Names = requires {
  typename std::bool_constant<(Name(Text), true)>;
};

TEST(Verbs, EveryToolButTheWaitSendsItsOwnName) {
  for (const std::string_view tool : toolNames)
    EXPECT_EQ(isBoardMethod(tool), tool != "wait_for_changes") << tool;
}

TEST(Verbs, TheMethodsStandInTheOrderOfTheTools) {
  std::vector<std::string_view> expected(toolNames.begin(), toolNames.end());
  std::erase(expected, "wait_for_changes");
  EXPECT_TRUE(std::ranges::equal(boardMethods, expected));
}

TEST(Verbs, ANameThatIsNoToolsSendsNothing) {
  for (const std::string_view name : {"", "Register", "register ", "wait_for_changes",
                                      "wait_for_tasks", "poll_changes", "wake_query", "frobnicate"})
    EXPECT_FALSE(isBoardMethod(name)) << name;
}

TEST(Verbs, ThoseThatAreNoToolsAreSpelledAsTheAppKnowsThem) {
  EXPECT_EQ(waitForTasks, "wait_for_tasks");
  EXPECT_EQ(pollChanges, "poll_changes");
  EXPECT_EQ(wakeQuery, "wake_query");
}

TEST(ToolName, OnlyTheNameOfAToolCompiles) {
  EXPECT_TRUE((Names<ToolName, listed>));
  EXPECT_TRUE((Names<ToolName, wait>));
  EXPECT_FALSE((Names<ToolName, misspelt>));
  EXPECT_FALSE((Names<ToolName, empty>));
  EXPECT_FALSE((Names<ToolName, alias>));
  EXPECT_FALSE((Names<ToolName, methodOnly>));
}

TEST(ToolName, IsComparedWithTextAndWithNames) {
  constexpr ToolName claim = "claim_task";
  EXPECT_TRUE(claim == std::string_view("claim_task"));
  EXPECT_TRUE(std::string_view("claim_task") == claim);
  EXPECT_FALSE(claim == std::string_view("read_task"));
  EXPECT_TRUE(claim == ToolName(listed));
  EXPECT_FALSE(claim == ToolName("read_task"));
  EXPECT_TRUE(claim == std::string("claim_task"));
  EXPECT_FALSE(std::string("read_task") == claim);
}

TEST(MethodName, OnlyTheNameOfAMethodCompiles) {
  EXPECT_TRUE((Names<MethodName, listed>));
  EXPECT_TRUE((Names<MethodName, methodOnly>));
  EXPECT_FALSE((Names<MethodName, misspelt>));
  EXPECT_FALSE((Names<MethodName, empty>));
  EXPECT_FALSE((Names<MethodName, wait>));
  EXPECT_FALSE((Names<MethodName, alias>));
}

}  // namespace
}  // namespace quillpost
