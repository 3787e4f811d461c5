// Agents that can run shell commands and nothing else, on a real board: a whole day's work through
// `qp`, waits that outlive the board, and completion in real shells.

#include "base/files.h"
#include "board/real_seats.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/temp_dir.h"
#include "json/value.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillpost {
namespace {

using namespace std::chrono_literals;
using board::RealBoard;
using testing::Process;

/// One agent: a seat, and bash.
class ShellAgent {
 public:
  explicit ShellAgent(const RealBoard& board) : environment_(board.newSeat()) {
    environment_["HOME"] = home_.path();
    environment_["XDG_RUNTIME_DIR"] = home_.path();
    environment_["PATH"] = text::cat(files::parentPath(testing::commandProgram()),
                                     ":/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin");
  }

  /// What a command prints; it must end with that status.
  std::string run(const std::string& command, int status = 0) const {
    Process process({"/bin/bash", {"-c", command}, environment_});
    process.closeInput();
    std::string printed = process.restOfOutput(board::realPatience);
    EXPECT_EQ(process.waitForExit(board::realPatience), status) << command << "\n"
                                                                << printed << process.errors();
    return printed;
  }

  /// The revision up to which it has been told. A wait that is told to begin there misses no move
  /// after it, however late the machine comes to start it and whatever others remember by then.
  std::string revision() const {
    std::string printed = run("qp wait --timeout 1 --json 2>/dev/null | jq -j .rev");
    EXPECT_FALSE(printed.empty());
    return printed;
  }

  /// A command that goes on.
  std::unique_ptr<Process> start(const std::string& command) const {
    return std::make_unique<Process>(
        testing::Command{"/bin/bash", {"-c", "exec " + command}, environment_});
  }

 private:
  testing::TempDir home_;
  std::map<std::string, std::string> environment_;
};

bool has(const std::string& text, std::string_view words) {
  return text.find(words) != std::string::npos;
}

/// How often the words stand in the text.
std::size_t count(const std::string& text, std::string_view words) {
  std::size_t found = 0;
  for (std::size_t at = text.find(words); at != std::string::npos; at = text.find(words, at + 1))
    ++found;
  return found;
}

/// What a wait that follows the board prints until the words have come.
std::string readUntil(Process& follower, std::string_view words) {
  std::string told;
  while (!has(told, words)) {
    const std::optional<std::string> line = follower.readLine(board::realPatience);
    if (!line) {
      ADD_FAILURE() << "no line with \"" << words << "\" came after: " << told << follower.errors();
      return told;
    }
    told += *line + "\n";
  }
  return told;
}

TEST(ShellAgent, PlaysAWholeBoardFromTheFirstTaskToTheConfirmedGoal) {
  const RealBoard board;
  const ShellAgent planner(board), worker(board);
  EXPECT_TRUE(has(planner.run("qp register Planner then plan"), "[2/2] read_plan"));
  planner.run(
      "qp goal 'Leases survive a restart.' then add 'Parse leases' 'All of them.' "
      "--resources src/leases then add 'Print leases' --waits-on t000001");
  worker.run("qp register Worker then agents");
  EXPECT_EQ(worker.run("qp tasks --json | jq -r '.readyToClaim[].id'"), "t000001\n");
  worker.run("qp claim t000001 then show t000001");
  EXPECT_TRUE(has(planner.run("qp claim t000001", 1), "t000001"));
  EXPECT_TRUE(has(planner.run("qp guard src/leases/a.cpp", 1), "holds t000001"));
  worker.run("qp guard src/leases/a.cpp");
  worker.run("qp update t000001 'branch leases; `parser` done, $tests next'");
  worker.run("printf 'Parsed: all\\ntests pass.\\n' | qp done t000001 -");
  EXPECT_EQ(planner.run("qp tasks --json | jq -r '.readyToClaim[].id'"), "t000002\n");
  planner.run("qp take t000002 then finish t000002 'Printed and read.' then propose-complete");

  const std::unique_ptr<Process> waiting = worker.start("qp wait");
  ASSERT_TRUE(board.person({"confirm-goal", "--thread", "main"}));
  EXPECT_EQ(waiting->waitForExit(board::realPatience), 0);
  EXPECT_TRUE(has(waiting->restOfOutput(), "wakeReasons"));
  EXPECT_TRUE(has(worker.run("qp wait"), "\"goalComplete\":true"));
  worker.run("qp leave");
  planner.run("qp leave");
}

TEST(ShellAgent, LosesNoMoveAndIsToldNoneTwiceWhileTheBoardIsKilledAndStartedAgain) {
  RealBoard board;
  const ShellAgent listener(board), peer(board);
  listener.run("qp register then add 'First'");
  peer.run("qp register");
  const std::string since = listener.revision();
  const std::unique_ptr<Process> follower = listener.start("qp wait --follow --since " + since);
  const std::unique_ptr<Process> waiter = listener.start("qp wait --since " + since);
  std::string told;
  for (int move = 1; move <= 3; ++move) {
    peer.run(text::cat("qp add 'Task ", move, "'"));
    told += readUntil(*follower, text::cat("t00000", move + 1));
    board.kill();
    board.start();
  }
  EXPECT_EQ(waiter->waitForExit(board::realPatience), 0);
  for (int move = 1; move <= 3; ++move)
    EXPECT_EQ(count(told, text::cat("t00000", move + 1)), 1u) << told;
}

TEST(ShellAgent, WakesEveryWaitOfASeat) {
  const RealBoard board;
  const ShellAgent listener(board), peer(board);
  listener.run("qp register then add 'First'");
  peer.run("qp register");
  const std::string since = listener.revision();
  const std::unique_ptr<Process> one = listener.start("qp wait --since " + since);
  const std::unique_ptr<Process> two = listener.start("qp wait --since " + since);
  peer.run("qp add 'Second'");
  EXPECT_EQ(one->waitForExit(board::realPatience), 0);
  EXPECT_EQ(two->waitForExit(board::realPatience), 0);
}

TEST(ShellAgent, TellsEveryFollowerOfASeatEachMoveAndOneOfThemEachMessage) {
  const RealBoard board;
  const ShellAgent listener(board), peer(board);
  listener.run("qp register then add 'First'");
  ASSERT_TRUE(board.person({"squad", "on", "--thread", "main"}));
  const std::string handle = listener.run("qp agents --json 2>/dev/null | jq -j .[0].handle");
  peer.run("qp register");
  const std::string since = listener.revision();
  const std::unique_ptr<Process> one = listener.start("qp wait --follow --since " + since);
  const std::unique_ptr<Process> two = listener.start("qp wait --follow --since " + since);
  std::string toOne, toTwo;
  const auto moveAndAwait = [&](const std::string& title, std::string_view id) {
    peer.run(text::cat("qp add '", title, "'"));
    toOne += readUntil(*one, id);
    toTwo += readUntil(*two, id);
  };
  moveAndAwait("Second", "t000002");  // both listen from here on
  peer.run(text::cat("qp send ", handle, " 'the schema is on t000009'"));
  moveAndAwait("Third", "t000003");
  EXPECT_EQ(count(toOne, "the schema") + count(toTwo, "the schema"), 1u) << toOne << toTwo;
  EXPECT_EQ(count(toOne, "t000003"), 1u) << toOne;
  EXPECT_EQ(count(toTwo, "t000003"), 1u) << toTwo;
}

TEST(ShellAgent, GetsJsonThatJqReadsFromEveryVerbThatHasAny) {
  const RealBoard board;
  const ShellAgent agent(board);
  for (const std::string_view verb : {"register",
                                      "plan",
                                      "agents",
                                      "goal G",
                                      "charter C",
                                      "add T",
                                      "tasks",
                                      "claim t000001",
                                      "update t000001 p",
                                      "show t000001",
                                      "comment t000001 c",
                                      "discuss Q?",
                                      "watch t000001",
                                      "unwatch t000001",
                                      "heartbeat",
                                      "messages",
                                      "done t000001 s",
                                      "review t000001",
                                      "wait --timeout 1",
                                      "leave"}) {
    const std::string command = text::cat("set -o pipefail; qp ", verb,
                                          " --json 2>/dev/null | jq -e 'type' >/dev/null; "
                                          "s=$?; [ $s = 3 ] && s=0; exit $s");
    agent.run(command);
  }
}

TEST(ShellAgent, IsHelpedByItsShellToCompleteALine) {
  const RealBoard board;
  const ShellAgent agent(board);
  agent.run("qp register then add 'First'");
  const auto inBash = [&](const std::string& words, int last) {
    return agent.run(text::cat("eval \"$(qp completion bash)\"; COMP_WORDS=(", words,
                               "); COMP_CWORD=", last, "; _qp; printf '%s ' \"${COMPREPLY[@]}\""));
  };
  EXPECT_EQ(inBash("qp unw", 1), "unwatch unwatch_task ");
  EXPECT_EQ(inBash("qp done t1 --su", 3), "--summary ");
  // A tab waits for the board a fifth of a second, which a busy machine may need for less.
  const Instant deadline = SteadyClock().now() + board::realPatience;
  while (inBash("qp claim t0", 2) != "t000001 " && board::isBefore(deadline)) continue;
  EXPECT_TRUE(board::isBefore(deadline)) << "the board's tasks were never offered";
  EXPECT_EQ(agent.run("fish -c 'qp completion fish | source; complete -C \"qp unw\"'"),
            "unwatch\nunwatch_task\n");
  // The function as zsh calls it, with what it finds printed rather than shown.
  EXPECT_EQ(agent.run("zsh -fc 'compdef() { :; }; compadd() { shift; print -l -- \"$@\"; }; "
                      "eval \"$(qp completion zsh)\"; words=(qp unw); CURRENT=2; _qp'"),
            "unwatch\nunwatch_task\n");
}

}  // namespace
}  // namespace quillpost
