#pragma once

// An app that behaves by chance, well and badly, behind the server's door to it. Its answers are
// bytes, and are decoded as those of the real app are.

#include "bridge/bridge.h"
#include "harness/dice.h"
#include "simulation/judge.h"
#include "simulation/sim_clock.h"

#include <optional>
#include <string>

namespace quillpost::simulation {

/// What became of one request.
struct SimReply {
  /// Nothing when the connection failed, closed too early, or brought more than is taken.
  std::optional<std::string> bytes;
  Duration took{};
};

/// The app of one session.
class SimApp final : public Bridge {
 public:
  SimApp(Dice& dice, SimClock& clock, Judge& judge);

  std::string currentToken() override;
  Exchange send(const TeamworkRequest& request) override;

 private:
  SimReply replyTo(const TeamworkRequest& request);
  SimReply replyToPoll(const TeamworkRequest& request);
  std::string quietFeed(const TeamworkRequest& request);
  std::string anyResponse(std::optional<TeamworkResponse::Kind> kind);
  std::string damaged(std::string bytes);
  SimReply failure();

  Dice& dice_;
  SimClock& clock_;
  Judge& judge_;
  std::string token_;
};

}  // namespace quillpost::simulation
