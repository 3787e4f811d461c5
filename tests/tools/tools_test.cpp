#include "tools/tools.h"

#include "harness/tool_block.h"
#include "tools/row_rules.h"
#include "tools/tool_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::lineOf;
using testing::linesOf;
using testing::SectionFile;
using testing::toolBlock;

/// A property as its tool's block has it: name and kind, "!" when required, and the closed set
/// between brackets.
std::string notation(const Property& property) {
  std::string out(property.name);
  out.append(" ").append(property.type == Type::strings ? "strings" : json::wordFor(property.type));
  if (property.need == Need::required) out.append("!");
  for (std::size_t i = 0; i < property.oneOf.size(); ++i)
    out.append(i == 0 ? " [" : "|").append(property.oneOf[i]);
  return property.oneOf.empty() ? out : out.append("]");
}

/// A command line as its tool's block has it: the verbs with "|" between them, the positionals with
/// the spellings of a boolean, "..." after a list, and the main text between brackets.
std::string notation(const Tool& tool) {
  const CommandLine& line = tool.commandLine;
  std::string out(line.name);
  for (const std::string_view other : line.otherNames) out.append("|").append(other);
  for (const std::string_view name : line.positionals) {
    out.append(" ").append(name);
    const Property* property = findProperty(tool, name);
    if (property == nullptr) continue;
    if (property->type == Type::boolean)
      out.append("=").append(line.yes).append("|").append(line.no);
    if (property->type == Type::strings) out.append("...");
  }
  return line.mainText.empty() ? out : out.append(" [").append(line.mainText).append("]");
}

/// Every text a client is shown for a tool: its description, then those of its properties.
std::vector<std::string_view> wordsOf(const Tool& tool) {
  std::vector<std::string_view> texts{tool.description};
  for (const Property& property : tool.properties) texts.push_back(property.description);
  return texts;
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

int wordCount(std::string_view text) {
  std::istringstream in{std::string(text)};
  int count = 0;
  for (std::string word; in >> word;) ++count;
  return count;
}

/// The words a description may have. Its block says when a tool has few rules worth telling.
struct Length {
  int least = 60;
  int most = 250;
};

Length lengthIn(const SectionFile& block) {
  Length length;
  std::istringstream in(lineOf(block, "words"));
  std::string to;
  in >> length.least >> to >> length.most;
  return in ? length : Length{};
}

/// The tools, each under its own name in a failure.
class EachTool : public ::testing::TestWithParam<Tool> {
 protected:
  const Tool& tool = GetParam();
  const SectionFile block = toolBlock(tool.name);
};

INSTANTIATE_TEST_SUITE_P(Tools, EachTool, ::testing::ValuesIn(tools),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(EachTool, HasItsPropertiesWithKindsAndChoicesInOrder) {
  std::vector<std::string> actual;
  for (const Property& property : tool.properties) actual.push_back(notation(property));
  EXPECT_EQ(actual, linesOf(block.body("properties")));
}

TEST_P(EachTool, OpensWithItsFixedSentence) {
  const std::string opening = lineOf(block, "opening");
  EXPECT_GT(opening.size(), 20u);
  EXPECT_EQ(tool.description.substr(0, opening.size() + 1), opening + " ");
}

TEST_P(EachTool, EndsWithWhatIsFixedThere) {
  const std::string ending = lineOf(block, "ending");
  EXPECT_TRUE(ending.empty() || tool.description.ends_with(" " + ending)) << tool.description;
}

TEST_P(EachTool, StatesEverySettledFact) {
  for (const std::string& fact : linesOf(block.body("facts"))) {
    const auto states = [&fact](std::string_view text) { return contains(text, fact); };
    EXPECT_TRUE(std::ranges::any_of(wordsOf(tool), states)) << "nowhere says: " << fact;
  }
}

TEST_P(EachTool, IsNeitherTooShortToSteerNorTooLongToRead) {
  // What is fixed at the end does not count: it cannot be made shorter.
  const int words = wordCount(tool.description) - wordCount(block.body("ending"));
  const Length length = lengthIn(block);
  EXPECT_GE(words, length.least);
  EXPECT_LE(words, length.most);
}

TEST_P(EachTool, SaysWhatToDoNextAndWhatAnEmptyAnswerMeans) {
  EXPECT_EQ(tool.nextHint, lineOf(block, "hint"));
  EXPECT_EQ(tool.emptyWords, lineOf(block, "empty"));
}

TEST_P(EachTool, IsCalledFromAShellAsItsBlockSays) {
  EXPECT_EQ(notation(tool), lineOf(block, "command line"));
  EXPECT_LE(tool.commandLine.gist.size(), 55u) << tool.commandLine.gist;
}

TEST_P(EachTool, HasABlockOfKnownSections) {
  const std::set<std::string> known = {
      "opening", "ending", "ending for claude", "ending for others", "words", "facts", "properties",
      "hint",    "empty",  "command line"};
  EXPECT_EQ(block.prose, "");
  for (const auto& [name, body] : block.sections) {
    EXPECT_TRUE(known.contains(name)) << name;
    EXPECT_NE(body, "") << name;
  }
}

TEST_P(EachTool, IsFoundByItsNameAndByEachOfItsVerbs) {
  std::string withDashes(tool.name);
  std::ranges::replace(withDashes, '_', '-');
  EXPECT_EQ(findTool(tool.name)->name, tool.name);
  EXPECT_EQ(findByVerb(tool.name)->name, tool.name);
  EXPECT_EQ(findByVerb(withDashes)->name, tool.name);
  EXPECT_EQ(findByVerb(tool.commandLine.name)->name, tool.name);
  for (const std::string_view other : tool.commandLine.otherNames)
    EXPECT_EQ(findByVerb(other)->name, tool.name) << other;
}

TEST_P(EachTool, SpeaksInParagraphsOfPlainProse) {
  for (const std::string_view text : wordsOf(tool)) {
    for (const std::string_view mark : {"\n", "\t", "\r", "  ", "**", "__", "](", "- ", " ,", " ."})
      EXPECT_FALSE(contains(text, mark)) << "\"" << mark << "\": " << text;
    EXPECT_EQ(std::ranges::count(text, '`') % 2, 0) << text;
    EXPECT_FALSE(text.starts_with(' ') || text.starts_with('#')) << text;
    // The wait leaves its ending to the caller.
    const bool goesOn = tool.name == waitForChanges && text == tool.description;
    EXPECT_TRUE(text.ends_with(goesOn ? ". " : ".")) << text;
  }
}

TEST_P(EachTool, NamesNoToolThatIsNone) {
  std::vector<std::string_view> texts = wordsOf(tool);
  texts.insert(texts.end(), {tool.nextHint, tool.emptyWords});
  for (const std::string_view text : texts)
    for (const std::string_view verb : testing::verbsIn(text))
      EXPECT_NE(findTool(verb), nullptr) << "speaks of " << verb;
}

TEST(Tools, EachHasABlockAndEachBlockIsATools) {
  std::set<std::string> blocks, names;
  for (const auto& entry : std::filesystem::directory_iterator(testing::toolBlocks()))
    blocks.insert(entry.path().filename().string());
  for (const Tool& tool : tools) names.insert(std::string(tool.name));
  EXPECT_EQ(blocks, names);
}

TEST(Tools, TheFixedEndingsOfTheWaitAreWordForWord) {
  const SectionFile block = toolBlock(waitForChanges);
  EXPECT_EQ(texts::waitEndingForClaude, lineOf(block, "ending for claude"));
  EXPECT_EQ(texts::waitEndingForOthers, lineOf(block, "ending for others"));
  EXPECT_FALSE(contains(findTool(waitForChanges)->description, "`qp"));
}

TEST(Tools, StandInTheOrderOfTheirSubjectsAndEachSubjectHasAHeading) {
  std::vector<std::string_view> inSubjects, all;
  for (const Subject& subject : subjects) {
    EXPECT_FALSE(subject.heading.empty());
    for (const Tool& tool : subject.tools) inSubjects.push_back(tool.name);
  }
  for (const Tool& tool : tools) all.push_back(tool.name);
  EXPECT_EQ(inSubjects, all);
}

TEST(Tools, AWordThatIsNoVerbFindsNothing) {
  for (const std::string_view word :
       {"", "then", "frobnicate", "Claim", "claim ", "poll_changes"}) {
    EXPECT_EQ(findTool(word), nullptr) << word;
    EXPECT_EQ(findByVerb(word), nullptr) << word;
  }
}

TEST(Tools, TheAliasOfTheWaitIsNowhereAdvertised) {
  EXPECT_EQ(findTool(waitForTasks), nullptr);
  EXPECT_EQ(findByVerb(waitForTasks), nullptr);
  for (const Tool& tool : tools)
    for (const std::string_view text : wordsOf(tool))
      EXPECT_FALSE(contains(text, waitForTasks)) << tool.name;
}

// What each row must keep is also held by the compiler; these are rows that it refuses.

constexpr Property sampleProperties[] = {
    {"taskID", Type::string, Need::required, "The task."},
    {"sure", Type::boolean, Need::optional, "Whether."},
    {"tags", Type::strings, Need::optional, "Who."},
    {"note", Type::string, Need::optional, "Why."},
};

Tool sampleOf(const CommandLine& line) {
  return {
      .name = "sample", .description = "x", .properties = sampleProperties, .commandLine = line};
}

TEST(CommandLines, FillTheirPropertiesOrAreRefused) {
  struct Row {
    std::string_view name;
    CommandLine line;
    bool isKept;
  };
  const Row rows[] = {
      {"the required one", {.positionals = {"taskID"}}, true},
      {"a list at the end", {.positionals = {"taskID", "tags"}}, true},
      {"a main text", {.positionals = {"taskID"}, .mainText = "note"}, true},
      {"a boolean with its spellings",
       {.positionals = {"taskID", "sure"}, .yes = "yes", .no = "no"},
       true},
      {"the required one left out", {}, false},
      {"an unknown positional", {.positionals = {"taskID", "nothing"}}, false},
      {"a positional twice", {.positionals = {"taskID", "taskID"}}, false},
      {"a list before the end", {.positionals = {"tags", "taskID"}}, false},
      {"a list before the main text",
       {.positionals = {"taskID", "tags"}, .mainText = "note"},
       false},
      {"a boolean without spellings", {.positionals = {"taskID", "sure"}}, false},
      {"half a spelling", {.positionals = {"taskID", "sure"}, .yes = "yes"}, false},
      {"spellings of no boolean", {.positionals = {"taskID"}, .yes = "yes", .no = "no"}, false},
      {"an unknown main text", {.positionals = {"taskID"}, .mainText = "nothing"}, false},
      {"a main text that is a list", {.positionals = {"taskID"}, .mainText = "tags"}, false},
      {"a main text that is a positional",
       {.positionals = {"taskID", "note"}, .mainText = "note"},
       false},
  };
  for (const Row& row : rows)
    EXPECT_EQ(fillsItsProperties(sampleOf(row.line)), row.isKept) << row.name;
}

TEST(CommandLines, HaveVerbsOfTheirOwnOrAreRefused) {
  Tool tool = *findTool("claim_task");
  EXPECT_TRUE(hasVerbsOfItsOwn(tool));
  tool.commandLine.otherNames = {"done"};
  EXPECT_FALSE(hasVerbsOfItsOwn(tool));
  tool.commandLine.otherNames = {"claims"};
  EXPECT_FALSE(hasVerbsOfItsOwn(tool));
  tool.commandLine = {.name = "done"};
  EXPECT_FALSE(hasVerbsOfItsOwn(tool));
}

TEST(CommandLines, AreShownByTwoExamplesOrAreRefused) {
  EXPECT_TRUE(isShown({.name = "go", .gist = "x", .examples = {"go", "go --on"}}));
  EXPECT_TRUE(isShown({.name = "go", .gist = "x", .examples = {"go on", "show then go"}}));
  EXPECT_FALSE(isShown({.name = "go", .examples = {"go", "go --on"}}));
  EXPECT_FALSE(isShown({.name = "go", .gist = "x", .examples = {"go"}}));
  EXPECT_FALSE(isShown({.name = "go", .gist = "x", .examples = {"gone", "go"}}));
}

TEST(Descriptions, AreThereForAToolAndEachPropertyOrAreRefused) {
  Tool tool = sampleOf({});
  EXPECT_TRUE(isDescribed(tool));
  tool.description = "";
  EXPECT_FALSE(isDescribed(tool));
  const Property twice[] = {sampleProperties[0], sampleProperties[0]};
  const Property silent[] = {{"a", Type::string, Need::optional, ""}};
  tool.description = "x";
  tool.properties = twice;
  EXPECT_FALSE(isDescribed(tool));
  tool.properties = silent;
  EXPECT_FALSE(isDescribed(tool));
}

}  // namespace
}  // namespace quillpost
