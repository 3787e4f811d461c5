// The program as its harness starts it: what it does at start, as the stop hook and at its end.

#include "harness/paths.h"
#include "harness/process.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"
#include "model/coding.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillpost {
namespace {

using testing::Ending;
using testing::Process;
using testing::runToEnd;
using testing::ScriptedApp;
using testing::TempDir;

constexpr std::string_view line =
    "Quillpost hook, automatic: board changed, call wait_for_changes, act on wakeReasons, then "
    "keep "
    "listening\n";
constexpr std::string_view pendingWake = R"({"kind":"wake","wakePending":true})";

class Program : public ::testing::Test {
 protected:
  using Variables = std::map<std::string, std::string>;

  /// A seat that is complete: session, token and socket.
  Variables seat() const {
    return {{"HOME", home.path()},
            {"QUILLPOST_SESSION_ID", "S1"},
            {"QUILLPOST_COLLAB_TOKEN", "start"},
            {"QUILLPOST_COLLAB_SOCKET", app.path()}};
  }

  Ending run(std::vector<std::string> arguments, Variables environment,
             const std::string& input = "") {
    return runToEnd({testing::seatProgram(), std::move(arguments), std::move(environment)}, input);
  }

  Ending runHook(Variables environment, const std::string& input = "{}") {
    return run({"--wake-stop-hook"}, std::move(environment), input);
  }

  /// Runs the hook by way of a shell, which can close or redirect its descriptors.
  Ending runHookWith(const std::string& redirections) {
    return runToEnd(
        {"/bin/sh",
         {"-c", "exec '" + testing::seatProgram() + "' --wake-stop-hook " + redirections},
         seat()});
  }

  TempDir home;
  ScriptedApp app{home.pathOf("a.sock")};
};

void expectSilence(const Ending& ending) {
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.output, "");
  EXPECT_EQ(ending.errors, "");
}

// The server

TEST_F(Program, EndsQuietlyAtTheEndOfItsInput) {
  expectSilence(run({}, seat()));
  expectSilence(run({}, {}));
  expectSilence(run({"--help", "--version", "-wake-stop-hook", "--WAKE-STOP-HOOK", ""}, seat()));
  EXPECT_TRUE(app.connections().empty());
}

TEST_F(Program, AnswersWithoutAnySetting) {
  const Ending ending = run({}, {{"HOME", home.path()}},
                            R"({"id":1,"method":"ping"})"
                            "\n");
  EXPECT_EQ(ending.status, 0);
  EXPECT_NE(ending.output.find("\"id\":1"), std::string::npos) << ending.output;
  EXPECT_EQ(ending.output.find('\n'), ending.output.size() - 1);
  EXPECT_EQ(ending.errors, "");
}

TEST_F(Program, EndsQuietlyWithItsStandardDescriptorsClosed) {
  Process process(
      {"/bin/sh", {"-c", "exec '" + testing::seatProgram() + "' <&- >&- 2>&-"}, seat()});
  expectSilence(endOf(process));
}

TEST_F(Program, SendsTheCallToTheAppWithTheTokenOfTheFile) {
  home.write("a.token", "one\n");
  app.otherwise([](const std::string&) { return testing::reply(R"({"kind":"empty"})"); });
  Process process({testing::seatProgram(), {}, seat()});
  const std::string call = R"({"id":1,"method":"tools/call","params":{"name":"read_plan"}})";
  ASSERT_TRUE(process.writeLine(call));
  ASSERT_TRUE(process.readLine());
  home.write("a.token", "two\n");
  ASSERT_TRUE(process.writeLine(call));
  ASSERT_TRUE(process.readLine());
  const std::vector<std::string> requests = app.requests();
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(decodeRequest(requests[0]).value_or(TeamworkRequest()).token, "one");
  EXPECT_EQ(decodeRequest(requests[1]).value_or(TeamworkRequest()).token, "two");
  process.closeInput();
  EXPECT_EQ(process.waitForExit(), 0);
}

// The stop hook

TEST_F(Program, KeepsTheAgentGoingWhenAWakeIsPending) {
  app.play(testing::reply(pendingWake));
  const Ending ending = runHook(seat());
  EXPECT_EQ(ending.status, 2);
  EXPECT_EQ(ending.output, "");
  EXPECT_EQ(ending.errors, line);
  ASSERT_TRUE(app.waitForRequests(1));
  ASSERT_TRUE(app.connections().front().isOneLine());
  TeamworkRequest expected;
  expected.token = "start";
  expected.sessionID = "S1";
  expected.method = "wake_query";
  EXPECT_EQ(decodeRequest(app.requests().front()), expected);
}

TEST_F(Program, IsTheHookWhereverTheArgumentStands) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--wake-stop-hook"},
                                                    {"--other", "--wake-stop-hook"},
                                                    {"", "x", "--wake-stop-hook", "y"},
                                                    {"--wake-stop-hook", "--wake-stop-hook"}}) {
    app.play(testing::reply(pendingWake));
    EXPECT_EQ(run(arguments, seat()).status, 2) << arguments.size();
  }
}

TEST_F(Program, LetsTheAgentStopWhateverElseTheAppAnswers) {
  struct Row {
    const char* name;
    testing::Behaviour behaviour;
  };
  const Row rows[] = {
      {"no pending wake", testing::reply(R"({"kind":"wake","wakePending":false})")},
      {"a wake that says nothing", testing::reply(R"({"kind":"wake"})")},
      {"changes, though pending", testing::reply(R"({"kind":"changes","wakePending":true})")},
      {"an error", testing::reply(R"({"kind":"error","message":"no","wakePending":true})")},
      {"not a response", testing::reply("wake")},
      {"a flag of another type", testing::reply(R"({"kind":"wake","wakePending":1})")},
      {"an empty reply", testing::terminatorFirst(pendingWake)},
      {"no reply", testing::closeWithoutReply()},
      {"a reset", testing::reset()},
  };
  std::size_t connections = 0;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    app.play(row.behaviour);
    expectSilence(runHook(seat()));
    // Asked once: the hook does not try again.
    EXPECT_EQ(app.connections().size(), ++connections);
  }
}

TEST_F(Program, DoesNotAskWithoutASessionOrAToken) {
  home.write("a.token", " \n");
  for (const char* name : {"QUILLPOST_SESSION_ID", "QUILLPOST_COLLAB_TOKEN"}) {
    Variables unset = seat(), empty = seat();
    unset.erase(name);
    empty[name] = "";
    expectSilence(runHook(unset));
    expectSilence(runHook(empty));
  }
  EXPECT_TRUE(app.connections().empty());
}

TEST_F(Program, CarriesTheTokenOfTheFileRatherThanTheVariables) {
  home.write("a.token", " t0k\n");
  runHook(seat());
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_EQ(decodeRequest(app.requests().front()).value_or(TeamworkRequest()).token, "t0k");
}

TEST_F(Program, LetsTheAgentStopWhenItCannotAsk) {
  Variables nowhere = seat(), notUtf8 = seat();
  nowhere["QUILLPOST_COLLAB_SOCKET"] = home.pathOf("missing.sock");
  notUtf8["QUILLPOST_COLLAB_TOKEN"] = "\xFF";
  expectSilence(runHook(nowhere));
  expectSilence(runHook(notUtf8));
  nowhere["QUILLPOST_COLLAB_SOCKET"] = "";
  expectSilence(runHook(nowhere));
  EXPECT_TRUE(app.connections().empty());
}

TEST_F(Program, ReadsTheWholeEventBeforeItAsks) {
  app.play(testing::reply(pendingWake));
  Process process({testing::seatProgram(), {"--wake-stop-hook"}, seat()});
  const std::string much(8'000'000, '{');
  EXPECT_TRUE(process.write(much));
  EXPECT_TRUE(app.connections().empty());
  EXPECT_TRUE(process.write(much));
  process.closeInput();
  EXPECT_EQ(process.waitForExit(), 2);
  EXPECT_EQ(app.connections().size(), 1u);
}

TEST_F(Program, ReadsTheEventEvenWhenItWillNotAsk) {
  Process process({testing::seatProgram(), {"--wake-stop-hook"}, {}});
  EXPECT_TRUE(process.write(std::string(8'000'000, '{')));
  process.closeInput();
  EXPECT_EQ(process.waitForExit(), 0);
}

TEST_F(Program, EndsWithItsStatusWhateverItsDescriptorsAre) {
  for (const char* redirections :
       {"<&-", ">&-", "2>&-", "<&- >&- 2>&-", "<&- 2>&-", ">&- 2>&-", "2</dev/null"}) {
    app.play(testing::reply(pendingWake));
    const Ending ending = runHookWith(redirections);
    EXPECT_EQ(ending.status, 2) << redirections;
    EXPECT_EQ(ending.output, "") << redirections;
  }
  // What came to the app is the request alone: no line went to a socket by mistake.
  for (const testing::Connection& connection : app.connections())
    EXPECT_TRUE(connection.isOneLine()) << connection.received;
}

TEST_F(Program, EndsWithItsStatusWhenNobodyReadsItsLine) {
  app.play(testing::reply(pendingWake));
  Process process(
      {"/bin/sh", {"-c", "exec '" + testing::seatProgram() + "' --wake-stop-hook 2>&1"}, seat()});
  process.closeOutput();
  process.closeInput();
  EXPECT_EQ(process.waitForExit(), 2);
}

// Discovery

class FoundProgram : public Program {
 protected:
  Variables withoutSocket() const {
    Variables variables = seat();
    variables.erase("QUILLPOST_COLLAB_SOCKET");
    return variables;
  }

  static std::unique_ptr<ScriptedApp> wakingApp(const std::string& path) {
    auto app = std::make_unique<ScriptedApp>(path);
    app->otherwise([](const std::string&) { return testing::reply(pendingWake); });
    return app;
  }

  const std::string support = "Library/Application Support/Quillpost/";
};

TEST_F(FoundProgram, ReachesTheSocketBesideTheOneOfItsSeat) {
  const auto sibling = wakingApp(home.pathOf("teamwork-K7.sock"));
  home.write("teamwork-K7.token", "beside\n");
  home.write(support + "agent-seat", "X\n" + home.pathOf("mcp-K7.sock") + "\n");
  EXPECT_EQ(runHook(withoutSocket()).status, 2);
  ASSERT_EQ(sibling->requests().size(), 1u);
  EXPECT_EQ(decodeRequest(sibling->requests().front()).value_or(TeamworkRequest()).token, "beside");
}

TEST_F(FoundProgram, ReachesTheOneLiveSocketAndNeverOneOfTwo) {
  home.makeDirectory(support);
  const auto one = wakingApp(home.pathOf(support + "teamwork-A.sock"));
  home.write("elsewhere.token", "given\n");
  Variables variables = withoutSocket();
  variables["QUILLPOST_COLLAB_TOKEN_FILE"] = home.pathOf("elsewhere.token");
  EXPECT_EQ(runHook(variables).status, 2);
  // The probe, and the question.
  ASSERT_TRUE(one->waitForRequests(2));
  EXPECT_EQ(one->requests().front(), "");
  EXPECT_EQ(decodeRequest(one->requests().back()).value_or(TeamworkRequest()).token, "given");

  const auto two = wakingApp(home.pathOf(support + "teamwork-B.sock"));
  expectSilence(runHook(variables));
}

TEST_F(FoundProgram, DoesNotScanWhenItsSeatHasNoSuffix) {
  home.write(support + "agent-seat", "X\n/d/socket.sock\n");
  const auto live = wakingApp(home.pathOf(support + "teamwork-A.sock"));
  expectSilence(runHook(withoutSocket()));
  EXPECT_TRUE(live->connections().empty());
}

TEST_F(FoundProgram, DoesNotLookForASocketWhenAnEmptyOneIsGiven) {
  home.makeDirectory(support);
  const auto live = wakingApp(home.pathOf(support + "teamwork-A.sock"));
  Variables variables = withoutSocket();
  variables["QUILLPOST_COLLAB_SOCKET"] = "";
  expectSilence(runHook(variables));
  EXPECT_TRUE(live->connections().empty());
}

}  // namespace
}  // namespace quillpost
