#include "harness/terminal.h"

#include "base/clock.h"
#include "base/text.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace quillpost::testing {
namespace {

std::string awaited(const std::string& path) {
  SteadyClock clock;
  const Instant deadline = clock.now() + std::chrono::seconds(20);
  while (!readFile(path).ends_with('\n') && clock.now() < deadline)
    clock.sleepFor(std::chrono::milliseconds(10));
  return readFile(path);
}

TEST(Terminal, RunsWhatIsTypedAtATerminalOfItsOwn) {
  for (const Terminal::Kind kind : {Terminal::Kind::script, Terminal::Kind::interactive}) {
    const TempDir home;
    const Terminal terminal(kind, {{"HOME", home.path()}, {"PATH", "/usr/bin:/bin"}});
    terminal.type("test -t 0 && tty >/dev/null && echo $HOME >~/said");
    EXPECT_EQ(awaited(home.pathOf("said")), text::cat(home.path(), "\n"));
  }
}

TEST(Terminal, TakesWhatRunsInItAlongWhenItIsClosed) {
  const TempDir home;
  Terminal terminal(Terminal::Kind::interactive,
                    {{"HOME", home.path()}, {"PATH", "/usr/bin:/bin"}});
  // What runs in the foreground: a shell that sees its terminal's end before it is told of it
  // leaves the background alone.
  terminal.type("sh -c 'echo $$ >~/pid; exec sleep 100'");
  const pid_t pid = std::stoi(awaited(home.pathOf("pid")));
  EXPECT_TRUE(isRunning(pid));
  terminal.close();
  SteadyClock clock;
  for (int i = 0; i < 500 && isRunning(pid); ++i) clock.sleepFor(std::chrono::milliseconds(20));
  EXPECT_FALSE(isRunning(pid));
}

}  // namespace
}  // namespace quillpost::testing
