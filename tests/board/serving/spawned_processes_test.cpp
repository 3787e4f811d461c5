#include "board/serving/spawned_processes.h"

#include "base/clock.h"
#include "base/text.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
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
  dir.write("broken", "no format");
  ::chmod(dir.pathOf("broken").c_str(), 0755);
  const Launch rows[] = {{{"no-such-program"}, dir.path(), {"PATH=/usr/bin:/bin"}},
                         {{"sh"}, dir.path(), {}},
                         {{"./plain"}, dir.path(), {}},
                         {{"./broken"}, dir.path(), {}},
                         {{"/bin/sh"}, "/no/such/directory", {}}};
  for (const Launch& launch : rows) {
    std::string why;
    EXPECT_FALSE(processes.start(launch, why)) << launch.words.front();
    EXPECT_THAT(why, HasSubstr("cannot run " + launch.words.front()));
  }
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
