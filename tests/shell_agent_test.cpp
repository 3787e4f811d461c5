// Agents that can run shell commands and nothing else, on a real board: a whole day's work through
// `qp`, its JSON in jq, and completion in real shells.

#include "shell_agent/shell_agent.h"

#include "harness/terminal.h"
#include "tools/tool_name.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace quillpost {
namespace {

using board::RealBoard;
using testing::Process;

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

  // A question that only the person can answer.
  worker.run(
      "qp update t000001 --blocked --blocker-kind decision --blocker-question 'Which form?' "
      "--blocker-options Text,JSON");
  const std::unique_ptr<Process> asking = worker.start("qp wait");
  ASSERT_TRUE(board.person({"answer", "t000001", "2", "--thread", "main"}));
  EXPECT_EQ(asking->waitForExit(board::realPatience), 0);
  EXPECT_TRUE(has(asking->restOfOutput(), "JSON"));

  // A difference of opinion, which keeps the one who owes an answer from stopping.
  const std::string hook = "quillpost-teamwork --wake-stop-hook </dev/null 2>&1";
  const std::string debate = planner.run(
      "qp discuss 'One file or two?' --address-to Worker --json 2>/dev/null | jq -j .id");
  worker.run(hook, 2);
  EXPECT_TRUE(has(worker.run("qp wait"), "discussionOpened"));
  worker.run(text::cat("qp reply ", debate, " 'One.'"));
  EXPECT_TRUE(has(planner.run("qp wait"), "discussionReply"));
  planner.run(text::cat("qp resolve ", debate, " 'One file.'"));
  EXPECT_TRUE(has(worker.run("qp wait"), "discussionResolved"));

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

TEST(ShellAgent, FindsTheCommandByTheLinesOfItsSeat) {
  const RealBoard board;
  Process shell(
      {"/bin/bash",
       {"-c",
        text::cat("eval \"$('", testing::boardProgram(), "' --dir '", board.directory().path(),
                  "' seat --thread main)\"; command -v qp; ", "qp register >/dev/null")},
       {{"PATH", "/usr/bin:/bin"}, {"XDG_RUNTIME_DIR", board.directory().path()}}});
  EXPECT_TRUE(has(shell.restOfOutput(), "/qp\n"));
  EXPECT_EQ(shell.waitForExit(board::realPatience), 0) << shell.errors();
}

/// A tool, and a line that asks for it.
struct ToolLine {
  ToolName tool;
  std::string_view line;
  /// What it ends with.
  int status = 0;
};

// In an order in which the board can do what is asked.
// clang-format off
constexpr auto toolLines = std::to_array<ToolLine>({
    {"register",              "register"},
    {"read_plan",             "plan"},
    {"list_agents",           "agents"},
    {"set_goal",              "goal G"},
    {"set_charter",           "charter C"},
    {"add_task",              "add T"},
    {"list_tasks",            "tasks"},
    {"claim_task",            "claim t000002"},
    {"update_task",           "update t000002 p"},
    {"read_task",             "show t000002"},
    {"comment_task",          "comment t000002 c"},
    {"watch_task",            "watch t000002"},
    {"unwatch_task",          "unwatch t000002"},
    {"request_release",       "request-release t000001 r"},
    {"release_task",          "release t000002"},
    {"assign_task",           "add U then assign t000003 $PEER"},
    {"open_discussion",       "discuss Q?"},
    {"reply_discussion",      "reply d000001 r"},
    {"resolve_discussion",    "resolve d000001 r"},
    {"heartbeat",             "heartbeat"},
    {"read_messages",         "messages"},
    {"send_message",          "send $PEER hello"},
    {"complete_task",         "take t000002 then done t000002 s"},
    {"request_review",        "review t000002"},
    {"verify_task",           "verify t000002 approve",            1},
    {"reject_task",           "add V then reject t000004 r"},
    {"delete_task",           "add W then delete t000005 r"},
    {"propose_goal_complete", "propose-complete --acknowledge-open-tasks"},
    {"request_hands",         "hands",                             1},
    {"suggest_helper",        "suggest n c e"},
    {"stop_helper",           "stop nobody",                       1},
    {"wait_for_changes",      "wait --timeout 1",                  3},
    {"unregister",            "leave"},
});
// clang-format on

TEST(ShellAgent, GetsJsonThatJqReadsFromEveryTool) {
  const RealBoard board;
  const ShellAgent peer(board), agent(board);
  ASSERT_TRUE(board.person({"squad", "on", "--thread", "main"}));
  peer.run("qp register then add 'Held by a peer' then claim t000001");
  const std::string handle = peer.run("qp agents --json 2>/dev/null | jq -j .[0].handle");
  for (const Tool& tool : tools) {
    const auto* const row = std::ranges::find(toolLines, tool.name, &ToolLine::tool);
    EXPECT_NE(row, toolLines.end()) << tool.name << " is tried with no line";
  }
  for (const ToolLine& row : toolLines) {
    // What failed says so on standard error, and nothing on standard output.
    const std::string_view read =
        row.status == 1 ? "[ ! -s out ] && tail -1 err | jq -e '.error and .status == 1'"
                        : "jq -e 'type' out";
    agent.run(text::cat("cd; PEER=", handle, "; qp --json ", row.line,
                        " >out 2>err; s=$?; [ $s = ", row.status,
                        " ] || { echo status $s; cat out err; exit 1; }; ", read, " >/dev/null"));
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
}

/// How a shell is started at a prompt, and how it loads the completion.
struct ShellRow {
  std::string_view name, start, load;
};

TEST(ShellAgent, CompletesALineAtThePromptOfEveryShell) {
  constexpr ShellRow rows[] = {
      {"bash", ":", "eval \"$(qp completion bash)\""},
      {"zsh", "exec zsh -f", "autoload -U compinit; compinit -u -D; eval \"$(qp completion zsh)\""},
      {"fish", "exec fish", "qp completion fish | source"}};
  const RealBoard board;
  for (const ShellRow& row : rows) {
    const ShellAgent agent(board);
    std::map<std::string, std::string> variables = agent.environment();
    variables["TERM"] = "xterm";
    const testing::Terminal terminal(testing::Terminal::Kind::interactive, variables);
    const auto typeAndAwait = [&](std::string_view line, const std::string& file) {
      terminal.type(line);
      const Instant deadline = SteadyClock().now() + board::realPatience;
      while (testing::readFile(agent.home().pathOf(file)).empty() && board::isBefore(deadline))
        SteadyClock().sleepFor(std::chrono::milliseconds(10));
      EXPECT_TRUE(board::isBefore(deadline)) << row.name << ": " << line;
    };
    terminal.type(row.start);
    terminal.type(row.load);
    typeAndAwait("echo ready >~/ready", "ready");
    // Only one verb begins so; the shell completes it, and the line asks for its help.
    typeAndAwait("qp unr\t--help >~/help", "help");
    EXPECT_TRUE(testing::readFile(agent.home().pathOf("help")).starts_with("qp unregister"))
        << row.name;
  }
}

}  // namespace
}  // namespace quillpost
