#include "calls/tool_call.h"

#include "base/text.h"
#include "calls/plain_reply.h"
#include "harness/fake_bridge.h"
#include "harness/fake_environment.h"
#include "harness/golden.h"
#include "harness/json_object.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using namespace std::chrono_literals;
using testing::FakeAnswer;
using testing::FakeBridge;
using testing::FakeClock;
using testing::memberOf;
using testing::objectFrom;
using testing::responseFrom;
using testing::sameText;

constexpr std::string_view outsideThread =
    "This terminal isn't in a Thread, so there is no board to read. Open this terminal inside a "
    "Quillpost Thread and try again.";
constexpr std::string_view unreachable =
    "Couldn't reach the Quillpost app just now — a transient local connection hiccup, NOT a sign "
    "your Thread ended or that you left it. Your Thread is still active. Wait a moment and retry "
    "this call.";

struct ToolCall : ::testing::Test {
  ToolCall() {
    bridge.otherwise = [](const TeamworkRequest&) {
      return FakeAnswer{.response = responseFrom(R"({"kind":"written","message":"Taken."})")};
    };
  }

  PlainReply call(std::string_view tool, std::string_view arguments = "{}") {
    const json::TreeObject object = objectFrom(arguments);
    return PlainReply(callBoard(tool, Arguments(object), seat));
  }

  /// One member of the only request that a call sends, as JSON.
  std::string sent(std::string_view tool, std::string_view arguments, std::string_view key) {
    bridge.requests.clear();
    call(tool, arguments);
    EXPECT_EQ(bridge.requests.size(), 1u) << tool << " of " << arguments;
    return bridge.requests.empty() ? "nothing" : memberOf(objectFrom(bridge.requests.front()), key);
  }

  FakeClock clock;
  FakeBridge bridge{clock};
  testing::FakeEnvironment environment;
  Seat seat{.doors = {.clock = clock, .environment = environment, .bridge = bridge},
            .sessionID = "ses",
            .state = {}};
};

// --- What is sent -------------------------------------------------------------------------------

TEST_F(ToolCall, SendsOneRequestWithItsEnvelopeAndItsArguments) {
  call("heartbeat");
  call("add_task", R"({"title":"T","waitsOn":[],"priority":"7"})");
  call("verify_task", R"({"taskID":"t1","approve":false,"note":"fails on empty input"})");
  EXPECT_EQ(bridge.requests,
            (std::vector<std::string>{
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"heartbeat"})",
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"add_task",)"
                R"("priority":7,"title":"T","waitsOn":[]})",
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"verify_task",)"
                R"("approve":false,"taskID":"t1"})",
            }));
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST_F(ToolCall, ComposesTheGoalForSetGoalOnly) {
  EXPECT_EQ(
      sent("set_goal",
           R"({"description":"Ship the importer","purpose":"users asked","nonGoals":""})", "name"),
      R"("Ship the importer — Purpose: users asked")");
  EXPECT_EQ(sent("set_goal", R"({"name":"X"})", "name"), R"("X")");
  EXPECT_EQ(sent("set_goal", R"({"purpose":"p"})", "name"), "absent");
  EXPECT_EQ(sent("set_charter", R"({"name":"X","purpose":"p"})", "name"), R"("X")");
}

TEST_F(ToolCall, ComposesTheQuestionForAnUpdateThatBlocksOnly) {
  EXPECT_EQ(sent("update_task", R"({"blocked":true,"blockerQuestion":"Q?"})", "blockerQuestion"),
            R"("Q?")");
  EXPECT_EQ(sent("update_task", R"({"blocked":true,"progress":"p"})", "blockerQuestion"), R"("p")");
  EXPECT_EQ(sent("update_task", R"({"blocked":true})", "blockerQuestion"), "absent");
  EXPECT_EQ(
      sent("update_task", R"({"blocked":true,"blockerSecretName":"API_KEY"})", "blockerQuestion"),
      R"x("[[ask:{\"k\":\"secret\",\"s\":\"API_KEY\"}]] ")x");
  for (const std::string_view arguments :
       {R"({"blocked":false,"blockerQuestion":"Q?"})", R"({"blockerQuestion":"Q?"})",
        R"({"blocked":"true","blockerQuestion":"Q?"})", R"({"blocked":1,"progress":"p"})"})
    EXPECT_EQ(sent("update_task", arguments, "blockerQuestion"), "absent") << arguments;
  EXPECT_EQ(sent("add_task", R"({"blocked":true,"blockerQuestion":"Q?"})", "blockerQuestion"),
            "absent");
}

TEST_F(ToolCall, CutsAQuestionThatComesFromTheProgressLine) {
  const std::string long300(300, 'p');
  const std::string arguments = text::cat(R"({"blocked":true,"progress":")", long300, "\"}");
  EXPECT_EQ(sent("update_task", arguments, "blockerQuestion"),
            text::cat("\"", std::string(140, 'p'), "\""));
  EXPECT_EQ(sent("update_task", arguments, "note"), text::cat("\"", long300, "\""))
      << "the line itself is not cut";
}

TEST_F(ToolCall, RefusesAQuestionThatIsTooLongAndSendsNothing) {
  const std::string fits(140, 'x');
  EXPECT_EQ(sent("update_task", text::cat(R"({"blocked":true,"blockerQuestion":")", fits, "\"}"),
                 "blockerQuestion"),
            text::cat("\"", fits, "\""));

  bridge.requests.clear();
  const PlainReply reply =
      call("update_task", text::cat(R"({"blocked":true,"blockerQuestion":")", fits, "x\"}"));
  EXPECT_TRUE(sameText(
      "blockerQuestion is 141 characters; the limit is 140. It renders as ONE LINE on a chip and "
      "on a phone, so a longer one reaches the human truncated mid-sentence and they cannot tell "
      "what you are asking. Rewrite it as a single sentence naming the ACTION you need (\"May I "
      "…?\", \"Which …?\"), and move the mechanism, the reasoning and the detail into "
      "blockerConsequence or the task body. Nothing was changed; call update_task again.",
      reply.text));
  EXPECT_EQ(reply.threadTag, "");
  EXPECT_TRUE(bridge.requests.empty());
}

TEST_F(ToolCall, RefusesTheQuestionBeforeItMissesTheToken) {
  bridge.token = "";
  const std::string tooLong(141, 'x');
  const std::string arguments = text::cat(R"({"blocked":true,"blockerQuestion":")", tooLong, "\"}");
  EXPECT_TRUE(call("update_task", arguments).text.starts_with("blockerQuestion is 141 characters"));
  EXPECT_EQ(call("update_task", R"({"blocked":true})").text, outsideThread);
}

TEST_F(ToolCall, AsksNothingWithoutAToken) {
  bridge.token = "";
  const PlainReply reply = call("list_tasks");
  EXPECT_EQ(reply.text, outsideThread);
  EXPECT_EQ(reply.threadTag, "");
  EXPECT_TRUE(bridge.requests.empty());
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST_F(ToolCall, NeedsNoSession) {
  seat.sessionID = "";
  EXPECT_EQ(sent("list_tasks", "{}", "sessionID"), R"("")");
}

TEST_F(ToolCall, ReadsTheTokenOnceForEachCall) {
  bridge.tokens = {"a", "b"};
  bridge.fails("list_tasks");
  EXPECT_EQ(call("list_tasks").text.substr(0, 6), "Taken.");
  EXPECT_EQ(call("list_tasks").text.substr(0, 6), "Taken.");
  std::string tokens;
  for (const std::string& request : bridge.requests)
    tokens += json::findText(objectFrom(request), "token").value_or("?");
  EXPECT_EQ(tokens, "aab") << "a second try is the same request";
  EXPECT_EQ(bridge.tokenReads, 2);
}

// --- Whether it is answered ---------------------------------------------------------------------

TEST_F(ToolCall, TriesThreeTimes) {
  for (int failures = 0; failures <= 2; ++failures) {
    clock.sleeps.clear();
    bridge.requests.clear();
    for (int i = 0; i < failures; ++i) bridge.fails("claim_task");
    EXPECT_TRUE(call("claim_task").text.starts_with("Taken.")) << failures;
    EXPECT_EQ(clock.sleeps, std::vector<Duration>(static_cast<std::size_t>(failures), 150ms));
    EXPECT_EQ(bridge.requests.size(), static_cast<std::size_t>(failures) + 1);
  }
}

TEST_F(ToolCall, GivesUpAfterTheThirdTry) {
  for (int i = 0; i < 3; ++i) bridge.fails("claim_task", 1s);
  const PlainReply reply = call("claim_task");
  EXPECT_EQ(reply.text, unreachable);
  EXPECT_EQ(reply.threadTag, "");
  EXPECT_TRUE(
      sameText("  0.0  claim_task\n"
               "1.150  claim_task\n"
               "  2.3  claim_task\n",
               bridge.timeline));
  EXPECT_EQ(clock.sleeps, (std::vector<Duration>{150ms, 150ms})) << "nothing follows the last try";
}

TEST_F(ToolCall, DoesNotRepeatWhatTheAppRefused) {
  bridge.answers("claim_task", responseFrom(R"({"kind":"error","message":"Held by #a3f9."})"));
  EXPECT_EQ(call("claim_task").text, "Held by #a3f9.");
  bridge.answers("claim_task", responseFrom(R"({"kind":"error"})"));
  EXPECT_EQ(call("claim_task").text, "Quillpost teamwork error.");
  EXPECT_EQ(bridge.requests.size(), 2u);
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST_F(ToolCall, PutsAnEmptyAnswerIntoWords) {
  bridge.answers("reject_task", responseFrom(R"({"kind":"empty"})"));
  EXPECT_EQ(call("reject_task").text,
            "Nothing to show for reject_task — the request was answered and there was nothing to "
            "return. This says nothing about your Thread, which is still active; check the "
            "arguments you passed.");
  bridge.answers("list_tasks", responseFrom(R"({"kind":"empty"})"));
  EXPECT_EQ(call("list_tasks").text, "This Thread's backlog is empty.");
}

TEST_F(ToolCall, CarriesTheThreadThatAnswered) {
  bridge.answers("claim_task", responseFrom(R"({"kind":"error","threadTag":"T-abc123"})"));
  EXPECT_EQ(call("claim_task").threadTag, "T-abc123");
  EXPECT_EQ(call("claim_task").threadTag, "") << "an answer without one is not given the last one";
}

// --- How it ended, for a caller that goes by that -----------------------------------------------

TEST_F(ToolCall, SaysHowItEnded) {
  EXPECT_EQ(call("claim_task").end, CallEnd::answered);
  bridge.answers("claim_task", responseFrom(R"({"kind":"empty"})"));
  EXPECT_EQ(call("claim_task").end, CallEnd::answered);
  bridge.answers("claim_task", responseFrom(R"({"kind":"error","message":"Held."})"));
  EXPECT_EQ(call("claim_task").end, CallEnd::refused);
  const std::string tooLong(141, 'x');
  EXPECT_EQ(
      call("update_task", text::cat(R"({"blocked":true,"blockerQuestion":")", tooLong, "\"}")).end,
      CallEnd::refusedUnsent);
  for (int i = 0; i < 3; ++i) bridge.fails("claim_task");
  EXPECT_EQ(call("claim_task").end, CallEnd::unreachable);
  bridge.token = "";
  EXPECT_EQ(call("claim_task").end, CallEnd::outsideThread);
}

TEST_F(ToolCall, NamesItsThreadBehindABlankLine) {
  EXPECT_EQ(threadEnding({.threadTag = "T-abc123"}), "\n\n(thread T-abc123)");
  EXPECT_EQ(threadEnding({}), "");
}

// --- What is remembered -------------------------------------------------------------------------

TEST_F(ToolCall, RemembersWhatTheAnswerSays) {
  bridge.answers("list_tasks",
                 responseFrom(R"({"kind":"empty","rev":42,"audience":{"otherPeople":3},)"
                              R"("obligations":{"clear":false,"tasksHeld":["t1"]}})"));
  call("list_tasks");
  EXPECT_EQ(seat.state.lastSeenRev, 42);
  EXPECT_TRUE(seat.state.hasCursor);
  ASSERT_TRUE(seat.state.lastObligations && seat.state.lastAudience);
  EXPECT_EQ(seat.state.lastObligations->tasksHeld, std::vector<std::string>{"t1"});
  EXPECT_EQ(seat.state.lastAudience->otherPeople, 3);

  call("claim_task");
  EXPECT_EQ(seat.state.lastSeenRev, 42) << "an answer that says nothing leaves it";
  EXPECT_TRUE(seat.state.lastObligations && seat.state.lastAudience);

  for (int i = 0; i < 3; ++i) bridge.fails("claim_task");
  call("claim_task");
  EXPECT_EQ(seat.state.lastSeenRev, 42) << "and so does no answer";
}

TEST_F(ToolCall, RemembersWhoTheCallerIsBeforeItAnswers) {
  constexpr std::string_view agent =
      R"({"kind":"registered","agent":{"id":"a1","fingerprint":"#a3f9","name":"n","status":"s",)"
      R"("leaseSecondsRemaining":60,"isSelf":true,"canVerify":false,"activeClaims":0,)"
      R"("handle":"KQ3"}})";
  bridge.answers("register", responseFrom(agent));
  const json::TreeObject result = objectFrom(call("register").text);
  EXPECT_EQ(seat.state.selfFingerprint, "#a3f9");
  EXPECT_EQ(seat.state.selfHandle, "KQ3");
  EXPECT_EQ(memberOf(result, "yourHandle"), R"("KQ3")");
}

TEST_F(ToolCall, CountsAnAnswerThatReadsLikeAWaitsEnd) {
  bridge.answers(
      "list_tasks",
      responseFrom(R"({"kind":"changes","changes":{"rev":8,"changed":true,"goal":"",)"
                   R"("goalComplete":false,"pendingGoalComplete":false,"changeKinds":[],)"
                   R"("tasks":[]}})"));
  const json::TreeObject result = objectFrom(call("list_tasks").text);
  EXPECT_EQ(memberOf(result, "waitSeq"), "1");
  EXPECT_EQ(memberOf(result, "watching"), R"("entire backlog")");
  EXPECT_EQ(seat.state.waitSeq, 1);
}

// --- What shapes the result ---------------------------------------------------------------------

/// A task with a body of three lines and a log of three.
constexpr std::string_view aTask =
    R"({"kind":"task","task":{"id":"t1","title":"T","body":"a\nb\nc","state":"claimed",)"
    R"("log":["l1","l2","l3"],"resources":[]}})";

TEST_F(ToolCall, PagesTheBodyAndTheLogAsTheCallAsks) {
  struct Row {
    std::string_view arguments, body, log;
  };
  for (const Row& row : {
           Row{"{}", R"("1\ta\n2\tb\n3\tc")", R"(["l1","l2","l3"])"},
           Row{R"({"offset":2})", R"x("2\tb\n3\tc\n\n(Lines 2–3 of 3.)")x", R"(["l1","l2","l3"])"},
           Row{R"({"limit":"1"})", R"x("1\ta\n\n(Lines 1–1 of 3. Pass offset=2 to continue.)")x",
               R"(["l1","l2","l3"])"},
           Row{R"({"logOffset":3})", R"("1\ta\n2\tb\n3\tc")",
               R"x(["(2 earlier lines omitted — pass logOffset=1 to read the log from the top.)",)x"
               R"("l3"])"},
           Row{R"({"logOffset":1,"logLimit":2})", R"("1\ta\n2\tb\n3\tc")", R"(["l1","l2"])"},
           Row{R"({"offset":"2x","logLimit":null})", R"("1\ta\n2\tb\n3\tc")",
               R"(["l1","l2","l3"])"},
       }) {
    bridge.answers("read_task", responseFrom(aTask));
    const json::TreeObject result = objectFrom(call("read_task", row.arguments).text);
    EXPECT_EQ(memberOf(result, "body"), row.body) << row.arguments;
    EXPECT_EQ(memberOf(result, "log"), row.log) << row.arguments;
  }
}

TEST_F(ToolCall, ListsFinishedTasksWhenTheCallAsksForAll) {
  struct Row {
    std::string_view arguments;
    bool listsDone;
  };
  for (const Row& row : {
           Row{"{}", false},
           Row{R"({"include":"active"})", false},
           Row{R"({"include":"all"})", true},
           Row{R"({"include":"ALL"})", true},
           Row{R"({"include":"All"})", true},
           Row{R"({"include":"all "})", false},
           Row{R"({"include":true})", false},
           Row{R"({"include":["all"]})", false},
       }) {
    bridge.answers("list_tasks",
                   responseFrom(R"({"kind":"tasks","tasks":[{"id":"t1","title":"T","body":"",)"
                                R"("state":"done","log":[],"resources":[]}]})"));
    const json::TreeObject result = objectFrom(call("list_tasks", row.arguments).text);
    EXPECT_EQ(memberOf(result, "doneCount"), "1") << row.arguments;
    EXPECT_EQ(result.contains("done"), row.listsDone) << row.arguments;
  }
}

}  // namespace
}  // namespace quillpost
