#include "board/page/feed.h"

#include "base/text.h"
#include "board/verbs/person.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

namespace quillpost::board {
namespace {

constexpr Duration patience = std::chrono::seconds(10);

/// A board that answers what the test says, or does not answer.
struct FakeBoard {
  std::mutex mutex;
  std::condition_variable moved;
  int64_t rev = 1;
  bool isThere = true;
  bool isOver = false;
  std::vector<TeamworkRequest> requests;

  ~FakeBoard() {
    set([this] { isOver = true; });
  }

  template <class Change>
  void set(Change change) {
    {
      const std::lock_guard lock(mutex);
      change();
    }
    moved.notify_all();
  }

  /// Holds the poll while nothing moves, as a board does.
  std::optional<TeamworkResponse> ask(const TeamworkRequest& request, std::string& why) {
    std::unique_lock lock(mutex);
    requests.push_back(request);
    moved.wait_for(lock, std::chrono::milliseconds(50),
                   [&] { return isOver || !isThere || request.sinceRev != rev; });
    why = "cannot reach the board";
    if (!isThere) return std::nullopt;
    TeamworkResponse response;
    response.kind = TeamworkResponse::Kind::written;
    response.message = text::cat(R"({"nowMs":1,"rev":)", rev, R"(,"sections":[]})");
    return response;
  }
  AskBoard asker() {
    return [this](const TeamworkRequest& request, std::string& why) { return ask(request, why); };
  }
};

/// The next event whose data hold these words; its kind, or empty when none comes.
std::string await(Feed::Reader& reader, std::string_view words) {
  for (int i = 0; i < 2000; ++i) {
    const auto event = reader.next(patience);
    if (!event) return {};
    if (event->data.find(words) != std::string::npos) return std::string(event->kind);
  }
  return {};
}

TEST(Feed, TellsEveryReaderWhatOnePollBrings) {
  FakeBoard board;
  Feed feed(board.asker(), "main");
  Feed::Reader one(feed), two(feed);
  EXPECT_EQ(await(one, "\"rev\":1"), "sheet");
  EXPECT_EQ(await(two, "\"rev\":1"), "sheet");
  board.set([&] { board.rev = 2; });
  EXPECT_EQ(await(one, "\"rev\":2"), "sheet");
  EXPECT_EQ(await(two, "\"rev\":2"), "sheet");
  const std::lock_guard lock(board.mutex);
  EXPECT_EQ(board.requests.front().sinceRev, std::nullopt);
  EXPECT_EQ(board.requests[1].sinceRev, 1);
  for (const TeamworkRequest& request : board.requests) {
    EXPECT_EQ(request.method, personLive);
    EXPECT_EQ(request.name, "main");
    EXPECT_EQ(request.holdMs, feedHoldMs);
  }
}

TEST(Feed, AsksForNothingWhileNobodyReads) {
  FakeBoard board;
  Feed feed(board.asker(), "");
  {
    Feed::Reader reader(feed);
    EXPECT_EQ(await(reader, "rev"), "sheet");
  }
  // The poll that was out when the reader left may still come back, and one more begin.
  std::size_t before = 0;
  {
    const std::lock_guard lock(board.mutex);
    before = board.requests.size();
  }
  SteadyClock().sleepFor(std::chrono::milliseconds(400));
  const std::lock_guard lock(board.mutex);
  EXPECT_LE(board.requests.size(), before + 1);
}

TEST(Feed, ABoardThatIsLostIsToldOfOnceAndEverythingIsAskedAnewWhenItIsBack) {
  FakeBoard board;
  Feed feed(board.asker(), "");
  Feed::Reader reader(feed);
  EXPECT_EQ(await(reader, "rev"), "sheet");
  board.set([&] { board.isThere = false; });
  EXPECT_EQ(await(reader, "cannot reach the board"), "lost");
  EXPECT_FALSE(reader.next(lostRest * 3)) << "once is enough";
  Feed::Reader late(feed);
  EXPECT_EQ(await(late, "cannot reach the board"), "lost") << "whoever comes later is told too";
  board.set([&] {
    board.isThere = true;
    board.requests.clear();
  });
  EXPECT_EQ(await(reader, "rev"), "sheet");
  const std::lock_guard lock(board.mutex);
  EXPECT_EQ(board.requests.front().sinceRev, std::nullopt);
}

TEST(Feed, ARefusalAndNonsenseCountAsLost) {
  for (const char* message : {"Only the person may do that.", "no sheet", "{}"}) {
    const bool isRefusal = message[0] == 'O';
    Feed feed(
        [&](const TeamworkRequest&, std::string&) {
          TeamworkResponse response;
          response.kind =
              isRefusal ? TeamworkResponse::Kind::error : TeamworkResponse::Kind::written;
          response.message = message;
          return std::optional(response);
        },
        "");
    Feed::Reader reader(feed);
    EXPECT_EQ(await(reader, isRefusal ? "Only the person" : "another version"), "lost") << message;
  }
}

TEST(Feed, AReaderThatIsTooSlowIsToldOfTheGap) {
  FakeBoard board;
  Feed feed(board.asker(), "");
  Feed::Reader slow(feed), quick(feed);
  for (std::size_t i = 0; i < eventsKept + 3; ++i) {
    board.set([&] { ++board.rev; });
    ASSERT_EQ(await(quick, text::cat("\"rev\":", i + 2)), "sheet");
  }
  const auto event = slow.next(patience);
  ASSERT_TRUE(event);
  EXPECT_EQ(event->kind, "gap");
  board.set([&] { board.rev = 1000; });
  EXPECT_EQ(await(slow, "\"rev\":1000"), "sheet");
}

}  // namespace
}  // namespace quillpost::board
