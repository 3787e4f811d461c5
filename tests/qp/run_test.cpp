// Whole lines against a scripted app: what is sent, what is printed where, and how it ends.

#include "qp/run.h"

#include "base/text.h"
#include "qp/command.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using testing::responseFrom;

constexpr std::string_view outsideThread =
    "This terminal isn't in a Thread, so there is no board to read. Open this terminal inside a "
    "Quillpost Thread and try again.";

struct LineRun : CommandTest {};

TEST_F(LineRun, PrintsTheVeryTextOfTheToolAndItsThread) {
  otherwise = R"({"kind":"written","message":"Taken.","threadTag":"T-abc123"})";
  EXPECT_EQ(run({"unwatch", "t1"}), 0);
  EXPECT_TRUE(out.text.starts_with("Taken.\n\n")) << out.text;
  EXPECT_TRUE(out.text.ends_with("\n\n(thread T-abc123)\n")) << out.text;
  EXPECT_EQ(err.text, "");
  EXPECT_EQ(sent("taskID"), R"("t1")");
}

TEST_F(LineRun, HeadsEachOfSeveralVerbs) {
  bridge.answers("claim_task", responseFrom(R"({"kind":"error","message":"x"})"));
  otherwise = R"({"kind":"empty","message":"None."})";
  EXPECT_EQ(run({"show", "t000012", "then", "messages"}), 0);
  EXPECT_EQ(out.text, "[1/2] read_task t000012\nNone.\n\n[2/2] read_messages\nNone.\n");
  EXPECT_EQ(err.text, "");
}

TEST_F(LineRun, SendsNothingWhenAnyVerbIsWrong) {
  EXPECT_EQ(run({"claim", "t1", "then", "done", "t1"}), 2);
  EXPECT_TRUE(bridge.requests.empty());
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "qp: done wants <summary>\nusage: qp done <taskID> <summary> [--json]\n");
}

TEST_F(LineRun, SendsNothingWhenAQuestionIsTooLong) {
  const std::string question(141, 'x');
  EXPECT_EQ(
      run({"claim", "t1", "then", "update", "t1", "--blocked", "--blocker-question", question}), 1);
  EXPECT_TRUE(bridge.requests.empty());
  EXPECT_TRUE(out.text.starts_with("blockerQuestion is 141 characters")) << out.text;
  EXPECT_EQ(err.text, "qp: nothing of the line was sent\n");
}

TEST_F(LineRun, EndsALineWithTheFirstRefusalAndSaysWhatWasNotTried) {
  bridge.answers("claim_task", responseFrom(R"({"kind":"error","message":"Held by #a3f9."})"));
  EXPECT_EQ(run({"plan", "then", "claim", "t1", "then", "show", "t1", "then", "tasks"}), 1);
  EXPECT_EQ(bridge.requests.size(), 2u);
  EXPECT_TRUE(out.text.ends_with("[2/4] claim_task t1\nHeld by #a3f9.\n")) << out.text;
  EXPECT_EQ(err.text, "qp: [2/4] claim_task t1 was refused; not tried: read_task, list_tasks\n");
}

/// Each ending with its status: scripts rely on the numbers.
TEST(Status, OfEachEndingIsANumberThatStays) {
  struct Row {
    CallEnd end;
    int status;
  };
  constexpr Row rows[] = {
      {CallEnd::answered, 0},      {CallEnd::moved, 0},           {CallEnd::refused, 1},
      {CallEnd::refusedUnsent, 1}, {CallEnd::nothingToWaitOn, 1}, {CallEnd::timedOut, 3},
      {CallEnd::outsideThread, 4}, {CallEnd::unreachable, 4},     {CallEnd::callerGone, 129}};
  static_assert(std::size(rows) == endRows.size());
  for (const Row& row : rows) EXPECT_EQ(static_cast<int>(statusOf(row.end)), row.status);
  EXPECT_EQ(static_cast<int>(Status::misuse), 2);
}

TEST_F(LineRun, SaysThatThereIsNoBoard) {
  bridge.token = "";
  EXPECT_EQ(run({"tasks"}), 4);
  EXPECT_EQ(out.text, text::cat(outsideThread, "\n"));
  EXPECT_EQ(run({"tasks", "--json"}), 4);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, text::cat(R"({"error":")", outsideThread, R"(","status":4})", "\n"));
  bridge.token = "tok";
  bridge.otherwise = [](const TeamworkRequest&) { return testing::FakeAnswer(); };
  EXPECT_EQ(run({"tasks", "then", "plan"}), 4);
  EXPECT_EQ(err.text, "qp: [1/2] list_tasks did not reach the board; not tried: read_plan\n");
  sessionID = "";
  EXPECT_EQ(run({"wait"}), 4);
}

TEST_F(LineRun, PrintsNothingButJsonForAProgram) {
  otherwise = R"({"kind":"agents","agents":[],"threadTag":"T-1"})";
  EXPECT_EQ(run({"agents", "--json"}), 0);
  const std::size_t end = out.text.find('\n');
  EXPECT_EQ(end, out.text.size() - 1) << out.text;
  EXPECT_TRUE(json::parse(out.text)) << out.text;
  EXPECT_TRUE(err.text.ends_with("(thread T-1)\n")) << err.text;
  otherwise = R"({"kind":"written","message":"Left.","threadTag":"T-1"})";
  EXPECT_EQ(run({"--json", "leave", "then", "leave"}), 0);
  EXPECT_EQ(out.text, "{\"text\":\"Left.\"}\n{\"text\":\"Left.\"}\n");
  EXPECT_EQ(err.text, "(thread T-1)\n(thread T-1)\n");
}

TEST_F(LineRun, TellsAProgramWhyAVerbFailed) {
  bridge.answers("claim_task", responseFrom(R"({"kind":"error","message":"Held \"now\"."})"));
  EXPECT_EQ(run({"claim", "t1", "--json"}), 1);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, R"({"error":"Held \"now\".","status":1})"
                      "\n");
  EXPECT_EQ(run({"claim", "--json"}), 2);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, R"({"error":"claim wants <taskID>","status":2})"
                      "\n");
}

TEST_F(LineRun, RemembersFromOneCommandToTheNext) {
  bridge.answers("register", responseFrom(R"({"kind":"registered","rev":41,"agent":)"
                                          R"({"id":"a","name":"","status":"",)"
                                          R"("canVerify":false,"activeClaims":0,)"
                                          R"("fingerprint":"#a3f9","handle":"KQ3",)"
                                          R"("leaseSecondsRemaining":9,"isSelf":true}})"));
  run({"register"});
  bridge.answers(
      "poll_changes",
      responseFrom(R"({"kind":"changes","changes":{"rev":42,"changed":true,"goal":"",)"
                   R"("goalComplete":false,"pendingGoalComplete":false,"changeKinds":[],)"
                   R"("tasks":[]}})"));
  EXPECT_EQ(run({"wait"}), 0);
  EXPECT_EQ(sent("sinceRev"), "41");
  EXPECT_NE(out.text.find(R"("waitSeq":1,"rev":42)"), std::string::npos) << out.text;
  bridge.answers(
      "poll_changes",
      responseFrom(R"({"kind":"changes","changes":{"rev":43,"changed":true,"goal":"",)"
                   R"("goalComplete":false,"pendingGoalComplete":false,"changeKinds":[],)"
                   R"("tasks":[]}})"));
  EXPECT_EQ(run({"wait"}), 0);
  EXPECT_EQ(sent("sinceRev"), "42");
  EXPECT_NE(out.text.find(R"("waitSeq":2)"), std::string::npos) << out.text;
}

TEST_F(LineRun, EndsQuietlyWhenNobodyReads) {
  readsWrites = 0;
  lifetime.unread = true;
  EXPECT_EQ(run({"unwatch", "t1"}), 129);
  EXPECT_EQ(err.text, "");
  EXPECT_EQ(run({"--help"}), 129);
}

TEST_F(LineRun, SaysWhenItCannotWriteAndWhatWasNotTried) {
  readsWrites = 0;
  EXPECT_EQ(run({"unwatch", "t1", "then", "unwatch", "t2", "then", "plan"}), 1);
  EXPECT_EQ(bridge.requests.size(), 1u);
  EXPECT_EQ(err.text,
            "qp: not tried: unwatch_task, read_plan\nqp: standard output cannot be written\n");
  for (const std::string command : {"--help", "doctor", "brief"}) {
    EXPECT_EQ(run({command}), 1) << command;
    EXPECT_EQ(err.text, "qp: standard output cannot be written\n") << command;
  }
}

TEST_F(LineRun, HasNoBoardWhereTheTerminalHasNoSeat) {
  sessionID = "";
  otherwise = R"({"kind":"error","message":"This board knows no such seat."})";
  EXPECT_EQ(run({"tasks"}), 4);
  EXPECT_EQ(out.text, "This board knows no such seat.\n");
  EXPECT_EQ(run({"tasks", "--json"}), 4);
  EXPECT_TRUE(err.text.ends_with("\"status\":4}\n")) << err.text;
}

TEST_F(LineRun, LetsNobodySteerAPersonsTerminal) {
  otherwise = "{\"kind\":\"error\",\"message\":\"a\\u001b[2Jb\"}";
  isTerminal = true;
  EXPECT_EQ(run({"unwatch", "t1"}), 1);
  EXPECT_EQ(out.text, "a\u241b[2Jb\n");
  isTerminal = false;
  EXPECT_EQ(run({"unwatch", "t1"}), 1);
  EXPECT_EQ(out.text, "a\x1b[2Jb\n");
}

// --- Waiting
// --------------------------------------------------------------------------------------

struct WaitRun : CommandTest {
  static std::string feed(int64_t rev, std::string_view more) {
    return text::cat(
        R"({"kind":"changes","changes":{"rev":)", rev,
        R"(,"changed":false,"goal":"","goalComplete":false,"pendingGoalComplete":false,)"
        R"("changeKinds":[],"tasks":[])",
        more, "}}");
  }
  /// A board that holds every poll for as long as it is asked to and has no news.
  void holdForever() {
    bridge.otherwise = [](const TeamworkRequest& request) {
      if (request.method != "poll_changes")
        return testing::FakeAnswer{.response = responseFrom(R"({"kind":"written"})")};
      return testing::FakeAnswer{.response = responseFrom(feed(7, "")),
                                 .took = std::chrono::milliseconds(request.holdMs.value_or(0))};
    };
  }
};

TEST_F(WaitRun, HasNoDeadline) {
  holdForever();
  bridge.answers("poll_changes", responseFrom(feed(7, "")));
  lifetime.leavesAfter = 4'400;
  EXPECT_EQ(run({"wait"}), 129);
  EXPECT_GE(clock.elapsed(), std::chrono::hours(24));
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "qp: whoever started this wait has gone, and it ends with them\n");
  EXPECT_EQ(lifetime.begun, 1);
}

TEST_F(WaitRun, SendsNothingMoreOnceWhoeverStartedItHasGone) {
  holdForever();
  lifetime.leavesAfter = 0;
  EXPECT_EQ(run({"wait"}), 129);
  EXPECT_TRUE(bridge.requests.empty());
}

TEST_F(WaitRun, EndsWithoutAWordWhenItsReaderHasGone) {
  holdForever();
  lifetime.leavesAfter = 0;
  lifetime.unread = true;
  EXPECT_EQ(run({"wait"}), 129);
  EXPECT_EQ(err.text, "");
}

TEST_F(WaitRun, SendsOneHeartbeatEveryTwentySecondsAndOnePollBetween) {
  holdForever();
  bridge.answers("poll_changes", responseFrom(feed(7, "")));
  lifetime.leavesAfter = 4;
  run({"wait", "--park-reason", "the schema", "--stand-down"});
  EXPECT_EQ(bridge.timeline,
            "  0.0  heartbeat\n"
            "  0.0  poll_changes sinceRev=0\n"
            "  2.0  poll_changes sinceRev=7 holdMs=18000\n"
            " 20.0  heartbeat\n"
            " 20.0  poll_changes sinceRev=7 holdMs=20000\n"
            " 40.0  heartbeat\n"
            " 40.0  poll_changes sinceRev=7 holdMs=20000\n");
}

TEST_F(WaitRun, EndsWithItsOwnStatusWhenItsTimeIsOver) {
  holdForever();
  EXPECT_EQ(run({"wait", "--timeout", "100"}), 3);
  EXPECT_EQ(clock.elapsed(), std::chrono::seconds(100));
  EXPECT_NE(out.text.find("nextStep"), std::string::npos);
  EXPECT_EQ(run({"wait", "--timeout", "1", "then", "tasks"}), 3) << "the line goes on";
}

TEST_F(WaitRun, GoesOnWhileTheAppIsAway) {
  bridge.otherwise = [this](const TeamworkRequest& request) {
    const bool isBack = clock.elapsed() > std::chrono::minutes(10);
    if (!isBack || request.method != "poll_changes") return testing::FakeAnswer();
    return testing::FakeAnswer{
        .response = responseFrom(feed(9, R"(,"wakeReasons":[{"kind":"k","summary":"s"}])"))};
  };
  EXPECT_EQ(run({"wait"}), 0);
  EXPECT_NE(out.text.find(R"("rev":9)"), std::string::npos);
  EXPECT_EQ(err.text, "");
  EXPECT_LE(bridge.requests.size(), 600u / 2 + 600u / 20 + 5u) << "a try every two seconds";
}

TEST_F(WaitRun, EndsWhenTheBoardRefuses) {
  bridge.answers("poll_changes", responseFrom(R"({"kind":"error","message":"No such seat."})"));
  EXPECT_EQ(run({"wait"}), 1);
  EXPECT_EQ(out.text, "No such seat.\n");
}

TEST_F(WaitRun, GoesOnWhenTheAppHasANewTokenAndOnlyThen) {
  for (const bool follows : {false, true}) {
    bridge.tokens = {"old", "old", "old", "new"};
    bridge.token = "new";
    bridge.answers("poll_changes", responseFrom(R"({"kind":"error","message":"Not my token."})"));
    bridge.answers("poll_changes", responseFrom(feed(8, "")));
    bridge.answers("poll_changes", responseFrom(R"({"kind":"error","message":"No such seat."})"));
    EXPECT_EQ(run(follows ? std::vector<std::string>{"wait", "--follow"}
                          : std::vector<std::string>{"wait"}),
              1);
    EXPECT_EQ(out.text, "No such seat.\n");
    EXPECT_TRUE(bridge.tokens.empty());
  }
}

TEST_F(WaitRun, FollowsLineByLineAndRemembersEachMove) {
  holdForever();
  bridge.answers("poll_changes", responseFrom(feed(7, "")));
  bridge.answers("poll_changes",
                 responseFrom(feed(8, R"(,"wakeReasons":[{"kind":"k","summary":"t1 is READY"}])")));
  bridge.answers("poll_changes",
                 responseFrom(feed(9, R"(,"messages":[{"id":"m1","from":"KQ3",)"
                                      R"("fromName":"","text":"hi","ageSeconds":0}])")));
  lifetime.leavesAfter = 20;
  EXPECT_EQ(run({"wait", "--follow"}), 129);
  EXPECT_EQ(out.text, "r8 woken: t1 is READY\nr9 message from KQ3: hi\n");
  EXPECT_EQ(out.writes, 2);
  lifetime = {};
  lifetime.leavesAfter = 1;
  bridge.requests.clear();
  run({"wait"});
  EXPECT_EQ(sent("sinceRev"), "7") << "the quiet polls after it said so";
}

TEST_F(WaitRun, FollowsUntilTheGoalIsCompleteAndNothingIsOwed) {
  std::string complete = feed(8, "");
  complete.replace(complete.find("\"goalComplete\":false"), 20, "\"goalComplete\":true");
  std::string owing = complete;
  owing.insert(owing.size() - 1, R"(,"obligations":{"clear":false,"tasksHeld":["t1"]})");
  std::string clear = complete;
  clear.insert(clear.size() - 1, R"(,"obligations":{"clear":true})");
  bridge.answers("poll_changes", responseFrom(owing));
  bridge.answers("poll_changes", responseFrom(owing));
  bridge.answers("poll_changes", responseFrom(clear));
  EXPECT_EQ(run({"wait", "--follow"}), 0);
  EXPECT_EQ(out.text, "r8 the goal is confirmed complete\n");
}

TEST_F(WaitRun, StopsFollowingWhenNobodyReads) {
  bridge.answers("poll_changes",
                 responseFrom(feed(8, R"(,"wakeReasons":[{"kind":"k","summary":"s"}])")));
  holdForever();
  readsWrites = 0;
  lifetime.unread = true;
  EXPECT_EQ(run({"wait", "--follow"}), 129);
  EXPECT_EQ(bridge.requests.size(), 2u);
  EXPECT_EQ(err.text, "");
}

}  // namespace
}  // namespace quillpost
