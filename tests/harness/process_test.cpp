#include "harness/process.h"

#include <gtest/gtest.h>

#include <signal.h>

namespace quillpost::testing {
namespace {

Command shell(std::string script) { return {"/bin/sh", {"-c", std::move(script)}, {}}; }

TEST(Process, HandsLinesBackAndForth) {
  Process cat({"/bin/cat", {}, {}});
  EXPECT_TRUE(cat.writeLine("one"));
  EXPECT_EQ(cat.readLine(), "one");
  EXPECT_TRUE(cat.write("two\nthree"));
  cat.closeInput();
  EXPECT_EQ(cat.readLine(), "two");
  EXPECT_EQ(cat.readLine(), "three");
  EXPECT_EQ(cat.readLine(), std::nullopt);
  EXPECT_EQ(cat.waitForExit(), 0);
}

TEST(Process, NoLineInTimeIsNothing) {
  Process cat({"/bin/cat", {}, {}});
  cat.write("unfinished");
  EXPECT_EQ(cat.readLine(std::chrono::milliseconds(1)), std::nullopt);
  EXPECT_EQ(cat.waitForExit(std::chrono::milliseconds(1)), std::nullopt);
  cat.writeLine(" line");
  EXPECT_EQ(cat.readLine(), "unfinished line");
}

TEST(Process, KeepsOutputErrorsAndStatusApart) {
  Process process(shell("echo out; echo err >&2; exit 2"));
  EXPECT_EQ(process.restOfOutput(), "out\n");
  EXPECT_EQ(process.errors(), "err\n");
  EXPECT_EQ(process.waitForExit(), 2);
}

TEST(Process, GetsExactlyItsEnvironmentAndArguments) {
  Process process({"/usr/bin/env", {"-u", "GONE"}, {{"GONE", "x"}, {"NAME", "a value"}}});
  EXPECT_EQ(process.restOfOutput(), "NAME=a value\n");
}

TEST(Process, AClosedOutputEndsAWriterByItsSignal) {
  Process process(shell("read line; while :; do echo more; done"));
  process.closeOutput();
  process.writeLine("go");
  EXPECT_EQ(process.waitForExit(), 128 + SIGPIPE);
  EXPECT_EQ(process.errors(), "");
}

TEST(Process, AWriteToAProgramThatIsGoneIsRefused) {
  Process process(shell("exit 0"));
  ASSERT_EQ(process.waitForExit(), 0);
  EXPECT_FALSE(process.writeLine("anybody"));
}

TEST(Process, TakesSignalsWhileItRuns) {
  Process cat({"/bin/cat", {}, {}});
  cat.signal(SIGTERM);
  EXPECT_EQ(cat.waitForExit(), 128 + SIGTERM);
  cat.signal(SIGTERM);
}

TEST(Process, TakesSignalsThatItsStarterIgnores) {
  const auto before = ::signal(SIGINT, SIG_IGN);
  Process cat({"/bin/cat", {}, {}});
  ::signal(SIGINT, before);
  cat.signal(SIGINT);
  EXPECT_EQ(cat.waitForExit(), 128 + SIGINT);
}

TEST(Process, IsKilledAtTheEndWhateverHoldsItsStreams) {
  SteadyClock clock;
  const Instant start = clock.now();
  { Process process(shell("sleep 30 & wait")); }
  EXPECT_LT(clock.now() - start, std::chrono::seconds(15));
}

#ifdef __linux__
TEST(Process, TellsItsDescriptorsAndItsMemory) {
  Process process(shell("exec 7</dev/null; echo open; read line; exec 7<&-; echo shut; read line"));
  ASSERT_EQ(process.readLine(), "open");
  const std::optional<std::size_t> open = process.openDescriptors();
  ASSERT_TRUE(open);
  process.writeLine("");
  ASSERT_EQ(process.readLine(), "shut");
  EXPECT_EQ(process.openDescriptors(), *open - 1);
  EXPECT_GT(process.residentBytes().value_or(0), 100'000U);
  process.closeInput();
  ASSERT_TRUE(process.waitForExit());
  EXPECT_EQ(process.openDescriptors(), std::nullopt);
  EXPECT_EQ(process.residentBytes(), std::nullopt);
}
#endif

}  // namespace
}  // namespace quillpost::testing
