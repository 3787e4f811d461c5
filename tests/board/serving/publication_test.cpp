#include "board/serving/publication.h"

#include "board/desk.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using testing::TempDir;

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 0777;
}

std::optional<Publication> publish(const std::string& directory, const std::string& suffix) {
  std::string why;
  auto publication = Publication::open(directory, suffix, countingRandom(), why);
  EXPECT_TRUE(publication) << why;
  return publication;
}

TEST(Publication, MakesAllItsFilesPrivateAndRemovesThem) {
  const TempDir dir;
  {
    const auto publication = publish(dir.path(), "dev");
    EXPECT_EQ(publication->files().socket, dir.pathOf("teamwork-dev.sock"));
    EXPECT_EQ(publication->files().token, dir.pathOf("teamwork-dev.token"));
    EXPECT_EQ(modeOf(publication->files().socket), 0600u);
    EXPECT_EQ(modeOf(publication->files().token), 0600u);
    EXPECT_EQ(modeOf(publication->files().personToken), 0600u);
    EXPECT_EQ(testing::readFile(publication->files().token), publication->token() + "\n");
    EXPECT_NE(publication->token(), publication->personToken());
    EXPECT_TRUE(testing::connectTo(publication->files().socket));
  }
  EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST(Publication, ReplacesWhatAKilledBoardHasLeft) {
  const TempDir dir;
  dir.write("teamwork-dev.sock", "");
  dir.write("teamwork-dev.token", "old");
  const auto publication = publish(dir.path(), "dev");
  EXPECT_EQ(testing::readFile(publication->files().token), publication->token() + "\n");
}

TEST(Publication, KeepsTheTokensOfAKilledBoardUnlessOthersCouldHaveReadThem) {
  const std::string left(32, 'a');
  for (const mode_t mode : {0600u, 0640u}) {
    const TempDir dir;
    ::chmod(dir.write("teamwork-dev.token", left + "\n").c_str(), mode);
    const auto publication = publish(dir.path(), "dev");
    EXPECT_EQ(publication->token() == left, mode == 0600u);
    EXPECT_EQ(modeOf(publication->files().token), 0600u);
  }
}

TEST(Publication, LeavesABoardThatIsServedAlone) {
  const TempDir dir;
  const auto first = publish(dir.path(), "dev");
  std::string why;
  EXPECT_FALSE(Publication::open(dir.path(), "dev", countingRandom(), why));
  EXPECT_THAT(why, HasSubstr("another board"));
  EXPECT_EQ(testing::readFile(first->files().token), first->token() + "\n");
}

TEST(Publication, SaysWhatIsWrongWithAPath) {
  const TempDir dir;
  std::string why;
  EXPECT_FALSE(Publication::open(dir.path(), std::string(100, 'x'), countingRandom(), why));
  EXPECT_THAT(why, HasSubstr("too long"));
  EXPECT_FALSE(Publication::open(dir.pathOf("missing"), "dev", countingRandom(), why));
  EXPECT_THAT(why, HasSubstr("missing"));
}

TEST(Publication, MakesAgainWhatHasBeenDeleted) {
  const TempDir dir;
  auto publication = publish(dir.path(), "dev");
  const BoardFiles& files = publication->files();
  EXPECT_FALSE(publication->restore()) << "nothing is missing";
  for (const std::string& path : {files.socket, files.token, files.personToken}) {
    std::filesystem::remove(path);
  }
  const UniqueFd socket = publication->restore();
  EXPECT_TRUE(socket);
  EXPECT_TRUE(testing::connectTo(files.socket));
  EXPECT_EQ(testing::readFile(files.token), publication->token() + "\n");
  EXPECT_EQ(modeOf(files.socket), 0600u);
  EXPECT_EQ(modeOf(files.personToken), 0600u);
}

TEST(Publication, OfTwoAtOnceOneWins) {
  const TempDir dir;
  std::array<std::optional<Publication>, 8> publications;
  std::array<std::string, 8> whys;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < publications.size(); ++i) {
    threads.emplace_back([&, i] {
      auto publication = Publication::open(dir.path(), "dev", countingRandom(), whys[i]);
      if (publication) publications[i].emplace(*std::move(publication));
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::size_t served = 0;
  for (std::size_t i = 0; i < publications.size(); ++i) {
    served += publications[i].has_value();
    if (publications[i]) continue;
    EXPECT_THAT(whys[i], HasSubstr("another board"));
  }
  EXPECT_EQ(served, 1u);
  EXPECT_TRUE(testing::connectTo(dir.pathOf("teamwork-dev.sock")));
}

}  // namespace
}  // namespace quillpost::board
