#include "render/result.h"

#include "harness/golden.h"
#include "harness/plain_text.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::expanded;
using testing::expandedJson;
using testing::sameText;
using Kind = TeamworkResponse::Kind;

/// A call that was answered.
struct Scene {
  TeamworkResponse response;
  ResultRequest request;
  SeatState state;

  /// The result, composed as the server does it: after the answer has been absorbed.
  std::string text() const {
    SeatState now = state;
    absorbAnswer(now, response);
    return testing::plainText(composeResult(response, request, now));
  }
};

struct Row {
  std::string_view name;
  Kind kind;
  std::string_view tool;
  void (*change)(Scene&);
  std::string_view expected;
};

TeamworkObligations holding() {
  TeamworkObligations obligations;
  obligations.clear = false;
  obligations.tasksHeld = {"t1"};
  return obligations;
}

Scene sceneOf(const Row& row) {
  Scene scene;
  scene.response.kind = row.kind;
  scene.request.tool = row.tool;
  row.change(scene);
  return scene;
}

void asItIs(Scene&) {}

constexpr std::string_view owed = "\n\nobligations: 1 task held";

/// Text results: as they stand, with clear obligations and with some that are not.
void expectTexts(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    Scene scene = sceneOf(row);
    const std::string expected = expanded(row.expected);
    EXPECT_TRUE(sameText(expected, scene.text())) << row.name;
    scene.response.obligations.emplace();
    EXPECT_TRUE(sameText(expected, scene.text())) << row.name << ", clear";
    scene.response.obligations = holding();
    EXPECT_TRUE(sameText(expected + std::string(owed), scene.text())) << row.name << ", owing";
  }
}

/// JSON results without obligations, with clear ones and with some that are not; `expected` is
/// without the closing brace.
void expectObjects(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    Scene scene = sceneOf(row);
    const std::string expected = expandedJson(row.expected);
    EXPECT_TRUE(sameText(expected + "}", scene.text())) << row.name;
    scene.response.obligations.emplace();
    EXPECT_TRUE(sameText(expected + R"(,"obligations":{"clear":true}})", scene.text())) << row.name;
    scene.response.obligations = holding();
    EXPECT_TRUE(
        sameText(expected + R"(,"obligations":{"clear":false,"tasksHeld":["t1"]}})", scene.text()))
        << row.name;
  }
}

void addAgentTo(Scene& scene) {
  scene.response.agent.emplace();
  scene.response.agent->fingerprint = "#a3f9";
  scene.response.agent->leaseSecondsRemaining = 60;
}

void addMessageTo(Scene& scene) { scene.response.messages = {{"m1", "M2X", "", "hi", 4}}; }

void addTaskTo(Scene& scene) {
  scene.response.task.emplace();
  scene.response.task->id = "t1";
  scene.response.task->title = "T";
  scene.response.task->state = "open";
}

void addDiscussionTo(Scene& scene) {
  scene.response.discussion.emplace();
  scene.response.discussion->id = "d123456";
}

TEST(RegisteredResult, IsOneWordWithoutAnAgent) {
  // clang-format off
  expectTexts({
      {"register",  Kind::registered, "register",  asItIs, "Registered."},
      {"heartbeat", Kind::registered, "heartbeat", asItIs, "Registered."},
      {"with messages", Kind::registered, "register", addMessageTo, "Registered."},
  });
  // clang-format on
}

constexpr std::string_view registration =
    R"("nextStep":"{{registeredNextStep}}","protocol":"{{boardProtocol}}","access":"{{access}}",)"
    R"("rules":["{{rules.1}}","{{rules.2}}","{{rules.3}}","{{rules.4}}","{{rules.5}}",)"
    R"("{{rules.6}}","{{rules.7}}","{{rules.8}}","{{rules.9}}"],)"
    R"("commandLine":"{{commandLineNote}}{{commandLineWaits}}")";

TEST(RegisteredResult, TellsARegisteringSeatTheRulesAndAHeartbeatOnlyItsSeat) {
  const std::string seat = R"({"id":"#a3f9","leaseSecondsRemaining":60)";
  const std::string delivery = R"(,"messages":[{"from":"M2X","text":"hi","ageSeconds":4}],)"
                               R"("messagesNote":"{{messagesNote}}")";
  const std::string registered = seat + "," + std::string(registration);
  const std::string withHandle = R"({"id":"#a3f9","leaseSecondsRemaining":60,"handle":"KQ3",)" +
                                 std::string(registration) +
                                 R"(,"yourHandle":"KQ3","handleNote":"{{handleNote}}")";
  const std::string kept =
      registered + R"(,"yourHandle":"OLD","handleNote":"{{handleNote}}")" + delivery;
  const std::string beating = seat + delivery;
  // clang-format off
  expectObjects({
      {"heartbeat", Kind::registered, "heartbeat", addAgentTo, seat},
      {"heartbeat with messages", Kind::registered, "heartbeat",
       [](Scene& s) { addAgentTo(s); addMessageTo(s); }, beating},
      {"heartbeat with an empty delivery and squad state", Kind::registered, "heartbeat",
       [](Scene& s) { addAgentTo(s); s.response.messages.emplace(); s.response.squad.emplace(); s.state.selfHandle = "KQ3"; }, seat},
      {"register", Kind::registered, "register", addAgentTo, registered},
      {"register with a handle", Kind::registered, "register",
       [](Scene& s) { addAgentTo(s); s.response.agent->handle = "KQ3"; }, withHandle},
      {"register without a handle when one is known", Kind::registered, "register",
       [](Scene& s) { addAgentTo(s); addMessageTo(s); s.state.selfHandle = "OLD"; }, kept},
  });
  // clang-format on
}

TEST(RegisteredResult, PutsTheSquadBehindTheHandleAndTheMessagesBehindTheSquad) {
  Scene scene;
  scene.response.kind = Kind::registered;
  scene.request.tool = "register";
  addAgentTo(scene);
  addMessageTo(scene);
  scene.response.agent->handle = "KQ3";
  scene.response.squad.emplace();
  scene.response.squad->mode = "on";
  scene.response.squad->helpers = {{"scout", "reads code", true, true}};
  EXPECT_TRUE(sameText(
      expandedJson(
          R"({"id":"#a3f9","leaseSecondsRemaining":60,"handle":"KQ3",)" +
          std::string(registration) +
          R"(,"yourHandle":"KQ3","handleNote":"{{handleNote}}","squad":{"mode":"on",)"
          R"("canAddress":false,"canSpawn":false,"helperLimit":null,"helpersRunning":null,)"
          R"("helpersLeft":null,"lead":null,"helpers":[{"name":"scout","explanation":"reads code",)"
          R"("runsWithoutApprovals":true,"quillpostTools":true}]},"squadNote":"{{squadOn}}",)"
          R"("helpersNote":"{{helpersHere(, or omit it; one line)}}",)"
          R"("messages":[{"from":"M2X","text":"hi","ageSeconds":4}],)"
          R"("messagesNote":"{{messagesNote}}"})"),
      scene.text()));
}

TEST(AgentsResult, AreAnArrayAndAParagraphForEachThingToSay) {
  // clang-format off
  expectTexts({
      {"no list", Kind::agents, "list_agents", asItIs, "[]"},
      {"an empty list", Kind::agents, "list_agents", [](Scene& s) { s.response.agents.emplace(); }, "[]"},
      {"two agents", Kind::agents, "list_agents",
       [](Scene& s) { s.response.agents.emplace(2); s.response.agents->back().fingerprint = "#b"; },
       R"([{"id":"","leaseSecondsRemaining":0},{"id":"#b","leaseSecondsRemaining":0}])"},
      {"squad off", Kind::agents, "list_agents", [](Scene& s) { s.response.squad.emplace(); }, "[]\n\n{{squadOff}}"},
      {"squad on", Kind::agents, "list_agents",
       [](Scene& s) { s.response.squad.emplace(); s.response.squad->mode = "on"; },
       "[]\n\n{{squadOn}}\n\n{{noHelpersHere}}"},
      {"empty lists", Kind::agents, "list_agents",
       [](Scene& s) { s.response.panes.emplace(); s.response.macs.emplace(); s.response.runningHelpers.emplace(); }, "[]"},
      {"everything", Kind::agents, "list_agents",
       [](Scene& s) {
         s.response.agents.emplace(1);
         s.response.squad.emplace();
         s.response.squad->mode = "on";
         s.response.panes = {{"KQ3"}};
         s.response.macs = {{"studio", "Studio", false, false, std::nullopt}, {"air", "Air", false, false, std::nullopt}};
         s.response.runningHelpers = {{"M2X", "scout", "working", "KQ3", std::nullopt, std::nullopt, true, std::nullopt}};
         s.state.selfHandle = "kq3";
       },
       R"([{"id":"","leaseSecondsRemaining":0}])"
       "\n\n{{squadOn}}\n\n{{alsoOpenHere(KQ3; onePane)}}"
       "\n\nYOUR OTHER DEVICES ON THIS THREAD. {{devicesUnreachable(Studio (@studio), Air (@air))}}"
       "\n\n{{noHelpersHere}}"
       "\n\n" R"(HELPERS RUNNING HERE: M2X ("scout"): working, asked for by you.{{stopOneOfYours}})"},
  });
  // clang-format on
}

TEST(TasksResult, AreATextWhenThereIsNone) {
  // clang-format off
  expectTexts({
      {"no list",       Kind::tasks, "list_tasks", asItIs, "This Thread's backlog is empty."},
      {"an empty list", Kind::tasks, "list_tasks", [](Scene& s) { s.response.tasks.emplace(); }, "This Thread's backlog is empty."},
  });
  // clang-format on
}

void addTasksTo(Scene& scene) {
  addTaskTo(scene);
  scene.response.tasks.emplace(3, *scene.response.task);
  scene.response.tasks->at(0).ownerFingerprint = "#a3f9";
  scene.response.tasks->at(1).routedToFingerprint = "kq3";
  scene.response.tasks->at(2).state = "done";
}

TEST(TasksResult, AreTheCallersBriefing) {
  // clang-format off
  expectObjects({
      {"a known caller", Kind::tasks, "list_tasks",
       [](Scene& s) { addTasksTo(s); s.state.selfFingerprint = "#a3f9"; s.state.selfHandle = "KQ3"; },
       R"({"yours":[{"id":"t1","title":"T","state":"open","owner":"#a3f9"}],"forYou":[{"id":"t1","title":"T","state":"open","assignedTo":"kq3"}],"readyToClaim":[],"waiting":[],"forYouNote":"{{forYouNote}}","doneCount":1,"hint":"{{finishedHidden(1)}}")"},
      {"an unknown caller, everything asked for", Kind::tasks, "list_tasks",
       [](Scene& s) { addTasksTo(s); s.request.includeAll = true; },
       R"({"yours":[],"forYou":[],"readyToClaim":[{"id":"t1","title":"T","state":"open","assignedTo":"kq3"}],"waiting":[{"id":"t1","title":"T","state":"open","owner":"#a3f9"}],"doneCount":1,"done":[{"id":"t1","title":"T","state":"done"}],"hint":"{{registerFirst}}")"},
  });
  // clang-format on
}

TEST(TaskResult, IsATextWhenThereIsNone) {
  // clang-format off
  expectTexts({
      {"read_task", Kind::task, "read_task", asItIs, "Task not found."},
      {"add_task",  Kind::task, "add_task",  asItIs, "Task not found."},
  });
  // clang-format on
}

TEST(TaskResult, ShowsItsBodyAndItsLogByThePage) {
  // clang-format off
  expectObjects({
      {"an empty task", Kind::task, "read_task", addTaskTo,
       R"~({"id":"t1","title":"T","state":"open","body":"(empty)","log":[])~"},
      {"another verb, with a message", Kind::task, "add_task",
       [](Scene& s) { addTaskTo(s); s.response.message = "Filed."; s.response.notice = ""; },
       R"~({"id":"t1","title":"T","state":"open","body":"(empty)","log":[])~"},
      {"a notice", Kind::task, "read_task",
       [](Scene& s) { addTaskTo(s); s.response.notice = "Cut."; },
       R"~({"id":"t1","title":"T","state":"open","body":"(empty)","log":[],"notice":"Cut.")~"},
      {"whole", Kind::task, "read_task",
       [](Scene& s) { addTaskTo(s); s.response.task->body = "a\nb\n"; s.response.task->log = {"one", "[[gist]] g"}; },
       R"({"id":"t1","title":"T","state":"open","lastProgress":"one","summary":"g","body":"1\ta\n2\tb","log":["one","[[gist]] g"])"},
      {"a page of each", Kind::task, "read_task",
       [](Scene& s) {
         addTaskTo(s);
         s.response.task->body = "a\nb\nc";
         s.response.task->log = {"one", "two"};
         s.request.body = {2, 1};
         s.request.log = {2, 5};
       },
       R"~({"id":"t1","title":"T","state":"open","lastProgress":"two","logCount":2,"body":"2\tb\n\n(Lines 2–2 of 3. Pass offset=3 to continue.)","log":["{{earlierLinesOmitted(1)}}","two"])~"},
  });
  // clang-format on
}

TEST(PlanResult, IsATextWhenThereIsNone) {
  expectTexts({{"no plan", Kind::plan, "read_plan", asItIs, "No plan."}});
}

TEST(PlanResult, EndsWithTheNextStep) {
  // clang-format off
  expectObjects({
      {"an empty plan", Kind::plan, "read_plan", [](Scene& s) { s.response.plan.emplace(); },
       R"({"thread":"","goalLocked":false,"dispatched":false,"shared":false,"otherLocalAgents":0,"otherDevices":0,"discussions":[],"nextStep":"{{firstAgentUnsynced}}")"},
      {"a goal by the page", Kind::plan, "set_goal",
       [](Scene& s) { s.response.plan.emplace(); s.response.plan->goal = "a\nb"; s.request.body = {1, 1}; s.response.message = "Set."; s.response.notice = "N"; },
       R"~({"thread":"","goalLocked":false,"dispatched":false,"shared":false,"otherLocalAgents":0,"otherDevices":0,"goal":"1\ta\n\n(Lines 1–1 of 2. Pass offset=2 to continue.)","discussions":[],"nextStep":"{{goalSet}}")~"},
  });
  // clang-format on
}

TEST(PlanResult, TakesWhatIsOwedFromThisAnswerAlone) {
  Scene scene;
  scene.response.kind = Kind::plan;
  scene.response.plan.emplace();
  scene.response.plan->goalComplete = true;
  scene.state.lastObligations = holding();
  EXPECT_NE(scene.text().find(expandedJson(R"("nextStep":"{{goalComplete}}"})")),
            std::string::npos);
  scene.response.obligations = holding();
  EXPECT_NE(scene.text().find(R"("nextStep":"The goal is complete but your obligations are NOT )"
                              R"(clear (1 task held) — settle)"),
            std::string::npos);
}

TEST(ChangesResult, AreToldLikeAWaitOfTheWholeBacklogThatDidNotTimeOut) {
  Scene scene;
  scene.response.kind = Kind::changes;
  scene.request.tool = "read_messages";
  scene.state.waitSeq = 4;
  EXPECT_TRUE(sameText(
      expandedJson(R"({"waitSeq":5,"watching":"entire backlog","wakeReasons":[],"resolved":false,)"
                   R"("nextStep":"{{boardMoved}}"})"),
      scene.text()));
  scene.response.changes.emplace();
  scene.response.changes->rev = 7;
  scene.response.obligations = holding();
  EXPECT_TRUE(
      sameText(expandedJson(R"({"waitSeq":5,"rev":7,"watching":"entire backlog","tasks":[],)"
                            R"("pendingGoalComplete":false,"changed":false,"goalComplete":false,)"
                            R"("wakeReasons":[],"resolved":false,"nextStep":"{{boardMoved}}",)"
                            R"("obligations":{"clear":false,"tasksHeld":["t1"]}})"),
               scene.text()));
}

TEST(DiscussionResult, IsATextWhenThereIsNone) {
  // clang-format off
  expectTexts({
      {"open",         Kind::discussion, "open_discussion",  asItIs, "Discussion updated."},
      {"with a message", Kind::discussion, "reply_discussion", [](Scene& s) { s.response.message = "M"; }, "Discussion updated."},
  });
  // clang-format on
}

TEST(DiscussionResult, EndsWithTheHintAndTheAppsWords) {
  const std::string begin =
      R"({"id":"d123456","state":"","question":"","addressedTo":[],"volleys":[],"owingParties":[],)"
      R"("yourTurn":false,"volleysSinceHuman":0,"roundBudget":"0/8 volleys since last human input )"
      R"(— escalates to the human at the cap")";
  const std::string opened =
      begin + R"(,"nextStep":"{{discussionOpened(d123456, boardDiscussion)}}")";
  const std::string onTask =
      begin + R"(,"nextStep":"{{discussionOpened(d123456, taskDiscussion)}}")";
  const std::string replied =
      begin + R"(,"nextStep":"{{volleyPosted(boardDiscussion)}}","note":"M","notice":"N")";
  const std::string resolved = begin + R"(,"nextStep":"{{taskDiscussion.resolved}}","notice":"N")";
  // clang-format off
  expectObjects({
      {"opened",              Kind::discussion, "open_discussion", addDiscussionTo, opened},
      {"opened on a task",    Kind::discussion, "open_discussion", [](Scene& s) { addDiscussionTo(s); s.response.discussion->taskID = "t1"; }, onTask},
      {"replied",             Kind::discussion, "reply_discussion", [](Scene& s) { addDiscussionTo(s); s.response.message = "M"; s.response.notice = "N"; }, replied},
      {"resolved on a task",  Kind::discussion, "resolve_discussion", [](Scene& s) { addDiscussionTo(s); s.response.discussion->taskID = "t1"; s.response.message = ""; s.response.notice = "N"; }, resolved},
      {"a verb without hint", Kind::discussion, "read_task", [](Scene& s) { addDiscussionTo(s); s.response.notice = ""; }, begin},
  });
  // clang-format on
}

TEST(WakeResult, SendsTheAgentBackToListening) {
  expectTexts({{"a wake", Kind::wake, "heartbeat", asItIs,
                "Nothing to act on. Call wait_for_changes to keep listening."}});
}

TEST(WrittenResult, IsTheAppsWordsAndThenOurs) {
  // clang-format off
  expectTexts({
      {"nothing said", Kind::written, "update_task", asItIs, "Done."},
      {"a message", Kind::written, "update_task", [](Scene& s) { s.response.message = "Saved."; }, "Saved."},
      {"an empty message", Kind::written, "update_task", [](Scene& s) { s.response.message = ""; }, ""},
      {"an empty delivery and an empty notice", Kind::written, "update_task",
       [](Scene& s) { s.response.messages.emplace(); s.response.notice = ""; }, "Done."},
      {"messages", Kind::written, "read_messages", addMessageTo,
       "Done.\n\n" R"([{"from":"M2X","text":"hi","ageSeconds":4}])" "\n\n{{messagesNote}}"},
      {"a notice", Kind::written, "update_task", [](Scene& s) { s.response.notice = "Cut."; }, "Done.\n\nCut."},
      {"a hint", Kind::written, "watch_task", asItIs, "Done.\n\n{{hint of watch_task}}"},
      {"a verb of the discussions", Kind::written, "open_discussion", asItIs, "Done."},
      {"everything", Kind::written, "add_task",
       [](Scene& s) { addMessageTo(s); s.response.message = "Filed t2."; s.response.notice = "Cut."; },
       "Filed t2.\n\n" R"([{"from":"M2X","text":"hi","ageSeconds":4}])"
       "\n\n{{messagesNote}}\n\nCut.\n\n{{hint of add_task}}"},
  });
  // clang-format on
}

TEST(EmptyResult, SaysWhatIsNotThere) {
  // clang-format off
  expectTexts({
      {"agents", Kind::empty, "list_agents", asItIs, "No agents are registered in this Thread right now."},
      {"tasks",  Kind::empty, "list_tasks",  asItIs, "This Thread's backlog is empty."},
      {"a plan", Kind::empty, "read_plan",   asItIs, "This Thread has no goal yet."},
      {"any other tool", Kind::empty, "reject_task", asItIs, "{{nothingToShow(reject_task)}}"},
      {"a message", Kind::empty, "list_tasks", [](Scene& s) { s.response.message = "All quiet."; }, "All quiet."},
      {"an empty message", Kind::empty, "list_tasks", [](Scene& s) { s.response.message = ""; }, "This Thread's backlog is empty."},
  });
  // clang-format on
}

TEST(ErrorResult, SaysWhatTheAppSaid) {
  // clang-format off
  expectTexts({
      {"no message",       Kind::error, "claim_task", asItIs, "Quillpost teamwork error."},
      {"a message",        Kind::error, "claim_task", [](Scene& s) { s.response.message = "Taken."; }, "Taken."},
      {"an empty message", Kind::error, "claim_task", [](Scene& s) { s.response.message = ""; }, ""},
  });
  // clang-format on
}

TEST(Results, ShapeTheirAdviceByTheAudienceLastSeen) {
  Scene scene;
  scene.response.kind = Kind::registered;
  scene.request.tool = "heartbeat";
  addAgentTo(scene);
  scene.response.obligations.emplace();
  scene.response.obligations->clear = false;
  scene.response.obligations->idleHeld = {{"t1", 0, true}};
  const std::string begin =
      R"({"id":"#a3f9","leaseSecondsRemaining":60,"obligations":{"clear":false,)"
      R"("idleHeld":[{"taskID":"t1","state":"{{heldNothingWritten}}","do":"{{)";
  EXPECT_TRUE(sameText(expandedJson(begin + R"(writeOrRelease}}"}]}})"), scene.text()));
  scene.state.lastAudience.emplace();
  EXPECT_TRUE(sameText(expandedJson(begin + R"(writeOrReleaseAlone}}"}]}})"), scene.text()));
  scene.response.audience.emplace();
  scene.response.audience->otherPeople = 1;
  EXPECT_TRUE(sameText(expandedJson(begin + R"(writeOrReleaseForOthers}}"}]}})"), scene.text()));
}

}  // namespace
}  // namespace quillpost
