#include "qp/verb_reader.h"

#include "tools/tools.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillpost {
namespace {

TEST(VerbReader, LeavesTextsThatStandElsewhereForLater) {
  VerbReader reader(*findTool("add_task"));
  const std::vector<std::string> words = {"T", "-", "--summary-file", "s.txt"};
  ASSERT_TRUE(reader.read(words)) << reader.why();
  ASSERT_EQ(reader.pending().size(), 2u);
  EXPECT_EQ(reader.pending()[0].key, "summary");
  EXPECT_EQ(reader.pending()[0].path, "s.txt");
  EXPECT_EQ(reader.pending()[1].key, "body");
  EXPECT_EQ(reader.pending()[1].path, std::nullopt);
  EXPECT_EQ(json::find(reader.call().arguments, "body"), nullptr);
}

TEST(VerbReader, AsksForNothingElseOfAVerbThatIsToBeExplained) {
  VerbReader reader(*findTool("complete_task"));
  const std::vector<std::string> words = {"--help"};
  EXPECT_TRUE(reader.read(words));
  EXPECT_TRUE(reader.wantsHelp());
}

TEST(VerbReader, SaysWhyTheWordsMakeNoSense) {
  VerbReader reader(*findTool("complete_task"));
  const std::vector<std::string> words = {"t1"};
  EXPECT_FALSE(reader.read(words));
  EXPECT_EQ(reader.why(), "done wants <summary>");
}

}  // namespace
}  // namespace quillpost
