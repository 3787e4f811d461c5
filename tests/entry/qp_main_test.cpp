// The command line's program as a shell starts it: its streams, its statuses, its memory, and with
// whom a wait ends.

#include "base/files.h"
#include "base/text.h"
#include "harness/json_object.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"
#include "harness/terminal.h"
#include "model/coding.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillpost {
namespace {

using namespace std::chrono_literals;
using testing::Ending;
using testing::Process;
using testing::runToEnd;
using testing::ScriptedApp;
using testing::TempDir;
using testing::Terminal;

constexpr std::string_view quietFeed =
    R"({"kind":"changes","changes":{"rev":7,"changed":false,"goal":"","goalComplete":false,)"
    R"("pendingGoalComplete":false,"changeKinds":[],"tasks":[]}})";

bool comesTrue(const std::function<bool()>& condition, Duration patience = 60s) {
  SteadyClock clock;
  const Instant deadline = clock.now() + patience;
  while (!condition() && clock.now() < deadline) clock.sleepFor(10ms);
  return condition();
}

class QpProgram : public ::testing::Test {
 protected:
  using Variables = std::map<std::string, std::string>;

  /// A quiet board that answers each poll at once: a wait then looks about itself every two seconds
  /// rather than every twenty.
  QpProgram() {
    app.otherwise([](const std::string& request) {
      const bool polls = request.find("poll_changes") != std::string::npos;
      return testing::reply(polls ? quietFeed : R"({"kind":"written","message":"Taken.","rev":7})");
    });
  }

  Variables seat() const {
    return {{"HOME", home.path()},
            {"PATH", text::cat(files::parentPath(testing::commandProgram()), ":/usr/bin:/bin")},
            {"XDG_RUNTIME_DIR", home.path()},
            {"QUILLPOST_SESSION_ID", "ses-4711"},
            {"QUILLPOST_COLLAB_TOKEN", "start"},
            {"QUILLPOST_COLLAB_SOCKET", app.path()}};
  }

  Ending run(std::vector<std::string> arguments, Variables environment,
             const std::string& input = "") {
    return runToEnd({testing::commandProgram(), std::move(arguments), std::move(environment)},
                    input);
  }
  Ending run(std::vector<std::string> arguments) { return run(std::move(arguments), seat()); }

  /// A command for bash in this seat.
  Ending shell(const std::string& command) {
    return runToEnd({"/bin/bash", {"-c", command}, seat()});
  }

  /// Waits for the process whose number the file will hold, and gives it.
  pid_t started() {
    EXPECT_TRUE(
        comesTrue([this] { return testing::readFile(home.pathOf("pid")).ends_with('\n'); }));
    return std::stoi(testing::readFile(home.pathOf("pid")));
  }

  /// Waits until a wait has sent its first poll.
  void awaitPoll() {
    EXPECT_TRUE(comesTrue([this] { return requestsOf("poll_changes") > 0; }));
  }
  std::size_t requestsOf(std::string_view method) const {
    std::size_t count = 0;
    for (const std::string& request : app.requests())
      if (request.find(method) != std::string::npos) ++count;
    return count;
  }

  static void expectGone(pid_t pid) {
    EXPECT_TRUE(comesTrue([pid] { return !testing::isRunning(pid); })) << "still waits";
  }

  /// That a wait is gone soon after its end has come, and has renewed nothing on its way.
  void expectGoneAfter(pid_t pid, const std::function<void()>& end) {
    const std::size_t renewed = requestsOf("heartbeat");
    end();
    expectGone(pid);
    // Connections are taken in the order in which they came: with this one, all before it are in.
    EXPECT_EQ(run({"unwatch", "t1"}).status, 0);
    EXPECT_EQ(requestsOf("heartbeat"), renewed);
  }

  TempDir home;
  ScriptedApp app{home.pathOf("a.sock")};
};

TEST_F(QpProgram, MakesOneCallAndEnds) {
  const Ending ending = run({"unwatch", "t1"});
  EXPECT_EQ(ending.status, 0);
  EXPECT_TRUE(ending.output.starts_with("Taken.\n")) << ending.output;
  EXPECT_EQ(ending.errors, "");
  ASSERT_EQ(app.requests().size(), 1u);
  const std::optional<TeamworkRequest> request = decodeRequest(app.requests().front());
  ASSERT_TRUE(request);
  EXPECT_EQ(request->token, "start");
  EXPECT_EQ(request->sessionID, "ses-4711");
  EXPECT_EQ(request->method, "unwatch_task");
}

TEST_F(QpProgram, ReadsATextFromStandardInputAsItIs) {
  const std::string text = "`rm -rf` $(x) \"q\" \\n\nline two\n";
  EXPECT_EQ(run({"comment", "t1", "-"}, seat(), text).status, 0);
  EXPECT_EQ(decodeRequest(app.requests().front()).value_or(TeamworkRequest()).note,
            text.substr(0, text.size() - 1));
  EXPECT_EQ(run({"comment", "t1", "-"}, seat(), "\xff").status, 2);
  EXPECT_EQ(run({"comment", "t1", "-"}, seat(), std::string(2 << 20, 'x')).status, 2);
  home.write("brief.md", "one\ntwo\n");
  EXPECT_EQ(run({"add", "T", "--body-file", home.pathOf("brief.md")}).status, 0);
  EXPECT_EQ(decodeRequest(app.requests().back()).value_or(TeamworkRequest()).body, "one\ntwo");
}

TEST_F(QpProgram, NeedsNothingForItsHelp) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"--help"}, {"brief"}, {"help", "wait"}, {"--version"}}) {
    const Ending ending = run(words, {});
    EXPECT_EQ(ending.status, 0);
    EXPECT_NE(ending.output, "");
    EXPECT_EQ(ending.errors, "");
  }
  EXPECT_TRUE(app.connections().empty());
  EXPECT_FALSE(std::filesystem::exists(home.pathOf("quillpost")));
}

TEST_F(QpProgram, SaysThatThereIsNoBoardByItsStatus) {
  EXPECT_EQ(run({"tasks"}, {{"HOME", home.path()}}).status, 4);
  Variables away = seat();
  away["QUILLPOST_COLLAB_SOCKET"] = home.pathOf("nobody.sock");
  EXPECT_EQ(run({"tasks"}, away).status, 4);
  EXPECT_EQ(run({"doctor"}, away).status, 4);
  EXPECT_EQ(run({"guard", "x"}, away).status, 0);
}

TEST_F(QpProgram, EndsQuietlyWhenItsReaderGoesAway) {
  const Ending ending = shell("qp --help | head -1; qp help update | head -1");
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.errors, "");
  EXPECT_TRUE(ending.output.starts_with("qp VERB")) << ending.output;
  // More than a pipe holds, so that the rest is written when nobody reads any more.
  app.otherwise([](const std::string&) {
    return testing::reply(
        text::cat(R"({"kind":"written","message":"One.\n)", std::string(500'000, 'x'), "\"}"));
  });
  const Ending large = shell("qp unwatch t1 | head -1; qp unwatch t1 --json | head -c 3");
  EXPECT_EQ(large.output, "One.\n{\"t");
  EXPECT_EQ(large.errors, "");
}

TEST_F(QpProgram, SaysThatItCannotWrite) {
  const Ending ending = shell("[ -e /dev/full ] || exit 9; qp unwatch t1 >/dev/full");
  if (ending.status == 9) return;
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.errors, "qp: standard output cannot be written\n");
}

TEST_F(QpProgram, FollowsNoLongerThanItsReader) {
  app.otherwise([](const std::string&) {
    std::string news(quietFeed);
    news.insert(news.size() - 2, R"(,"wakeReasons":[{"kind":"k","summary":"t1 is READY"}])");
    return testing::reply(news);
  });
  const Ending ending = shell("qp wait --follow | head -1");
  EXPECT_EQ(ending.output, "r7 woken: t1 is READY\n");
  EXPECT_EQ(ending.errors, "");
}

TEST_F(QpProgram, WorksWithItsStandardDescriptorsClosed) {
  Process process({"/bin/bash", {"-c", "exec qp unwatch t1 <&- >&- 2>&-"}, seat()});
  const Ending ending = endOf(process);
  EXPECT_EQ(ending.output, "");
  EXPECT_EQ(app.requests().size(), 1u);
}

TEST_F(QpProgram, KeepsOneMemoryForManyAtOnce) {
  constexpr int64_t many = 32;
  std::atomic<int64_t> revision = 100;
  app.otherwise([&](const std::string&) {
    return testing::reply(text::cat(R"({"kind":"written","rev":)", ++revision, "}"));
  });
  std::vector<std::unique_ptr<Process>> commands;
  for (int64_t i = 0; i < many; ++i)
    commands.push_back(std::make_unique<Process>(
        testing::Command{testing::commandProgram(), {"unwatch", "t1"}, seat()}));
  for (const std::unique_ptr<Process>& command : commands) EXPECT_EQ(command->waitForExit(), 0);
  std::string kept;
  for (const auto& entry : std::filesystem::directory_iterator(home.pathOf("quillpost")))
    kept += testing::readFile(entry.path());
  EXPECT_NE(kept.find(R"("rev":132)"), std::string::npos) << kept;
}

TEST_F(QpProgram, GoesOnWhereNothingCanBeRemembered) {
  // A file that may not grow is as good as a full disk.
  const Ending ending =
      shell("ulimit -f 0; trap '' XFSZ; qp unwatch t1 | cat; exit ${PIPESTATUS[0]}");
  EXPECT_EQ(ending.status, 0) << ending.errors;
  EXPECT_TRUE(ending.output.starts_with("Taken.")) << ending.output;
  EXPECT_EQ(ending.errors, "");
}

TEST_F(QpProgram, GoesOnWhenTheDiskUnderItsMemoryIsFull) {
  // A small file system of its own where the machine lets this user make one; elsewhere no file may
  // grow, which fails in the same place.
  std::filesystem::create_directories(home.pathOf("full"));
  home.write("fill.sh",
             "mount -t tmpfs -o size=16k none ~/full || exit 1\n"
             "mkdir -m 700 ~/full/quillpost\n"
             "cat /dev/zero >~/full/fill 2>~/full-errors\n"
             "XDG_RUNTIME_DIR=~/full qp unwatch t1 then unwatch t2 || exit\n"
             "ls ~/full/quillpost\n");
  const Ending ending = shell(
      "for own in 'unshare -m' 'unshare -rm'; do\n"
      "  if $own mount -t tmpfs none ~/full 2>/dev/null; then exec $own sh ~/fill.sh; fi\n"
      "done\n"
      "mkdir -m 700 ~/full/quillpost; trap '' XFSZ; ulimit -f 0\n"
      "XDG_RUNTIME_DIR=~/full qp unwatch t1 then unwatch t2 | cat; ls ~/full/quillpost");
  EXPECT_EQ(ending.status, 0) << ending.errors;
  EXPECT_EQ(ending.errors, "");
  EXPECT_TRUE(ending.output.starts_with("[1/2] unwatch_task t1\nTaken.\n")) << ending.output;
  EXPECT_TRUE(ending.output.ends_with("\n")) << ending.output;
  EXPECT_EQ(ending.output.find("seat-"), std::string::npos) << "nothing half is left";
}

// --- With whom a wait ends
// ------------------------------------------------------------------------

TEST_F(QpProgram, WaitsInTheBackgroundUntilItsWindowIsClosed) {
  Terminal terminal(Terminal::Kind::interactive, seat());
  terminal.type("qp wait >~/out 2>&1 & echo $! >~/pid");
  const pid_t pid = started();
  awaitPoll();
  EXPECT_TRUE(testing::isRunning(pid));
  expectGoneAfter(pid, [&] { terminal.close(); });
}

TEST_F(QpProgram, WaitsUntilTheShellThatStartedItIsKilled) {
  Terminal terminal(Terminal::Kind::interactive, seat());
  terminal.type("qp wait >~/out 2>&1 & echo $! >~/pid");
  const pid_t pid = started();
  awaitPoll();
  expectGoneAfter(pid, [&] { terminal.killShell(); });
}

TEST_F(QpProgram, WaitsNoLongerThanItsWindowThoughHangUpsAreIgnored) {
  Terminal terminal(Terminal::Kind::interactive, seat());
  terminal.type("nohup qp wait >~/out 2>&1 </dev/null & echo $! >~/pid");
  const pid_t pid = started();
  awaitPoll();
  expectGoneAfter(pid, [&] { terminal.close(); });
}

TEST_F(QpProgram, WaitsNoLongerThanItsShellThoughItHasASessionOfItsOwn) {
  // Without job control setsid becomes the wait itself, and its parent is the shell.
  Process shell({"/bin/bash",
                 {"-c", "setsid qp wait >~/out 2>&1 </dev/null & echo $! >~/pid; sleep 100; :"},
                 seat()});
  const pid_t pid = started();
  awaitPoll();
  EXPECT_TRUE(testing::isRunning(pid));
  expectGoneAfter(pid, [&] { shell.signal(SIGKILL); });
}

TEST_F(QpProgram, DoesNotWaitWhenWhoeverStartedItHasGoneAlready) {
  // At a prompt setsid starts the wait and ends at once.
  Terminal terminal(Terminal::Kind::interactive, seat());
  terminal.type("setsid sh -c 'echo $$ >~/pid; exec qp wait >~/out 2>&1 </dev/null'");
  expectGone(started());
}

TEST_F(QpProgram, WaitsNoLongerThanTheHarnessOfTheShellThatStartedIt) {
  // The shell outlives the harness, because it waits for its command.
  Process harness({"/bin/bash",
                   {"-c", "bash -c 'qp wait >~/out 2>&1 </dev/null & echo $! >~/pid; wait; :'; :"},
                   seat()});
  const pid_t pid = started();
  awaitPoll();
  expectGoneAfter(pid, [&] { harness.signal(SIGKILL); });
}

TEST_F(QpProgram, WaitsForAShellThatIsTheFirstProcessOfItsContainer) {
  // Where the machine lets this user make one; elsewhere for any shell.
  home.write("first.sh", "QUILLPOST_SESSION_ID=ses-4711 qp wait --timeout 1; exit $?\n");
  const Ending ending = shell(
      "unset QUILLPOST_SESSION_ID\n"
      "for own in 'unshare -pf --mount-proc' 'unshare -rpf --mount-proc'; do\n"
      "  if $own true 2>/dev/null; then exec $own bash ~/first.sh; fi\n"
      "done\n"
      "exec bash ~/first.sh");
  EXPECT_EQ(ending.status, 3) << ending.errors;
}

TEST_F(QpProgram, WaitsNoLongerThanItsReader) {
  auto reader =
      std::make_unique<Process>(testing::Command{testing::commandProgram(), {"wait"}, seat()});
  awaitPoll();
  reader->closeOutput();
  EXPECT_EQ(reader->waitForExit(60s), 129);
}

TEST_F(QpProgram, EndsAWaitAtASignal) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Process wait({testing::commandProgram(), {"wait"}, seat()});
    const std::size_t before = requestsOf("poll_changes");
    EXPECT_TRUE(comesTrue([&] { return requestsOf("poll_changes") > before; }));
    wait.signal(signal);
    EXPECT_EQ(wait.waitForExit(), 128 + signal);
  }
}

TEST_F(QpProgram, CompletesWithinAMomentThoughTheBoardIsSilent) {
  app.otherwise([](const std::string&) { return testing::stall(); });
  SteadyClock clock;
  const Instant before = clock.now();
  const Ending ending = run({"__complete", "wait", "t1", "t"});
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.output, "then\n");
  EXPECT_LT(clock.now() - before, 20s) << "far less than a silent board is waited for";
}

}  // namespace
}  // namespace quillpost
