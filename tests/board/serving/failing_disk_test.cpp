// The board while its disk fails it: at each call that SQLite makes for it, once by itself and once
// with all that come after. Whatever it acknowledged is there, it says what it could not do, and it
// serves again.

#include "board/failing_disk.h"

#include "board/desk.h"
#include "board/serving/service.h"
#include "board/verbs/person.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using testing::TempDir;
using Fails = FailingDisk::Fails;
using Titles = std::vector<std::string>;

const Titles toAdd = {"one", "two", "three", "four"};

/// The board of a directory, served. Nothing is served when its file cannot be opened or read.
class Served {
 public:
  explicit Served(const std::string& path) : store_(Store::open(path, why)) {
    std::optional<Loaded> loaded = store_ ? store_->load(why) : std::nullopt;
    if (!loaded) return;
    EXPECT_THAT(loaded->damages, IsEmpty());
    for (const Board& board : loaded->boards)
      for (const auto& [id, task] : board.tasks) found.push_back(task.title);
    Settings settings;
    settings.token = "agents";
    settings.personToken = "persons";
    settings.say = [this](const std::string& sentence) { said.push_back(sentence); };
    service_.emplace(
        *store_, std::move(loaded->boards), std::move(settings), [this] { return nowMs_; },
        countingRandom());
  }

  bool isServed() const { return service_.has_value(); }

  /// Whether the task was added; what could not be written is refused in words.
  bool add(const std::string& title) {
    nowMs_ += storeCareMs;
    const std::string members = text::cat(R"("title":")", title, "\"");
    const auto answer = service_->answer(requestOf("", personAdd, members, "persons"));
    if (answer.response.kind == TeamworkResponse::Kind::written) return true;
    EXPECT_THAT(answer.response.message.value_or(""), HasSubstr("nothing was changed"));
    return false;
  }

  Store& store() { return *store_; }

  /// The titles that were found in the file, and what was told whoever runs the board.
  Titles found;
  std::vector<std::string> said;
  std::string why;

 private:
  int64_t nowMs_ = 1'000'000'000;
  std::optional<Store> store_;
  std::optional<Service> service_;
};

/// Whether the file, on a disk that is well, holds these tasks and nothing broken, and is served.
void expectKept(const std::string& path, const ::testing::Matcher<Titles>& titles) {
  SCOPED_TRACE(path);
  // One that never comes to its call, since nothing need be forced onto the disk here either.
  const FailingDisk well(INT64_MAX, Fails::once);
  Served served(path);
  ASSERT_TRUE(served.isServed()) << served.why;
  EXPECT_THAT(served.found, titles);
  EXPECT_THAT(served.store().check(), IsEmpty());
  EXPECT_TRUE(served.add("afterwards"));
}

/// Puts beside a file that is open what a kill at this moment leaves of it.
void copyLeft(const TempDir& dir, const std::string& from, const std::string& to) {
  for (const char* ending : {"", "-wal"})
    std::filesystem::copy_file(dir.pathOf(from + ending), dir.pathOf(to + ending));
}

/// What a board begins with.
enum class Start { withoutFile, afterKill };

/// A board in a directory of its own, whose disk fails at a call. Whether it came to that.
bool live(int64_t call, Fails fails, Start start) {
  const TempDir dir;
  const std::string path = dir.pathOf("board.db");
  Titles added;
  if (start == Start::afterKill) {
    const FailingDisk well(INT64_MAX, fails);
    Served before(dir.pathOf("before.db"));
    EXPECT_TRUE(before.add("zero"));
    copyLeft(dir, "before.db", "board.db");
    added = {"zero"};
  }
  const std::size_t all = added.size() + toAdd.size();
  bool isServed = false;
  std::optional<FailingDisk> disk(std::in_place, call, fails);
  {
    Served served(path);
    isServed = served.isServed();
    if (isServed) {
      for (const std::string& title : toAdd)
        if (served.add(title)) added.push_back(title);
      EXPECT_EQ(served.said.empty(), added.size() == all);
      if (fails == Fails::once) {
        EXPECT_GE(added.size() + 1, all) << "it was not tried again";
      }
      std::string why;
      const std::string copy = dir.pathOf("copy.db");
      const bool isCopied = served.store().backUp(copy, why);
      EXPECT_EQ(isCopied, std::filesystem::exists(copy)) << why;
      copyLeft(dir, "board.db", "left.db");
    } else {
      EXPECT_THAT(served.why, StartsWith("cannot "));
    }
  }
  const bool hasFailed = disk->hasFailed();
  disk.reset();
  // What was refused because it was not known to be on the disk may be there all the same, if the
  // board ended before it could write again.
  Titles andOneMore = added;
  if (added.size() < all) andOneMore.push_back(toAdd[added.size() + toAdd.size() - all]);
  const ::testing::Matcher<Titles> atEnd = AnyOf(added, andOneMore);
  expectKept(path, fails == Fails::once ? added : atEnd);
  if (!isServed) return hasFailed;
  expectKept(dir.pathOf("left.db"), atEnd);
  if (std::filesystem::exists(dir.pathOf("copy.db"))) expectKept(dir.pathOf("copy.db"), added);
  return hasFailed;
}

/// A run that comes to fewer calls than these has passed by some unseen.
constexpr int64_t fewestCalls = 50;

void tryEachCall(Fails fails, Start start) {
  int64_t call = 1;
  while (live(call, fails, start)) {
    if (::testing::Test::HasFailure()) FAIL() << "at call " << call;
    ++call;
  }
  EXPECT_GT(call, fewestCalls);
}

TEST(FailingDisk, ThatFailsOnceLosesNothingAndIsTriedAgain) {
  tryEachCall(Fails::once, Start::withoutFile);
  tryEachCall(Fails::once, Start::afterKill);
}

TEST(FailingDisk, ThatFailsForGoodLosesNothingThatWasAcknowledged) {
  tryEachCall(Fails::forGood, Start::withoutFile);
  tryEachCall(Fails::forGood, Start::afterKill);
}

TEST(FailingDisk, MakesNoFileOfALaterVersionOneOfOurs) {
  const TempDir dir;
  const std::string path = dir.pathOf("board.db");
  std::string why;
  ASSERT_TRUE(Database::open(path, why)->run("PRAGMA user_version = 99"));
  bool hasFailed = true;
  for (int64_t call = 1; hasFailed; ++call) {
    const FailingDisk disk(call, Fails::once);
    EXPECT_FALSE(Store::open(path, why)) << "at call " << call;
    hasFailed = disk.hasFailed();
  }
  EXPECT_THAT(why, HasSubstr("a later version"));
}

}  // namespace
}  // namespace quillpost::board
