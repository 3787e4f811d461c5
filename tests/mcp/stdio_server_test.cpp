#include "mcp/stdio_server.h"

#include "base/text.h"
#include "harness/fake_bridge.h"
#include "harness/fake_client.h"
#include "harness/fake_environment.h"
#include "harness/golden.h"
#include "harness/json_object.h"
#include "harness/paths.h"
#include "tools/tool_name.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

#include <fstream>

namespace quillpost {
namespace {

using namespace std::chrono_literals;
using testing::FakeAnswer;
using testing::FakeBridge;
using testing::FakeClock;
using testing::FakeInput;
using testing::FakeOutput;
using testing::memberOf;
using testing::objectFrom;
using testing::responseFrom;
using testing::sameText;
using Messages = std::vector<std::string>;
using Profile = TeamworkClientProfile::Profile;

/// A ping's answer to an id that is JSON text already.
std::string pong(std::string_view id) {
  return text::cat(R"({"jsonrpc":"2.0","result":{},"id":)", id, "}\n");
}

std::string ping(std::string_view id) {
  return text::cat(R"({"jsonrpc":"2.0","method":"ping","id":)", id, "}");
}

/// A tool call's answer. The text is the inside of a JSON string.
std::string answerText(std::string_view escaped, std::string_view id) {
  return text::cat(R"({"jsonrpc":"2.0","result":{"content":[{"type":"text","text":")", escaped,
                   R"("}],"isError":false},"id":)", id, "}\n");
}

/// The instructions as the golden file has them.
std::string goldenInstructions() {
  std::ifstream in(testing::inTests("golden/texts.golden"));
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with("serverInstructions\t")) continue;
    const std::string inString = line.substr(line.rfind('\t') + 1);
    const json::TreeObject object = objectFrom(text::cat(R"({"text":")", inString, "\"}"));
    return std::string(json::findText(object, "text").value_or(""));
  }
  return {};
}

struct Server : ::testing::Test {
  Server() {
    bridge.otherwise = [](const TeamworkRequest&) {
      return FakeAnswer{.response = responseFrom(R"({"kind":"written"})")};
    };
  }
  ~Server() override {
    EXPECT_EQ(output.messages, Messages()) << "and nothing else was written";
    EXPECT_EQ(output.refused, 0);
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// What one line is answered with.
  Messages answersTo(std::string_view line) {
    server.handle(line);
    return output.take();
  }

  /// What a whole input is answered with.
  Messages answersToInput(FakeInput input) {
    server.run(input);
    return output.take();
  }

  FakeClock clock;
  FakeBridge bridge{clock};
  testing::FakeEnvironment environment;
  FakeOutput output;
  TeamworkStdioServer server{
      "ses", {.clock = clock, .environment = environment, .bridge = bridge}, output};
};

// --- Methods ------------------------------------------------------------------------------------

TEST_F(Server, AnswersItsMethodsAndRefusesOthers) {
  struct Row {
    std::string_view line;
    Messages answers;
  };
  const auto unknown = [](std::string_view method, std::string_view id) {
    return Messages{text::cat(R"({"jsonrpc":"2.0","error":{"code":-32601,"message":)",
                              R"("Method not found: )", method, R"("},"id":)", id, "}\n")};
  };
  for (const Row& row : {
           Row{R"({"jsonrpc":"2.0","method":"ping","id":7})", {pong("7")}},
           Row{R"({"method":"ping"})", {pong("null")}},
           Row{R"({"method":"ping","id":null,"params":7})", {pong("null")}},
           Row{R"({"jsonrpc":"2.0","method":"notifications/initialized"})", {}},
           Row{R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":1}})",
               {}},
           Row{R"({"method":"notifications/initialized","id":1})", {}},
           Row{R"({"method":"notifications/cancelled","id":1})", {}},
           Row{R"({"method":"foo/bar","id":"a"})", unknown("foo/bar", R"("a")")},
           Row{R"({"method":"foo/bar","id":null})", unknown("foo/bar", "null")},
           Row{R"({"method":"foo/bar"})", {}},
           Row{R"({"method":"Ping","id":1})", unknown("Ping", "1")},
           Row{R"({"method":"ping ","id":1})", unknown("ping ", "1")},
           Row{R"({"method":"ping\u0000","id":1})", unknown(R"(ping\u0000)", "1")},
           Row{R"({"method":"é\"\n","id":1})", unknown(R"(é\"\n)", "1")},
           Row{R"({"method":"tools/list/","id":1})", unknown("tools/list/", "1")},
           Row{R"({"method":"","id":1})", unknown("", "1")},
           Row{R"({"method":7,"id":1})", unknown("", "1")},
           Row{R"({"method":["ping"],"id":1})", unknown("", "1")},
           Row{R"({"id":1})", unknown("", "1")},
           Row{R"({"jsonrpc":"2.0","result":{},"id":1})", unknown("", "1")},
           Row{"{}", {}},
           Row{R"({"method":"ping","id":1})"
               "\r",
               {pong("1")}},
           Row{" \t{\"method\" : \"ping\" , \"id\" : 1} ", {pong("1")}},
       }) {
    EXPECT_EQ(answersTo(row.line), row.answers) << row.line;
  }
}

TEST_F(Server, IgnoresWhatIsNotAJsonObject) {
  using namespace std::string_view_literals;
  for (const std::string_view line : {
           ""sv,
           " "sv,
           "\r"sv,
           "not json"sv,
           "[1,2]"sv,
           R"([{"method":"ping","id":1}])"sv,
           "7"sv,
           "null"sv,
           R"("ping")"sv,
           R"({"method":"ping","id":1)"sv,
           R"({"method":"ping","id":1}})"sv,
           R"({"method":"ping","id":1} x)"sv,
           R"({"method":"ping","id":1}{"method":"ping","id":2})"sv,
           R"({"method":"ping","id":1,})"sv,
           R"({"method":"ping","id":01})"sv,
           R"({"method":"ping","id":NaN})"sv,
           R"({"method":"ping","id":1e400})"sv,
           R"({"method":"ping","id":1e-99999999999})"sv,
           R"({'method':'ping','id':1})"sv,
           R"({"method":"ping","id":1} // x)"sv,
           "\xef\xbb\xbf{\"method\":\"ping\",\"id\":1}"sv,
           "{\"method\":\"ping\",\"id\":1}\0"sv,
           "{\"method\":\"ping\",\"id\":\"a\0b\"}"sv,
           "{\"method\":\"ping\",\"id\":\"\xff\"}"sv,
           "{\"method\":\"ping\",\"id\":\"\xc0\xaf\"}"sv,
           "{\"method\":\"ping\",\"id\":\"\xed\xa0\x80\"}"sv,
           "{\"method\":\"ping\",\"id\":\"\xe2\x80\"}"sv,
           R"({"method":"ping","id":"\ud800"})"sv,
           R"({"method":"ping","id":"\udc00\ud800"})"sv,
           "\xff\xfe{\0}\0"sv,
       }) {
    EXPECT_EQ(answersTo(line), Messages()) << line;
  }
  EXPECT_EQ(answersTo(ping("1")), Messages{pong("1")}) << "and goes on";
}

TEST_F(Server, GivesEachIdBackAsItCame) {
  for (const std::string_view id :
       {"0", "-1", "9007199254740993", "9223372036854775807", "-9223372036854775808",
        "18446744073709551615", R"("")", R"("a-1")", R"("1")", R"("é…\u0001\"\\/")", "true",
        "false", "null", "[]", R"([1,[2,"a"]])", "{}", R"({"z":1,"a":{"b":null}})"}) {
    EXPECT_EQ(answersTo(ping(id)), Messages{pong(id)});
  }
  EXPECT_EQ(answersTo(ping(R"("\u00e9\/\ud83d\ude00")")), Messages{pong(R"("é/😀")")});
}

TEST_F(Server, GivesAFractionBackAsTheSameNumber) {
  for (const std::string_view id : {"1.5", "-0.1", "1e3", "18446744073709551616", "1e308"}) {
    const Messages answers = answersTo(ping(id));
    ASSERT_EQ(answers.size(), 1u) << id;
    EXPECT_EQ(objectFrom(answers[0]).at("id"), objectFrom(ping(id)).at("id")) << answers[0];
  }
}

TEST_F(Server, GivesAnIntegralIdBackWithAllItsDigits) {
  EXPECT_EQ(answersTo(ping("9007199254740993.0")), Messages{pong("9007199254740993")});
  EXPECT_EQ(answersTo(ping("18446744073709551615e0")), Messages{pong("18446744073709551615")});
}

TEST_F(Server, TakesTheLastOfTwoEqualKeysWhole) {
  struct Row {
    std::string_view name, line;
    Messages answers;
    std::string_view sent;
  };
  for (const Row& row : {
           Row{"method and id", R"({"method":"x","method":"ping","id":1,"id":2})", {pong("2")}, ""},
           Row{"a null id", R"({"method":"ping","id":1,"id":null})", {pong("null")}, ""},
           Row{"params",
               R"({"method":"tools/call","id":1,"params":{"name":"x","arguments":{"taskID":"t"}},)"
               R"("params":{"name":"stop_helper"}})",
               {answerText("Done.", "1")},
               ""},
           Row{"arguments",
               R"({"method":"tools/call","id":1,"params":{"name":"stop_helper",)"
               R"("arguments":{"taskID":"t1"},"arguments":{"text":"n"}}})",
               {answerText("Done.", "1")},
               R"(,"note":"n")"},
           Row{"null arguments",
               R"({"method":"tools/call","id":1,"params":{"name":"stop_helper",)"
               R"("arguments":{"taskID":"t1"},"arguments":null}})",
               {answerText("Done.", "1")},
               ""},
           Row{"an argument",
               R"({"method":"tools/call","id":1,"params":{"name":"stop_helper",)"
               R"("arguments":{"taskID":"t1","text":"n","taskID":["t2"]}}})",
               {answerText("Done.", "1")},
               R"(,"note":"n")"},
       }) {
    bridge.requests.clear();
    EXPECT_EQ(answersTo(row.line), row.answers) << row.name;
    if (row.answers.front().find("Done.") == std::string::npos) continue;
    EXPECT_EQ(bridge.requests,
              Messages{text::cat(R"({"protocolVersion":1,"token":"tok","sessionID":"ses",)",
                                 R"("method":"stop_helper")", row.sent, "}")})
        << row.name;
  }
}

// --- initialize ---------------------------------------------------------------------------------

TEST_F(Server, IntroducesItself) {
  const Messages answers = answersTo(
      R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-06-18",)"
      R"("capabilities":{},"clientInfo":{"name":"Claude Code","version":"1"}}})");
  ASSERT_EQ(answers.size(), 1u);
  const json::TreeObject answer = objectFrom(answers[0]);
  EXPECT_EQ(memberOf(answer, "id"), "0");
  const json::TreeObject& result = answer.at("result").as_object();
  EXPECT_EQ(result.size(), 4u);
  EXPECT_EQ(memberOf(result, "protocolVersion"), R"("2024-11-05")");
  EXPECT_EQ(memberOf(result, "capabilities"), R"({"tools":{"listChanged":false}})");
  EXPECT_EQ(memberOf(result, "serverInfo"), R"({"name":"quillpost-teamwork","version":"1.0.0"})");
  EXPECT_TRUE(
      sameText(goldenInstructions(), json::findText(result, "instructions").value_or("none")));
  EXPECT_EQ(server.state().clientProfile, Profile::claude);
}

TEST_F(Server, TakesTheClientsNameFromWhereverItIsWellFormed) {
  struct Row {
    std::string_view params;
    Profile profile;
  };
  std::string first;
  for (const Row& row : {
           Row{"7", Profile::unknown},
           Row{"[]", Profile::unknown},
           Row{"{}", Profile::unknown},
           Row{R"({"clientInfo":"claude"})", Profile::unknown},
           Row{R"({"clientInfo":{"name":["claude"]}})", Profile::unknown},
           Row{R"({"clientInfo":{"title":"claude"}})", Profile::unknown},
           Row{R"({"clientInfo":{"name":"my-CODEX-cli"}})", Profile::codex},
           Row{R"({"clientInfo":{}})", Profile::codex},
           Row{R"({"clientInfo":{"name":"AGY"}})", Profile::antigravity},
           Row{R"({"clientInfo":{"name":"Cursor"}})", Profile::cursor},
           Row{R"({"clientInfo":{"name":"other"}})", Profile::unknown},
       }) {
    const Messages answers =
        answersTo(text::cat(R"({"method":"initialize","params":)", row.params, "}"));
    ASSERT_EQ(answers.size(), 1u) << row.params;
    if (first.empty()) first = answers[0];
    EXPECT_EQ(answers[0], first) << "the answer is the same whatever the params";
    EXPECT_EQ(server.state().clientProfile, row.profile) << row.params;
  }
  EXPECT_EQ(answersTo(R"({"method":"initialize"})"), Messages{first}) << "and without any";
}

// --- tools/list ---------------------------------------------------------------------------------

TEST_F(Server, ListsItsToolsBeforeAndAfterItIsIntroduced) {
  constexpr std::string_view forClaude = "`qp` IS THE PREFERRED SURFACE FOR EVERY VERB HERE";
  constexpr std::string_view forOthers = "If you can run a shell command, `qp wait` does";
  const std::string list = R"({"method":"tools/list","id":1})";
  const Messages before = answersTo(list);
  ASSERT_EQ(before.size(), 1u);
  EXPECT_NE(before[0].find(forOthers), std::string::npos);
  EXPECT_EQ(before[0].find(forClaude), std::string::npos);
  EXPECT_EQ(objectFrom(before[0]).at("result").at("tools").as_array().size(), tools.size());
  EXPECT_EQ(answersTo(list), before) << "asked again, it says the same";

  answersTo(R"({"method":"initialize","params":{"clientInfo":{"name":"claude"}}})");
  const Messages after = answersTo(list);
  ASSERT_EQ(after.size(), 1u);
  EXPECT_NE(after[0].find(forClaude), std::string::npos);
  EXPECT_EQ(after[0].find(forOthers), std::string::npos);

  answersTo(R"({"method":"initialize","params":{"clientInfo":{"name":"codex"}}})");
  EXPECT_EQ(answersTo(list), before);
  const Messages withoutId = answersTo(R"({"method":"tools/list"})");
  ASSERT_EQ(withoutId.size(), 1u);
  EXPECT_TRUE(withoutId[0].ends_with(",\"id\":null}\n"));
}

// --- tools/call ---------------------------------------------------------------------------------

TEST_F(Server, RefusesAToolThatDoesNotExist) {
  struct Row {
    std::string_view params, name;
  };
  for (const Row& row : {
           Row{R"({"name":"frobnicate"})", "frobnicate"},
           Row{R"({"name":""})", ""},
           Row{"{}", ""},
           Row{"[]", ""},
           Row{"null", ""},
           Row{R"({"name":7})", ""},
           Row{R"({"name":"Register"})", "Register"},
           Row{R"({"name":"poll_changes"})", "poll_changes"},
           Row{R"({"name":"wake_query"})", "wake_query"},
           Row{R"({"name":"é\""})", R"(é\")"},
       }) {
    EXPECT_EQ(answersTo(text::cat(R"({"method":"tools/call","id":3,"params":)", row.params, "}")),
              Messages{text::cat(R"({"jsonrpc":"2.0","error":{"code":-32602,"message":)",
                                 R"("Unknown tool: )", row.name, R"("},"id":3})", "\n")})
        << row.params;
  }
  EXPECT_TRUE(bridge.requests.empty());
  EXPECT_EQ(bridge.tokenReads, 0);
}

TEST_F(Server, CallsEveryToolOfTheBoardByItsName) {
  for (const std::string_view tool : boardMethods) {
    bridge.requests.clear();
    const Messages answers =
        answersTo(text::cat(R"({"method":"tools/call","id":3,"params":{"name":")", tool, R"("}})"));
    ASSERT_EQ(answers.size(), 1u) << tool;
    EXPECT_TRUE(answers[0].starts_with(
        R"({"jsonrpc":"2.0","result":{"content":[{"type":"text","text":"Done.)"))
        << answers[0];
    EXPECT_EQ(
        bridge.requests,
        Messages{text::cat(R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":")",
                           tool, "\"}")});
  }
}

TEST_F(Server, TakesArgumentsFromAnObjectOnly) {
  struct Row {
    std::string_view arguments, sent;
  };
  for (const Row& row : {
           Row{R"({"taskID":"t1"})", R"(,"taskID":"t1")"},
           Row{"{}", ""},
           Row{"null", ""},
           Row{R"(["t1"])", ""},
           Row{R"("{\"taskID\":\"t1\"}")", ""},
       }) {
    bridge.requests.clear();
    EXPECT_EQ(
        answersTo(text::cat(R"({"method":"tools/call","params":{"name":"stop_helper","arguments":)",
                            row.arguments, "}}")),
        Messages{answerText("Done.", "null")});
    EXPECT_EQ(bridge.requests,
              Messages{text::cat(R"({"protocolVersion":1,"token":"tok","sessionID":"ses",)",
                                 R"("method":"stop_helper")", row.sent, "}")})
        << row.arguments;
  }
}

TEST_F(Server, EndsAResultWithTheThreadThatAnswered) {
  const std::string call = R"({"method":"tools/call","id":3,"params":{"name":"stop_helper"}})";
  bridge.answers("stop_helper", responseFrom(R"({"kind":"written","threadTag":"T-abc123"})"));
  EXPECT_EQ(answersTo(call), Messages{answerText(R"x(Done.\n\n(thread T-abc123))x", "3")});
  bridge.answers("stop_helper", responseFrom(R"({"kind":"written","threadTag":""})"));
  EXPECT_EQ(answersTo(call), Messages{answerText("Done.", "3")});
  bridge.answers("stop_helper", responseFrom(R"({"kind":"error","threadTag":"T-abc123"})"));
  EXPECT_EQ(answersTo(call),
            Messages{answerText(R"x(Quillpost teamwork error.\n\n(thread T-abc123))x", "3")})
      << "what the app refuses is a result too";
}

TEST_F(Server, AnswersACallThatCannotBeMadeInWords) {
  const std::string call = R"({"method":"tools/call","id":3,"params":{"name":"read_plan"}})";
  bridge.otherwise = [](const TeamworkRequest&) { return FakeAnswer(); };
  EXPECT_EQ(answersTo(call),
            Messages{answerText(
                "Couldn't reach the Quillpost app just now — a transient local connection "
                "hiccup, NOT a sign your Thread ended or that you left it. Your Thread is still "
                "active. Wait a moment and retry this call.",
                "3")});
  bridge.token = "";
  EXPECT_EQ(answersTo(call),
            Messages{answerText("This terminal isn't in a Thread, so there is no board to read. "
                                "Open this terminal inside a Quillpost Thread and try again.",
                                "3")});
}

TEST_F(Server, RemembersFromOneCallToTheNext) {
  bridge.answers("list_agents", responseFrom(R"({"kind":"empty","rev":42})"));
  bridge.answers("poll_changes", responseFrom(R"({"kind":"empty"})"));
  EXPECT_EQ(answersTo(R"({"method":"tools/call","params":{"name":"list_agents"}})").size(), 1u);
  EXPECT_EQ(answersTo(R"({"method":"tools/call","params":{"name":"wait_for_changes"}})").size(),
            1u);
  EXPECT_TRUE(
      sameText("  0.0  list_agents\n"
               "  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=42 holdMs=20000\n",
               bridge.timeline));
  EXPECT_EQ(server.state().lastSeenRev, 42);
}

TEST_F(Server, GivesMemoryBackAfterAHugeReplyAndGoesOn) {
  bridge.otherwise = [](const TeamworkRequest&) {
    TeamworkResponse response = responseFrom(R"({"kind":"error"})");
    response.message = std::string(std::size_t{4} << 20, 'x');
    return FakeAnswer{.response = response, .bytes = std::size_t{4} << 20};
  };
  const Messages answers = answersTo(R"({"method":"tools/call","params":{"name":"read_task"}})");
  ASSERT_EQ(answers.size(), 1u);
  EXPECT_GT(answers[0].size(), std::size_t{4} << 20);
  EXPECT_EQ(answersTo(ping("1")), Messages{pong("1")});
}

// --- Waiting ------------------------------------------------------------------------------------

constexpr std::string_view nothingToWaitOn =
    "There is nothing to wait on — this board has no work and no agents to change it. Your Thread "
    "is still active. Call list_tasks to see the board as it stands.";

TEST_F(Server, WaitsUnderBothNames) {
  for (const std::string_view name : {std::string_view(waitForChanges), waitForTasks}) {
    bridge.answers("poll_changes", responseFrom(R"({"kind":"empty","threadTag":"T-abc123"})"));
    EXPECT_EQ(
        answersTo(text::cat(R"({"method":"tools/call","id":3,"params":{"name":")", name, R"("}})")),
        Messages{answerText(text::cat(nothingToWaitOn, R"x(\n\n(thread T-abc123))x"), "3")})
        << name;
  }
}

TEST_F(Server, ReportsProgressOfAWaitUnderItsToken) {
  struct Row {
    std::string_view meta;
    std::optional<std::string_view> token;
  };
  for (const Row& row : {
           Row{R"({"progressToken":"p1"})", R"("p1")"},
           Row{R"({"progressToken":18446744073709551615})", "18446744073709551615"},
           Row{R"({"progressToken":null})", "null"},
           Row{R"({"progressToken":{"a":[1]}})", R"({"a":[1]})"},
           Row{R"({"other":1})", std::nullopt},
           Row{R"(["progressToken"])", std::nullopt},
           Row{"null", std::nullopt},
       }) {
    bridge.answers("poll_changes", responseFrom(R"({"kind":"wake"})"), 5s);
    bridge.answers("poll_changes", responseFrom(R"({"kind":"empty"})"));
    Messages expected;
    for (int count = 1; row.token && count <= 2; ++count) {
      expected.push_back(
          text::cat(R"({"jsonrpc":"2.0","method":"notifications/progress","params":)",
                    R"({"progressToken":)", *row.token, R"(,"progress":)", count,
                    R"(,"message":"Listening for changes on the board…"}})", "\n"));
    }
    expected.push_back(answerText(nothingToWaitOn, "3"));
    EXPECT_EQ(answersTo(text::cat(R"({"method":"tools/call","id":3,"params":)",
                                  R"({"name":"wait_for_changes","_meta":)", row.meta, "}}")),
              expected)
        << row.meta;
  }
}

TEST_F(Server, ReportsNoProgressOfAnyOtherCall) {
  EXPECT_EQ(answersTo(R"({"method":"tools/call","id":3,"params":{"name":"stop_helper",)"
                      R"("_meta":{"progressToken":1}}})"),
            Messages{answerText("Done.", "3")});
}

TEST_F(Server, WaitsWithTheBudgetOfTheClientItWasTold) {
  environment.variables["QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS"] = "600";
  bridge.otherwise = [](const TeamworkRequest& request) {
    return FakeAnswer{.took = request.method == pollChanges ? 40s : 0s};
  };
  const std::string wait = R"({"method":"tools/call","params":{"name":"wait_for_changes"}})";
  EXPECT_EQ(answersTo(wait).size(), 1u);
  EXPECT_EQ(clock.elapsed(), 40s) << "an unknown client is held for 30 seconds";
  answersTo(R"({"method":"initialize","params":{"clientInfo":{"name":"codex"}}})");
  EXPECT_EQ(answersTo(wait).size(), 1u);
  EXPECT_GE(clock.elapsed(), 640s);
}

// --- The read loop ------------------------------------------------------------------------------

TEST_F(Server, AnswersTheSameHoweverTheBytesArrive) {
  const std::string input = text::cat(ping("1"), "\n\n", ping("2"), "\r\nnot json\n[1]\n",
                                      ping(R"("é…😀")"), "\n", ping("4"));
  const Messages expected = {pong("1"), pong("2"), pong(R"("é…😀")"), pong("4")};
  for (const std::size_t pieceBytes : {1u, 2u, 3u, 7u, 50u, 1000u})
    EXPECT_EQ(answersToInput(FakeInput(input, pieceBytes)), expected) << pieceBytes;
  EXPECT_EQ(answersToInput(FakeInput({ping("1") + "\n" + ping("2"), "\n"})),
            (Messages{pong("1"), pong("2")}));
}

TEST_F(Server, EndsQuietlyWithItsInput) {
  for (const std::string_view input : {"", "\n", "\n\n\n", "{", "not json"})
    EXPECT_EQ(answersToInput(FakeInput(input, 1)), Messages()) << input;
}

TEST_F(Server, TakesAHundredThousandLinesInOnePiece) {
  constexpr int count = 100'000;
  std::string input;
  for (int i = 0; i < count; ++i) input += ping(std::to_string(i)) + "\n";
  const Messages answers = answersToInput(FakeInput({std::move(input)}));
  ASSERT_EQ(answers.size(), std::size_t{count});
  for (int i = 0; i < count; ++i)
    ASSERT_EQ(answers[static_cast<std::size_t>(i)], pong(std::to_string(i)));
}

TEST_F(Server, TakesLinesOfManyMegabytes) {
  const std::string huge(std::size_t{8} << 20, 'x');
  const std::string id = text::cat("\"", huge, "\"");
  const std::string input = text::cat(ping(id), "\n", huge, "\n{\"a\":\"", huge, "\n", ping("2"));
  const Messages answers = answersToInput(FakeInput(input, 65536));
  ASSERT_EQ(answers.size(), 2u);
  EXPECT_TRUE(answers[0] == pong(id));
  EXPECT_EQ(answers[1], pong("2"));
}

TEST_F(Server, SurvivesAnyDepthOfNesting) {
  constexpr std::size_t million = 1'000'000;
  const auto nested = [](std::size_t levels, std::string_view open, std::string_view close) {
    std::string text;
    for (std::size_t i = 0; i < levels; ++i) text += open;
    for (std::size_t i = 0; i < levels; ++i) text += close;
    return text;
  };
  const std::string arrays = nested(million, "[", "]");
  std::string objects = nested(million, R"({"a":)", "");
  objects += "1" + nested(million, "", "}");
  for (const std::string& deep :
       {arrays, objects, text::cat(R"({"method":"ping","id":)", arrays, "}"),
        text::cat(R"({"method":"ping","id":)", objects, "}"), nested(million, "[", ""),
        nested(million, R"({"a":)", ""), text::cat(R"({"id":)", nested(million, "[", "")),
        nested(million, "", "}")}) {
    EXPECT_EQ(answersTo(deep), Messages());
  }
  const std::string deepId = nested(499, "[", "]");
  EXPECT_EQ(answersTo(ping(deepId)), Messages{pong(deepId)}) << "500 levels are read";
  EXPECT_EQ(answersTo(ping("1")), Messages{pong("1")});
}

TEST_F(Server, TakesEveryByteWithoutFalling) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  std::string input = all + "\n";
  const std::string good = ping("1");
  for (std::size_t i = 0; i < good.size(); ++i) {
    for (const char byte : {'\0', '\xff', '"', '{', '\\'}) {
      std::string bad = good;
      bad.insert(i, 1, byte);
      input += bad + "\n";
    }
    input += good.substr(0, i) + "\n";
  }
  input += ping("2");
  const Messages answers = answersToInput(FakeInput(input, 4096));
  ASSERT_FALSE(answers.empty());
  EXPECT_EQ(answers.back(), pong("2"));
}

// --- A client that leaves -----------------------------------------------------------------------

struct LeavingClient : ::testing::Test {
  FakeClock clock;
  FakeBridge bridge{clock};
  testing::FakeEnvironment environment;
  FakeOutput output;
  TeamworkStdioServer server{
      "ses", {.clock = clock, .environment = environment, .bridge = bridge}, output};
};

TEST_F(LeavingClient, EndsTheLoopAtTheFirstMessageItDoesNotRead) {
  output.room = 2;
  FakeInput input({ping("1") + "\n" + ping("2") + "\n" + ping("3") + "\n" + ping("4") + "\n",
                   ping("5") + "\n"});
  server.run(input);
  EXPECT_EQ(output.messages, (Messages{pong("1"), pong("2")}));
  EXPECT_EQ(output.refused, 1);
  EXPECT_EQ(input.reads, 1) << "what it sent meanwhile is not read any more";
}

TEST_F(LeavingClient, EndsAWaitAtTheFirstProgressItDoesNotRead) {
  output.room = 1;
  bridge.otherwise = [](const TeamworkRequest& request) {
    return FakeAnswer{.took = std::chrono::milliseconds(request.holdMs.value_or(0))};
  };
  FakeInput input({text::cat(R"({"method":"tools/call","id":3,"params":{"name":)",
                             R"("wait_for_changes","arguments":{"sinceRev":7},)",
                             R"("_meta":{"progressToken":1}}})", "\n"),
                   ping("4") + "\n"});
  server.run(input);
  ASSERT_EQ(output.messages.size(), 1u);
  EXPECT_NE(output.messages[0].find(R"("progress":1)"), std::string::npos);
  EXPECT_TRUE(
      sameText("  0.0  heartbeat\n"
               "  0.0  poll_changes sinceRev=7 holdMs=5000\n",
               bridge.timeline));
  EXPECT_EQ(output.refused, 1);
  EXPECT_EQ(input.reads, 1);
}

/// An input whose client is quiet after every line.
struct QuietInput final : Input {
  explicit QuietInput(std::deque<std::string> lines) : lines_(std::move(lines)) {}

  std::size_t read(std::span<char> room) override { return lines_.read(room); }
  bool comesWithin(Duration atMost) override {
    asked.push_back(atMost);
    return false;
  }

  std::vector<Duration> asked;

 private:
  FakeInput lines_;
};

TEST_F(Server, WaitsForQuietBeforeItGivesBackWhatSomethingLargeTook) {
  constexpr std::size_t large = 2 << 20;
  const std::string call = R"({"method":"tools/call","params":{"name":"claim_task"},"id":1})"
                           "\n";
  const std::string longPing = ping("\"" + std::string(large, 'x') + "\"") + "\n";
  struct Row {
    std::string_view name;
    std::size_t replyBytes;
    std::string line;
    std::size_t asked;
  };
  const Row rows[] = {
      {"a small reply", large - 1, call, 0},
      {"a large reply", large, call, 1},
      {"a large line", 0, longPing, 1},
      {"a large reply, then something else", large, call + ping("3") + "\n", 0},
  };
  for (const Row& row : rows) {
    bridge.otherwise = [&](const TeamworkRequest&) {
      return FakeAnswer{.response = responseFrom(R"({"kind":"written"})"), .bytes = row.replyBytes};
    };
    QuietInput input({row.line, ping("2") + "\n"});
    server.run(input);
    EXPECT_GE(output.take().size(), 2U) << row.name;
    EXPECT_EQ(input.asked, std::vector<Duration>(row.asked, 5ms)) << row.name;
  }
}

}  // namespace
}  // namespace quillpost
