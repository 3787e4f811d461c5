#include "render/obligations.h"

#include "harness/golden.h"
#include "harness/integers.h"
#include "json/value.h"
#include "model/coding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::highest;
using testing::lowest;
using testing::sameText;
using Obligations = TeamworkObligations;
using Audience = std::optional<TeamworkAudience>;

std::string obligationsObject(const Obligations& obligations, const Audience& audience = {}) {
  std::string out;
  {
    json::Object object(out);
    addObligations(object, obligations, audience);
  }
  return out;
}

/// Obligations that are not clear, with nothing in them yet.
Obligations owing() {
  Obligations obligations;
  obligations.clear = false;
  return obligations;
}

Obligations::UndeliveredRef write(bool refused) {
  return {.verb = "update_task", .taskID = "t1", .reason = "offline", .refused = refused};
}

Obligations undelivered(int refused, int queued) {
  Obligations obligations = owing();
  for (; refused > 0; --refused) obligations.undelivered.push_back(write(true));
  for (; queued > 0; --queued) obligations.undelivered.push_back(write(false));
  return obligations;
}

/// Obligations whose lists all have the same length.
Obligations everything(std::size_t count) {
  Obligations obligations = owing();
  obligations.oweReply.resize(count);
  obligations.awaitingReply.resize(count);
  obligations.yourBlockersOpen.resize(count);
  obligations.mentionsToAnswer.resize(count);
  obligations.tasksHeld.resize(count);
  obligations.staleSummaries.resize(count);
  obligations.idleHeld.resize(count);
  obligations.releaseAsks.resize(count);
  obligations.undelivered.resize(count);
  return obligations;
}

TEST(SummaryLine, EachListHasItsPhraseInOneAndInMany) {
  struct Row {
    std::string name;
    void (*fill)(Obligations&, std::size_t count);
    std::string one;
    std::string two;
  };
  const std::vector<Row> rows = {
      {"oweReply", [](Obligations& owed, std::size_t n) { owed.oweReply.resize(n); },
       "1 reply owed", "2 replies owed"},
      {"awaitingReply", [](Obligations& owed, std::size_t n) { owed.awaitingReply.resize(n); },
       "1 discussion awaiting your counterpart", "2 discussions awaiting your counterpart"},
      {"yourBlockersOpen",
       [](Obligations& owed, std::size_t n) { owed.yourBlockersOpen.resize(n); }, "1 blocker open",
       "2 blockers open"},
      {"mentionsToAnswer",
       [](Obligations& owed, std::size_t n) { owed.mentionsToAnswer.resize(n); },
       "1 mention to answer", "2 mentions to answer"},
      {"tasksHeld", [](Obligations& owed, std::size_t n) { owed.tasksHeld.resize(n); },
       "1 task held", "2 tasks held"},
      {"staleSummaries", [](Obligations& owed, std::size_t n) { owed.staleSummaries.resize(n); },
       "1 stale summary", "2 stale summaries"},
      {"idleHeld", [](Obligations& owed, std::size_t n) { owed.idleHeld.resize(n); },
       "1 held with nothing written", "2 held with nothing written"},
      {"releaseAsks", [](Obligations& owed, std::size_t n) { owed.releaseAsks.resize(n); },
       "nothing outstanding", "nothing outstanding"},
      {"undelivered", [](Obligations& owed, std::size_t n) { owed.undelivered.resize(n); },
       "1 of your writes did not land (1 queued unsent)",
       "2 of your writes did not land (2 queued unsent)"},
  };
  for (const Row& row : rows) {
    Obligations obligations = owing();
    row.fill(obligations, 1);
    EXPECT_EQ(summaryLine(obligations), row.one) << row.name;
    row.fill(obligations, 2);
    EXPECT_EQ(summaryLine(obligations), row.two) << row.name;
  }
}

TEST(SummaryLine, WritesThatDidNotLandAreSplitByReason) {
  EXPECT_EQ(summaryLine(undelivered(2, 0)),
            "2 of your writes did not land (2 REFUSED by the relay)");
  EXPECT_EQ(summaryLine(undelivered(0, 2)), "2 of your writes did not land (2 queued unsent)");
  EXPECT_EQ(summaryLine(undelivered(1, 2)),
            "3 of your writes did not land (1 REFUSED by the relay, 2 queued unsent)");
}

TEST(SummaryLine, PhrasesStandInTheirOrderTheWritesFirst) {
  EXPECT_TRUE(
      sameText("3 of your writes did not land (3 queued unsent), 3 replies owed, "
               "3 discussions awaiting your counterpart, 3 blockers open, 3 mentions to answer, "
               "3 tasks held, 3 stale summaries, 3 held with nothing written",
               summaryLine(everything(3))));
  Obligations some = undelivered(1, 2);
  some.oweReply.resize(1);
  some.tasksHeld.resize(2);
  EXPECT_TRUE(
      sameText("3 of your writes did not land (1 REFUSED by the relay, 2 queued unsent), "
               "1 reply owed, 2 tasks held",
               summaryLine(some)));
}

TEST(SummaryLine, NothingIsSaidToBeOutstandingWhenNothingIs) {
  EXPECT_EQ(summaryLine(owing()), "nothing outstanding");
  EXPECT_EQ(summaryLine(Obligations()), "nothing outstanding");
}

TEST(ObligationsObject, ClearIsAllThatIsSaidWhenNothingIsOwed) {
  Obligations clear = everything(2);
  clear.clear = true;
  EXPECT_EQ(obligationsObject(clear, TeamworkAudience()), R"({"clear":true})");
  EXPECT_EQ(obligationsObject(Obligations()), R"({"clear":true})");
}

TEST(ObligationsObject, EmptyListsAndReleaseAsksAreLeftOut) {
  EXPECT_EQ(obligationsObject(owing()), R"({"clear":false})");
  Obligations asked = owing();
  asked.releaseAsks = {{.taskID = "t1", .requester = "#b1", .reason = "urgent"}};
  EXPECT_EQ(obligationsObject(asked), R"({"clear":false})");
  EXPECT_EQ(summaryLine(asked), "nothing outstanding");
}

TEST(ObligationsObject, AnAnswerThatDoesNotSayClearIsClear) {
  const std::optional<TeamworkResponse> response =
      decodeResponse(R"({"kind":"empty","obligations":{"tasksHeld":["t1"]}})");
  ASSERT_TRUE(response && response->obligations);
  EXPECT_EQ(obligationsObject(*response->obligations), R"({"clear":true})");
  EXPECT_TRUE(areClear(response->obligations));
  EXPECT_EQ(obligationsSuffix(response->obligations), "");
}

TEST(ObligationsObject, ADiscussionNamesItsTaskOrTheBoard) {
  Obligations debating = owing();
  debating.oweReply = {
      {.discussionID = "d1", .taskID = "t1", .question = "A \"b\"?", .counterpart = "#b1"},
      {.discussionID = "d2", .taskID = std::nullopt, .question = "C?", .counterpart = "human"}};
  debating.awaitingReply = {
      {.discussionID = "d3", .taskID = "", .question = "", .counterpart = ""}};
  EXPECT_TRUE(sameText(
      R"({"clear":false,"oweReply":[)"
      R"({"discussionID":"d1","question":"A \"b\"?","counterpart":"#b1","taskID":"t1"},)"
      R"({"discussionID":"d2","question":"C?","counterpart":"human","scope":"board"}],)"
      R"("awaitingReply":[{"discussionID":"d3","question":"","counterpart":"","taskID":""}]})",
      obligationsObject(debating)));
}

// The whole texts, written out once more.
constexpr std::string_view releaseUnknown =
    "Write what you have done with update_task, or hand it back with release_task if you are not "
    "on it. If you are waiting on something, say so: wait_for_changes takes a parkReason.";
constexpr std::string_view releaseOthers =
    "Write what you have done with update_task, or hand it back with release_task if you are not "
    "on it. Until you do, this is work another agent can neither take nor judge the state of. If "
    "you are waiting on something, say so: wait_for_changes takes a parkReason.";
constexpr std::string_view releaseAlone =
    "Write what you have done with update_task, or hand it back with release_task if you are not "
    "on it. Nobody else is on this board, so this is not about holding a peer up: it is so the "
    "work survives your claim lapsing, and so the human reading the task can see where it got to. "
    "If you are waiting on something, say so: wait_for_changes takes a parkReason.";
constexpr std::string_view queuedUnknown =
    "Do not report this as landed. It resends on the next sync; if anything depends on it, say on "
    "the task that it is still outstanding.";
constexpr std::string_view queuedAlone =
    "Nobody else is on this board, so nothing is out of step and there is nobody to warn. The "
    "write is simply still local: it is not on the relay's copy, which is what a second Mac or the "
    "web would read. It resends on the next sync: carry on, and do not call it synced.";
constexpr std::string_view queuedLocal =
    "The other agents here read the same board you write to, so they DO see it and nothing between "
    "you is out of step. What has not happened is the relay taking it, so it is missing from the "
    "copy a second Mac, the web, or somebody joining later would read. It resends on the next "
    "sync: carry on, and just do not call it synced.";

std::string queuedFor(std::string_view readers) {
  return "This has not reached " + std::string(readers) +
         " yet, so do not build on it or report it as landed. It resends on the next sync; say on "
         "the task that it is outstanding if anything depends on it.";
}

/// Other devices, people and local agents; the Thread may be shared or not.
TeamworkAudience readers(int64_t devices, int64_t people, int64_t agents, bool shared = false) {
  return {
      .shared = shared, .otherDevices = devices, .otherPeople = people, .otherLocalAgents = agents};
}

TEST(ObligationsObject, AdviceDependsOnWhoElseReads) {
  const std::string mac = queuedFor("your other Mac on this Thread");
  const std::string macs = queuedFor("your other Macs on this Thread");
  const std::string person = queuedFor("the person you share this Thread with");
  const std::string people = queuedFor("the people you share this Thread with");
  struct Row {
    std::string name;
    Audience audience;
    std::string_view held;
    std::string_view queued;
  };
  const std::vector<Row> rows = {
      {"unknown", std::nullopt, releaseUnknown, queuedUnknown},
      {"nobody", readers(0, 0, 0), releaseAlone, queuedAlone},
      {"nobody, shared", readers(0, 0, 0, true), releaseAlone, queuedAlone},
      {"below nobody", readers(-1, -2, lowest), releaseAlone, queuedAlone},
      {"one local agent", readers(0, 0, 1), releaseOthers, queuedLocal},
      {"local agents, shared", readers(0, 0, 2, true), releaseOthers, queuedLocal},
      {"local agents only", readers(-1, -1, highest), releaseOthers, queuedLocal},
      {"one Mac", readers(1, 0, 0), releaseOthers, mac},
      {"one Mac and agents", readers(1, 0, 3), releaseOthers, mac},
      {"two Macs", readers(2, 0, 0), releaseOthers, macs},
      {"two Macs and fewer than no people", readers(2, -1, 0), releaseOthers, macs},
      {"one person", readers(0, 1, 0), releaseOthers, person},
      {"one person and two Macs", readers(2, 1, 0), releaseOthers, person},
      {"one person and fewer than no Macs", readers(lowest, 1, 0), releaseOthers, person},
      {"two people", readers(0, 2, 0), releaseOthers, people},
      {"two people and one Mac", readers(1, 2, 1), releaseOthers, people},
      {"most people", readers(0, highest, 0), releaseOthers, people},
  };
  Obligations obligations = owing();
  obligations.idleHeld = {{.taskID = "t1", .summaryBehindBy = 0, .wroteNothingSinceClaim = true}};
  obligations.undelivered = {write(false)};
  for (const Row& row : rows) {
    const std::string expected =
        R"({"clear":false,"idleHeld":[{"taskID":"t1",)"
        R"("state":"held, nothing written since you claimed it","do":")" +
        std::string(row.held) +
        R"("}],"undelivered":[{"verb":"update_task","reason":"offline","taskID":"t1",)"
        R"("state":"this write never reached the relay — it is queued and resends","do":")" +
        std::string(row.queued) + R"("}]})";
    EXPECT_TRUE(sameText(expected, obligationsObject(obligations, row.audience))) << row.name;
  }
}

TEST(ObligationsObject, AStaleSummarySaysHowFarItLagsUnlessNothingWasWritten) {
  Obligations obligations = owing();
  obligations.staleSummaries = {
      {.taskID = "t1", .summaryBehindBy = 1, .wroteNothingSinceClaim = false},
      {.taskID = "t2", .summaryBehindBy = 7, .wroteNothingSinceClaim = true}};
  obligations.idleHeld = {{.taskID = "t3", .summaryBehindBy = -4, .wroteNothingSinceClaim = false}};
  const std::string advice =
      "Pass a fresh `summary` to update_task (or comment_task, which needs no claim) saying where "
      "this task stands now, in plain sentences.";
  const std::string stale =
      R"({"clear":false,"staleSummaries":[{"taskID":"t1","summaryBehindBy":1,)"
      R"("state":"the human's summary is 1 progress lines behind this task",)"
      R"("do":")" +
      advice + R"("},)";
  const std::string nothingWritten =
      R"({"taskID":"t2","state":"held, nothing written since you claimed it","do":")" +
      std::string(releaseUnknown) + R"("}],)";
  const std::string idle = R"("idleHeld":[{"taskID":"t3","summaryBehindBy":-4,)"
                           R"("state":"the human's summary is -4 progress lines behind this task",)"
                           R"("do":")" +
                           advice + R"("}]})";
  EXPECT_TRUE(sameText(stale + nothingWritten + idle, obligationsObject(obligations)));
}

TEST(ObligationsObject, ARefusedWriteIsToBeRedoneWhoeverReads) {
  Obligations obligations = owing();
  obligations.undelivered = {
      {.verb = "add_task", .taskID = std::nullopt, .reason = "too long", .refused = true},
      {.verb = "update_task", .taskID = "", .reason = "", .refused = true}};
  const std::string words =
      R"("state":"the relay REFUSED this write — it arrived and was declined",)"
      R"("do":"Do not treat this as done. Re-read the task to see what the board actually holds, )"
      R"(and either redo the work against that or say on the task why it cannot be."})";
  const std::string expected =
      R"({"clear":false,"undelivered":[{"verb":"add_task","reason":"too long",)" + words +
      R"(,{"verb":"update_task","reason":"","taskID":"",)" + words + "]}";
  EXPECT_TRUE(sameText(expected, obligationsObject(obligations)));
  EXPECT_TRUE(sameText(expected, obligationsObject(obligations, readers(2, 2, 2))));
}

TEST(ObligationsObject, ListsStandInTheirOrder) {
  Obligations obligations = everything(1);
  obligations.oweReply[0].discussionID = "d1";
  obligations.awaitingReply[0].discussionID = "d2";
  obligations.yourBlockersOpen = {"t1"};
  obligations.mentionsToAnswer = {"t2", "t3"};
  obligations.tasksHeld = {"t4"};
  const std::optional<json::Tree> tree = json::parse(obligationsObject(obligations));
  ASSERT_TRUE(tree);
  std::string keys;
  for (const auto& [key, value] : tree->as_object()) keys += std::string(key) + " ";
  EXPECT_EQ(keys,
            "clear oweReply awaitingReply yourBlockersOpen mentionsToAnswer tasksHeld "
            "staleSummaries idleHeld undelivered ");
  Obligations idsOnly = owing();
  idsOnly.yourBlockersOpen = {"t1"};
  idsOnly.mentionsToAnswer = {"t2", "t3"};
  idsOnly.tasksHeld = {"t4"};
  EXPECT_EQ(obligationsObject(idsOnly),
            R"({"clear":false,"yourBlockersOpen":["t1"],"mentionsToAnswer":["t2","t3"],)"
            R"("tasksHeld":["t4"]})");
}

TEST(ObligationsSuffix, IsThereExactlyWhenSomethingIsOwed) {
  EXPECT_TRUE(areClear(std::nullopt));
  EXPECT_EQ(obligationsSuffix(std::nullopt), "");
  EXPECT_TRUE(areClear(Obligations()));
  EXPECT_EQ(obligationsSuffix(Obligations()), "");
  Obligations replying = owing();
  replying.oweReply.resize(1);
  EXPECT_FALSE(areClear(replying));
  EXPECT_EQ(obligationsSuffix(replying), "\n\nobligations: 1 reply owed");
  EXPECT_FALSE(areClear(owing()));
  EXPECT_EQ(obligationsSuffix(owing()), "\n\nobligations: nothing outstanding");
}

TEST(ObligationsObject, AnyObligationsAreJsonAndGiveAPhraseForEachList) {
  std::mt19937 random(99);
  for (int round = 0; round < 300; ++round) {
    Obligations obligations = owing();
    std::size_t lists = 0;
    const auto fill = [&](auto& list) {
      list.resize(random() % 3);
      if (!list.empty()) ++lists;
    };
    fill(obligations.oweReply);
    fill(obligations.awaitingReply);
    fill(obligations.yourBlockersOpen);
    fill(obligations.mentionsToAnswer);
    fill(obligations.tasksHeld);
    fill(obligations.staleSummaries);
    fill(obligations.idleHeld);
    fill(obligations.undelivered);
    for (auto& write : obligations.undelivered) write.refused = true;
    Audience audience;
    if (random() % 2 == 0) {
      const auto count = [&random] { return static_cast<int64_t>(random() % 4) - 1; };
      audience = readers(count(), count(), count());
    }
    const std::string text = obligationsObject(obligations, audience);
    const std::optional<json::Tree> tree = json::parse(text);
    ASSERT_TRUE(tree && tree->is_object()) << text;
    EXPECT_EQ(tree->get_object().size(), 1 + lists) << text;
    const std::string line = summaryLine(obligations);
    const auto commas = static_cast<std::size_t>(std::count(line.begin(), line.end(), ','));
    EXPECT_EQ(commas + 1, std::max<std::size_t>(lists, 1)) << line;
  }
}

}  // namespace
}  // namespace quillpost
