#include "qp/completion.h"

#include "base/text.h"
#include "qp/command.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

std::string fits(const std::vector<std::string>& words) {
  const Candidates found = candidatesFor(words);
  std::string text = text::join(found.words, " ");
  if (found.fromBoard == BoardWords::tasks)
    text += text::cat(" +tasks ", found.before, found.begin);
  if (found.fromBoard == BoardWords::handles)
    text += text::cat(" +handles ", found.before, found.begin);
  return text;
}

TEST(Completion, OffersVerbs) {
  EXPECT_EQ(fits({"cl"}), "claim claim_task close");
  EXPECT_EQ(fits({"tasks", "then", "bri"}), "brief");
  EXPECT_EQ(fits({"help", "unw"}), "unwatch unwatch_task");
  EXPECT_EQ(fits({"--j"}), "--json");
  EXPECT_EQ(fits({"zz"}), "");
  EXPECT_EQ(fits({}), "");
  EXPECT_EQ(candidatesFor(std::vector<std::string>{""}).words.front(), "register");
}

TEST(Completion, OffersTheOptionsOfTheVerb) {
  EXPECT_EQ(fits({"done", "t1", "--"}), "--task-id --summary --json --help");
  EXPECT_EQ(fits({"wait", "--t"}), "--task-ids --timeout-seconds --timeout");
}

TEST(Completion, OffersTheClosedSetsOfValues) {
  EXPECT_EQ(fits({"add", "T", "--type", ""}), "bug feature chore research");
  EXPECT_EQ(fits({"update", "t1", "--blocker-kind", "re"}), "review respond");
  EXPECT_EQ(fits({"tasks", "--bucket", "r"}), "readyToClaim rejected");
  EXPECT_EQ(fits({"verify", "t1", ""}), "approve reject");
  EXPECT_EQ(fits({"completion", "z"}), "zsh");
}

TEST(Completion, AsksTheBoardForIdsAndHandles) {
  EXPECT_EQ(fits({"claim", ""}), " +tasks ");
  EXPECT_EQ(fits({"wait", "t1", "t"}), "then +tasks t");
  EXPECT_EQ(fits({"assign", "t1", ""}), " +handles ");
  EXPECT_EQ(fits({"stop", "K"}), " +handles K");
  EXPECT_EQ(fits({"add", "T", "--waits-on", "t"}), " +tasks t");
  EXPECT_EQ(fits({"add", "T", "--waits-on", "t1,t"}), " +tasks t1,t");
  EXPECT_EQ(fits({"add", "T", "--waits-on=t1,"}), " +tasks --waits-on=t1,");
  EXPECT_EQ(fits({"claim", "t1", ""}), "then");
}

TEST(Completion, TakesALineWithAnOptionBeforeItsVerb) {
  EXPECT_EQ(fits({"--json", "cl"}), "claim claim_task close");
  EXPECT_EQ(fits({"--json", "verify", "t1", ""}), "approve reject");
  EXPECT_EQ(fits({"brief", "--"}), "--short");
}

TEST(Completion, CompletesAValueBehindItsOption) {
  EXPECT_EQ(fits({"add", "T", "--type=b"}), "--type=bug");
  EXPECT_EQ(fits({"add", "T", "--frobnicate=b"}), "");
  // As bash breaks it up: only the last piece is replaced there.
  EXPECT_EQ(fits({"add", "T", "--type", "=", "b"}), "bug");
  EXPECT_EQ(fits({"add", "T", "--type", "="}), "bug feature chore research");
  EXPECT_EQ(fits({"verify", "--task-id", "=", "t1", ""}), fits({"verify", "--task-id=t1", ""}));
  EXPECT_EQ(fits({"="}), "");
}

TEST(Completion, FindsTheWordsInWhatTheBoardAnswers) {
  const std::string backlog =
      R"({"yours":[{"id":"t1"}],"waiting":[{"id":"t2"},{"id":"x3"}],"hint":"t"})";
  const auto wanted = [](BoardWords which, std::string before, std::string begin) {
    return Candidates{
        .words = {}, .fromBoard = which, .before = std::move(before), .begin = std::move(begin)};
  };
  EXPECT_EQ(boardWordsIn(backlog, wanted(BoardWords::tasks, "t9,", "t")),
            (std::vector<std::string>{"t9,t1", "t9,t2"}));
  EXPECT_EQ(
      boardWordsIn(R"([{"handle":"KQ3"},{"id":"#1"},7])", wanted(BoardWords::handles, "", "")),
      std::vector<std::string>{"KQ3"});
  EXPECT_TRUE(boardWordsIn("no json", wanted(BoardWords::tasks, "", "")).empty());
  EXPECT_TRUE(boardWordsIn("[]", wanted(BoardWords::tasks, "", "")).empty());
}

TEST(Completion, HasAScriptForEachOfThreeShells) {
  for (const std::string_view shell : {"bash", "zsh", "fish"})
    EXPECT_NE(completionScript(shell).value_or("").find("qp __complete"), std::string_view::npos);
  EXPECT_FALSE(completionScript("tcsh"));
}

using CompletionCommand = CommandTest;

TEST_F(CompletionCommand, PrintsWhatFitsBeforeItAsksTheBoard) {
  otherwise = R"({"kind":"agents","agents":[{"id":"a","name":"","status":"",)"
              R"("canVerify":false,"activeClaims":0,)"
              R"("fingerprint":"#1","handle":"KQ3",)"
              R"("leaseSecondsRemaining":9,"isSelf":false}]})";
  EXPECT_EQ(run({"__complete", "send", "K"}), 0);
  EXPECT_EQ(out.text, "KQ3\n");
  EXPECT_EQ(run({"__complete", "cl"}), 0);
  EXPECT_EQ(out.text, "claim\nclaim_task\nclose\n");
  EXPECT_EQ(bridge.requests.size(), 1u);
  bridge.token = "";
  EXPECT_EQ(run({"__complete", "send", "K"}), 0);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "");
}

}  // namespace
}  // namespace quillpost
