#include "board/person/client.h"

#include "board/desk.h"
#include "board/serving/publication.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using testing::TempDir;

std::optional<Publication> publish(const std::string& directory, const std::string& suffix) {
  std::string why;
  auto publication = Publication::open(directory, suffix, countingRandom(), why);
  EXPECT_TRUE(publication) << why;
  return publication;
}

TEST(Finding, TakesTheOneBoardThatIsServed) {
  const TempDir dir;
  std::string why;
  EXPECT_EQ(findServed(dir.path(), "", why), std::nullopt);
  EXPECT_THAT(why, HasSubstr("no board"));
  const auto first = publish(dir.path(), "one");
  dir.write("teamwork-dead.sock", "");
  EXPECT_EQ(findServed(dir.path(), "", why), "one");
  const auto second = publish(dir.path(), "two");
  EXPECT_EQ(findServed(dir.path(), "", why), std::nullopt);
  EXPECT_THAT(why, HasSubstr("--suffix"));
  EXPECT_EQ(findServed(dir.path(), "two", why), "two");
  EXPECT_EQ(findServed(dir.path(), "dead", why), std::nullopt);
}

TEST(Asking, BringsThePersonsTokenAndTheAnswerBack) {
  const TempDir dir;
  dir.write("person-dev.token", "secret\n");
  testing::ScriptedApp app(dir.pathOf("teamwork-dev.sock"));
  app.play(testing::reply(R"({"kind":"written","message":"Done."})"));
  std::string why;
  TeamworkRequest request;
  request.method = personShow;
  const auto response = askBoard(dir.path(), "dev", request, why);
  ASSERT_TRUE(response) << why;
  EXPECT_EQ(response->message, "Done.");
  ASSERT_EQ(app.requests().size(), 1u);
  EXPECT_THAT(app.requests().front(), HasSubstr(R"("token":"secret")"));
}

TEST(Asking, SaysThatABoardDidNotAnswer) {
  const TempDir dir;
  std::string why;
  EXPECT_FALSE(askBoard(dir.path(), "dev", {}, why));
  EXPECT_THAT(why, HasSubstr("cannot reach"));
  testing::ScriptedApp app(dir.pathOf("teamwork-dev.sock"));
  app.play(testing::closeWithoutReply());
  EXPECT_FALSE(askBoard(dir.path(), "dev", {}, why));
  EXPECT_THAT(why, HasSubstr("did not answer"));
  TeamworkRequest request;
  request.body = std::string(1 << 20, 'x');  // more than fits on the way to a board
  app.play(testing::reset());
  EXPECT_FALSE(askBoard(dir.path(), "dev", request, why));
  EXPECT_THAT(why, HasSubstr("cannot reach"));
  request.body = "\xff";
  EXPECT_FALSE(askBoard(dir.path(), "dev", request, why));
  EXPECT_THAT(why, HasSubstr("UTF-8"));
}

/// Answers whoever connects; one that only looks whether somebody is there does not read it.
void answers(testing::ScriptedApp& app, const std::string& reply) {
  app.otherwise([reply](const std::string&) { return testing::reply(reply); });
}

/// A line that means the board of a directory.
Line lineFor(const TempDir& dir) {
  Line line;
  line.directory = dir.path();
  return line;
}

TEST(Asking, AServedBoardsRefusalIsToldInItsWords) {
  const TempDir dir;
  std::string why;
  EXPECT_FALSE(askServed(lineFor(dir), {}, why));
  EXPECT_THAT(why, HasSubstr("quillpost-board serve"));
  testing::ScriptedApp app(dir.pathOf("teamwork-dev.sock"));
  answers(app, R"({"kind":"error","message":"Not like this."})");
  EXPECT_FALSE(askServed(lineFor(dir), {}, why));
  EXPECT_EQ(why, "Not like this.");
}

TEST(Asking, AnAnswerThatIsNoSheetIsOfAnotherVersion) {
  const TempDir dir;
  std::string why;
  testing::ScriptedApp app(dir.pathOf("teamwork-dev.sock"));
  answers(app, R"({"kind":"written","message":"Thread main"})");
  EXPECT_FALSE(askForSheet(lineFor(dir), {}, why));
  EXPECT_THAT(why, HasSubstr("another version"));
}

TEST(Asking, WhatIsToBeSeenIsSaidInTheRequest) {
  Line line;
  EXPECT_EQ(viewOf(line).status, std::nullopt);
  line.all = true;
  EXPECT_EQ(viewOf(line).status, "all");
  line.openOnly = true;
  EXPECT_EQ(viewOf(line).status, "open");
  line.mineOnly = true;
  EXPECT_EQ(viewOf(line).status, "mine");
  line.sinceMs = 5;
  EXPECT_EQ(viewOf(line).holdMs, 5);
}

}  // namespace
}  // namespace quillpost::board
