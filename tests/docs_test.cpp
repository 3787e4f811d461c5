// The pages of docs/ that tables of the program print. A page holds prose by hand and blocks
// between "<!-- generated: name -->" and "<!-- end -->"; the blocks are made here from the tables
// and compared. With --update they are rewritten in place.

#include "base/text.h"
#include "docs/blocks.h"
#include "docs/command_page.h"
#include "docs/protocol_page.h"
#include "docs/tools_page.h"
#include "harness/golden.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

namespace quillpost::docs {
namespace {

using testing::matchesGolden;
using testing::readFile;

std::string pathOf(std::string_view page) { return testing::inSources(text::cat("docs/", page)); }

TEST(Docs, TheProtocolPageIsWhatTheFieldTablesSay) {
  const std::string path = pathOf("protocol.md");
  EXPECT_TRUE(matchesGolden(path, filled(readFile(path), protocolBlocks())));
}

TEST(Docs, TheToolsPageIsWhatTheCatalogueSays) {
  const std::string path = pathOf("tools.md");
  EXPECT_TRUE(matchesGolden(path, filled(readFile(path), toolBlocks())));
}

TEST(Docs, TheManualOfTheCommandLineIsWhatTheProgramPrints) {
  testing::Process command({testing::commandProgram(), {"__manual"}, {}});
  EXPECT_TRUE(matchesGolden(testing::inSources("man/qp.1"), command.restOfOutput()));
  EXPECT_EQ(command.waitForExit(), 0);
}

/// What the board's program says of itself when it is asked for a page.
std::string boardPage(const std::string& name) {
  testing::Process board({testing::boardProgram(), {"help", name}, {}});
  const std::string page = board.restOfOutput();
  EXPECT_EQ(board.waitForExit(), 0);
  return page;
}

TEST(Docs, TheBoardsManualAndItsListOfCommandsAreWhatTheProgramPrints) {
  EXPECT_TRUE(matchesGolden(testing::inSources("man/quillpost-board.1"), boardPage("manual-page")));
  const std::string path = pathOf("board.md");
  const std::string list = "\n\n" + boardPage("command-list") + "\n";
  EXPECT_TRUE(matchesGolden(path, filled(readFile(path), {{"commands", list}})));
  EXPECT_EQ(countOf(readFile(path), "commands"), 1);
}

TEST(Docs, ThePageOfTheCommandLineIsWhatItsHelpSays) {
  const std::string path = pathOf("qp.md");
  EXPECT_TRUE(matchesGolden(path, filled(readFile(path), commandBlocks())));
  for (const auto& [name, ignored] : commandBlocks()) EXPECT_EQ(countOf(readFile(path), name), 1);
}

TEST(Docs, EveryBlockHasItsPlaceOnItsPage) {
  for (const auto& [name, ignored] : protocolBlocks())
    EXPECT_EQ(countOf(readFile(pathOf("protocol.md")), name), 1) << name;
  for (const auto& [name, ignored] : toolBlocks())
    EXPECT_EQ(countOf(readFile(pathOf("tools.md")), name), 1) << name;
}

TEST(Docs, EveryMemberOfARequestSaysWhatItMeans) {
  EXPECT_EQ(protocolBlocks().at("TeamworkRequest").find("|  |\n"), std::string::npos);
}

TEST(DocsBlocks, OnlyWhatStandsBetweenTheMarksIsReplaced) {
  const Blocks blocks = {{"a", "new a\n"}};
  EXPECT_EQ(filled("x\n<!-- generated: a -->\nold\n<!-- end -->\ny\n", blocks),
            "x\n<!-- generated: a -->\nnew a\n<!-- end -->\ny\n");
  EXPECT_EQ(filled("x\n<!-- generated: b -->\nold\n<!-- end -->\n", blocks),
            "x\n<!-- generated: b -->\nold\n<!-- end -->\n");
  EXPECT_EQ(filled("x\n<!-- generated: a -->\nno end\n", blocks),
            "x\n<!-- generated: a -->\nno end\n");
}

TEST(DocsBlocks, AMemberIsExplainedByTheCommentAboveIt) {
  const std::string_view source =
      "struct Seat {\n"
      "  /// What it is\n"
      "  /// called.\n"
      "  std::string name;\n"
      "  int64_t age = 0;\n"
      "  static constexpr auto fields() {\n"
      "struct Other {\n"
      "  /// Not this.\n"
      "  int64_t age = 0;\n";
  EXPECT_EQ(memberComment(source, "Seat", "name"), "What it is called.");
  EXPECT_EQ(memberComment(source, "Seat", "age"), "");
  EXPECT_EQ(memberComment(source, "Other", "age"), "Not this.");
}

}  // namespace
}  // namespace quillpost::docs
