#include "calls/wait.h"

#include "base/text.h"
#include "calls/plain_reply.h"
#include "harness/fake_bridge.h"
#include "harness/fake_environment.h"
#include "harness/golden.h"
#include "harness/json_object.h"
#include "tools/tool_name.h"

#include <gtest/gtest.h>

#include <limits>

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
using Profile = TeamworkClientProfile::Profile;

/// The answer to a poll: a feed without news, unless a test adds members to it or beside it.
struct Feed {
  int64_t rev = 7;
  std::string_view members = R"("changed":false,"goalComplete":false)";
  std::string_view beside = "";
};

TeamworkResponse feed(const Feed& feed) {
  return responseFrom(text::cat(
      R"({"kind":"changes",)", feed.beside, feed.beside.empty() ? "" : ",", R"("changes":{"rev":)",
      feed.rev, R"(,"goal":"","pendingGoalComplete":false,"changeKinds":[],"tasks":[],)",
      feed.members, "}}"));
}

TeamworkResponse news(int64_t rev) {
  return feed({.rev = rev, .members = R"("changed":true,"goalComplete":false)"});
}

/// An app that holds each poll as long as it may and has nothing to tell.
FakeAnswer patientApp(const TeamworkRequest& request) {
  if (request.method != pollChanges) return {.response = responseFrom(R"({"kind":"written"})")};
  return {.response = feed({.rev = std::max<int64_t>(request.sinceRev.value_or(0), 7)}),
          .took = std::chrono::milliseconds(request.holdMs.value_or(0))};
}

/// One seat that waits, everything around it scripted.
struct Wait : ::testing::Test {
  Wait() {
    bridge.otherwise = patientApp;
    seat.state.lastSeenRev = 7;
  }

  /// A wait of the seat's client.
  PlainReply run(std::string_view arguments) {
    const ProgressReport report = [this](int64_t count) {
      bridge.note(text::cat("progress ", count));
      return count < clientGoneAt;
    };
    return runFor(clientOf(seat, reportsProgress ? report : ProgressReport()), arguments);
  }

  PlainReply runFor(const Listener& listener, std::string_view arguments) {
    const json::TreeObject object = objectFrom(arguments);
    const ToolReply reply = runWait(Arguments(object), seat, listener);
    bridge.note("end");
    return PlainReply(reply);
  }

  /// The outcome as an object, for a wait that ends with one.
  json::TreeObject outcomeOf(std::string_view arguments) { return objectFrom(run(arguments).text); }

  FakeClock clock;
  FakeBridge bridge{clock};
  testing::FakeEnvironment environment;
  Seat seat{.doors = {.clock = clock, .environment = environment, .bridge = bridge},
            .sessionID = "ses",
            .state = {}};
  bool reportsProgress = false;
  int64_t clientGoneAt = std::numeric_limits<int64_t>::max();
};

// --- What is sent when --------------------------------------------------------------------------

TEST_F(Wait, ACursorOfZeroAsksForNoHoldAndAFailedPollRestsTwoSeconds) {
  seat.state.lastSeenRev = 0;
  reportsProgress = true;
  bridge.answers("poll_changes", feed({.rev = 7}));
  bridge.fails("poll_changes");
  const json::TreeObject outcome = outcomeOf(R"({"timeoutSeconds":12})");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  progress 1\n"
               "  0.0  poll_changes sinceRev=0\n"
               "  2.0  poll_changes sinceRev=7 holdMs=3000\n"
               "  4.0  poll_changes sinceRev=7 holdMs=1000\n"
               "  5.0  progress 2\n"
               "  5.0  poll_changes sinceRev=7 holdMs=5000\n"
               " 10.0  progress 3\n"
               " 10.0  poll_changes sinceRev=7 holdMs=2000\n"
               " 12.0  end\n",
               bridge.timeline));
  EXPECT_EQ(memberOf(outcome, "rev"), "7");
  EXPECT_EQ(clock.sleeps, (std::vector<Duration>{2s, 2s}));
}

TEST_F(Wait, ABeatGoesOutEveryTwentySecondsAndHeldPollsDoNotRest) {
  environment.variables["QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS"] = "50";
  seat.state.clientProfile = Profile::codex;
  run("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 20.0  heartbeat\n"
               " 20.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 40.0  heartbeat\n"
               " 40.0  poll_changes sinceRev=7 holdMs=10000\n"
               " 50.0  end\n",
               bridge.timeline));
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST_F(Wait, ProgressGoesOutEveryFiveSeconds) {
  reportsProgress = true;
  run("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  progress 1\n"
               "  0.0  poll_changes sinceRev=7 holdMs=5000\n"
               "  5.0  progress 2\n"
               "  5.0  poll_changes sinceRev=7 holdMs=5000\n"
               " 10.0  progress 3\n"
               " 10.0  poll_changes sinceRev=7 holdMs=5000\n"
               " 15.0  progress 4\n"
               " 15.0  poll_changes sinceRev=7 holdMs=5000\n"
               " 20.0  heartbeat\n"
               " 20.0  progress 5\n"
               " 20.0  poll_changes sinceRev=7 holdMs=5000\n"
               " 25.0  progress 6\n"
               " 25.0  poll_changes sinceRev=7 holdMs=5000\n"
               " 30.0  end\n",
               bridge.timeline));
}

TEST_F(Wait, AQuickPollRestsTwoSecondsAndASlowOneDoesNot) {
  for (const Duration took : {0ms, 499ms, 500ms, 501ms})
    bridge.answers("poll_changes", feed({}), took);
  run(R"({"timeoutSeconds":7})");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=7000\n"
               "  2.0  poll_changes sinceRev=7 holdMs=5000\n"
               "4.499  poll_changes sinceRev=7 holdMs=2501\n"
               "4.999  poll_changes sinceRev=7 holdMs=2001\n"
               "  5.5  poll_changes sinceRev=7 holdMs=1500\n"
               "  7.0  end\n",
               bridge.timeline));
  EXPECT_EQ(clock.sleeps, (std::vector<Duration>{2s, 2s}));
}

TEST_F(Wait, AFailedPollRestsHoweverLongItTook) {
  bridge.fails("poll_changes", 3s);
  bridge.fails("poll_changes");
  run(R"({"timeoutSeconds":9})");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=9000\n"
               "  5.0  poll_changes sinceRev=7 holdMs=4000\n"
               "  7.0  poll_changes sinceRev=7 holdMs=2000\n"
               "  9.0  end\n",
               bridge.timeline));
  EXPECT_EQ(clock.sleeps, (std::vector<Duration>{2s, 2s}));
}

TEST_F(Wait, APollThatComesBackAfterTheDeadlineEndsIt) {
  bridge.fails("poll_changes", 40s);
  run("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 40.0  end\n",
               bridge.timeline));
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST_F(Wait, ARestMayRunPastTheDeadlineAndIsFollowedByOneMorePoll) {
  bridge.answers("poll_changes", feed({}));
  run(R"({"timeoutSeconds":1})");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=1000\n"
               "  2.0  poll_changes sinceRev=7\n"
               "  2.0  end\n",
               bridge.timeline));
}

TEST_F(Wait, AHoldIsAskedForOnlyAboveAFifthOfASecondAndInWholeMilliseconds) {
  struct Row {
    std::string_view name;
    Duration firstPoll;
    std::string_view second;
  };
  for (const Row& row : {
           Row{"exactly the least", 800ms, "0.8  poll_changes sinceRev=7\n"},
           Row{"a little more", 799ms + 500us, "0.799  poll_changes sinceRev=7 holdMs=200\n"},
           Row{"a millisecond more", 799ms, "0.799  poll_changes sinceRev=7 holdMs=201\n"},
           Row{"cut to milliseconds", 600ms + 1ns, "0.6  poll_changes sinceRev=7 holdMs=399\n"},
           Row{"a millisecond less", 801ms, "0.801  poll_changes sinceRev=7\n"},
       }) {
    FakeClock ownClock;
    FakeBridge ownBridge(ownClock);
    ownBridge.answers("poll_changes", feed({}), row.firstPoll);
    ownBridge.otherwise = patientApp;
    Seat own{.doors = {.clock = ownClock, .environment = environment, .bridge = ownBridge},
             .sessionID = "ses",
             .state = {}};
    own.state.lastSeenRev = 7;
    const json::TreeObject arguments = objectFrom(R"({"timeoutSeconds":1})");
    runWait(Arguments(arguments), own, clientOf(own, {}));
    EXPECT_NE(ownBridge.timeline.find(row.second), std::string::npos) << row.name << "\n"
                                                                      << ownBridge.timeline;
  }
}

TEST_F(Wait, AHoldNeverReachesPastTheNextBeat) {
  bridge.answers("poll_changes", feed({}), 17s);
  run("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 17.0  poll_changes sinceRev=7 holdMs=3000\n"
               " 20.0  heartbeat\n"
               " 20.0  poll_changes sinceRev=7 holdMs=10000\n"
               " 30.0  end\n",
               bridge.timeline));
}

TEST_F(Wait, ABeatThatFailsOrIsRefusedIsIgnored) {
  bridge.fails("heartbeat", 10s);
  bridge.answers("heartbeat", responseFrom(R"({"kind":"error","message":"no","threadTag":"T-x"})"));
  const PlainReply reply = run("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               " 10.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 30.0  end\n",
               bridge.timeline));
  EXPECT_EQ(reply.threadTag, "");
  EXPECT_EQ(memberOf(objectFrom(reply.text), "rev"), "7");
}

TEST_F(Wait, TheCursorFollowsTheFeeds) {
  for (const int64_t rev : {9, 8, 0, -1}) bridge.answers("poll_changes", feed({.rev = rev}), 1s);
  run(R"({"timeoutSeconds":5})");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=5000\n"
               "  1.0  poll_changes sinceRev=9 holdMs=4000\n"
               "  2.0  poll_changes sinceRev=8 holdMs=3000\n"
               "  3.0  poll_changes sinceRev=0\n"
               "  4.0  poll_changes sinceRev=-1\n"
               "  6.0  poll_changes sinceRev=7\n"
               "  6.0  end\n",
               bridge.timeline));
  EXPECT_EQ(seat.state.lastSeenRev, 7);
}

// --- What a request carries ---------------------------------------------------------------------

TEST_F(Wait, RequestsCarryWhatTheCallSaidAndNothingElse) {
  bridge.answers("poll_changes", news(8));
  run(R"({"taskIDs":["t1","t2"],"wakeOnClaims":true,"standDown":true,"parkReason":"for t1",)"
      R"("timeoutSeconds":20,"sinceRev":5,"status":"s","name":"n","summary":"s"})");
  EXPECT_EQ(bridge.requests,
            (std::vector<std::string>{
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"heartbeat",)"
                R"("parkReason":"for t1","waiting":true,"standDown":true})",
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"poll_changes",)"
                R"("taskIDs":["t1","t2"],"sinceRev":5,"holdMs":20000,"wakeOnStateChanges":true})",
            }));
}

TEST_F(Wait, RequestsOfACallWithoutArgumentsSayTheirFlags) {
  bridge.answers("poll_changes", news(8));
  seat.state.lastSeenRev = 0;
  run("{}");
  EXPECT_EQ(bridge.requests,
            (std::vector<std::string>{
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"heartbeat",)"
                R"("waiting":true,"standDown":false})",
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"poll_changes",)"
                R"("sinceRev":0,"wakeOnStateChanges":false})",
            }));
}

TEST_F(Wait, ArgumentsOfAnotherKindAreAbsent) {
  bridge.answers("poll_changes", news(8));
  run(R"({"taskIDs":"t1","wakeOnClaims":"true","standDown":1,"parkReason":7,"sinceRev":"7a",)"
      R"("timeoutSeconds":"45s"})");
  EXPECT_EQ(bridge.requests,
            (std::vector<std::string>{
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"heartbeat",)"
                R"("waiting":true,"standDown":false})",
                R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":"poll_changes",)"
                R"("sinceRev":7,"holdMs":20000,"wakeOnStateChanges":false})",
            }));
}

TEST_F(Wait, AnEmptyParkReasonWasGiven) {
  bridge.answers("poll_changes", news(8));
  run(R"({"parkReason":""})");
  EXPECT_NE(bridge.requests[0].find(R"("parkReason":"")"), std::string::npos);
}

TEST_F(Wait, TheTokenIsReadForEachRequest) {
  bridge.tokens = {"a", "b", "c", "d"};
  bridge.answers("poll_changes", feed({}), 20s);
  bridge.answers("poll_changes", news(8));
  run("{}");
  std::string tokens;
  for (const std::string& request : bridge.requests) {
    const json::TreeObject object = objectFrom(request);
    tokens += text::cat(json::findText(object, "method").value_or("?"), " ",
                        json::findText(object, "token").value_or("?"), "\n");
  }
  EXPECT_EQ(tokens, "heartbeat a\npoll_changes b\nheartbeat c\npoll_changes d\n");
}

TEST_F(Wait, AnEmptyTokenIsNoReasonNotToWait) {
  bridge.token = "";
  bridge.answers("poll_changes", news(8));
  EXPECT_EQ(memberOf(outcomeOf("{}"), "changed"), "true");
}

TEST_F(Wait, WatchesSixtyFourTasksAtMost) {
  std::string list = "[7,";
  std::string kept = "[";
  for (int i = 1; i <= 66; ++i) {
    list += text::cat("\"t", i, "\",null", i == 66 ? "]" : ",");
    if (i <= 64) kept += text::cat("\"t", i, "\"", i == 64 ? "]" : ",");
  }
  bridge.answers("poll_changes", news(8));
  const json::TreeObject outcome = outcomeOf(text::cat(R"({"taskIDs":)", list, "}"));
  EXPECT_EQ(memberOf(objectFrom(bridge.requests.back()), "taskIDs"), kept);
  EXPECT_EQ(memberOf(outcome, "watching"), kept);
}

TEST_F(Wait, WatchesTheWholeBacklogWhenNoTaskIsNamed) {
  for (const std::string_view list : {"[]", "[1,null]", "null", R"("t1")"}) {
    bridge.answers("poll_changes", news(8));
    const json::TreeObject outcome = outcomeOf(text::cat(R"({"taskIDs":)", list, "}"));
    EXPECT_EQ(memberOf(objectFrom(bridge.requests.back()), "taskIDs"), "absent") << list;
    EXPECT_EQ(memberOf(outcome, "watching"), R"("entire backlog")") << list;
  }
}

TEST_F(Wait, BeginsAtTheRevisionItIsGivenOrElseAtTheLastOneSeen) {
  struct Row {
    std::string_view sinceRev, polled;
  };
  for (const Row& row : {
           Row{"5", "sinceRev=5 holdMs=20000"},
           Row{R"("5")", "sinceRev=5 holdMs=20000"},
           Row{R"("+5")", "sinceRev=5 holdMs=20000"},
           Row{"5.9", "sinceRev=5 holdMs=20000"},
           Row{"1", "sinceRev=1 holdMs=20000"},
           Row{"0", "sinceRev=0\n"},
           Row{"-3", "sinceRev=-3\n"},
           Row{R"("-3")", "sinceRev=-3\n"},
           Row{"9223372036854775807", "sinceRev=9223372036854775807 holdMs=20000"},
           Row{"9223372036854775808", "sinceRev=7 holdMs=20000"},
           Row{"1e30", "sinceRev=7 holdMs=20000"},
           Row{R"("")", "sinceRev=7 holdMs=20000"},
           Row{"null", "sinceRev=7 holdMs=20000"},
           Row{"true", "sinceRev=7 holdMs=20000"},
       }) {
    seat.state.lastSeenRev = 7;
    bridge.timeline.clear();
    bridge.answers("poll_changes", news(8));
    run(text::cat(R"({"sinceRev":)", row.sinceRev, "}"));
    EXPECT_NE(bridge.timeline.find(row.polled), std::string::npos) << row.sinceRev << "\n"
                                                                   << bridge.timeline;
  }
}

// --- How long it holds --------------------------------------------------------------------------

TEST_F(Wait, HoldsAsLongAsItIsAskedToWithinTheBudget) {
  struct Row {
    std::string_view asked;
    Duration held;
    std::string_view shortenedTo = "absent";
  };
  for (const Row& row : {
           Row{"12", 12s},
           Row{R"("12")", 12s},
           Row{"12.9", 12s},
           Row{"30", 30s},
           Row{"31", 30s, "30"},
           Row{R"("45")", 30s, "30"},
           Row{"9223372036854775807", 30s, "30"},
           Row{"1", 1s},
           Row{"0", 1s},
           Row{"0.5", 1s},
           Row{"-5", 1s},
           Row{"-9223372036854775808", 1s},
           Row{"9223372036854775808", 30s},
           Row{"1e30", 30s},
           Row{R"("45s")", 30s},
           Row{R"("")", 30s},
           Row{"true", 30s},
           Row{"null", 30s},
       }) {
    const Instant start = clock.now();
    const json::TreeObject outcome = outcomeOf(text::cat(R"({"timeoutSeconds":)", row.asked, "}"));
    EXPECT_EQ(clock.now() - start, row.held) << row.asked;
    EXPECT_EQ(memberOf(outcome, "heldForSeconds"), row.shortenedTo) << row.asked;
    EXPECT_EQ(outcome.contains("heldForSecondsNote"), row.shortenedTo != "absent") << row.asked;
  }
}

TEST_F(Wait, SaysWhatWasAskedAndWhatWasGranted) {
  const json::TreeObject outcome = outcomeOf(R"({"timeoutSeconds":600})");
  EXPECT_EQ(json::findText(outcome, "heldForSecondsNote"),
            "You asked to wait 600s and this client's hold budget is 30s, so the wait was "
            "shortened. That is deliberate, not a fault: short ticks keep you listening without "
            "your client calling you idle, and a wake re-summons you the instant the board moves. "
            "Call wait_for_changes again rather than treating this as an ending. A person can "
            "raise the budget with QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS.");
}

TEST_F(Wait, ReadsTheBudgetAtEachCall) {
  seat.state.clientProfile = Profile::claude;
  struct Row {
    const char* variable;
    std::string value;
    Duration held;
  };
  for (const Row& row : {
           Row{"QUILLPOST_COLLAB_WAIT_MAX_SECONDS", "60", 110s},
           Row{"QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS", "5", 15s},
           Row{"QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS", "99999", 3600s},
           Row{"QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS", "", 110s},
       }) {
    environment.variables[row.variable] = row.value;
    const Instant start = clock.now();
    run("{}");
    EXPECT_EQ(clock.now() - start, row.held) << row.variable << "=" << row.value;
  }
}

// --- How it ends --------------------------------------------------------------------------------

TEST_F(Wait, EndsAtOnceWithEachKindOfNews) {
  struct Row {
    std::string_view name, members, key, shown, nextStep;
  };
  for (const Row& row : {
           Row{"the board moved", R"("changed":true,"goalComplete":false)", "changed", "true",
               "The board moved"},
           Row{"the goal is complete", R"("changed":false,"goalComplete":true)", "goalComplete",
               "true", "The Thread's GOAL is COMPLETE"},
           Row{"a reason to wake",
               R"("changed":false,"goalComplete":false,"wakeReasons":[{"kind":"k","summary":"s"}])",
               "wakeReasons", R"([{"kind":"k","summary":"s"}])", "You were WOKEN"},
           Row{"messages",
               R"("changed":false,"goalComplete":false,"messages":)"
               R"([{"id":"m1","from":"KQ3","fromName":"","text":"hi","ageSeconds":4}])",
               "messages", R"([{"from":"KQ3","text":"hi","ageSeconds":4}])", "The board moved"},
       }) {
    bridge.timeline.clear();
    const Duration began = clock.elapsed();
    bridge.answers("poll_changes", feed({.rev = 8}), 3s);
    bridge.answers("poll_changes", feed({.rev = 9, .members = row.members}), 100ms);
    const json::TreeObject outcome = outcomeOf("{}");
    EXPECT_EQ(clock.elapsed() - began, 3100ms) << row.name;
    EXPECT_EQ(memberOf(outcome, row.key), row.shown) << row.name;
    EXPECT_EQ(memberOf(outcome, "rev"), "9") << row.name;
    EXPECT_TRUE(json::findText(outcome, "nextStep").value_or("").starts_with(row.nextStep))
        << row.name << ": " << memberOf(outcome, "nextStep");
    EXPECT_EQ(seat.state.lastSeenRev, 9) << row.name;
    seat.state.lastSeenRev = 7;
  }
  EXPECT_TRUE(clock.sleeps.empty()) << "news is never slept on";
}

TEST_F(Wait, NewsThatComesAfterTheDeadlineIsStillNews) {
  bridge.answers("poll_changes", news(9), 35s);
  const json::TreeObject outcome = outcomeOf("{}");
  EXPECT_TRUE(json::findText(outcome, "nextStep").value_or("").starts_with("The board moved"));
}

TEST_F(Wait, NeitherAProposalNorChangedTasksAloneAreNews) {
  const auto quiet = responseFrom(
      R"({"kind":"changes","changes":{"rev":8,"changed":false,"goal":"g","goalComplete":false,)"
      R"("pendingGoalComplete":true,"changeKinds":["youWereTagged"],"tasks":[],)"
      R"("changes":[{"kind":"k"}]}})");
  bridge.answers("poll_changes", quiet, 1s);
  run(R"({"timeoutSeconds":5})");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=5000\n"
               "  1.0  poll_changes sinceRev=8 holdMs=4000\n"
               "  5.0  end\n",
               bridge.timeline));
}

TEST_F(Wait, EndsQuietlyWithTheLastFeed) {
  bridge.answers("poll_changes", feed({.rev = 8}), 1s);
  bridge.fails("poll_changes", 40s);
  const json::TreeObject outcome = outcomeOf("{}");
  EXPECT_EQ(memberOf(outcome, "rev"), "8");
  EXPECT_EQ(memberOf(outcome, "tasks"), "[]");
  EXPECT_EQ(memberOf(outcome, "resolved"), "false");
  EXPECT_TRUE(
      json::findText(outcome, "nextStep").value_or("").starts_with("The board is quiet. That"))
      << memberOf(outcome, "nextStep");
}

TEST_F(Wait, EndsWithoutAFeedWhenTheAppNeverAnswered) {
  bridge.otherwise = [](const TeamworkRequest&) { return FakeAnswer(); };
  seat.state.clientProfile = Profile::antigravity;
  const PlainReply reply = run(R"({"timeoutSeconds":3})");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=3000\n"
               "  2.0  poll_changes sinceRev=7 holdMs=1000\n"
               "  4.0  poll_changes sinceRev=7\n"
               "  4.0  end\n",
               bridge.timeline));
  EXPECT_TRUE(sameText(
      R"({"waitSeq":1,"watching":"entire backlog","wakeReasons":[],"resolved":false,"nextStep":)"
      R"("The board is quiet. That is worth holding through rather than standing down: your seat )"
      R"(and your claims stay alive across another wait_for_changes, and you can pick up READY )"
      R"(work while you listen. Nothing about an open goal is settled by nothing happening."})",
      reply.text));
  EXPECT_EQ(reply.threadTag, "");
  EXPECT_FALSE(seat.state.hasCursor);
}

TEST_F(Wait, EndsWithTheAppsWordsWhenThereIsNothingToWaitOnOrItRefuses) {
  constexpr std::string_view nothing =
      "There is nothing to wait on — this board has no work and no agents to change it. Your "
      "Thread is still active. Call list_tasks to see the board as it stands.";
  constexpr std::string_view owing = "\n\nobligations: ";
  struct Row {
    std::string_view name, answer, text;
    bool owes = false;
  };
  for (const Row& row : {
           Row{"empty", R"({"kind":"empty"})", nothing},
           Row{"empty with words", R"({"kind":"empty","message":"m"})", nothing},
           Row{"error", R"({"kind":"error"})", "Quillpost teamwork error."},
           Row{"error with words", R"({"kind":"error","message":"Not your seat."})",
               "Not your seat."},
           Row{"nothing is owed", R"({"kind":"error","message":"m","obligations":{"clear":true}})",
               "m"},
           Row{"empty while something is owed", R"({"kind":"empty","obligations":{"clear":false}})",
               nothing, true},
           Row{"error while something is owed",
               R"({"kind":"error","message":"m","obligations":{"clear":false}})", "m", true},
       }) {
    bridge.timeline.clear();
    const Duration began = clock.elapsed();
    TeamworkResponse answer = responseFrom(row.answer);
    answer.threadTag = "T-abc123";
    bridge.answers("poll_changes", answer, 1s);
    const PlainReply reply = run("{}");
    EXPECT_EQ(reply.text.substr(0, reply.text.find(owing)), row.text) << row.name;
    EXPECT_EQ(reply.text.find(owing) != std::string::npos, row.owes) << row.name;
    EXPECT_EQ(reply.threadTag, "T-abc123") << row.name;
    EXPECT_EQ(clock.elapsed() - began, 1s) << row.name;
  }
  EXPECT_EQ(seat.state.waitSeq, 0) << "no outcome was rendered";
}

TEST_F(Wait, AnAnswerWithoutAFeedIsAQuietPoll) {
  bridge.answers("poll_changes",
                 responseFrom(R"({"kind":"changes","rev":99,"obligations":{"clear":false}})"));
  bridge.answers("poll_changes", responseFrom(R"({"kind":"written","rev":99})"), 1s);
  bridge.answers("poll_changes", responseFrom(R"({"kind":"wake","wakePending":true})"), 1s);
  TeamworkResponse otherKind = news(99);
  otherKind.kind = TeamworkResponse::Kind::tasks;
  bridge.answers("poll_changes", otherKind, 1s);
  bridge.fails("poll_changes", 40s);
  const json::TreeObject outcome = outcomeOf("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=20000\n"
               "  2.0  poll_changes sinceRev=7 holdMs=18000\n"
               "  3.0  poll_changes sinceRev=7 holdMs=17000\n"
               "  4.0  poll_changes sinceRev=7 holdMs=16000\n"
               "  5.0  poll_changes sinceRev=7 holdMs=15000\n"
               " 45.0  end\n",
               bridge.timeline));
  EXPECT_EQ(memberOf(outcome, "rev"), "absent");
  EXPECT_EQ(memberOf(outcome, "obligations"), "absent");
  EXPECT_EQ(seat.state.lastSeenRev, 7);
  EXPECT_FALSE(seat.state.hasCursor);
}

TEST_F(Wait, EndsWhenNobodyReadsItsProgress) {
  reportsProgress = true;
  clientGoneAt = 3;
  run("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  progress 1\n"
               "  0.0  poll_changes sinceRev=7 holdMs=5000\n"
               "  5.0  progress 2\n"
               "  5.0  poll_changes sinceRev=7 holdMs=5000\n"
               " 10.0  progress 3\n"
               " 10.0  end\n",
               bridge.timeline));
}

TEST_F(Wait, AsksNothingOutsideAThread) {
  seat.sessionID = "";
  reportsProgress = true;
  const PlainReply reply = run("{}");
  EXPECT_EQ(reply.text,
            "This terminal isn't in a Thread, so there is no board to read. Open this terminal "
            "inside a Quillpost Thread and try again.");
  EXPECT_EQ(reply.threadTag, "");
  EXPECT_EQ(bridge.timeline, "  0.0  end\n");
  EXPECT_EQ(bridge.tokenReads, 0);
  EXPECT_EQ(seat.state.waitSeq, 0);
}

TEST_F(Wait, CarriesTheThreadOfTheLastAnswerThatNamedOne) {
  struct Row {
    std::string_view name;
    std::vector<std::string_view> besides;
    std::string_view tag;
  };
  for (const Row& row : {
           Row{"none", {"", ""}, ""},
           Row{"the last", {R"("threadTag":"T-a")", R"("threadTag":"T-b")"}, "T-b"},
           Row{"an earlier one", {R"("threadTag":"T-a")", ""}, "T-a"},
           Row{"an empty one names none", {R"("threadTag":"T-a")", R"("threadTag":"")"}, "T-a"},
       }) {
    for (const std::string_view beside : row.besides)
      bridge.answers("poll_changes", feed({.beside = beside}), 1s);
    bridge.fails("poll_changes", 40s);
    EXPECT_EQ(run("{}").threadTag, row.tag) << row.name;
  }
  bridge.answers("poll_changes", responseFrom(R"({"kind":"wake","threadTag":"T-c"})"), 1s);
  bridge.fails("poll_changes", 40s);
  EXPECT_EQ(run("{}").threadTag, "T-c") << "an answer without a feed is an answer";
}

// --- How it ended, for a caller that goes by that -----------------------------------------------

TEST_F(Wait, SaysHowItEnded) {
  struct Row {
    std::string_view name;
    std::optional<TeamworkResponse> answer;
    CallEnd end;
  };
  for (Row& row : std::vector<Row>{
           {"news", news(8), CallEnd::moved},
           {"a quiet feed", feed({}), CallEnd::timedOut},
           {"no answer", std::nullopt, CallEnd::timedOut},
           {"nothing there", responseFrom(R"({"kind":"empty"})"), CallEnd::nothingToWaitOn},
           {"a refusal", responseFrom(R"({"kind":"error"})"), CallEnd::refused},
       }) {
    bridge.otherwise = [&row](const TeamworkRequest&) {
      return FakeAnswer{.response = row.answer, .took = 1s};
    };
    EXPECT_EQ(run(R"({"timeoutSeconds":1})").end, row.end) << row.name;
  }
  bridge.otherwise = [](const TeamworkRequest&) {
    return FakeAnswer{.response = feed({}), .took = 1s};
  };
  reportsProgress = true;
  clientGoneAt = 1;
  EXPECT_EQ(run("{}").end, CallEnd::callerGone);
  seat.sessionID = "";
  EXPECT_EQ(run("{}").end, CallEnd::outsideThread);
}

// --- Without a budget ---------------------------------------------------------------------------

TEST_F(Wait, HasNoDeadlineForAListenerWithoutABudget) {
  for (int poll = 0; poll < 4; ++poll) bridge.answers("poll_changes", feed({}), 20s);
  bridge.answers("poll_changes", news(8), 5s);
  const PlainReply reply = runFor({}, "{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 20.0  heartbeat\n"
               " 20.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 40.0  heartbeat\n"
               " 40.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 60.0  heartbeat\n"
               " 60.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 80.0  heartbeat\n"
               " 80.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 85.0  end\n",
               bridge.timeline));
  EXPECT_EQ(reply.end, CallEnd::moved);
  EXPECT_EQ(memberOf(objectFrom(reply.text), "rev"), "8");
  EXPECT_TRUE(clock.sleeps.empty());
}

TEST_F(Wait, TriesAnAppThatIsAwayEveryTwoSecondsForAsLongAsItTakes) {
  int tries = 0;
  bridge.otherwise = [&](const TeamworkRequest& request) {
    if (request.method != pollChanges || ++tries < 3000) return FakeAnswer();
    return FakeAnswer{.response = news(8)};
  };
  EXPECT_EQ(runFor({}, "{}").end, CallEnd::moved);
  EXPECT_EQ(clock.sleeps, std::vector<Duration>(2999, 2s));
}

TEST_F(Wait, EndsWhenItIsAskedToThoughThereIsNoBudget) {
  environment.variables["QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS"] = "15";
  const PlainReply reply = runFor({}, R"({"timeoutSeconds":130})");
  EXPECT_EQ(reply.end, CallEnd::timedOut);
  EXPECT_EQ(clock.elapsed(), 130s);
  EXPECT_EQ(memberOf(objectFrom(reply.text), "heldForSeconds"), "absent");
}

TEST_F(Wait, EndsBeforeAnythingIsSentForAListenerThatHasGone) {
  int turns = 0;
  const Listener listener = {.isThere = [&] { return ++turns < 3; }};
  EXPECT_EQ(runFor(listener, "{}").end, CallEnd::callerGone);
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 20.0  heartbeat\n"
               " 20.0  poll_changes sinceRev=7 holdMs=20000\n"
               " 40.0  end\n",
               bridge.timeline));
}

TEST_F(Wait, GoesOnAfterWhatTheListenerDoesNotEndWith) {
  bridge.answers("poll_changes", news(8), 1s);
  bridge.answers("poll_changes", responseFrom(R"({"kind":"empty"})"), 1s);
  bridge.answers("poll_changes", feed({.rev = 9}), 1s);
  bridge.answers("poll_changes", news(10));
  bridge.answers("poll_changes", responseFrom(R"({"kind":"error","message":"Gone."})"), 1s);
  const Listener listener = {.goesOn = [&](CallEnd end, const TeamworkChangeFeed* feed) {
    bridge.note(text::cat("told ", end == CallEnd::moved ? "news of " : "of the end at ",
                          feed ? feed->rev : -1));
    return end != CallEnd::refused;
  }};
  EXPECT_EQ(runFor(listener, "{}").text, "Gone.");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=20000\n"
               "  1.0  told news of 8\n"
               "  1.0  poll_changes sinceRev=8 holdMs=19000\n"
               "  2.0  told of the end at 8\n"
               "  2.0  poll_changes sinceRev=8 holdMs=18000\n"
               "  3.0  poll_changes sinceRev=9 holdMs=17000\n"
               "  3.0  told news of 10\n"
               "  5.0  poll_changes sinceRev=10 holdMs=15000\n"
               "  6.0  told of the end at 10\n"
               "  6.0  end\n",
               bridge.timeline))
      << "news in quick succession does not make it busy";
}

TEST_F(Wait, TellsAListenerThatNoFeedEverCame) {
  bridge.answers("poll_changes", responseFrom(R"({"kind":"empty"})"));
  bool hadFeed = true;
  const Listener listener = {.goesOn = [&](CallEnd, const TeamworkChangeFeed* feed) {
    hadFeed = feed != nullptr;
    return false;
  }};
  EXPECT_EQ(runFor(listener, "{}").end, CallEnd::nothingToWaitOn);
  EXPECT_FALSE(hadFeed);
}

// --- What is remembered -------------------------------------------------------------------------

TEST_F(Wait, RemembersWhatTheFeedsSaid) {
  bridge.answers("poll_changes",
                 feed({.rev = 8,
                       .beside = R"("obligations":{"clear":false,"tasksHeld":["t1"]},)"
                                 R"("audience":{"shared":true,"otherPeople":2},"rev":99)"}),
                 1s);
  bridge.answers("poll_changes", news(9));
  const json::TreeObject outcome = outcomeOf("{}");
  EXPECT_EQ(seat.state.lastSeenRev, 9);
  EXPECT_TRUE(seat.state.hasCursor);
  ASSERT_TRUE(seat.state.lastObligations.has_value());
  EXPECT_EQ(seat.state.lastObligations->tasksHeld, std::vector<std::string>{"t1"});
  ASSERT_TRUE(seat.state.lastAudience.has_value());
  EXPECT_EQ(seat.state.lastAudience->otherPeople, 2);
  const json::Tree* owed = json::find(outcome, "obligations");
  ASSERT_NE(owed, nullptr) << "what an earlier feed said still holds";
  EXPECT_EQ(memberOf(owed->as_object(), "clear"), "false");
}

TEST_F(Wait, ShowsWhatWasOwedBeforeItBegan) {
  seat.state.lastObligations = TeamworkObligations();
  bridge.answers("poll_changes", news(8));
  EXPECT_EQ(memberOf(outcomeOf("{}"), "obligations"), R"({"clear":true})");
}

TEST_F(Wait, BeginsTheNextOneWhereTheLastOneEnded) {
  seat.state.lastSeenRev = 0;
  bridge.answers("poll_changes", news(12));
  run("{}");
  bridge.timeline.clear();
  bridge.answers("poll_changes", news(13));
  run("{}");
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=12 holdMs=20000\n"
               "  0.0  end\n",
               bridge.timeline));
}

TEST_F(Wait, CountsItsOutcomesAndTurnsItsQuietTextWithThem) {
  seat.state.clientProfile = Profile::antigravity;
  const std::vector<std::string_view> texts = {"The board is quiet. That is worth",
                                               "The hold ended with the board where it was.",
                                               "Nothing moved while you held. You are listening"};
  for (int64_t seq = 1; seq <= 6; ++seq) {
    const json::TreeObject outcome = outcomeOf(R"({"timeoutSeconds":1})");
    EXPECT_EQ(memberOf(outcome, "waitSeq"), std::to_string(seq));
    EXPECT_TRUE(json::findText(outcome, "nextStep")
                    .value_or("")
                    .starts_with(texts[static_cast<std::size_t>(seq - 1) % texts.size()]))
        << seq << ": " << memberOf(outcome, "nextStep");
  }
  EXPECT_EQ(seat.state.waitSeq, 6);
}

TEST_F(Wait, TellsClientsThatCannotHoldLongThatAQuickReturnIsMeant) {
  struct Row {
    Profile profile;
    bool hasBudget, told;
  };
  for (const Row& row : {Row{Profile::claude, false, false}, Row{Profile::codex, false, true},
                         Row{Profile::codex, true, false}, Row{Profile::antigravity, false, false},
                         Row{Profile::cursor, true, true}, Row{Profile::unknown, true, true}}) {
    environment.variables.clear();
    if (row.hasBudget) environment.variables["QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS"] = "20";
    seat.state.clientProfile = row.profile;
    const json::TreeObject outcome = outcomeOf(R"({"timeoutSeconds":1})");
    const std::string_view nextStep = json::findText(outcome, "nextStep").value_or("");
    EXPECT_EQ(nextStep.find(" This runtime cannot hold a long wait") != std::string_view::npos,
              row.told)
        << nextStep;
    EXPECT_EQ(nextStep.starts_with("Nothing moved while you held, which is normal."),
              row.profile == Profile::claude);
  }
}

}  // namespace
}  // namespace quillpost
