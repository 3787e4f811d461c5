#include "board/person/console.h"

#include "harness/fake_environment.h"

#include <gtest/gtest.h>

#include <cstdio>

#include <unistd.h>

namespace quillpost::board {
namespace {

TEST(Console, WhatIsNoTerminalHasNoWidthAndNoColour) {
  // The tests' own output goes to whoever runs them, so this is asked of a copy that is none.
  const int kept = ::dup(STDOUT_FILENO);
  std::FILE* const file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  ::dup2(::fileno(file), STDOUT_FILENO);
  testing::FakeEnvironment environment;
  environment.variables["TERM"] = "xterm-256color";
  const Page page = pageOf(environment);
  const std::size_t lines = terminalLines();
  print("words \x1b[31m");
  ::dup2(kept, STDOUT_FILENO);
  ::close(kept);
  EXPECT_EQ(page.width, 0u);
  EXPECT_FALSE(page.hasColour);
  EXPECT_EQ(lines, 0u);
  std::rewind(file);
  char printed[64] = {};
  EXPECT_NE(std::fgets(printed, sizeof printed, file), nullptr);
  EXPECT_STREQ(printed, "words ␛[31m\n");
  std::fclose(file);
}

TEST(Console, AVariableIsFoundByItsWholeName) {
  const std::vector<std::string> variables = {"PATHS=wrong", "PATH=/bin:/usr/bin", "EMPTY="};
  EXPECT_EQ(valueOf("PATH", variables), "/bin:/usr/bin");
  EXPECT_EQ(valueOf("EMPTY", variables), "");
  EXPECT_EQ(valueOf("HOME", variables), "");
}

}  // namespace
}  // namespace quillpost::board
