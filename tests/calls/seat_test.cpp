#include "calls/seat.h"

#include "harness/fake_bridge.h"
#include "harness/fake_environment.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

TEST(Seat, SendsItsEnvelopeAndNothingElse) {
  testing::FakeClock clock;
  testing::FakeBridge bridge(clock);
  bridge.tokens = {"first", "second"};
  const testing::FakeEnvironment environment;
  const Seat seat = {.doors = {.clock = clock, .environment = environment, .bridge = bridge},
                     .sessionID = "ses",
                     .state = {}};
  EXPECT_EQ(encodeRequest(requestFrom(seat, "heartbeat")),
            R"({"protocolVersion":1,"token":"first","sessionID":"ses","method":"heartbeat"})");
  EXPECT_EQ(requestFrom(seat, "list_tasks").token, "second") << "the token is read each time";
  EXPECT_EQ(bridge.tokenReads, 2);
  EXPECT_TRUE(bridge.requests.empty());
}

TEST(Seat, SendsOnceAndTellsItsMemoryHowLargeTheAnswerWas) {
  testing::FakeClock clock;
  testing::FakeBridge bridge(clock);
  const testing::FakeEnvironment environment;
  Seat seat = {.doors = {.clock = clock, .environment = environment, .bridge = bridge}};
  const TeamworkRequest request = requestFrom(seat, "heartbeat");

  TeamworkResponse written;
  written.kind = TeamworkResponse::Kind::written;
  bridge.answers("heartbeat", written);
  EXPECT_TRUE(send(request, seat) == written);
  EXPECT_FALSE(seat.memory.holdsMuch());

  bridge.otherwise = [](const TeamworkRequest&) {
    return testing::FakeAnswer{.bytes = MemoryKeeper::largeBytes};
  };
  EXPECT_FALSE(send(request, seat)) << "an answer that is no response";
  EXPECT_TRUE(seat.memory.holdsMuch()) << "took its memory all the same";
  EXPECT_EQ(bridge.requests.size(), 2u);
}

}  // namespace
}  // namespace quillpost
