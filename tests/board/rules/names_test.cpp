#include "board/rules/names.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(Names, HaveTheirForms) {
  const Random random = countingRandom();
  EXPECT_THAT(mintTag(random), ::testing::MatchesRegex("T-......"));
  EXPECT_THAT(mintHandle(random), ::testing::MatchesRegex("[A-Z][A-Z][2-9]"));
  EXPECT_EQ(mintSecret(random).size(), 32u);
  EXPECT_NE(mintSecret(random), mintSecret(random));
}

TEST(Names, TheEnvironmentLinesSurviveAnyPath) {
  EXPECT_EQ(environmentLines({"s1", "/a b/it's.token", "/a b/x.sock"}),
            "export QUILLPOST_SESSION_ID='s1'\n"
            "export QUILLPOST_COLLAB_TOKEN_FILE='/a b/it'\\''s.token'\n"
            "export QUILLPOST_COLLAB_SOCKET='/a b/x.sock'\n");
}

TEST(Names, AWordForAShellIsQuotedOnlyWhenItNeedsIt) {
  EXPECT_EQ(wordForShell("main-2"), "main-2");
  EXPECT_EQ(wordForShell("my thread's"), "'my thread'\\''s'");
  EXPECT_EQ(wordForShell(""), "''");
}

}  // namespace
}  // namespace quillpost::board
