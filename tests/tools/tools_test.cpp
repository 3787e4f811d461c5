#include "tools/tools.h"

#include "harness/paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost {
namespace {

/// The words a description may have; `least` is 60 where the tool has rules worth telling.
struct Words {
  int least = 60;
  int most = 250;
};

/// One tool as its reference has it: properties as "name kind", "!" when required, and the closed
/// set between brackets.
struct Expected {
  std::string_view tool;
  std::vector<std::string_view> properties;
  Words words = {};
};

constexpr Words brief{.least = 20, .most = 150};

const std::vector<Expected>& expectedTools() {
  // clang-format off
  static const std::vector<Expected> rows{
      {"register", {"name string", "status string", "role string"}},
      {"unregister", {}, brief},
      {"heartbeat", {"status string"}},
      {"list_agents", {}, brief},
      {"read_plan", {"offset integer", "limit integer"}},
      {"set_goal", {"description string", "name string", "purpose string", "constraints string",
                    "nonGoals string", "acceptableRisk string"}},
      {"set_charter", {"name string!"}},
      {"add_task", {"title string!", "body string", "summary string", "waitsOn strings",
                    "priority integer", "type string [bug|feature|chore|research]",
                    "resources strings", "assignedRole string", "routedToFingerprint string",
                    "to string"}},
      {"list_tasks", {"include string [active|all]"}},
      {"read_task", {"taskID string!", "offset integer", "limit integer", "logOffset integer",
                     "logLimit integer"}},
      {"claim_task", {"taskID string!"}},
      {"update_task", {"taskID string!", "title string", "body string", "progress string",
                       "summary string", "blocked boolean", "blockerQuestion string",
                       "blockerKind string [decision|approval|secret|review|respond]",
                       "blockerOptions strings", "blockerSecretName string",
                       "blockerArtifact string", "blockerConsequence string", "parkReason string",
                       "waitsOn strings", "priority integer",
                       "type string [bug|feature|chore|research|]", "resources strings",
                       "assignedRole string", "routedToFingerprint string"}},
      {"complete_task", {"taskID string!", "summary string!"}},
      {"reject_task", {"taskID string!", "reason string"}},
      {"delete_task", {"taskID string!", "reason string"}},
      {"release_task", {"taskID string!"}},
      {"watch_task", {"taskID string!"}},
      {"unwatch_task", {"taskID string!"}, brief},
      {"request_review", {"taskID string!", "ofAgent string", "ofRole string", "note string"}},
      {"verify_task", {"taskID string!", "approve boolean!", "note string"}},
      {"comment_task", {"taskID string!", "text string", "summary string", "tags strings",
                        "editLast boolean"}},
      {"open_discussion", {"taskID string", "question string!", "addressTo strings"}},
      {"reply_discussion", {"discussionID string!", "text string!"}},
      {"resolve_discussion", {"discussionID string!", "resolution string!"}},
      {"wait_for_changes", {"taskIDs strings", "wakeOnClaims boolean", "timeoutSeconds integer",
                            "parkReason string", "standDown boolean"}},
      {"request_release", {"taskID string!", "reason string"}},
      {"propose_goal_complete", {"acknowledgeOpenTasks boolean"}},
      {"assign_task", {"taskID string!", "to string!"}},
      {"send_message", {"to string!", "text string!"}},
      {"read_messages", {}, brief},
      {"request_hands", {"taskID string", "title string", "brief string", "to string",
                         "agent string"}},
      {"suggest_helper", {"name string", "command string!", "explanation string!",
                          "reason string"}},
      {"stop_helper", {"handle string!"}},
  };
  // clang-format on
  return rows;
}

std::string_view kindOf(Type type) {
  switch (type) {
    case Type::string:
      return "string";
    case Type::integer:
      return "integer";
    case Type::boolean:
      return "boolean";
    case Type::strings:
      return "strings";
  }
  return "unknown";
}

/// A property in the notation of `Expected`.
std::string notation(const Property& property) {
  std::string out(property.name);
  out.append(" ").append(kindOf(property.type));
  if (property.need == Need::required) out.append("!");
  if (property.oneOf.empty()) return out;
  for (std::size_t i = 0; i < property.oneOf.size(); ++i)
    out.append(i == 0 ? " [" : "|").append(property.oneOf[i]);
  return out.append("]");
}

using Line = std::pair<std::string, std::string>;

/// The lines of a golden file, each split at its first tab. Empty when the file cannot be read.
std::vector<Line> golden(const std::string& name) {
  std::ifstream in(testing::inTests("golden/" + std::string(name)));
  std::vector<Line> lines;
  for (std::string line; std::getline(in, line);) {
    const std::size_t tab = line.find('\t');
    EXPECT_NE(tab, std::string::npos) << name << ": " << line;
    if (tab != std::string::npos) lines.emplace_back(line.substr(0, tab), line.substr(tab + 1));
  }
  return lines;
}

/// The row of a tool, or nothing when it has none.
const Tool* toolNamed(std::string_view name) {
  const Tool* row = std::ranges::find(tools, name, &Tool::nameText);
  return row == std::end(tools) ? nullptr : row;
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

/// The ending of request_hands, which its reference fixes.
std::string handsEnding() {
  for (const auto& [name, text] : golden("tool_endings.golden"))
    if (name == "request_hands") return text;
  return {};
}

TEST(Tools, EachRowHasItsPropertiesWithKindsAndChoicesInOrder) {
  ASSERT_EQ(std::size(tools), expectedTools().size());
  for (std::size_t i = 0; i < std::size(tools); ++i) {
    const Expected& expected = expectedTools()[i];
    EXPECT_EQ(tools[i].name.text, expected.tool) << "row " << i + 1;
    std::vector<std::string> actual;
    for (const Property& property : tools[i].properties) actual.push_back(notation(property));
    EXPECT_EQ(actual,
              std::vector<std::string>(expected.properties.begin(), expected.properties.end()))
        << expected.tool;
  }
}

TEST(Tools, EachDescriptionOpensWithItsFixedSentence) {
  const std::vector<Line> openings = golden("tool_openings.golden");
  ASSERT_EQ(openings.size(), std::size(tools));
  for (std::size_t i = 0; i < std::size(tools); ++i) {
    const auto& [name, opening] = openings[i];
    EXPECT_EQ(tools[i].name.text, name);
    EXPECT_EQ(tools[i].description.substr(0, opening.size() + 1), opening + " ") << name;
  }
}

TEST(Tools, TheFixedEndingsAreWordForWord) {
  const std::vector<Line> endings = golden("tool_endings.golden");
  ASSERT_EQ(endings.size(), 3u);
  EXPECT_EQ(endings[0], Line("waitEndingForClaude", texts::waitEndingForClaude));
  EXPECT_EQ(endings[1], Line("waitEndingForOthers", texts::waitEndingForOthers));
  EXPECT_EQ(endings[2].first, "request_hands");
  EXPECT_TRUE(texts::requestHands.ends_with(" " + endings[2].second)) << texts::requestHands;
}

TEST(Tools, TheWaitLeavesItsEndingToTheCaller) {
  EXPECT_TRUE(texts::waitForChanges.ends_with(". "));
  EXPECT_FALSE(contains(texts::waitForChanges, "`qp"));
}

TEST(Tools, EverySettledFactIsStated) {
  const std::vector<Line> facts = golden("tool_facts.golden");
  ASSERT_GE(facts.size(), 90u);
  for (const Line& fact : facts) {
    const Tool* tool = toolNamed(fact.first);
    ASSERT_NE(tool, nullptr) << fact.first;
    const auto states = [&fact](std::string_view text) { return contains(text, fact.second); };
    EXPECT_TRUE(std::ranges::any_of(wordsOf(*tool), states))
        << fact.first << " nowhere says: " << fact.second;
  }
}

TEST(Tools, EachToolThatHasFactsIsNamedAmongThem) {
  std::set<std::string> named;
  for (const auto& [name, phrase] : golden("tool_facts.golden")) named.insert(name);
  // These have an opening sentence and nothing settled beyond it.
  for (const std::string_view plain : {"release_task", "resolve_discussion", "read_messages"})
    EXPECT_EQ(named.count(std::string(plain)), 0u) << plain;
  EXPECT_EQ(named.size(), 30u);
}

TEST(Tools, NoDescriptionIsTooShortToSteerOrTooLongToRead) {
  const std::string ending = handsEnding();
  for (const Expected& expected : expectedTools()) {
    const Tool* tool = toolNamed(expected.tool);
    ASSERT_NE(tool, nullptr) << expected.tool;
    const bool endingIsFixed = expected.tool == "request_hands";
    const int words = wordCount(tool->description) - (endingIsFixed ? wordCount(ending) : 0);
    EXPECT_GE(words, expected.words.least) << expected.tool;
    EXPECT_LE(words, expected.words.most) << expected.tool;
  }
}

TEST(Tools, EveryTextIsOneParagraphOfPlainProse) {
  for (const Tool& tool : tools) {
    for (const std::string_view text : wordsOf(tool)) {
      for (const std::string_view mark :
           {"\n", "\t", "\r", "  ", "**", "__", "](", "- ", " ,", " ."})
        EXPECT_FALSE(contains(text, mark)) << tool.name.text << " has \"" << mark << "\": " << text;
      EXPECT_EQ(std::ranges::count(text, '`') % 2, 0) << tool.name.text << ": " << text;
      EXPECT_FALSE(text.starts_with(' ') || text.starts_with('#'))
          << tool.name.text << ": " << text;
    }
  }
}

TEST(Tools, EveryTextEndsWithAFullStop) {
  for (const Tool& tool : tools) {
    for (const std::string_view text : wordsOf(tool)) {
      const bool goesOn = text == texts::waitForChanges;
      EXPECT_TRUE(text.ends_with(goesOn ? ". " : ".")) << tool.name.text << ": " << text;
    }
  }
}

TEST(Tools, AToolThatIsNamedInAnyTextExists) {
  // Verbs are the only words with an underscore, so a renamed tool shows here.
  for (const Tool& tool : tools) {
    for (const std::string_view text : wordsOf(tool)) {
      for (std::size_t at = text.find('_'); at != text.npos; at = text.find('_', at + 1)) {
        const auto inName = [](char c) { return c == '_' || (c >= 'a' && c <= 'z'); };
        std::size_t from = at, to = at;
        while (from > 0 && inName(text[from - 1])) --from;
        while (to < text.size() && inName(text[to])) ++to;
        const std::string_view word = text.substr(from, to - from);
        if (word == "_") continue;  // inside an upper-case name such as STRIPE_KEY
        EXPECT_NE(toolNamed(word), nullptr) << tool.name.text << " speaks of " << word;
      }
    }
  }
}

TEST(Tools, TheAliasOfTheWaitIsNowhereAdvertised) {
  EXPECT_EQ(toolNamed(waitForTasks), nullptr);
  for (const Tool& tool : tools)
    for (const std::string_view text : wordsOf(tool))
      EXPECT_FALSE(contains(text, waitForTasks)) << tool.name.text;
}

}  // namespace
}  // namespace quillpost
