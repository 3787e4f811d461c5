#include "qp/guard.h"

#include "qp/command.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using testing::responseFrom;

struct GuardTest : CommandTest {
  GuardTest() {
    bridge.otherwise = [](const TeamworkRequest& request) {
      if (request.method == "list_tasks")
        return testing::FakeAnswer{
            .response =
                responseFrom(R"({"kind":"tasks","tasks":[)"
                             R"({"id":"t1","title":"Parse","body":"","state":"claimed","log":[],)"
                             R"("ownerFingerprint":"#other","resources":["src/parse/","*.md"]},)"
                             R"({"id":"t2","title":"Mine","body":"","state":"claimed","log":[],)"
                             R"("ownerFingerprint":"#self","resources":["mine.cpp"]},)"
                             R"({"id":"t3","title":"Free","body":"","state":"open","log":[],)"
                             R"("resources":["free.cpp"]}]})")};
      return testing::FakeAnswer{
          .response = responseFrom(
              R"({"kind":"agents","agents":[)"
              R"({"id":"a","name":"","status":"",)"
              R"("canVerify":false,"activeClaims":0,)"
              R"("fingerprint":"#other","handle":"KQ3","leaseSecondsRemaining":9,"isSelf":false},)"
              R"({"id":"a","name":"","status":"",)"
              R"("canVerify":false,"activeClaims":0,)"
              R"("fingerprint":"#self","handle":"ER9","leaseSecondsRemaining":9,)"
              R"("isSelf":true}]})")};
    };
  }
};

TEST_F(GuardTest, SaysWhoHoldsAPath) {
  EXPECT_EQ(run({"guard", "README.md", "other.cpp"}), 1);
  EXPECT_EQ(out.text, "KQ3 (#other) holds t1 (Parse): src/parse/, *.md\n");
  EXPECT_EQ(run({"guard", "src/parse/line.cpp"}), 1);
}

TEST_F(GuardTest, LetsEverythingElsePass) {
  EXPECT_EQ(run({"guard", "mine.cpp", "free.cpp", "src/parser.cpp"}), 0);
  EXPECT_EQ(out.text, "");
  EXPECT_EQ(err.text, "");
}

TEST_F(GuardTest, NeverTrapsAPersonWhoHasNoBoard) {
  bridge.token = "";
  EXPECT_EQ(run({"guard", "README.md"}), 0);
  bridge.token = "tok";
  sessionID = "";
  bridge.otherwise = [](const TeamworkRequest&) { return testing::FakeAnswer(); };
  EXPECT_EQ(run({"guard", "README.md"}), 0);
  EXPECT_EQ(out.text, "");
}

TEST_F(GuardTest, PassesWhenItCannotTellWhoseClaimsTheyAre) {
  for (int i = 0; i < 3; ++i) bridge.fails("list_agents");
  EXPECT_EQ(run({"guard", "README.md"}), 0);
}

TEST_F(GuardTest, TakesAnyPathBehindTwoDashes) {
  EXPECT_EQ(run({"guard", "--", "--help", "then", "--json", "README.md"}), 1);
  EXPECT_EQ(run({"guard", "--", "caf\xe9.txt"}), 0);
  EXPECT_EQ(err.text, "");
}

TEST_F(GuardTest, WantsAPath) {
  EXPECT_EQ(run({"guard"}), 2);
  EXPECT_EQ(run({"guard", "--"}), 2);
  EXPECT_EQ(run({"guard", "--", "README.md"}), 1);
}

TEST(Guard, FindsAPathItsFolderOrItsPattern) {
  EXPECT_TRUE(coversPath("src/a.cpp", "src/a.cpp"));
  EXPECT_TRUE(coversPath("./src/", "src/a.cpp"));
  EXPECT_TRUE(coversPath("src", "./src/b/a.cpp"));
  EXPECT_TRUE(coversPath("src/*.cpp", "src/b/a.cpp"));
  EXPECT_TRUE(coversPath("src/**", "src/a"));
  EXPECT_TRUE(coversPath("**/Makefile", "Makefile"));
  EXPECT_TRUE(coversPath("**/Makefile", "src/Makefile"));
  EXPECT_TRUE(coversPath("src/**/a.cpp", "src/a.cpp"));
  EXPECT_TRUE(coversPath("src/a.cpp", "src//b/../a.cpp"));
  EXPECT_FALSE(coversPath("**/Makefile", "src/aMakefile"));
  EXPECT_TRUE(coversPath(".", "anything"));
  EXPECT_TRUE(coversPath("src/a.cpp", "/home/x/src/a.cpp"));
  EXPECT_TRUE(coversPath("src", "/home/x/src/a.cpp"));
  EXPECT_FALSE(coversPath("src", "srcs/a.cpp"));
  EXPECT_FALSE(coversPath("src/a.cpp", "src"));
  EXPECT_FALSE(coversPath("a.cpp", "/x/ba.cpp"));
  EXPECT_FALSE(coversPath("", "a"));
  EXPECT_FALSE(coversPath("the release", "a"));
}

}  // namespace
}  // namespace quillpost
