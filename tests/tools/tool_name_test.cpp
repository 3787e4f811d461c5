#include "tools/tool_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <type_traits>

namespace quillpost {
namespace {

constexpr std::array<std::string_view, 32> dispatched{
    "register",         "unregister",
    "heartbeat",        "list_agents",
    "read_plan",        "set_goal",
    "set_charter",      "add_task",
    "list_tasks",       "read_task",
    "claim_task",       "update_task",
    "complete_task",    "reject_task",
    "delete_task",      "release_task",
    "watch_task",       "unwatch_task",
    "request_review",   "verify_task",
    "comment_task",     "open_discussion",
    "reply_discussion", "resolve_discussion",
    "request_release",  "propose_goal_complete",
    "assign_task",      "send_message",
    "read_messages",    "request_hands",
    "suggest_helper",   "stop_helper",
};

constexpr char listed[] = "claim_task";
constexpr char misspelt[] = "claim_tasks";
constexpr char empty[] = "";
constexpr char alias[] = "wait_for_tasks";
constexpr char methodOnly[] = "poll_changes";

/// Whether `ToolName(Name)` compiles.
template <const char* Name>
concept NamesATool = requires {
  typename std::bool_constant<(ToolName(Name), true)>;
};

TEST(Verbs, TheMethodsAreTheListedToolsWithoutTheWaitInTheSameOrder) {
  EXPECT_TRUE(std::ranges::equal(boardMethods, dispatched));
}

TEST(Verbs, TheWaitIsListedTwentyFifth) {
  EXPECT_EQ(listedTools.size(), 33u);
  EXPECT_EQ(listedTools[24], "wait_for_changes");
  EXPECT_EQ(waitForChanges, "wait_for_changes");
}

TEST(Verbs, EveryListedToolButTheWaitSendsItsOwnName) {
  for (const std::string_view tool : listedTools)
    EXPECT_EQ(isBoardMethod(tool), tool != "wait_for_changes") << tool;
}

TEST(Verbs, ANameThatIsNoToolsSendsNothing) {
  for (const std::string_view name : {"", "Register", "register ", "wait_for_changes",
                                      "wait_for_tasks", "poll_changes", "wake_query", "frobnicate"})
    EXPECT_FALSE(isBoardMethod(name)) << name;
}

TEST(Verbs, TheAliasOfTheWaitIsNeverListed) {
  EXPECT_EQ(waitForTasks, "wait_for_tasks");
  EXPECT_EQ(std::ranges::count(listedTools, waitForTasks), 0);
}

TEST(Verbs, TheMethodsBesidesTheToolsAreSpelledAsTheAppKnowsThem) {
  EXPECT_EQ(pollChanges, "poll_changes");
  EXPECT_EQ(heartbeat, "heartbeat");
  EXPECT_EQ(wakeQuery, "wake_query");
}

TEST(ToolName, OnlyTheNameOfAListedToolCompiles) {
  EXPECT_TRUE(NamesATool<listed>);
  EXPECT_FALSE(NamesATool<misspelt>);
  EXPECT_FALSE(NamesATool<empty>);
  EXPECT_FALSE(NamesATool<alias>);
  EXPECT_FALSE(NamesATool<methodOnly>);
}

TEST(ToolName, NamesAreEqualWhenTheirTextsAre) {
  EXPECT_TRUE(ToolName("claim_task") == ToolName(listed));
  EXPECT_FALSE(ToolName("claim_task") == ToolName("read_task"));
  EXPECT_EQ(ToolName("claim_task").text, "claim_task");
}

}  // namespace
}  // namespace quillpost
