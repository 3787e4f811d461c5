#include "qp/help.h"

#include "base/text.h"
#include "qp/command.h"
#include "qp/options.h"
#include "render/texts/registration.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillpost {
namespace {

int64_t linesOf(std::string_view text) { return std::ranges::count(text, '\n'); }

std::size_t longestLine(std::string_view text) {
  std::size_t longest = 0;
  for (const std::string_view line : text::split(text, '\n'))
    longest = std::max(longest, line.size());
  return longest;
}

TEST(Help, ShowsEveryVerbOnOneScreen) {
  const std::string text = overview();
  EXPECT_LE(linesOf(text), 45);
  EXPECT_LE(longestLine(text), 100u);
  for (const Tool& tool : tools)
    EXPECT_NE(text.find(text::cat(" ", tool.commandLine.name, " ")), std::string::npos)
        << tool.name;
  for (const CommandRow& row : commandRows)
    EXPECT_EQ(text.find(text::cat(" ", row.name, " ")) != std::string::npos, !row.gist.empty())
        << row.name;
}

TEST(Help, ExplainsEachVerbWithAllItsOptionsAndTwoExamples) {
  for (const Tool& tool : tools) {
    const std::string text = verbHelp(tool);
    for (const std::string& option : optionsOf(tool))
      EXPECT_NE(text.find(text::cat("  ", option)), std::string::npos) << tool.name << option;
    for (const std::string& example : examplesOf(tool))
      EXPECT_NE(text.find(text::cat("\n  ", example, "\n")), std::string::npos) << tool.name;
    EXPECT_EQ(examplesOf(tool).size(), 2u);
    EXPECT_TRUE(text.starts_with(text::cat("qp ", tool.commandLine.name))) << text;
  }
}

TEST(Help, HasTheWholeProtocolInLittleRoom) {
  const std::string whole = brief();
  EXPECT_LE(whole.size(), 8000u);
  for (const std::string_view rule : texts::rules)
    EXPECT_NE(whole.find(rule), std::string::npos) << rule;
  EXPECT_NE(whole.find(texts::access), std::string::npos);
  EXPECT_NE(whole.find(texts::boardProtocol), std::string::npos);
  for (const Tool& tool : tools)
    EXPECT_NE(whole.find(text::cat("  ", tool.commandLine.name, ": ", tool.commandLine.gist)),
              std::string::npos)
        << tool.name;
  EXPECT_LE(shortBrief().size(), 1200u);
  for (const std::string_view verb : {"register", "claim", "update", "done", "wait"})
    EXPECT_NE(shortBrief().find(text::cat("qp ", verb)), std::string::npos) << verb;
}

struct HelpCommand : CommandTest {
  HelpCommand() { sessionID = ""; }
};

TEST_F(HelpCommand, NeedsNoThread) {
  const std::vector<std::string> lines[] = {{"--help"},
                                            {"help"},
                                            {"-h"},
                                            {"--version"},
                                            {"brief"},
                                            {"brief", "--short"},
                                            {"help", "claim"},
                                            {"claim", "--help"},
                                            {"help", "take"},
                                            {"guard", "--help"},
                                            {"completion", "zsh"}};
  for (const std::vector<std::string>& line : lines) {
    EXPECT_EQ(run(line), 0) << ::testing::PrintToString(line);
    EXPECT_NE(out.text, "");
    EXPECT_EQ(err.text, "");
  }
  EXPECT_TRUE(bridge.requests.empty());
  EXPECT_EQ(bridge.tokenReads, 0);
}

TEST_F(HelpCommand, KnowsWhatItCannotExplain) {
  EXPECT_EQ(run({"help", "clam"}), 2);
  EXPECT_EQ(err.text, "qp: there is no verb \"clam\"; did you mean claim?\n");
  EXPECT_EQ(run({"brief", "--long"}), 2);
  EXPECT_EQ(run({"completion", "tcsh"}), 2);
  EXPECT_EQ(run({"completion"}), 2);
}

}  // namespace
}  // namespace quillpost
