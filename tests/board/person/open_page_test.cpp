#include "board/person/open_page.h"

#include "base/clock.h"
#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(PageCommand, StartsTheProgramBesideThisOneWithWhatWasMeant) {
  Line line;
  line.directory = "/d";
  EXPECT_THAT(pageWords(line, "/opt/bin/quillpost-board"),
              ElementsAre("/opt/bin/quillpost-page", "--dir", "/d"));
  EXPECT_THAT(pageWords(line, "quillpost-board"), ElementsAre("quillpost-page", "--dir", "/d"));
  line.suffix = "s";
  line.thread = "t";
  line.port = "80";
  line.opensBrowser = true;
  EXPECT_THAT(pageWords(line, "./quillpost-board"),
              ElementsAre("./quillpost-page", "--dir", "/d", "--suffix", "s", "--thread", "t",
                          "--port", "80", "--open"));
}

TEST(PageCommand, SaysInWordsWhyThereIsNoPage) {
  const testing::TempDir dir;
  EXPECT_THAT(typed(dir.path(), {"page"}).errors, HasSubstr("quillpost-board serve"));
  CommandedBoard board;
  EXPECT_EQ(board.type({"page", "--port", "0"}).status, 1);
  EXPECT_THAT(board.type({"page", "--port", "70000"}).errors, HasSubstr("70000 is no port"));
  EXPECT_THAT(board.type({"page", "--thread", "other"}).errors,
              HasSubstr("There is no thread called \"other\""));
}

TEST(PageCommand, SaysWhereItsProgramIsToBeHadWhenItIsMissing) {
  const testing::TempDir dir;
  const std::string alone = dir.pathOf("quillpost-board");
  std::filesystem::create_symlink(testing::boardProgram(), alone);
  const auto expectToBeTold = [](const std::string& errors) {
    EXPECT_THAT(errors, HasSubstr("/quillpost-page: No such file or directory. The page is a "
                                  "program of its own: a release has it beside quillpost-board"));
  };
  testing::Process page({alone, {"--dir", dir.path(), "page"}, {}});
  EXPECT_EQ(page.waitForExit(), 1);
  EXPECT_EQ(page.restOfOutput(), "");
  expectToBeTold(page.errors());

  // A board is served without its page rather than not at all.
  testing::Process board({alone, {"serve", "--page", "--db", ":memory:", "--dir", dir.path()}, {}});
  const auto isServed = [&] {
    return typed(dir.path(), {"show"}).errors.find("no thread yet") != std::string::npos;
  };
  for (int i = 0; i < 500 && !isServed(); ++i)
    SteadyClock().sleepFor(std::chrono::milliseconds(20));
  board.signal(SIGTERM);
  EXPECT_EQ(board.waitForExit(), 0);
  expectToBeTold(board.errors());
}

TEST(PageCommand, ServesTogetherWithTheBoardAndEndsWithIt) {
  const testing::TempDir dir;
  testing::Process process(
      {testing::boardProgram(), {"serve", "--page", "--db", ":memory:", "--dir", dir.path()}, {}});
  const std::optional<std::string> address = process.readLine(realPatience);
  ASSERT_TRUE(address);
  EXPECT_THAT(*address, StartsWith("http://127.0.0.1:"));
  EXPECT_THAT(*address, HasSubstr("/#key="));
  process.signal(SIGTERM);
  EXPECT_EQ(process.waitForExit(), 0);
  // The page holds the other end of the output; this ends when it has gone.
  EXPECT_EQ(process.restOfOutput(), "");
}

TEST(PageCommand, APageDoesNotOutliveABoardThatIsKilled) {
  const testing::TempDir dir;
  testing::Process process(
      {testing::boardProgram(), {"serve", "--page", "--db", ":memory:", "--dir", dir.path()}, {}});
  ASSERT_TRUE(process.readLine(realPatience));
  process.signal(SIGKILL);
  EXPECT_EQ(process.restOfOutput(), "");
}

}  // namespace
}  // namespace quillpost::board
