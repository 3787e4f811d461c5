#include "qp/line.h"

#include "base/text.h"
#include "harness/json_object.h"
#include "qp/help.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using Words = std::vector<std::string>;

TextSources noTexts() {
  return {.input = [] { return std::nullopt; },
          .file = [](const std::string&) { return std::nullopt; }};
}

std::vector<Call> callsOf(const Words& words, const TextSources& sources = noTexts()) {
  std::variant<Line, Misuse> reading = readLine(words, sources);
  if (const Misuse* wrong = std::get_if<Misuse>(&reading)) ADD_FAILURE() << wrong->why;
  Line* const line = std::get_if<Line>(&reading);
  auto* const calls = line != nullptr ? std::get_if<std::vector<Call>>(line) : nullptr;
  EXPECT_NE(calls, nullptr);
  return calls != nullptr ? *calls : std::vector<Call>();
}

/// The first verb with its arguments, and the command line's own options behind a "|".
std::string readAs(const Words& words, const TextSources& sources = noTexts()) {
  const std::vector<Call> calls = callsOf(words, sources);
  if (calls.empty()) return "none";
  std::string text(calls.front().tool->name);
  json::appendTree(text += " ", json::Tree(calls.front().arguments));
  if (!calls.front().options.empty())
    json::appendTree(text += "|", json::Tree(calls.front().options));
  return text;
}

std::string whyNot(const Words& words, const TextSources& sources = noTexts()) {
  const std::variant<Line, Misuse> reading = readLine(words, sources);
  const Misuse* const wrong = std::get_if<Misuse>(&reading);
  return wrong != nullptr ? wrong->why : "nothing is wrong";
}

std::optional<OwnCall> ownOf(const Words& words) {
  const std::variant<Line, Misuse> reading = readLine(words, noTexts());
  const Line* const line = std::get_if<Line>(&reading);
  const OwnCall* const own = line != nullptr ? std::get_if<OwnCall>(line) : nullptr;
  return own != nullptr ? std::optional(*own) : std::nullopt;
}

TEST(Line, TakesAVerbByAnyOfItsNames) {
  for (const std::string_view verb : {"claim_task", "claim-task", "claim", "take"})
    EXPECT_EQ(readAs({std::string(verb), "t1"}), R"(claim_task {"taskID":"t1"})") << verb;
  EXPECT_EQ(readAs({"ls"}), "list_tasks {}");
  EXPECT_EQ(readAs({"view", "t1"}), R"(read_task {"taskID":"t1"})");
  EXPECT_EQ(readAs({"inbox"}), "read_messages {}");
}

TEST(Line, FillsThePropertiesInTheirOrderAndThenTheMainText) {
  EXPECT_EQ(readAs({"done", "t1", "All tests pass."}),
            R"(complete_task {"taskID":"t1","summary":"All tests pass."})");
  EXPECT_EQ(readAs({"add", "Parse", "The brief"}),
            R"(add_task {"title":"Parse","body":"The brief"})");
  EXPECT_EQ(readAs({"add", "Parse"}), R"(add_task {"title":"Parse"})");
  EXPECT_EQ(readAs({"verify", "t1", "approve", "Read it."}),
            R"(verify_task {"taskID":"t1","approve":true,"note":"Read it."})");
  EXPECT_EQ(readAs({"verify", "t1", "reject"}), R"(verify_task {"taskID":"t1","approve":false})");
  EXPECT_EQ(readAs({"verify", "t1", "true"}), R"(verify_task {"taskID":"t1","approve":true})");
  EXPECT_EQ(readAs({"suggest", "n", "c", "e"}),
            R"(suggest_helper {"name":"n","command":"c","explanation":"e"})");
}

TEST(Line, SkipsAPlaceThatAnOptionHasFilled) {
  EXPECT_EQ(readAs({"done", "--task-id", "t1", "ok"}),
            R"(complete_task {"taskID":"t1","summary":"ok"})");
  EXPECT_EQ(readAs({"done", "t1", "--summary=ok"}),
            R"(complete_task {"summary":"ok","taskID":"t1"})");
}

TEST(Line, TakesOptionsInBothSpellingsAndForms) {
  const std::string expected = R"(update_task {"parkReason":"a b","taskID":"t1"})";
  EXPECT_EQ(readAs({"update", "t1", "--parkReason", "a b"}), expected);
  EXPECT_EQ(readAs({"update", "t1", "--park-reason", "a b"}), expected);
  EXPECT_EQ(readAs({"update", "t1", "--park-reason=a b"}), expected);
  EXPECT_EQ(readAs({"update", "--park-reason=a b", "t1"}), expected);
  EXPECT_EQ(readAs({"update", "t1", "--park-reason="}),
            R"(update_task {"parkReason":"","taskID":"t1"})");
}

TEST(Line, TakesFlagsByTheirNameTheirOppositeOrTheirValue) {
  for (const Words& option : {Words{"--blocked"}, {"--blocked=true"}, {"--blocked", "true"}}) {
    Words words = {"update", "t1"};
    words.insert(words.end(), option.begin(), option.end());
    EXPECT_EQ(readAs(words), R"(update_task {"blocked":true,"taskID":"t1"})");
  }
  for (const Words& option : {Words{"--no-blocked"}, {"--blocked=false"}, {"--blocked", "false"}}) {
    Words words = {"update", "t1"};
    words.insert(words.end(), option.begin(), option.end());
    EXPECT_EQ(readAs(words), R"(update_task {"blocked":false,"taskID":"t1"})");
  }
}

TEST(Line, TakesListsRepeatedOrWithCommas) {
  EXPECT_EQ(readAs({"add", "T", "--waits-on", "t1,t2"}),
            R"(add_task {"waitsOn":["t1","t2"],"title":"T"})");
  EXPECT_EQ(readAs({"add", "T", "--waits-on", "t1", "--waitsOn=t2"}),
            R"(add_task {"waitsOn":["t1","t2"],"title":"T"})");
  EXPECT_EQ(readAs({"update", "t1", "--blocker-options", "yes, now", "--blocker-options", "no"}),
            R"(update_task {"blockerOptions":["yes, now","no"],"taskID":"t1"})");
  EXPECT_EQ(readAs({"add", "T", "--resources="}), R"(add_task {"resources":[],"title":"T"})");
  EXPECT_EQ(readAs({"wait", "t1", "t2"}), R"(wait_for_changes {"taskIDs":["t1","t2"]})");
  EXPECT_EQ(readAs({"wait"}), "wait_for_changes {}");
}

TEST(Line, TakesIntegersAsNumbers) {
  EXPECT_EQ(readAs({"add", "T", "--priority", "-7"}), R"(add_task {"priority":-7,"title":"T"})");
  EXPECT_EQ(readAs({"wait", "--timeout", "5", "--since=418", "--follow"}),
            R"(wait_for_changes {"timeoutSeconds":5,"sinceRev":418}|{"follow":true})");
  EXPECT_EQ(readAs({"tasks", "--limit", "3", "--fields=id,title", "--grep", "a b", "--all"}),
            R"(list_tasks {}|{"limit":3,"fields":["id","title"],"grep":"a b","all":true})");
}

TEST(Line, EndsTheOptionsAtTwoDashes) {
  EXPECT_EQ(readAs({"comment", "t1", "--", "--not an option"}),
            R"(comment_task {"taskID":"t1","text":"--not an option"})");
  EXPECT_EQ(readAs({"comment", "t1", "--", "-x"}), R"(comment_task {"taskID":"t1","text":"-x"})");
}

TEST(Line, IsSplitAtThen) {
  const std::vector<Call> calls = callsOf({"claim", "t1", "then", "show", "t1", "then", "plan"});
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[1].tool->name, std::string_view("read_task"));
  EXPECT_EQ(readAs({"comment", "t1", "--text=then"}),
            R"(comment_task {"text":"then","taskID":"t1"})");
}

TEST(Line, KeepsJsonForAVerbOrForAll) {
  const std::vector<Call> one = callsOf({"claim", "t1", "then", "tasks", "--json"});
  EXPECT_FALSE(one.at(0).asJson);
  EXPECT_TRUE(one.at(1).asJson);
  const std::vector<Call> all = callsOf({"--json", "claim", "t1", "then", "tasks"});
  EXPECT_TRUE(all.at(0).asJson && all.at(1).asJson);
}

TEST(Line, ReadsATextFromStandardInputOrAFileAndDropsOneLineFeed) {
  const TextSources sources = {
      .input = [] { return std::optional<std::string>("in $(x) `y` \\n\n\n"); },
      .file = [](const std::string& path) -> std::optional<std::string> {
        return path == "a.md" ? std::optional<std::string>("no end") : std::nullopt;
      }};
  EXPECT_EQ(readAs({"comment", "t1", "-"}, sources),
            R"(comment_task {"taskID":"t1","text":"in $(x) `y` \\n\n"})");
  EXPECT_EQ(readAs({"add", "T", "--body-file", "a.md", "--summary", "-"}, sources),
            R"(add_task {"title":"T","body":"no end","summary":"in $(x) `y` \\n\n"})");
  EXPECT_EQ(whyNot({"add", "T", "--body-file", "b.md"}, sources),
            "b.md cannot be read as a text in UTF-8 of at most 1 MiB");
  EXPECT_EQ(whyNot({"add", "T", "--body-file", ""}, sources),
            "an empty path cannot be read as a text in UTF-8 of at most 1 MiB");
  EXPECT_EQ(whyNot({"add", "-", "-"}, sources),
            "standard input can be read once in a line; use --OPTION-file for another text");
  EXPECT_EQ(whyNot({"add", "T", "--waits-on-file", "a.md"}, sources),
            "add has no option --waits-on-file");
}

TEST(Line, ReadsNoTextWhileAnythingIsWrong) {
  bool wasAsked = false;
  const TextSources sources = {.input =
                                   [&] {
                                     wasAsked = true;
                                     return std::optional<std::string>("x");
                                   },
                               .file = [](const std::string&) { return std::nullopt; }};
  EXPECT_NE(whyNot({"comment", "t1", "-", "then", "frobnicate"}, sources), "nothing is wrong");
  EXPECT_FALSE(wasAsked);
}

TEST(Line, SaysWhatIsWrong) {
  struct Row {
    Words words;
    std::string_view why;
  };
  const Row rows[] = {
      {{}, "a verb is missing; qp --help lists them"},
      {{"clam", "t1"}, "there is no verb \"clam\"; did you mean claim?"},
      {{"zzzzzz"}, "there is no verb \"zzzzzz\"; qp --help lists them"},
      {{"claim"}, "claim wants <taskID>"},
      {{"done", "t1"}, "done wants <summary>"},
      {{"done", "t1", "--sumary", "x"}, "done has no option --sumary; did you mean --summary?"},
      {{"done", "t1", "--zzzzzzzz", "x"}, "done has no option --zzzzzzzz"},
      {{"claim", "t1", "show"},
       "claim has no place for \"show\"; the next verb stands after the word \"then\""},
      {{"comment", "t1", "two", "words"},
       "comment has no place for \"words\"; a text of several words stands in quotes"},
      {{"claim", "t1", "then"}, "a verb stands before and after \"then\""},
      {{"then", "plan"}, "a verb stands before and after \"then\""},
      {{"plan", "then", "brief"}, "brief stands alone in a line"},
      {{"add", "T", "--priority", "high"}, "--priority wants a whole number, not \"high\""},
      {{"add", "T", "--priority", "9223372036854775808"},
       "--priority wants a whole number, not \"9223372036854775808\""},
      {{"add", "T", "--body"},
       "--body wants a value; one that begins with \"--\" is written --body=VALUE"},
      {{"add", "T", "--body", "--summary"},
       "--body wants a value; one that begins with \"--\" is written --body=VALUE"},
      {{"update", "t1", "--title=a", "--title=b"}, "--title is given twice"},
      {{"update", "t1", "--blocked=maybe"}, "blocked is true or false, not \"maybe\""},
      {{"verify", "t1", "perhaps"}, "approve is approve or reject, not \"perhaps\""},
      {{"update", "t1", "--no-title"}, "update has no option --no-title"},
      {{"send", "KQ3", "-m"},
       "there is no option -m; a text that begins with \"-\" stands after \"--\""},
      {{"--frobnicate", "plan"},
       "there is no option --frobnicate before a verb; there are --json, --help and --version"},
      {{"wait", "--follow", "--json"},
       "--follow prints lines, and no JSON; leave out one of the two"},
      {{"comment", "t1", "\xff"}, "a word of the line is not UTF-8"},
      {{"tasks", "--bucket", "dine"},
       "--bucket is one of yours, forYou, readyToClaim, waiting, done, rejected, not \"dine\"; did "
       "you mean done?"},
      {{"tasks", "--limit", "0"}, "--limit wants a number of at least 1, not 0"},
      {{"wait", "--timeout", "-1"}, "--timeout wants a number of at least 0, not -1"},
      {{"doctor", "--json"}, "doctor stands without other words, not with \"--json\""},
      {{"guard", "then", "plan"}, "guard stands alone in a line"},
  };
  for (const Row& row : rows)
    EXPECT_EQ(whyNot(row.words), row.why) << ::testing::PrintToString(row.words);
}

TEST(Line, OfAProgramThatReadsJsonIsAnsweredInJsonHoweverWrongItIs) {
  for (const Words& words : {Words{"claim", "t1", "--foo", "--json"},
                             {"nope", "--json"},
                             {"tasks", "then", "nope", "--json"},
                             {"--json", "\xff"}}) {
    const std::variant<Line, Misuse> reading = readLine(words, noTexts());
    const Misuse* const wrong = std::get_if<Misuse>(&reading);
    EXPECT_TRUE(wrong != nullptr && wrong->asJson) << ::testing::PrintToString(words);
  }
  EXPECT_FALSE(callsOf({"tasks", "--json=false"}).at(0).asJson);
  EXPECT_TRUE(callsOf({"tasks", "--json=true"}).at(0).asJson);
}

TEST(Line, AsksForFinishedTasksWhenOnlyTheirBucketIsShown) {
  EXPECT_EQ(readAs({"tasks", "--bucket", "done"}),
            R"(list_tasks {"include":"all"}|{"bucket":"done"})");
  EXPECT_EQ(readAs({"tasks", "--bucket", "yours"}), R"(list_tasks {}|{"bucket":"yours"})");
}

TEST(Line, LeavesWhatStandsBehindTwoDashesToACommandOfItsOwn) {
  EXPECT_EQ(ownOf({"guard", "--", "then", "--help", "caf\xe9"})->command, Command::guard);
  EXPECT_EQ(ownOf({"guard", "a", "--help"})->command, Command::help);
}

TEST(Line, IsOneOfTheCommandsOfItsOwn) {
  EXPECT_EQ(ownOf({"--help"})->command, Command::help);
  EXPECT_EQ(ownOf({"-h"})->command, Command::help);
  EXPECT_EQ(ownOf({"--version"})->command, Command::version);
  EXPECT_EQ(ownOf({"brief", "--short"})->words, Words{"--short"});
  EXPECT_EQ(ownOf({"claim", "--help"})->words, Words{"claim"});
  EXPECT_EQ(ownOf({"claim", "t1", "then", "done", "-h"})->words, Words{"done"});
  EXPECT_EQ(ownOf({"guard", "--help"})->words, Words{"guard"});
  EXPECT_EQ(ownOf({"__complete", "claim", "then", "--help"})->command, Command::complete);
  EXPECT_FALSE(ownOf({"claim", "t1"}));
}

TEST(Line, MakesSenseOfEveryExampleOfTheHelp) {
  const TextSources anyText = {.input = [] { return "text"; },
                               .file = [](const std::string&) { return "text"; }};
  for (const Tool& tool : tools) {
    for (const std::string& example : examplesOf(tool)) {
      Words words;
      bool isQuoted = false, begins = true;
      for (const char letter : example) {
        if (letter == '\'') {
          isQuoted = !isQuoted;
        } else if (letter == ' ' && !isQuoted) {
          begins = true;
        } else {
          if (std::exchange(begins, false)) words.emplace_back();
          words.back().push_back(letter);
        }
      }
      ASSERT_EQ(words.front(), "qp");
      words.erase(words.begin());
      EXPECT_EQ(whyNot(words, anyText), "nothing is wrong") << example;
    }
  }
}

TEST(Line, KnowsEveryVerbByEveryName) {
  for (const std::string_view verb : allVerbs()) {
    const bool isOwn =
        std::ranges::any_of(commandRows, [&](const CommandRow& row) { return row.name == verb; });
    EXPECT_TRUE(isOwn || toolForVerb(verb) != nullptr) << verb;
  }
}

}  // namespace
}  // namespace quillpost
