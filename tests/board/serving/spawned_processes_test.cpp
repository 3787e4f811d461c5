#include "board/serving/spawned_processes.h"

#include "base/clock.h"
#include "base/text.h"
#include "board/alive.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using State = Sight::State;

constexpr auto patience = std::chrono::seconds(30);

struct HelperProcesses : ::testing::Test {
  ~HelperProcesses() override {
    for (const ProcessMark& mark : started) {
      processes.signal(mark, SIGKILL);
      while (processes.look(mark).state != State::gone) std::this_thread::yield();
    }
  }

  Launch shell(const std::string& script) const {
    return {{"sh", "-c", script}, dir.path(), {"PATH=/usr/bin:/bin", "MINE=yes"}};
  }
  Started start(const Launch& launch) {
    std::string why;
    std::optional<Started> made = processes.start(launch, why);
    EXPECT_TRUE(made) << why;
    if (made) started.push_back(made->mark);
    if (made) made->gate.open();
    return made ? *std::move(made) : Started{};
  }
  /// What it writes until it holds these words or ends its output.
  static std::string read(const Started& process, const std::string& until = "\x01") {
    std::string text;
    const Instant deadline = SteadyClock().now() + patience;
    while (text.find(until) == std::string::npos && SteadyClock().now() < deadline) {
      pollfd wanted{process.output.get(), POLLIN, 0};
      ::poll(&wanted, 1, 100);
      char bytes[4096];
      const ssize_t count = ::read(process.output.get(), bytes, sizeof bytes);
      if (count == 0) break;
      if (count > 0) text.append(bytes, static_cast<std::size_t>(count));
    }
    return text;
  }
  Sight lookUntil(const ProcessMark& mark, State state) {
    const Instant deadline = SteadyClock().now() + patience;
    Sight sight = processes.look(mark);
    while (sight.state != state && SteadyClock().now() < deadline) {
      pollfd wanted{processes.news(), POLLIN, 0};
      ::poll(&wanted, 1, 20);
      sight = processes.look(mark);
    }
    return sight;
  }

  testing::TempDir dir;
  SpawnedProcesses processes;
  std::vector<ProcessMark> started;
};

TEST_F(HelperProcesses, HaveTheirDirectoryTheirVariablesAndASessionOfTheirOwnAndNothingElse) {
  ::setenv("SECRET_OF_THE_BOARD", "x", 1);
  const Started process =
      start(shell("pwd; env | sort; read line || echo nothing to read; "
                  "ls /proc/self/fd 2>/dev/null | wc -l; echo errors >&2"));
  const std::string text = read(process);
  EXPECT_THAT(text, HasSubstr(dir.path()));
  EXPECT_THAT(text, HasSubstr("MINE=yes\n"));
  EXPECT_THAT(text, ::testing::Not(HasSubstr("SECRET_OF_THE_BOARD")));
  EXPECT_THAT(text, HasSubstr("nothing to read"));
  EXPECT_THAT(text, HasSubstr("errors"));
#if defined(__linux__)
  EXPECT_THAT(text, ::testing::ContainsRegex("\n4\n")) << "three streams, and the folder itself";
#endif
  EXPECT_EQ(::getsid(static_cast<pid_t>(process.mark.pid)), process.mark.pid);
  EXPECT_EQ(::getpgid(static_cast<pid_t>(process.mark.pid)), process.mark.pid);
}

TEST_F(HelperProcesses, AreFoundOnTheirOwnPathOrByTheirOwnDirectoryAndElseRefusedInWords) {
  dir.write("mine", "#!/bin/sh\necho mine $1\n");
  ::chmod(dir.pathOf("mine").c_str(), 0755);
  EXPECT_EQ(read(start({{"./mine", "1"}, dir.path(), {}})), "mine 1\n");
  EXPECT_EQ(read(start({{"mine", "2"}, dir.path(), {text::cat("PATH=/none:", dir.path())}})),
            "mine 2\n");
  dir.write("plain", "no program");
  const Launch rows[] = {{{"no-such-program"}, dir.path(), {"PATH=/usr/bin:/bin"}},
                         {{"sh"}, dir.path(), {}},
                         {{"./plain"}, dir.path(), {}},
                         {{"/bin/sh"}, "/no/such/directory", {}},
                         {{"/bin/sh"}, dir.pathOf("plain"), {}}};
  for (const Launch& launch : rows) {
    std::string why;
    EXPECT_FALSE(processes.start(launch, why)) << launch.words.front();
    EXPECT_THAT(why, HasSubstr("cannot run " + launch.words.front()));
  }
}

TEST_F(HelperProcesses, OneThatTheSystemCannotRunSaysSoInWhatItWrites) {
  dir.write("broken", "no format");
  ::chmod(dir.pathOf("broken").c_str(), 0755);
  const Started process = start({{"./broken"}, dir.path(), {}});
  EXPECT_THAT(read(process), HasSubstr(text::cat("cannot run ./broken in ", dir.path(), ": ")));
  EXPECT_EQ(lookUntil(process.mark, State::ended).status, cannotRun);
}

TEST_F(HelperProcesses, NothingOfThemRunsBeforeTheirGateIsOpen) {
  std::string why;
  std::optional<Started> first = processes.start(shell("echo $$ >first"), why);
  std::optional<Started> second = processes.start(shell("echo $$ >second"), why);
  ASSERT_TRUE(first && second) << why;
  for (const Started* process : {&*first, &*second}) started.push_back(process->mark);
  first->gate = Gate();
  EXPECT_EQ(lookUntil(first->mark, State::ended).status, cannotRun) << "nobody will open it";
  EXPECT_EQ(processes.look(second->mark).state, State::running);
  EXPECT_FALSE(std::filesystem::exists(dir.pathOf("second")));
  second->gate.open();
  EXPECT_EQ(lookUntil(second->mark, State::ended).status, 0);
  EXPECT_TRUE(std::filesystem::exists(dir.pathOf("second")));
  EXPECT_FALSE(std::filesystem::exists(dir.pathOf("first")));
}

TEST_F(HelperProcesses, OfABoardThatIsKilledBeforeItHasNotedThemNothingIsLeftAndNothingHasRun) {
  Pipe told;
  const pid_t board = ::fork();
  ASSERT_GE(board, 0);
  if (board == 0) {
    SpawnedProcesses own;
    std::string why;
    const std::optional<Started> one =
        own.start(shell("trap '' TERM; echo $$ >ran; while :; do sleep 0.05; done"), why);
    const int64_t pid = one ? one->mark.pid : 0;
    // Time enough for the program to have done something, if it could.
    SteadyClock().sleepFor(std::chrono::milliseconds(300));
    if (::write(told.writing.get(), &pid, sizeof pid) == sizeof pid) ::raise(SIGKILL);
    ::_exit(1);
  }
  int64_t pid = 0;
  ASSERT_EQ(::read(told.reading.get(), &pid, sizeof pid), static_cast<ssize_t>(sizeof pid));
  int status = 0;
  ::waitpid(board, &status, 0);
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  ASSERT_GT(pid, 0);
  const Instant deadline = SteadyClock().now() + patience;
  while (isThere(pid) && SteadyClock().now() < deadline)
    SteadyClock().sleepFor(std::chrono::milliseconds(5));
  EXPECT_FALSE(isThere(pid));
  EXPECT_FALSE(std::filesystem::exists(dir.pathOf("ran")));
}

TEST_F(HelperProcesses, KeepTheirNumberUntilTheyAreSignalledToDie) {
  const Started process = start(shell("exit 7"));
  const Sight sight = lookUntil(process.mark, State::ended);
  EXPECT_EQ(sight.state, State::ended);
  EXPECT_EQ(sight.status, 7);
  processes.signal(process.mark, SIGTERM);
  EXPECT_EQ(processes.look(process.mark).state, State::ended);
  processes.signal(process.mark, SIGKILL);
  EXPECT_EQ(processes.look(process.mark).state, State::gone);
  EXPECT_EQ(startOf(process.mark.pid), "");
}

TEST_F(HelperProcesses, AreSignalledWithAllThatTheyForked) {
  const Started process =
      start(shell("sh -c 'trap \"echo child told; exit\" TERM; echo ready; while :; do sleep 0.05; "
                  "done' & trap '' TERM; until [ -e go ]; do sleep 0.05; done; echo set; "
                  "while :; do sleep 0.05; done"));
  EXPECT_THAT(read(process, "ready"), HasSubstr("ready"));
  dir.write("go", "");
  EXPECT_THAT(read(process, "set"), HasSubstr("set"));
  processes.signal(process.mark, SIGTERM);
  EXPECT_THAT(read(process, "child told"), HasSubstr("child told"));
  EXPECT_EQ(processes.look(process.mark).state, State::running) << "it ignores being asked";
  processes.signal(process.mark, SIGKILL);
  EXPECT_EQ(lookUntil(process.mark, State::gone).status, 128 + SIGKILL);
}

TEST_F(HelperProcesses, AreNotSignalledByANumberAlone) {
  const Started process = start(shell("echo ready; sleep 60"));
  read(process, "ready");
  const ProcessMark others[] = {{process.mark.pid, "b 1"}, {process.mark.pid, ""}, {0, "x"}};
  for (const ProcessMark& other : others) processes.signal(other, SIGKILL);
  EXPECT_EQ(processes.look(process.mark).state, State::running);
  // Seen by a board that has not started it: this test's own parent is such a process.
  const ProcessMark parent{::getppid(), startOf(::getppid())};
  ASSERT_NE(parent.start, "");
  EXPECT_EQ(processes.look(parent).state, State::running);
  EXPECT_EQ(processes.look({parent.pid, "b 1"}).state, State::gone);
  EXPECT_EQ(processes.look({0, ""}).state, State::gone);
}

TEST_F(HelperProcesses, AreStartedInLessThanFiftyMilliseconds) {
  std::vector<Duration> took;
  for (int i = 0; i < 5; ++i) {
    const Instant before = SteadyClock().now();
    start(shell("sleep 60"));
    took.push_back(SteadyClock().now() - before);
  }
  // The quickest: others use this machine too.
  EXPECT_LT(std::ranges::min(took), std::chrono::milliseconds(50));
}

}  // namespace
}  // namespace quillpost::board
