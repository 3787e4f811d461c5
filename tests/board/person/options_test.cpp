#include "board/person/options.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

std::optional<Options> read(const std::vector<std::string>& arguments) {
  std::string why;
  std::optional<Options> options = readOptions(arguments, why);
  EXPECT_NE(options.has_value(), !why.empty());
  return options;
}

TEST(Options, WithoutAnyTheBoardIsServed) {
  const auto options = read({});
  ASSERT_TRUE(options);
  EXPECT_EQ(options->command, "serve");
  EXPECT_EQ(options->leaseMs, 900'000);
  EXPECT_EQ(options->suffix, std::nullopt);
}

TEST(Options, MayStandBeforeOrAfterTheCommand) {
  for (const auto& arguments : {std::vector<std::string>{"--dir", "/d", "answer", "t000001", "yes"},
                                {"answer", "t000001", "yes", "--dir", "/d"}}) {
    const auto options = read(arguments);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->directory, "/d");
    EXPECT_EQ(options->request.method, personAnswer);
    EXPECT_EQ(options->request.taskID, "t000001");
    EXPECT_EQ(options->request.body, "yes");
  }
}

TEST(Options, EachFillsItsOwnPlace) {
  const auto options = read({"--dir", "/d", "--db", "/b", "--suffix", "s", "--thread", "t"});
  ASSERT_TRUE(options);
  EXPECT_EQ(options->directory, "/d");
  EXPECT_EQ(options->database, "/b");
  EXPECT_EQ(options->suffix, "s");
  EXPECT_EQ(options->request.name, "t");
}

TEST(Options, AfterTwoDashesAWordMayBeginWithAnything) {
  const auto options = read({"say", "KQ3", "--", "--help yourself"});
  ASSERT_TRUE(options);
  EXPECT_EQ(options->request.to, "KQ3");
  EXPECT_EQ(options->request.body, "--help yourself");
}

TEST(Options, TheLeaseIsInSeconds) {
  EXPECT_EQ(read({"--lease", "5"})->leaseMs, 5'000);
  for (const char* wrong : {"0", "-1", "x", "", "99999999999999"})
    EXPECT_FALSE(read({"--lease", wrong})) << wrong;
}

TEST(Options, TheSquadIsOnOrOff) {
  EXPECT_EQ(read({"squad", "on"})->request.approve, true);
  EXPECT_EQ(read({"squad", "off"})->request.approve, false);
  EXPECT_FALSE(read({"squad", "maybe"}));
}

TEST(Options, WhatMakesNoSenseIsRefused) {
  for (const auto& arguments : {std::vector<std::string>{"frobnicate"},
                                {"--frobnicate", "x"},
                                {"--dir"},
                                {"--dir", ""},
                                {"answer", "t000001"},
                                {"answer", "t000001", "a", "b"},
                                {"show", "me"},
                                {"say"}}) {
    EXPECT_FALSE(read(arguments)) << arguments.front();
  }
}

TEST(Options, HelpTellsOfEveryCommand) {
  EXPECT_EQ(read({"show", "--help"})->command, "help");
  for (const char* name : {"serve", "seat", "show", "answer", "confirm-goal", "reopen-goal", "say",
                           "squad", "restore", "--dir", "--db", "--suffix", "--thread", "--lease"})
    EXPECT_THAT(std::string(usage()), HasSubstr(name));
}

}  // namespace
}  // namespace quillpost::board
