// quillpost-board as a person starts it: what goes to which stream, and its exit status.

#include "board/person/options.h"
#include "harness/paths.h"
#include "harness/process.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {
namespace {

testing::Command boardCommand(std::vector<std::string> arguments) {
  return {testing::boardProgram(), std::move(arguments), {}};
}

TEST(BoardProgram, HelpIsWhatWasAskedFor) {
  testing::Process process(boardCommand({"--help"}));
  EXPECT_EQ(process.restOfOutput(), usage());
  EXPECT_EQ(process.errors(), "");
  EXPECT_EQ(process.waitForExit(), 0);
}

TEST(BoardProgram, WrongUseIsToldAndAnsweredWithHelpAmongTheErrors) {
  testing::Process process(boardCommand({"frobnicate"}));
  EXPECT_EQ(process.errors(),
            "quillpost-board: there is no command frobnicate\n" + std::string(usage()));
  EXPECT_EQ(process.restOfOutput(), "");
  EXPECT_EQ(process.waitForExit(), 2);
}

}  // namespace
}  // namespace quillpost::board
