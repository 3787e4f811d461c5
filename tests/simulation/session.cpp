#include "simulation/session.h"

#include "base/text.h"
#include "harness/fake_environment.h"
#include "mcp/stdio_server.h"
#include "simulation/client_lines.h"
#include "simulation/live_blocks.h"
#include "simulation/sim_app.h"
#include "simulation/sim_clock.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

namespace quillpost::simulation {
namespace {

using text::cat;

testing::FakeEnvironment anyEnvironment(Dice& dice) {
  constexpr std::array<std::string_view, 7> values = {"", "5", "20", "45", "+60", "99999", "1e2"};
  testing::FakeEnvironment environment;
  if (dice.oneIn(5))
    environment.variables["QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS"] = dice.oneOf(values);
  if (dice.oneIn(5))
    environment.variables["QUILLPOST_COLLAB_WAIT_MAX_SECONDS"] = dice.oneOf(values);
  return environment;
}

/// The client's two ends: gives the lines in pieces of any size, and passes on what it is sent.
class SimClient final : public Input, public Output {
 public:
  SimClient(Dice& dice, SimClock& clock, Judge& judge) : dice_(dice), clock_(clock), judge_(judge) {
    for (std::size_t left = 1 + dice.below(12); left > 0; --left) {
      const ClientLine line = anyLine(dice);
      judge.note(line.text);
      const std::optional<Expectation> expectation = expectationOf(line);
      if (expectation) judge.expected.push_back(*expectation);
      bytes_ += line.text;
      if (left > 1 || dice.flip()) bytes_ += dice.oneIn(10) ? "\r\n" : "\n";
    }
    inPieces_ = dice.oneIn(4);
    if (dice.oneIn(20)) room_ = dice.below(4);
  }

  std::size_t read(std::span<char> space) override {
    const BlockWatch outside(false);
    checkMemory();
    std::size_t count = std::min(space.size(), bytes_.size() - given_);
    if (inPieces_ && count > 0) count = std::min(count, 1 + dice_.below(200));
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(given_), count, space.begin());
    given_ += count;
    return count;
  }

  bool comesWithin(Duration /*atMost*/) override { return true; }

  bool write(std::string_view message) override {
    const BlockWatch outside(false);
    if (room_ == 0) {
      judge_.refused();
      return false;
    }
    --room_;
    judge_.wrote(message);
    measureMemory();
    clock_.mayJump = judge_.isWaiting();
    return true;
  }

  /// What the server held before it remembered anything.
  int64_t blocksAtStart = 0;

 private:
  void measureMemory() {
    const int64_t before = watchedBlocks();
    const BlockWatch inside(true);
    const SeatState copy = *judge_.state;
    mostState_ = std::max(mostState_, watchedBlocks() - before);
  }

  /// The server holds what its seat's memory takes, as it is or was, and a handful of buffers. What
  /// the memory held once may stay beside what it holds now, for as long as its lists keep room.
  void checkMemory() {
    constexpr int64_t buffers = 8;
    const int64_t held = watchedBlocks() - blocksAtStart;
    if (held > 2 * mostState_ + buffers)
      throw Complaint{cat("the server holds ", held, " blocks, ", mostState_, " of them its seat")};
  }

  Dice& dice_;
  SimClock& clock_;
  Judge& judge_;
  std::string bytes_;
  std::size_t given_ = 0;
  bool inPieces_ = false;
  std::size_t room_ = std::numeric_limits<std::size_t>::max();
  int64_t mostState_ = 0;
};

}  // namespace

std::optional<std::string> playSession(uint64_t seed, Tally& tally, std::string* trace) {
  Dice dice(seed, {.optionalOneIn = 5, .longestList = 2});
  const testing::FakeEnvironment environment = anyEnvironment(dice);
  SimClock clock(dice);
  const std::string sessionID = dice.oneIn(15) ? "" : "S1";
  Judge judge({clock, environment, sessionID}, tally);
  judge.keepsTrace = trace != nullptr;
  std::optional<std::string> wrong;
  const int64_t blocks = watchedBlocks();
  try {
    SimApp app(dice, clock, judge);
    SimClient client(dice, clock, judge);
    client.blocksAtStart = blocks;
    const BlockWatch inside(true);
    TeamworkStdioServer server(sessionID, {clock, environment, app}, client);
    judge.state = &server.state();
    server.run(client);
    const BlockWatch outside(false);
    judge.ended();
    judge.state = nullptr;
  } catch (const Complaint& complaint) {
    wrong = complaint.what;
  }
  if (!wrong && watchedBlocks() != blocks) wrong = "the server leaves memory behind";
  if (trace != nullptr) *trace = std::move(judge.trace);
  ++tally["sessions"];
  return wrong;
}

}  // namespace quillpost::simulation
