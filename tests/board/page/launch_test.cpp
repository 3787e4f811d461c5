#include "board/page/launch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace quillpost::board {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const Surroundings here{"/bin/sh", {"HOME=/h", "SECRET=no", "PATH=/usr/bin", "LC_TIME=C"}};

TEST(Launch, AHelperHasTheDirectoryAndThePlainVariablesOfTheTerminal) {
  std::string why;
  const auto helper = helperWished({"scout", "reads", {"scout", "a b"}, true, true}, here, why);
  ASSERT_TRUE(helper) << why;
  EXPECT_EQ(helper->id, "scout");
  EXPECT_EQ(helper->explanation, "reads");
  EXPECT_THAT(helper->words, ElementsAre("scout", "a b"));
  EXPECT_EQ(helper->directory, std::filesystem::canonical(".").string());
  EXPECT_THAT(helper->variables, ElementsAre("HOME=/h", "LC_TIME=C", HasSubstr("/usr/bin")));
  EXPECT_TRUE(helper->runsWithoutApprovals && helper->hasTools);
  const auto plain = helperWished({}, here, why);
  ASSERT_TRUE(plain) << why;
  EXPECT_FALSE(plain->runsWithoutApprovals || plain->hasTools);
}

TEST(Launch, ACommandLineIsSplitByQuotesAloneAndItsArgumentsShownOneByOne) {
  std::string why;
  const auto told = launchOf(R"({"command":"scout -p 'a b' \"c;d\" ''"})", here, why);
  ASSERT_TRUE(told) << why;
  EXPECT_THAT(*told, HasSubstr(R"("arguments":"'scout' '-p' 'a b' 'c;d' ''")"));
  EXPECT_THAT(*told, HasSubstr(R"("variables":["HOME","LC_TIME","PATH"])"));
  EXPECT_THAT(*told, Not(HasSubstr("/usr/bin"))) << "names, and no values";
}

TEST(Launch, WithoutACommandItSaysWhereAndWithWhat) {
  std::string why;
  const auto told = launchOf("{}", here, why);
  ASSERT_TRUE(told) << why;
  EXPECT_THAT(*told, AllOf(HasSubstr(std::filesystem::canonical(".").string()),
                           Not(HasSubstr("arguments"))));
}

TEST(Launch, WhatAShellWouldDoMoreWithIsRefusedInWords) {
  const char* lines[] = {"scout; rm x", "scout | tee", "scout $(id)", "scout `id`", "scout 'a", "",
                         "X=1 scout"};
  for (const char* line : lines) {
    std::string why;
    EXPECT_FALSE(launchOf(text::cat(R"({"command":")", line, "\"}"), here, why)) << line;
    EXPECT_THAT(why, HasSubstr("`command`")) << line;
  }
  for (const char* body : {"", "[]", "{\"command\":1}", "\xff"}) {
    std::string why;
    EXPECT_FALSE(launchOf(body, here, why)) << body;
    EXPECT_EQ(why, "that is not what the page writes") << body;
  }
}

}  // namespace
}  // namespace quillpost::board
