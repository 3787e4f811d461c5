#include "render/wait_outcome.h"

#include "harness/golden.h"
#include "harness/plain_text.h"
#include "json/value.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::expanded;
using testing::expandedJson;
using testing::goldenText;
using testing::sameText;
using Profile = TeamworkClientProfile::Profile;

/// A wait's end and what the process remembers of it.
struct Scene {
  TeamworkChangeFeed feed;
  bool withFeed = true;
  WaitOutcome outcome;
  SeatState state;

  std::string text() const {
    WaitOutcome told = outcome;
    told.feed = withFeed ? &feed : nullptr;
    return testing::plainText(waitOutcome(told, state));
  }
  std::string member(std::string_view key) const {
    const std::optional<json::Tree> tree = json::parse(text());
    if (!tree) return "not JSON";
    const json::Tree* const value = json::find(tree->as_object(), key);
    if (!value) return "nothing";
    if (value->is_string()) return std::string(value->as_string());
    std::string out;
    json::appendTree(out, *value);
    return out;
  }
};

TeamworkObligations owing(std::vector<std::string> discussions) {
  TeamworkObligations obligations;
  obligations.clear = false;
  for (const std::string& id : discussions)
    obligations.oweReply.push_back({id, "t1", "Which?", "M2X"});
  return obligations;
}

/// Something is owed, but no reply.
TeamworkObligations holding() {
  TeamworkObligations obligations;
  obligations.clear = false;
  obligations.tasksHeld = {"t1"};
  return obligations;
}

TeamworkTask task(std::string_view id) {
  TeamworkTask made;
  made.id = id;
  made.title = "T";
  made.state = "open";
  return made;
}

TEST(WaitOutcome, TellsWhatIsKnownWhenTheAppNeverAnswered) {
  Scene scene;
  scene.withFeed = false;
  scene.outcome.timedOut = true;
  scene.state.waitSeq = 1;
  EXPECT_TRUE(sameText(
      expandedJson(R"({"waitSeq":1,"watching":"entire backlog","wakeReasons":[],"resolved":false,)"
                   R"("nextStep":"{{quietTurns.1}}"})"),
      scene.text()));
}

TEST(WaitOutcome, TellsAQuietFeedInFull) {
  Scene scene;
  scene.outcome.timedOut = true;
  scene.feed.rev = 7;
  scene.state.waitSeq = 3;
  EXPECT_TRUE(
      sameText(expandedJson(R"({"waitSeq":3,"rev":7,"watching":"entire backlog","tasks":[],)"
                            R"("pendingGoalComplete":false,"changed":false,"goalComplete":false,)"
                            R"("wakeReasons":[],"resolved":false,"nextStep":"{{quietTurns.0}}"})"),
               scene.text()));
}

TEST(WaitOutcome, KeepsTheOrderOfItsMembers) {
  Scene scene;
  const std::vector<std::string> watching = {"t1", "t2"};
  scene.outcome.watching = watching;
  scene.outcome.heldSeconds = 30;
  scene.outcome.shortenedFrom = 45;
  scene.feed.rev = 9;
  scene.feed.changed = true;
  scene.feed.pendingGoalComplete = true;
  scene.feed.tasks = {task("t1"), task("t2")};
  scene.feed.tasks[0].mentionsYou = true;
  scene.feed.wakeReasons = {{"claimExpired", "t1", "lapsed", "time"},
                            {"mention", "", "tagged", ""},
                            {"other", std::nullopt, "", std::nullopt}};
  scene.feed.messages = {{"m1", "M2X", "Bo", "hi \"you\"", 4}, {"m2", "ZZ9", "", "", 0}};
  scene.state.waitSeq = 2;
  scene.state.lastObligations = owing({"d123456", "d654321"});
  const std::string debate = R"("question":"Which?","counterpart":"M2X","taskID":"t1"})";
  EXPECT_TRUE(sameText(
      expandedJson(
          R"({"waitSeq":2,"rev":9,"watching":["t1","t2"],)"
          R"("tasks":[{"id":"t1","title":"T","state":"open","mentionsYou":true},)"
          R"({"id":"t2","title":"T","state":"open"}],"heldForSeconds":30,)"
          R"("heldForSecondsNote":"{{heldForSecondsNote(45, 30)}}","pendingGoalComplete":true,)"
          R"("changed":true,"goalComplete":false,"wakeReasons":[)"
          R"({"kind":"claimExpired","summary":"lapsed","taskID":"t1","cause":"time"},)"
          R"({"kind":"mention","summary":"tagged"},{"kind":"other","summary":""}],)"
          R"("messages":[{"from":"M2X","text":"hi \"you\"","fromName":"Bo","ageSeconds":4},)"
          R"({"from":"ZZ9","text":"","ageSeconds":0}],"messagesNote":"{{messagesNote}}",)"
          R"("resolved":false,"nextStep":"{{youOweReplies(d123456, d654321)}}{{youWereTagged}})"
          R"({{claimExpired}}","obligations":{"clear":false,)"
          R"("oweReply":[{"discussionID":"d123456",)") +
          debate + R"(,{"discussionID":"d654321",)" + debate + "]}}",
      scene.text()));
}

TEST(WaitOutcome, NamesTheHoldOnlyWhenItWasShortened) {
  Scene scene;
  scene.outcome.heldSeconds = 30;
  EXPECT_EQ(scene.member("heldForSeconds"), "nothing");
  EXPECT_EQ(scene.member("heldForSecondsNote"), "nothing");
  scene.outcome.shortenedFrom = std::numeric_limits<int64_t>::max();
  EXPECT_EQ(scene.member("heldForSeconds"), "30");
  EXPECT_EQ(scene.member("heldForSecondsNote").substr(0, 80),
            "You asked to wait 9223372036854775807s and this client's hold budget is 30s, so ");
}

TEST(WaitOutcome, ShowsTheObligationsAndAudienceLastSeen) {
  Scene scene;
  EXPECT_EQ(scene.member("obligations"), "nothing");
  scene.state.lastObligations.emplace();
  EXPECT_EQ(scene.member("obligations"), R"({"clear":true})");
  scene.state.lastObligations->clear = false;
  scene.state.lastObligations->idleHeld = {{"t1", 0, true}};
  scene.state.lastAudience =
      TeamworkAudience{.shared = false, .otherDevices = 1, .otherPeople = 0, .otherLocalAgents = 0};
  EXPECT_TRUE(sameText(
      expandedJson(R"({"clear":false,"idleHeld":[{"taskID":"t1","state":"{{heldNothingWritten}}",)"
                   R"("do":"{{writeOrReleaseForOthers}}"}]})"),
      scene.member("obligations")));
}

struct StepRow {
  std::string_view name;
  void (*change)(Scene&);
  std::string_view expected;
  std::string_view resolved = "false";
};

void wake(Scene& scene, const std::vector<std::string>& kinds) {
  for (const std::string& kind : kinds)
    scene.feed.wakeReasons.push_back({kind, std::nullopt, "", std::nullopt});
}

void expectSteps(const std::vector<StepRow>& rows) {
  for (const StepRow& row : rows) {
    Scene scene;
    row.change(scene);
    EXPECT_TRUE(sameText(expanded(row.expected), scene.member("nextStep"))) << row.name;
    EXPECT_EQ(scene.member("resolved"), row.resolved) << row.name;
  }
}

TEST(WaitOutcome, ChoosesTheNextStepInOrder) {
  // clang-format off
  const std::vector<StepRow> rows = {
      {"the goal is complete",       [](Scene& s) { s.feed.goalComplete = true; }, "{{goalConfirmed}}", "true"},
      {"complete and clear",         [](Scene& s) { s.feed.goalComplete = true; s.state.lastObligations.emplace(); }, "{{goalConfirmed}}", "true"},
      {"complete before all else",   [](Scene& s) { s.feed.goalComplete = s.feed.pendingGoalComplete = s.outcome.timedOut = true; wake(s, {"claimExpiring"}); }, "{{goalConfirmed}}", "true"},
      {"complete but owing",         [](Scene& s) { s.feed.goalComplete = true; s.state.lastObligations = holding(); },
       "The goal is complete but your obligations are NOT clear (1 task held) — settle them (answer or resolve your open discussions) before standing down."},
      {"about to lapse",             [](Scene& s) { wake(s, {"mention", "claimExpired", "claimExpiring"}); }, "{{claimExpiring}}"},
      {"lapsed",                     [](Scene& s) { wake(s, {"taskWatched", "claimExpired", "mention"}); }, "{{claimExpired}}"},
      {"watched tasks alone",        [](Scene& s) { wake(s, {"taskWatched", "taskWatched"}); }, "{{watchedTasksMoved}}"},
      {"watched and another",        [](Scene& s) { wake(s, {"taskWatched", "mention"}); }, "{{woken}}"},
      {"woken",                      [](Scene& s) { wake(s, {"blockerAnswered"}); }, "{{woken}}"},
      {"woken though timed out",     [](Scene& s) { wake(s, {"mention"}); s.outcome.timedOut = true; }, "{{woken}}"},
      {"woken though proposed",      [](Scene& s) { wake(s, {"mention"}); s.feed.pendingGoalComplete = true; }, "{{woken}}"},
      {"quiet though proposed",      [](Scene& s) { s.feed.pendingGoalComplete = s.outcome.timedOut = true; }, "{{quietTurns.0}}"},
      {"proposed",                   [](Scene& s) { s.feed.pendingGoalComplete = s.feed.changed = true; }, "{{completionAwaited}}"},
      {"moved",                      [](Scene& s) { s.feed.changed = true; }, "{{boardMoved}}"},
      {"only messages",              [](Scene& s) { s.feed.messages.resize(1); }, "{{boardMoved}}"},
      {"no feed and not timed out",  [](Scene& s) { s.withFeed = false; }, "{{boardMoved}}"},
      {"moved while owing",          [](Scene& s) { s.state.lastObligations = holding(); }, "{{boardMoved}}"},
  };
  // clang-format on
  expectSteps(rows);
}

TEST(WaitOutcome, PutsATagAndThenAnOwedReplyInFront) {
  // clang-format off
  const std::vector<StepRow> rows = {
      {"tagged by a change kind",  [](Scene& s) { s.feed.changeKinds = {"x", "youWereTagged"}; }, "{{youWereTagged}}{{boardMoved}}"},
      {"another change kind",      [](Scene& s) { s.feed.changeKinds = {"youWereTaggedToo"}; }, "{{boardMoved}}"},
      {"tagged in a task",         [](Scene& s) { s.feed.tasks = {task("t1"), task("t2")}; s.feed.tasks[1].mentionsYou = true; }, "{{youWereTagged}}{{boardMoved}}"},
      {"tagged in both",           [](Scene& s) { s.feed.changeKinds = {"youWereTagged"}; s.feed.tasks = {task("t1")}; s.feed.tasks[0].mentionsYou = true; }, "{{youWereTagged}}{{boardMoved}}"},
      {"a reply owed",             [](Scene& s) { s.state.lastObligations = owing({"d123456", "d654321"}); }, "{{youOweReplies(d123456, d654321)}}{{boardMoved}}"},
      {"a reply owed, no feed",    [](Scene& s) { s.withFeed = false; s.state.lastObligations = owing({"d123456", "d654321"}); }, "{{youOweReplies(d123456, d654321)}}{{boardMoved}}"},
      {"tagged and owing",         [](Scene& s) { s.feed.changeKinds = {"youWereTagged"}; s.state.lastObligations = owing({"d123456", "d654321"}); }, "{{youOweReplies(d123456, d654321)}}{{youWereTagged}}{{boardMoved}}"},
      {"complete and tagged",      [](Scene& s) { s.feed.goalComplete = true; s.feed.changeKinds = {"youWereTagged"}; }, "{{youWereTagged}}{{goalConfirmed}}", "true"},
      {"complete and owing",       [](Scene& s) { s.feed.goalComplete = true; s.state.lastObligations = owing({"d1"}); },
       "You OWE a reply on d1 — read the latest volley and answer with reply_discussion before anything else. {{goalCompleteButOwing(1 reply owed)}}"},
      {"quiet, tagged and owing",  [](Scene& s) { s.outcome.timedOut = true; s.feed.changeKinds = {"youWereTagged"}; s.state.lastObligations = owing({"d1"}); },
       "You OWE a reply on d1 — read the latest volley and answer with reply_discussion before anything else. {{youWereTagged}}{{quietTurns.0}}{{quietButOwing(1 reply owed)}}"},
      {"owing a reply yet clear",  [](Scene& s) { s.state.lastObligations = owing({"d123456", "d654321"}); s.state.lastObligations->clear = true; }, "{{youOweReplies(d123456, d654321)}}{{boardMoved}}"},
  };
  // clang-format on
  expectSteps(rows);
}

TEST(WaitOutcome, TakesTurnsWithTheQuietTexts) {
  struct Row {
    int64_t waitSeq;
    std::string_view expected;
  };
  const std::vector<Row> rows = {
      {1, "quietTurns.1"},
      {2, "quietTurns.2"},
      {3, "quietTurns.0"},
      {4, "quietTurns.1"},
      {5, "quietTurns.2"},
      {6, "quietTurns.0"},
      {std::numeric_limits<int64_t>::max(), "quietTurns.1"},
  };
  for (const Profile profile :
       {Profile::codex, Profile::antigravity, Profile::cursor, Profile::unknown}) {
    for (const Row& row : rows) {
      Scene scene;
      scene.outcome.timedOut = true;
      scene.state.waitSeq = row.waitSeq;
      scene.state.clientProfile = profile;
      EXPECT_TRUE(sameText(goldenText(row.expected), scene.member("nextStep"))) << row.waitSeq;
    }
  }
}

TEST(WaitOutcome, AddsToAQuietTextWhatTheClientAndTheObligationsCallFor) {
  // clang-format off
  const std::vector<StepRow> rows = {
      {"a client that cannot hold", [](Scene& s) { s.outcome.cannotHoldLong = true; }, "{{quietTurns.0}}{{quickReturn}}"},
      {"owing",                     [](Scene& s) { s.state.lastObligations = holding(); },
       "{{quietTurns.0}} Your obligations are not clear yet (1 task held), so you are mid-conversation rather than idle. Answer what is owed, then keep listening."},
      {"clear",                     [](Scene& s) { s.state.lastObligations.emplace(); }, "{{quietTurns.0}}"},
      {"both",                      [](Scene& s) { s.outcome.cannotHoldLong = true; s.state.lastObligations = owing({"d123456", "d654321"}); },
       "{{youOweReplies(d123456, d654321)}}{{quietTurns.0}}{{quickReturn}} Your obligations are not clear yet (2 replies owed), so you are mid-conversation rather than idle. Answer what is owed, then keep listening."},
      {"one that can wait outside", [](Scene& s) { s.state.clientProfile = Profile::claude; }, "{{quietCheaperWait}}"},
      {"the same, later",           [](Scene& s) { s.state.clientProfile = Profile::claude; s.state.waitSeq = 2; }, "{{quietCheaperWait}}"},
      {"the same, owing",           [](Scene& s) { s.state.clientProfile = Profile::claude; s.state.lastObligations = holding(); },
       "{{quietCheaperWait}} Your obligations are not clear yet (1 task held), so you are mid-conversation rather than idle. Answer what is owed, then keep listening."},
  };
  // clang-format on
  for (const StepRow& row : rows) {
    for (const bool withFeed : {true, false}) {
      Scene scene;
      scene.outcome.timedOut = true;
      scene.withFeed = withFeed;
      row.change(scene);
      EXPECT_TRUE(sameText(expanded(row.expected), scene.member("nextStep")))
          << row.name << ", feed " << withFeed;
    }
  }
}

TEST(WaitOutcome, SpeaksOfTheRuntimeOnlyWhenNothingMoved) {
  // clang-format off
  expectSteps({
      {"moved", [](Scene& s) { s.outcome.cannotHoldLong = true; }, "{{boardMoved}}"},
      {"woken", [](Scene& s) { s.outcome.cannotHoldLong = s.outcome.timedOut = true; wake(s, {"mention"}); }, "{{woken}}"},
  });
  // clang-format on
}

}  // namespace
}  // namespace quillpost
