#include "qp/options.h"

#include "tools/tools.h"

#include <gtest/gtest.h>

#include <set>

namespace quillpost {
namespace {

TEST(Options, AreSpelledAsTheTableHasThemOrInKebabCase) {
  EXPECT_EQ(kebab("title"), "title");
  EXPECT_EQ(kebab("parkReason"), "park-reason");
  EXPECT_EQ(kebab("taskIDs"), "task-ids");
  EXPECT_EQ(kebab("discussionID"), "discussion-id");
  EXPECT_EQ(kebab("routedToFingerprint"), "routed-to-fingerprint");
  EXPECT_EQ(kebab(""), "");
}

TEST(Options, OfEveryToolAreFoundByBothSpellingsAndByNoOther) {
  for (const Tool& tool : tools) {
    for (const Property& property : tool.properties) {
      for (const std::string& spelled : {std::string(property.name), kebab(property.name)}) {
        const std::optional<OptionRow> row = findOption(tool, spelled);
        ASSERT_TRUE(row) << tool.name << " " << spelled;
        EXPECT_EQ(row->property, &property);
        EXPECT_EQ(row->key, property.name);
        EXPECT_TRUE(row->isArgument);
      }
    }
    EXPECT_FALSE(findOption(tool, "frobnicate"));
    EXPECT_FALSE(findOption(tool, ""));
    const std::vector<std::string> options = optionsOf(tool);
    EXPECT_EQ(std::set(options.begin(), options.end()).size(), options.size()) << tool.name;
  }
}

TEST(Options, ThatNoToolHasFillAnArgumentOrSayWhatIsShown) {
  const Tool& wait = *findTool("wait_for_changes");
  EXPECT_EQ(findOption(wait, "timeout")->key, "timeoutSeconds");
  EXPECT_EQ(findOption(wait, "since")->key, "sinceRev");
  EXPECT_TRUE(findOption(wait, "since")->isArgument);
  EXPECT_FALSE(findOption(wait, "follow")->isArgument);
  EXPECT_FALSE(findOption(wait, "grep"));
  EXPECT_FALSE(findOption(*findTool("list_tasks"), "limit")->isArgument);
  EXPECT_TRUE(findOption(*findTool("read_plan"), "limit")->isArgument);
}

TEST(Options, StandInAUsageOfOneLine) {
  EXPECT_EQ(usageLine(*findTool("complete_task")), "qp done <taskID> <summary> [--json]");
  EXPECT_EQ(usageLine(*findTool("verify_task")),
            "qp verify <taskID> approve|reject [<note>] [--json]");
  EXPECT_EQ(usageLine(*findTool("wait_for_changes")),
            "qp wait [<taskIDs>...] [--wake-on-claims] [--timeout-seconds] [--park-reason] "
            "[--stand-down] [--timeout] [--since] [--follow] [--json]");
  for (const Tool& tool : tools)
    EXPECT_EQ(usageLine(tool).find('\n'), std::string::npos) << tool.name;
}

}  // namespace
}  // namespace quillpost
