// Waits of real seats on real boards: boards that are killed, started again with another token and
// replaced by others, several waits of one seat, and what a reader who leaves means to them.

#include "shell_agent/shell_agent.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <string>
#include <string_view>

namespace quillpost {
namespace {

using board::RealBoard;
using testing::Process;

/// A follower and a wait of one seat, and a peer who adds tasks for them to be told of.
struct Listening {
  Listening(const ShellAgent& agent, const ShellAgent& other) : listener(agent), peer(other) {
    listener.run("qp register then add 'First'");
    peer.run("qp register");
    const std::string since = listener.revision();
    follower = listener.start("qp wait --follow --since " + since);
    waiter = listener.start("qp wait --since " + since);
  }

  /// Adds the next task, and waits until the follower has told it.
  void move() {
    peer.run("qp add 'Another'");
    told += readUntil(*follower, nextTask());
    ++moves;
  }
  /// That the wait has ended with the news; another one waits from here on.
  void waitAnew() {
    EXPECT_EQ(waiter->waitForExit(board::realPatience), 0);
    waiter = listener.start("qp wait --since " + listener.revision());
  }
  /// That the wait has ended with the news, and that each move was told once.
  void expectEachToldOnce() {
    EXPECT_EQ(waiter->waitForExit(board::realPatience), 0);
    for (int move = 0; move < moves; ++move)
      EXPECT_EQ(count(told, text::cat("t00000", move + 2)), 1u) << told;
  }

  std::string nextTask() const { return text::cat("t00000", moves + 2); }

  const ShellAgent& listener;
  const ShellAgent& peer;
  std::unique_ptr<Process> follower, waiter;
  std::string told;
  int moves = 0;
};

TEST(ShellWait, LosesNoMoveAndIsToldNoneTwiceWhileTheBoardIsKilledAndStartedAgain) {
  RealBoard board;
  const ShellAgent listener(board), peer(board);
  Listening listening(listener, peer);
  for (int i = 0; i < 3; ++i) {
    listening.move();
    listening.waitAnew();
    board.kill();
    board.start();
  }
  listening.move();
  listening.expectEachToldOnce();
}

TEST(ShellWait, IsToldAMessageOnceThoughTheBoardWasStartedAgain) {
  RealBoard board;
  const ShellAgent listener(board), peer(board);
  ASSERT_TRUE(board.person({"squad", "on", "--thread", "main"}));
  Listening listening(listener, peer);
  listening.move();
  EXPECT_EQ(listening.waiter->waitForExit(board::realPatience), 0);
  const std::string handle =
      peer.run("qp agents --json 2>/dev/null | jq -j '.[] | select(.isSelf | not) | .handle'");
  board.kill();
  board.start();
  peer.run(text::cat("qp send ", handle, " 'on the other side'"));
  listening.told += readUntil(*listening.follower, "on the other side");
  listening.move();
  EXPECT_EQ(count(listening.told, "on the other side"), 1u) << listening.told;
}

TEST(ShellWait, LosesNoMoveWhileTheBoardIsStoppedAndStartedWithAnotherToken) {
  RealBoard board;
  const ShellAgent listener(board), peer(board);
  const std::string tokenFile = listener.environment().at("QUILLPOST_COLLAB_TOKEN_FILE");
  Listening listening(listener, peer);
  for (int i = 0; i < 3; ++i) {
    listening.move();
    listening.waitAnew();
    const std::string token = testing::readFile(tokenFile);
    EXPECT_EQ(board.stop(SIGTERM), 0);
    board.start();
    EXPECT_NE(testing::readFile(tokenFile), token);
  }
  listening.move();
  listening.expectEachToldOnce();
}

/// A board that is found on disk rather than named, and may come back under another name.
class FoundBoard {
 public:
  void serve(const std::string& suffix) {
    suffix_ = suffix;
    process_ = std::make_unique<Process>(testing::Command{
        testing::boardProgram(),
        {"--dir", support_.pathOf("Quillpost-board"), "--suffix", suffix, "--db", database()},
        {}});
    const Instant deadline = SteadyClock().now() + board::realPatience;
    while (!person({"seat", "--thread", "warming-up"}) && board::isBefore(deadline)) continue;
  }
  void stop() {
    process_->signal(SIGTERM);
    EXPECT_EQ(process_->waitForExit(board::realPatience), 0);
  }

  /// The variables of a seat that is told only who it is.
  std::map<std::string, std::string> newSeat() const {
    constexpr std::string_view name = "QUILLPOST_SESSION_ID='";
    const std::string lines = person({"seat", "--thread", "main"}).value_or("");
    const std::size_t begin = lines.find(name) + name.size();
    return {{"QUILLPOST_SESSION_ID", lines.substr(begin, lines.find('\'', begin) - begin)},
            {"XDG_DATA_HOME", support_.path()}};
  }

 private:
  std::string database() const { return support_.pathOf("board.db"); }

  std::optional<std::string> person(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(),
                     {"--dir", support_.pathOf("Quillpost-board"), "--suffix", suffix_});
    Process process({testing::boardProgram(), arguments, {}});
    std::string printed = process.restOfOutput();
    if (process.waitForExit() != 0) return std::nullopt;
    return printed;
  }

  testing::TempDir support_;
  std::string suffix_;
  std::unique_ptr<Process> process_;
};

TEST(ShellWait, LosesNoMoveWhileTheBoardIsReplacedByOneAtAnotherSocket) {
  FoundBoard board;
  board.serve("a");
  const ShellAgent listener(board.newSeat()), peer(board.newSeat());
  Listening listening(listener, peer);
  for (const std::string_view suffix : {"b", "c"}) {
    listening.move();
    listening.waitAnew();
    board.stop();
    board.serve(std::string(suffix));
  }
  listening.move();
  listening.expectEachToldOnce();
}

TEST(ShellWait, LeavesTheStopHookNothingToSayButWhatIsOwed) {
  const RealBoard board;
  const ShellAgent listener(board), peer(board);
  ASSERT_TRUE(board.person({"squad", "on", "--thread", "main"}));
  const std::string hook = "quillpost-teamwork --wake-stop-hook </dev/null 2>&1";
  Listening listening(listener, peer);
  listening.move();
  const std::string handle =
      listener.run("qp agents --json 2>/dev/null | jq -j '.[] | select(.isSelf) | .handle'");
  peer.run(text::cat("qp send ", handle, " 'the schema is there'"));
  readUntil(*listening.follower, "the schema is there");
  listener.run(hook, 0);
  const std::string debate = peer.run(
      text::cat("qp discuss 'Grey or hidden?' --address-to ", handle, " --json | jq -j .id"));
  readUntil(*listening.follower, "woken:");
  listener.run(hook, 2);
  listener.run(text::cat("qp reply ", debate, " 'Grey.'"));
  listener.run(hook, 0);
}

TEST(ShellWait, WakesEveryWaitOfASeat) {
  const RealBoard board;
  const ShellAgent listener(board), peer(board);
  listener.run("qp register then add 'First'");
  peer.run("qp register");
  const std::string since = listener.revision();
  const std::unique_ptr<Process> one = listener.start("qp wait --since " + since);
  const std::unique_ptr<Process> two = listener.start("qp wait --since " + since);
  peer.run("qp add 'Second'");
  EXPECT_EQ(one->waitForExit(board::realPatience), 0);
  EXPECT_EQ(two->waitForExit(board::realPatience), 0);
}

TEST(ShellWait, TellsEveryFollowerOfASeatEachMoveAndOneOfThemEachMessage) {
  const RealBoard board;
  const ShellAgent listener(board), peer(board);
  listener.run("qp register then add 'First'");
  ASSERT_TRUE(board.person({"squad", "on", "--thread", "main"}));
  const std::string handle = listener.run("qp agents --json 2>/dev/null | jq -j .[0].handle");
  peer.run("qp register");
  const std::string since = listener.revision();
  const std::unique_ptr<Process> one = listener.start("qp wait --follow --since " + since);
  const std::unique_ptr<Process> two = listener.start("qp wait --follow --since " + since);
  std::string toOne, toTwo;
  const auto moveAndAwait = [&](const std::string& title, std::string_view id) {
    peer.run(text::cat("qp add '", title, "'"));
    toOne += readUntil(*one, id);
    toTwo += readUntil(*two, id);
  };
  moveAndAwait("Second", "t000002");  // both listen from here on
  peer.run(text::cat("qp send ", handle, " 'the schema is on t000009'"));
  moveAndAwait("Third", "t000003");
  EXPECT_EQ(count(toOne, "the schema") + count(toTwo, "the schema"), 1u) << toOne << toTwo;
  EXPECT_EQ(count(toOne, "t000003"), 1u) << toOne;
  EXPECT_EQ(count(toTwo, "t000003"), 1u) << toTwo;
}

}  // namespace
}  // namespace quillpost
