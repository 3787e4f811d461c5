#include "calls/seat.h"

#include "harness/fake_bridge.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

TEST(Seat, SendsItsEnvelopeAndNothingElse) {
  testing::FakeClock clock;
  testing::FakeBridge bridge(clock);
  bridge.tokens = {"first", "second"};
  const MapEnvironment environment;
  const Seat seat = {.doors = {.clock = clock, .environment = environment, .bridge = bridge},
                     .sessionID = "ses",
                     .state = {}};
  EXPECT_EQ(encodeRequest(requestFrom(seat, "heartbeat")),
            R"({"protocolVersion":1,"token":"first","sessionID":"ses","method":"heartbeat"})");
  EXPECT_EQ(requestFrom(seat, "list_tasks").token, "second") << "the token is read each time";
  EXPECT_EQ(bridge.tokenReads, 2);
  EXPECT_TRUE(bridge.requests.empty());
}

}  // namespace
}  // namespace quillpost
