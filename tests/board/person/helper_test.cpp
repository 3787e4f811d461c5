// Helpers as a person allows them and agents ask for them, with the real programs.

#include "board/person/helper.h"

#include "board/alive.h"
#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <thread>
#include <vector>

namespace quillpost::board {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// Until something is so; false when it never is.
template <class IsSo>
bool waitUntil(IsSo&& isSo) {
  const Instant deadline = SteadyClock().now() + realPatience;
  while (!isSo()) {
    if (!isBefore(deadline)) return false;
    SteadyClock().sleepFor(std::chrono::milliseconds(20));
  }
  return true;
}

/// A served board whose person allows helpers, and agents who ask for them.
struct HelperBoard {
  CommandedBoard board;

  Said allow(std::string_view name, const std::vector<std::string>& command,
             std::vector<std::string> options = {}) const {
    std::vector<std::string> words = {"helper", "allow", std::string(name)};
    words.insert(words.end(), options.begin(), options.end());
    words.emplace_back("--");
    words.insert(words.end(), command.begin(), command.end());
    return board.type(words);
  }
  /// Allows the helper "scout", which is a shell's script; its directory is the board's.
  void allowScript(const std::string& script) const {
    const Said said = allow("scout", {"sh", "-c", script},
                            {"--explanation", "reads", "--in", board.directory().path()});
    EXPECT_EQ(said.status, 0) << said.errors;
  }

  std::unique_ptr<RealSeat> agent(const std::string& name) const {
    std::map<std::string, std::string> environment;
    const std::string lines = board.type({"seat"}).output;
    for (const std::string_view line : text::split(lines, '\n')) {
      const std::size_t equals = line.find("='");
      if (equals == std::string_view::npos || line.find("QUILLPOST_") == std::string_view::npos) {
        continue;
      }
      const std::string_view variable = line.substr(0, equals);
      environment[std::string(variable.substr(variable.find(' ') + 1))] =
          line.substr(equals + 2, line.size() - equals - 3);
    }
    auto seat = std::make_unique<RealSeat>(environment);
    seat->call("register", text::cat(R"({"name":")", name, "\"}"));
    return seat;
  }

  /// The handle that an answer to request_hands tells.
  static std::string handleIn(const std::string& answer) {
    constexpr std::string_view before = "is handed to ";
    const std::size_t at = answer.find(before);
    EXPECT_NE(at, std::string::npos) << answer;
    return at == std::string::npos ? answer : answer.substr(at + before.size(), 3);
  }
  static std::string ask(RealSeat& seat, std::string_view title = "work") {
    return handleIn(seat.call("request_hands", text::cat(R"({"title":")", title, "\"}")));
  }
  static std::string stop(RealSeat& seat, std::string_view handle) {
    return seat.call("stop_helper", text::cat(R"({"handle":")", handle, "\"}"));
  }
  /// What an agent that listens is told until it hears of a helper's end.
  static std::string hearOfEnd(RealSeat& seat) {
    std::string heard;
    const Instant deadline = SteadyClock().now() + realPatience;
    while (heard.find("helperEnded") == std::string::npos && isBefore(deadline))
      heard += seat.call("wait_for_changes", R"({"timeoutSeconds":20})");
    return heard;
  }

  /// The number that a helper has written into a file of the board's folder.
  int64_t pidIn(std::string_view file) const {
    std::optional<int64_t> pid;
    EXPECT_TRUE(waitUntil([&] {
      const std::string line = testing::readFile(board.directory().pathOf(file));
      if (line.ends_with('\n')) pid = text::parseInteger(line.substr(0, line.size() - 1));
      return pid.has_value();
    }));
    return pid.value_or(0);
  }
};

TEST(Helper, ARealClientDoesTheWorkAndItsAskerIsWokenWithTheResult) {
  const HelperBoard desk;
  EXPECT_EQ(desk.allow("counter", {"python3", testing::inSources("scripts/demo_helper.py")},
                       {"--with-tools"})
                .status,
            0);
  const auto ada = desk.agent("Ada");
  const std::string asked = ada->call(
      "request_hands", R"({"title":"Count","brief":"3 loaves of rye, 4 loaves of wheat"})");
  EXPECT_THAT(asked, HasSubstr("HELPER LIMIT: 1 of 20 helpers are running in this thread, so 19 "
                               "more may start."));
  const std::string helper = HelperBoard::handleIn(asked);
  const std::string heard = HelperBoard::hearOfEnd(*ada);
  EXPECT_THAT(heard, HasSubstr("handedTaskDone"));
  EXPECT_THAT(heard, HasSubstr("ended with status 0. It wrote last:"));
  EXPECT_THAT(heard, HasSubstr("That makes 7."));
  EXPECT_THAT(ada->call("read_task", R"({"taskID":"t000001"})"), HasSubstr("7 loaves are left"));
  EXPECT_THAT(ada->call("list_agents"),
              AllOf(HasSubstr(helper + " (\"counter\"): done, asked for by you."),
                    HasSubstr("1 of 20 helpers are running"),
                    HasSubstr(" stop_helper handle: \"<handle>\" stops one of yours")));
  EXPECT_THAT(HelperBoard::stop(*ada, helper), HasSubstr("It held nothing. HELPER LIMIT: 0 of 20"));
  EXPECT_THAT(ada->call("list_agents"), HasSubstr("(\"counter\"): stopped — by "));
}

TEST(Helper, WhatAgentsAreToldOfThemIsSo) {
  const HelperBoard desk;
  const auto ada = desk.agent("Ada");
  EXPECT_THAT(ada->call("list_agents"), HasSubstr("SQUAD: off for this thread"));
  EXPECT_THAT(ada->call("request_hands", R"({"title":"x"})"), HasSubstr("squad is off"));
  desk.board.type({"squad", "on"});
  EXPECT_THAT(ada->call("list_agents"),
              HasSubstr("HELPERS HERE: none allowed in this thread, so request_hands files the "
                        "work and starts nothing on this device."));
  EXPECT_THAT(ada->call("request_hands", R"({"title":"x"})"), HasSubstr("none was started"));
  desk.board.type({"squad", "off"});
  desk.allowScript("echo $$ >pid; sleep 600");
  EXPECT_THAT(ada->call("register"),
              AllOf(HasSubstr("SQUAD: on for this thread"),
                    HasSubstr("HELPERS HERE (request_hands agent: \\\"<name>\\\", or omit it): "
                              "\\\"scout\\\": reads [no Quillpost tools, only qp]. HELPER LIMIT: 0 "
                              "of 20 helpers are running in this thread, so 20 more may start.")));
  desk.allow("mate", {"mate"}, {"--without-approvals", "--with-tools"});
  EXPECT_THAT(ada->call("list_agents"),
              HasSubstr(R"(, required when there is more than one): "mate" [runs without asking )"
                        R"(for approval]; "scout": reads [no Quillpost tools, only qp].)"))
      << ada->call("list_agents");
  EXPECT_THAT(ada->call("request_hands", R"({"title":"x"})"), HasSubstr("name one with `agent`"));
  EXPECT_THAT(ada->call("request_hands", R"({"title":"x","agent":"scout","to":"@laptop"})"),
              HasSubstr("never both"));
  EXPECT_THAT(ada->call("request_hands", R"({"title":"x","to":"@laptop"})"),
              HasSubstr("one device"));
  const std::string helper =
      HelperBoard::handleIn(ada->call("request_hands", R"({"taskID":"t000001","agent":"scout"})"));
  EXPECT_THAT(ada->call("list_agents"),
              HasSubstr(text::cat("HELPERS RUNNING HERE: ", helper,
                                  " (\"scout\"): starting, asked for by you.")));
  const auto bo = desk.agent("Bo");
  EXPECT_THAT(HelperBoard::stop(*bo, helper), HasSubstr("You may stop the helpers that you asked"));
  const int64_t pid = desk.pidIn("pid");
  desk.board.type({"squad", "off"});
  EXPECT_TRUE(isThere(pid)) << "those that run go on";
  EXPECT_THAT(HelperBoard::stop(*ada, helper),
              HasSubstr("t000001 \"x\" had been handed to it and is anybody's now."));
  EXPECT_TRUE(waitUntil([&] { return !isThere(pid); }));
}

TEST(Helper, OneThatFailsAtOnceAndOneThatCannotBeStartedAreTold) {
  const HelperBoard desk;
  desk.allowScript("echo no model today >&2; exit 3");
  const auto ada = desk.agent("Ada");
  const std::string helper = HelperBoard::ask(*ada);
  EXPECT_THAT(HelperBoard::hearOfEnd(*ada),
              HasSubstr("ended with status 3. It wrote last: no model today"));
  EXPECT_THAT(ada->call("list_agents"),
              HasSubstr("in error — ended with status 3: no model today, asked for by you"));
  EXPECT_THAT(ada->call("list_tasks"), HasSubstr("readyToClaim"));
  desk.allow("scout", {"no-such-harness"});
  HelperBoard::ask(*ada);
  EXPECT_THAT(HelperBoard::hearOfEnd(*ada),
              HasSubstr("could not be started: cannot run no-such-harness"));
}

TEST(Helper, GetsTheTerminalsPlainVariablesItsSeatAndQpAndNothingElse) {
  const HelperBoard desk;
  const std::string folder = desk.board.directory().path();
  const Said said = desk.board.type(
      {"helper", "allow", "scout", "--in", folder, "--env", "MINE", "--", "sh", "-c",
       "env | cut -d= -f1 | grep -v -e PWD -e SHLVL -e '^_' | sort | tr '\\n' ' '; "
       "qp register >seen; pwd; echo \"$1\"",
       "sh"},
      {{"HOME", "/home/me"},
       {"LC_ALL", "C.UTF-8"},
       {"TERM", "vt100"},
       {"MINE", "yes"},
       {"API_KEY", "no"},
       {"QUILLPOST_SESSION_ID", "another's"}});
  ASSERT_EQ(said.status, 0) << said.errors;
  const auto ada = desk.agent("Ada");
  const std::string helper = HelperBoard::ask(*ada);
  HelperBoard::hearOfEnd(*ada);
  const std::string shown = desk.board.type({"show", helper}).output;
  EXPECT_THAT(shown, HasSubstr("HOME LC_ALL MINE PATH QUILLPOST_COLLAB_SOCKET "
                               "QUILLPOST_COLLAB_TOKEN_FILE QUILLPOST_SESSION_ID TERM"));
  EXPECT_THAT(shown, HasSubstr(folder + "\n"));
  EXPECT_THAT(shown, HasSubstr("You are a helper on a shared board"));
  EXPECT_THAT(testing::readFile(desk.board.directory().pathOf("seen")), HasSubstr(helper));
}

TEST(Helper, OneThatIgnoresBeingStoppedIsKilledWithItsChildrenAndNobodyWaitsMeanwhile) {
  const HelperBoard desk;
  desk.allowScript(
      "trap '' TERM; sh -c 'echo $$ >child; sleep 600' & echo $$ >pid; wait; sleep 600");
  const auto ada = desk.agent("Ada");
  const std::string helper = HelperBoard::ask(*ada);
  const int64_t pid = desk.pidIn("pid");
  const int64_t child = desk.pidIn("child");
  const Instant before = SteadyClock().now();
  HelperBoard::stop(*ada, helper);
  EXPECT_THAT(ada->call("list_agents"), HasSubstr("(\"scout\"): stopping"));
  EXPECT_LT(SteadyClock().now() - before, std::chrono::seconds(4)) << "nobody waits";
  EXPECT_TRUE(isThere(pid));
  EXPECT_TRUE(waitUntil([&] { return !isThere(pid) && !isThere(child); }));
  EXPECT_GE(SteadyClock().now() - before, std::chrono::milliseconds(4900));
  EXPECT_TRUE(waitUntil(
      [&] { return ada->call("list_agents").find("0 of 20 helpers") != std::string::npos; }));
}

TEST(Helper, OneThatWritesAHundredMegabytesKeepsNobodyWaitingAndItsEndIsShown) {
  const HelperBoard desk;
  desk.allowScript("head -c 100000000 /dev/zero | tr '\\0' x; echo; printf 'the \\033[31mend\\n'");
  const auto ada = desk.agent("Ada");
  const std::string helper = HelperBoard::ask(*ada);
  const Instant before = SteadyClock().now();
  EXPECT_THAT(ada->call("list_tasks"), HasSubstr("t000001"));
  EXPECT_LT(SteadyClock().now() - before, std::chrono::seconds(5));
  EXPECT_THAT(HelperBoard::hearOfEnd(*ada), HasSubstr("the ␛[31mend"));
  const std::string shown = desk.board.type({"show", helper}).output;
  EXPECT_THAT(shown, HasSubstr("earlier bytes are forgotten)"));
  EXPECT_THAT(shown, HasSubstr("the ␛[31mend\n"));
  EXPECT_LT(shown.size(), 70'000u);
}

TEST(Helper, NoneOutlivesItsAsker) {
  const HelperBoard desk;
  desk.allowScript("echo $$ >pid; sleep 600");
  const auto ada = desk.agent("Ada");
  HelperBoard::ask(*ada);
  const int64_t first = desk.pidIn("pid");
  EXPECT_THAT(ada->call("unregister"), HasSubstr("1 helper that you had asked for is stopped."));
  EXPECT_TRUE(waitUntil([&] { return !isThere(first); }));

  // One whose terminal closes: what `run` runs has ended.
  const std::string file = desk.board.directory().pathOf("pid");
  std::filesystem::remove(file);
  const Said said = desk.board.type(
      {"run", "sh", "-c",
       "qp register; qp hands --title more; until [ -s \"$0\" ]; do sleep 0.05; done", file});
  EXPECT_EQ(said.status, 0) << said.errors;
  const int64_t second = desk.pidIn("pid");
  EXPECT_TRUE(waitUntil([&] { return !isThere(second); }));
}

TEST(Helper, OfManyWhoAskAtOnceTwentyAreServedAndNoMore) {
  const HelperBoard desk;
  desk.allowScript("sleep 600");
  constexpr std::size_t agents = 4;
  std::vector<std::unique_ptr<RealSeat>> seats;
  for (std::size_t i = 0; i < agents; ++i) seats.push_back(desk.agent(text::cat("A", i)));
  std::vector<std::string> answers[agents];
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < agents; ++i) {
    threads.emplace_back([&, i] {
      for (int n = 0; n < 7; ++n)
        answers[i].push_back(seats[i]->call("request_hands", R"({"title":"work"})"));
    });
  }
  for (std::thread& thread : threads) thread.join();
  int64_t handed = 0;
  for (const std::vector<std::string>& some : answers) {
    for (const std::string& answer : some) {
      const bool isHanded = answer.find("is handed to") != std::string::npos;
      handed += isHanded;
      EXPECT_TRUE(isHanded || answer.find("20 of 20 helpers") != std::string::npos) << answer;
    }
  }
  EXPECT_EQ(handed, 20);
}

TEST(Helper, TheBoardEndsWithItsHelpers) {
  HelperBoard desk;
  desk.allowScript("echo $$ >pid; sleep 600");
  const auto ada = desk.agent("Ada");
  HelperBoard::ask(*ada);
  const int64_t pid = desk.pidIn("pid");
  EXPECT_EQ(desk.board.stop(), 0);
  EXPECT_FALSE(isThere(pid));
}

TEST(Helper, ABoardThatIsKilledTakesItsHelpersAlongAndTheNextOneFindsWhoSurvived) {
  HelperBoard desk;
  desk.allowScript("echo $$ >pid; while :; do sleep 0.05; done");
  desk.allow("deaf", {"sh", "-c", "trap '' TERM; echo $$ >deaf; while :; do sleep 0.05; done"},
             {"--in", desk.board.directory().path()});
  const auto ada = desk.agent("Ada");
  ada->call("request_hands", R"({"title":"one","agent":"scout"})");
  ada->call("request_hands", R"({"title":"two","agent":"deaf"})");
  const int64_t pid = desk.pidIn("pid");
  const int64_t deaf = desk.pidIn("deaf");
  desk.board.process().signal(SIGKILL);
  desk.board.process().waitForExit();
#if defined(__linux__)
  EXPECT_TRUE(waitUntil([&] { return !isThere(pid); })) << "the system tells it";
#endif
  EXPECT_TRUE(isThere(deaf));
  const testing::Process next(
      {testing::boardProgram(), {"serve", "--dir", desk.board.directory().path()}, {}});
  EXPECT_THAT(HelperBoard::hearOfEnd(*ada), HasSubstr("the board was started anew"));
  EXPECT_TRUE(waitUntil([&] { return !isThere(pid) && !isThere(deaf); }));
  EXPECT_TRUE(waitUntil(
      [&] { return ada->call("list_agents").find("0 of 20 helpers") != std::string::npos; }));
}

TEST(HelperCommand, ShowsTheExactListOfArgumentsAndAllowsASuggestionOnlyWhenTold) {
  const HelperBoard desk;
  const auto ada = desk.agent("Ada");
  EXPECT_THAT(
      ada->call("suggest_helper",
                R"({"name":"mate","command":"mate --say 'a  b\nc'","explanation":"reads"})"),
      HasSubstr("who decides"));
  const std::string list = desk.board.type({"helper", "list"}).output;
  EXPECT_THAT(list, HasSubstr("Runs: 'mate' '--say' 'a  b␊c'\n"));
  EXPECT_THAT(list, HasSubstr("quillpost-board helper approve 'mate'"));
  const Said unsaid = desk.board.type({"helper", "approve", "mate"});
  EXPECT_EQ(unsaid.status, 1);
  EXPECT_THAT(unsaid.output, HasSubstr("\n  'mate' '--say' 'a  b␊c'\n"));
  EXPECT_THAT(unsaid.errors, HasSubstr("--yes"));
  EXPECT_THAT(desk.board.type({"helper", "list"}).output, Not(HasSubstr("ALLOWED")));
  EXPECT_EQ(desk.board.type({"helper", "approve", "mate", "--yes", "--with-tools"}).status, 0);
  EXPECT_THAT(desk.board.type({"helper", "list"}).output,
              AllOf(HasSubstr("ALLOWED HELPERS\n  mate\n"), HasSubstr("has the board's tools"),
                    Not(HasSubstr("SUGGESTED"))));
  EXPECT_EQ(desk.board.type({"helper", "forget", "mate"}).status, 0);
  EXPECT_EQ(desk.board.type({"helper", "list"}).output, "There is nothing to show.\n");
  ada->call("suggest_helper", R"({"name":"mate","command":"mate","explanation":"reads"})");
  EXPECT_EQ(desk.board.type({"helper", "refuse", "mate"}).status, 0);
  EXPECT_EQ(desk.board.type({"helper", "list"}).output, "There is nothing to show.\n");
  EXPECT_THAT(desk.board.type({"helper", "approve", "mate", "--yes"}).errors,
              HasSubstr("no helper is suggested"));
}

TEST(HelperCommand, RecordsOnlyThePlainVariablesAndThoseThatAreNamed) {
  const Surroundings around{"/bin/sh",
                            {"PATH=/usr/bin", "HOME=/h", "LC_TIME=C", "LCX=no", "SECRET=no",
                             "KEY=yes", "USER=me", "SHELL=/bin/sh", "LANG=C", "TERM=t"}};
  std::string why;
  const std::vector<std::string> named = {"KEY"};
  const auto variables = variablesOfHelper(around, named, why);
  ASSERT_TRUE(variables);
  EXPECT_THAT(*variables, ElementsAre("HOME=/h", "LC_TIME=C", "KEY=yes", "USER=me", "SHELL=/bin/sh",
                                      "LANG=C", "TERM=t", HasSubstr("bin:/usr/bin")));
  const std::vector<std::string> missing = {"KEY", "NOT_HERE"};
  EXPECT_FALSE(variablesOfHelper(around, missing, why));
  EXPECT_THAT(why, HasSubstr("NOT_HERE"));
  Line line;
  line.startIn = "/no/such/directory";
  EXPECT_FALSE(helperHere(line, around, why));
  EXPECT_THAT(why, HasSubstr("/no/such/directory"));
}

}  // namespace
}  // namespace quillpost::board
