// quillpost-board as a person starts it: what goes to which stream, and its exit status.

#include "board/person/commanded.h"
#include "board/person/help.h"
#include "harness/sanitized.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(BoardProgram, HelpIsWhatWasAskedFor) {
  const testing::TempDir dir;
  EXPECT_EQ(typed(dir.path(), {"--help"}).output, overview());
  for (const Command& command : commands()) {
    const Said said = typed(dir.path(), {std::string(command.name), "--help"});
    EXPECT_EQ(said.output, helpOn(command));
    EXPECT_EQ(said.errors, "");
    EXPECT_EQ(said.status, 0);
  }
}

TEST(BoardProgram, WrongUseIsToldWithTheUsageOfThatCommandAlone) {
  const testing::TempDir dir;
  Said said = typed(dir.path(), {"anwser", "1", "x"});
  EXPECT_EQ(said.errors,
            "quillpost-board: there is no command anwser; did you mean answer?\n"
            "usage: quillpost-board COMMAND (--help lists them)\n");
  EXPECT_EQ(said.output, "");
  EXPECT_EQ(said.status, 2);
  said = typed(dir.path(), {"restore"});
  EXPECT_EQ(said.errors,
            "quillpost-board: restore takes: TASK\nusage: quillpost-board restore TASK\n");
  EXPECT_EQ(said.status, 2);
  const Said helped = typed(dir.path(), {"help", "frobnicate"});
  EXPECT_EQ(helped.status, 2);
  EXPECT_EQ(helped.errors,
            "quillpost-board: there is no command frobnicate\n"
            "usage: quillpost-board help [COMMAND...]\n");
}

TEST(BoardProgram, WhatWasWrittenSteersNoTerminalEither) {
  const testing::TempDir dir;
  EXPECT_EQ(typed(dir.path(), {"\x1b[2Jshow"}).errors.find('\x1b'), std::string::npos);
}

TEST(BoardProgram, TwoTextsCannotBothComeFromStandardInput) {
  const testing::TempDir dir;
  EXPECT_EQ(typed(dir.path(), {"add", "-", "--body", "-"}, {}, "x").status, 2);
}

TEST(BoardProgram, WithoutAHomeThereIsNoBoardToLookFor) {
  testing::Process process({"/usr/bin/env",
                            {"-i", testing::boardProgram(), "show", "--suffix", "none"},
                            {{"HOME", "/nowhere"}}});
  EXPECT_EQ(process.waitForExit(), 1);
}

#if QUILLPOST_SANITIZED == 0 && defined(__linux__)
// A sanitizer wants more room than this to start with, and elsewhere there is no such limit.
TEST(BoardProgram, WithoutMemoryItEndsInWords) {
  const testing::TempDir dir;
  testing::Process process({"/bin/sh",
                            {"-c", "ulimit -v 150000; head -c 100m /dev/zero | \"$@\"", "sh",
                             testing::boardProgram(), "--dir", dir.path(), "comment", "t1", "-"},
                            {{"PATH", "/usr/bin:/bin"}}});
  EXPECT_EQ(process.waitForExit(), 1);
  EXPECT_EQ(process.restOfOutput(), "");
  EXPECT_EQ(process.errors(), "quillpost-board: there is not enough memory\n");
}
#endif

}  // namespace
}  // namespace quillpost::board
