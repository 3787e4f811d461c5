// The program while the system's calls fail it: each call it makes, each way that call can fail,
// and what becomes of the conversation. broken_calls/preload.c stands between the two.

#include "base/text.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::Process;
using testing::ScriptedApp;
using testing::TempDir;
using text::cat;
using Variables = std::map<std::string, std::string>;

constexpr std::string_view ping1 = R"({"jsonrpc":"2.0","result":{},"id":1})";
constexpr std::string_view ping3 = R"({"jsonrpc":"2.0","result":{},"id":3})";
constexpr std::string_view hookLine =
    "Quillpost hook, automatic: board changed, call wait_for_changes, act on wakeReasons, "
    "then keep listening\n";

std::string call(int64_t id) {
  return cat(R"({"id":)", id, R"(,"method":"tools/call","params":{"name":"read_plan"}})", "\n");
}
std::string answer(int64_t id) {
  return cat(R"({"jsonrpc":"2.0","result":{"content":[{"type":"text","text":"hello"}],)",
             R"("isError":false},"id":)", id, "}");
}

const std::string conversation =
    cat(R"({"id":1,"method":"ping"})", "\n", call(2), R"({"id":3,"method":"ping"})", "\n");
const std::string clean = cat(ping1, "\n", answer(2), "\n", ping3, "\n");

/// What came of one run.
struct Ending {
  std::optional<int> status;
  std::string output, errors;
  std::vector<std::string> requests;
  /// How often each call was made; what was left open, closed without being open, and opened for
  /// writing.
  std::map<std::string, long> made;
};

class BrokenCalls : public ::testing::Test {
 protected:
  BrokenCalls() {
    home.write("a.token", "from-file\n");
    app.otherwise([](const std::string& request) {
      const bool isHook = request.find("wake_query") != std::string::npos;
      return testing::reply(isHook ? R"({"kind":"wake","wakePending":true})"
                                   : R"({"kind":"empty","message":"hello"})");
    });
  }

  Variables seat() const {
    return {{"HOME", home.path()},
            {"QUILLPOST_SESSION_ID", "S1"},
            {"QUILLPOST_COLLAB_TOKEN", "from-start"},
            {"QUILLPOST_COLLAB_SOCKET", app.path()}};
  }

  /// Runs the program to its end with these faults.
  Ending run(const std::string& faults, const std::string& input = conversation,
             std::vector<std::string> arguments = {}, std::optional<Variables> variables = {}) {
    Variables environment = variables.value_or(seat());
    environment["LD_PRELOAD"] = QUILLPOST_FAULTS_LIBRARY;
    environment["QUILLPOST_FAULTS"] = faults;
    environment["QUILLPOST_FAULTS_LOG"] = home.pathOf("log");
    const std::size_t before = app.requests().size();
    Ending ending;
    Process process({testing::sharedSeatProgram(), std::move(arguments), std::move(environment)});
    process.write(input);
    process.closeInput();
    ending.status = process.waitForExit();
    ending.output = process.restOfOutput();
    ending.errors = process.errors();
    const std::vector<std::string> all = app.requests();
    ending.requests.assign(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    std::istringstream log(testing::readFile(home.pathOf("log")));
    std::string name;
    for (long count = 0; log >> name >> count;) ending.made[name] = count;
    EXPECT_EQ(ending.made["left"], 0) << "descriptors left open: " << faults;
    EXPECT_EQ(ending.made["bad"], 0) << "descriptors closed twice: " << faults;
    return ending;
  }
  Ending runHook(const std::string& faults) { return run(faults, "{}", {"--wake-stop-hook"}); }

  TempDir home;
  ScriptedApp app{home.pathOf("a.sock")};
};

std::string fails(std::string_view call, std::string_view when, int error) {
  return cat(call, ":", when, ":e", error);
}

/// What becomes of the conversation.
enum class Then {
  nothing,      // it goes as if nothing had happened
  startToken,   // as ever, with the token given at start
  unreachable,  // the call is answered in words, everything else as ever
  endAtOnce,    // the program ends quietly before any answer
  endAfterOne   // the program ends quietly after the first answer
};

struct Row {
  std::string faults;
  Then then;
};

void expectThen(const Row& row, const Ending& ending) {
  SCOPED_TRACE(row.faults);
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.errors, "");
  switch (row.then) {
    case Then::nothing:
    case Then::startToken: {
      const std::string_view token = row.then == Then::nothing ? "from-file" : "from-start";
      EXPECT_EQ(ending.output, clean);
      ASSERT_FALSE(ending.requests.empty());
      EXPECT_NE(ending.requests.back().find(cat("\"token\":\"", token, "\"")), std::string::npos);
      break;
    }
    case Then::unreachable:
      EXPECT_TRUE(ending.output.starts_with(cat(ping1, "\n"))) << ending.output;
      EXPECT_TRUE(ending.output.ends_with(cat("\n", ping3, "\n"))) << ending.output;
      EXPECT_NE(ending.output.find("Couldn't reach the Quillpost app just now"), std::string::npos)
          << ending.output;
      break;
    case Then::endAtOnce:
      EXPECT_EQ(ending.output, "");
      break;
    case Then::endAfterOne:
      EXPECT_EQ(ending.output, cat(ping1, "\n"));
      break;
  }
}

TEST_F(BrokenCalls, AreNotThereUnlessAskedFor) {
  const Ending ending = run("");
  expectThen({"", Then::nothing}, ending);
  for (const char* made : {"stdin", "stdout", "socket", "setsockopt", "connect", "send", "recv",
                           "shutdown", "close", "open", "fstat", "readfile"}) {
    EXPECT_GT(ending.made.at(made), 0) << made << " passes by unseen";
  }
}

TEST_F(BrokenCalls, NoFileIsOpenedForWriting) {
  const std::string everyTool = cat(R"({"id":1,"method":"tools/list"})", "\n", conversation);
  EXPECT_EQ(run("", everyTool).made.at("writable"), 0);
  EXPECT_EQ(runHook("").made.at("writable"), 0);
  Variables variables = seat();
  variables.erase("QUILLPOST_COLLAB_SOCKET");
  EXPECT_EQ(run("", conversation, {}, variables).made.at("writable"), 0);
}

TEST_F(BrokenCalls, AnInterruptionAtAnyPlaceIsNotNoticed) {
  const std::map<std::string, long> made = run("").made;
  for (const char* name : {"stdin", "stdout", "connect", "send", "recv", "open", "readfile"}) {
    for (long nth = 1; nth <= made.at(name); ++nth) {
      const Row row = {fails(name, cat(nth), EINTR), Then::nothing};
      const Ending ending = run(row.faults);
      expectThen(row, ending);
      EXPECT_EQ(ending.made.at(name), made.at(name) + 1) << row.faults;
    }
    const Row everywhere = {fails(name, "odd", EINTR), Then::nothing};
    expectThen(everywhere, run(everywhere.faults));
  }
  // A connection that was interrupted and is made all the same; a close that is never repeated.
  for (const std::string& faults : {cat("connect:1:d", EINTR), cat("close:1+:d", EINTR)}) {
    const Ending ending = run(faults);
    expectThen({faults, Then::nothing}, ending);
    EXPECT_EQ(ending.made.at("close"), made.at("close")) << faults;
  }
}

TEST_F(BrokenCalls, AnyPartOfAMessageMayBeTakenAtATime) {
  constexpr int64_t count = 60;
  std::string input, expected;
  for (int64_t id = 1; id <= count; ++id) {
    input += call(id);
    expected += answer(id) + "\n";
  }
  const std::size_t request = run("").requests.front().size();
  // The cap grows by one byte with every call, so that each size up to the whole comes once.
  for (const std::string faults :
       {"stdin:1+:sn", "stdout:1+:sn", "send:1+:sn", "recv:1+:sn", "readfile:1+:sn", "stdin:1+:s1",
        "stdout:1+:s1", "send:1+:s1", "recv:1+:s1", "readfile:1+:s1"}) {
    const Ending ending = run(faults, input);
    EXPECT_EQ(ending.output, expected) << faults;
    EXPECT_EQ(ending.requests.size(), static_cast<std::size_t>(count)) << faults;
    for (const std::string& sent : ending.requests) EXPECT_EQ(sent.size(), request) << faults;
    const std::string name = faults.substr(0, faults.find(':'));
    const std::size_t largest = name == "send" ? request : answer(count).size();
    if (faults.ends_with("sn") && (name == "send" || name == "stdout")) {
      EXPECT_GT(ending.made.at(name), static_cast<long>(largest)) << "not every size: " << faults;
    }
  }
}

TEST_F(BrokenCalls, OfTheFirstTryAreMadeGoodByTheSecond) {
  std::vector<Row> rows;
  const std::vector<std::pair<const char*, std::vector<int>>> failures = {
      {"socket", {EMFILE, ENFILE, EACCES, ENOBUFS}},
      {"connect", {ENOENT, EACCES, ECONNREFUSED, EAGAIN, ECONNRESET, EMFILE}},
      {"send", {EPIPE, ECONNRESET, EAGAIN, ENOBUFS}},
      {"recv", {ECONNRESET, EAGAIN, EIO}},
  };
  for (const auto& [name, errors] : failures)
    for (const int error : errors) rows.push_back({fails(name, "1", error), Then::nothing});
  for (const char* name : {"send", "recv"}) {
    rows.push_back({cat(name, ":1:z"), Then::nothing});
    rows.push_back({cat(name, ":1:s5,", fails(name, "2", EAGAIN)), Then::nothing});
    rows.push_back({cat(name, ":1:s5,", name, ":2:z"), Then::nothing});
  }
  const std::map<std::string, long> made = run("").made;
  for (const Row& row : rows) {
    const Ending ending = run(row.faults);
    expectThen(row, ending);
    EXPECT_EQ(ending.made.at("socket"), made.at("socket") + 1) << row.faults;
  }
}

TEST_F(BrokenCalls, OfEveryTryArePutIntoWords) {
  const std::vector<Row> rows = {
      {fails("socket", "1+", EMFILE), Then::unreachable},
      {fails("connect", "1+", ENOENT), Then::unreachable},
      {fails("connect", "1+", EACCES), Then::unreachable},
      {fails("connect", "1+", EAGAIN), Then::unreachable},
      {fails("send", "1+", EPIPE), Then::unreachable},
      {cat("send:odd:s5,", fails("send", "even", EAGAIN)), Then::unreachable},
      {"send:1+:z", Then::unreachable},
      {fails("recv", "1+", ECONNRESET), Then::unreachable},
      {cat("recv:odd:s5,", fails("recv", "even", EAGAIN)), Then::unreachable},
      {"recv:odd:s5,recv:even:z", Then::unreachable},
      {"recv:1+:z", Then::unreachable},
  };
  for (const Row& row : rows) {
    const Ending ending = run(row.faults);
    expectThen(row, ending);
    EXPECT_EQ(ending.made.at("socket"), 3) << row.faults;
  }
}

TEST_F(BrokenCalls, ThatNothingDependsOnAreNotNoticed) {
  for (const std::string& faults :
       {fails("setsockopt", "1+", EINVAL), fails("setsockopt", "1+", ENOMEM),
        cat("shutdown:1+:d", ENOTCONN), cat("shutdown:1+:d", EINVAL), cat("close:1+:d", EIO)}) {
    expectThen({faults, Then::nothing}, run(faults));
  }
}

TEST_F(BrokenCalls, OfTheTokenFileLeaveTheTokenOfTheStart) {
  for (const std::string& faults :
       {fails("open", "1+", ENOENT), fails("open", "1+", EACCES), fails("open", "1+", EMFILE),
        fails("open", "1+", EIO), fails("fstat", "1+", EIO), fails("readfile", "1+", EIO),
        cat("readfile:1:s4,", fails("readfile", "2", EIO)), std::string("readfile:1+:z")}) {
    expectThen({faults, Then::startToken}, run(faults));
  }
}

TEST_F(BrokenCalls, OfTheClientEndTheProgramQuietly) {
  for (const Row& row : std::vector<Row>{
           {fails("stdin", "1", EIO), Then::endAtOnce},
           {fails("stdin", "1", EBADF), Then::endAtOnce},
           {"stdin:1:z", Then::endAtOnce},
           {fails("stdout", "1", EPIPE), Then::endAtOnce},
           {fails("stdout", "1", ENOSPC), Then::endAtOnce},
           {"stdout:1:z", Then::endAtOnce},
           {fails("stdout", "2", EPIPE), Then::endAfterOne},
           {fails("stdout", "2", EIO), Then::endAfterOne},
           {cat(fails("stdout", "1", EAGAIN), ",", fails("poll", "1", ENOMEM)), Then::endAtOnce},
           {cat(fails("stdin", "1", EAGAIN), ",", fails("poll", "1", ENOMEM)), Then::endAtOnce},
       }) {
    expectThen(row, run(row.faults));
  }
  // A message that was cut cannot be made good: nothing follows it.
  const Ending cut = run(cat("stdout:1:s5,", fails("stdout", "2", EIO)));
  EXPECT_EQ(cut.status, 0);
  EXPECT_EQ(cut.output, ping1.substr(0, 5));
}

TEST_F(BrokenCalls, OfAClientThatIsNotReadyAreWaitedFor) {
  for (const char* name : {"stdin", "stdout"}) {
    for (const std::string& faults :
         {fails(name, "odd", EAGAIN), cat(fails(name, "1", EAGAIN), ",", fails("poll", "1", EINTR)),
          cat(name, ":odd:s3,", fails(name, "even", EAGAIN))}) {
      const Ending ending = run(faults);
      expectThen({faults, Then::nothing}, ending);
      EXPECT_GT(ending.made.at("poll"), 0) << faults;
    }
  }
}

TEST_F(BrokenCalls, OfTheSearchForTheSocketFindNone) {
  home.makeDirectory(".local/share/Quillpost");
  home.write(".local/share/Quillpost/agent-seat", cat("seat\n", home.pathOf("mcp-7.sock"), "\n"));
  ScriptedApp found(home.pathOf("teamwork-7.sock"));
  found.otherwise(
      [](const std::string&) { return testing::reply(R"({"kind":"empty","message":"hello"})"); });
  Variables variables = seat();
  variables.erase("QUILLPOST_COLLAB_SOCKET");
  EXPECT_EQ(run("", conversation, {}, variables).output, clean);
  EXPECT_EQ(found.requests().size(), 1U);
  for (const std::string& faults :
       {fails("open", "1", EMFILE), fails("open", "1", EACCES), fails("readfile", "1", EIO),
        cat(fails("open", "1", ENOENT), ",", fails("opendir", "1+", EMFILE))}) {
    expectThen({faults, Then::unreachable}, run(faults, conversation, {}, variables));
    EXPECT_EQ(found.requests().size(), 1U) << "it was found all the same: " << faults;
  }
}

TEST_F(BrokenCalls, OfTheHookLetTheAgentStop) {
  for (const std::string& faults :
       {fails("socket", "1", EMFILE), fails("connect", "1", ENOENT), fails("connect", "1", EACCES),
        fails("send", "1", EPIPE), fails("send", "1", EAGAIN), std::string("send:1:z"),
        fails("recv", "1", ECONNRESET), fails("recv", "1", EAGAIN), std::string("recv:1:z"),
        std::string("recv:1:s5,recv:2:z")}) {
    const Ending ending = runHook(faults);
    EXPECT_EQ(ending.status, 0) << faults;
    EXPECT_EQ(cat(ending.output, ending.errors), "") << faults;
    EXPECT_LE(ending.made.at("socket"), 1) << "the hook tries once: " << faults;
  }
}

TEST_F(BrokenCalls, ThatTheHookCanBearStillKeepTheAgentGoing) {
  for (const std::string& faults :
       {std::string(), fails("stdin", "1", EINTR), fails("stdin", "1", EIO),
        fails("stdin", "1", EAGAIN), fails("connect", "odd", EINTR), fails("send", "odd", EINTR),
        fails("recv", "odd", EINTR), std::string("recv:1+:s1"), fails("open", "1", EMFILE),
        fails("stderr", "odd", EINTR), std::string("stderr:1+:s1"), std::string("stderr:1+:sn")}) {
    const Ending ending = runHook(faults);
    EXPECT_EQ(ending.status, 2) << faults;
    EXPECT_EQ(ending.errors, hookLine) << faults;
    EXPECT_EQ(ending.output, "") << faults;
  }
  for (const int error : {EPIPE, EIO, ENOSPC}) {
    const Ending ending = runHook(fails("stderr", "1", error));
    EXPECT_EQ(ending.status, 2) << error;
    EXPECT_EQ(ending.errors, "") << error;
  }
}

}  // namespace
}  // namespace quillpost
