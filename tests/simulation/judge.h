#pragma once

// Watches one session from both ends and ends it at the first thing that must not happen.

#include "base/environment.h"
#include "harness/chance.h"
#include "json/value.h"
#include "model/request.h"
#include "model/response.h"
#include "model/seat_state.h"
#include "simulation/client_lines.h"
#include "simulation/sim_clock.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::simulation {

/// Begins every token that the app gives out, so that one can be found wherever it turns up.
inline constexpr std::string_view secretMark = "s3cr3t";

/// Thrown at the first complaint: whatever the server was about to do after it does not count.
struct Complaint {
  std::string what;
};

using testing::Tally;

/// The rules of a session. Everything that goes in or out of the server is told to it.
class Judge {
 public:
  /// What the judge knows of the session.
  struct Scene {
    const SimClock& clock;
    const Environment& environment;
    std::string sessionID;
  };

  Judge(Scene scene, Tally& tally) : scene_(std::move(scene)), tally_(tally) {}

  /// What must be answered, in this order.
  std::deque<Expectation> expected;
  /// The memory of the server's seat.
  const SeatState* state = nullptr;
  /// What happened, one line each, when it is kept.
  std::string trace;
  bool keepsTrace = false;

  void tokenRead(std::string_view token);
  void asked(const TeamworkRequest& request);
  void answered(const std::optional<TeamworkResponse>& response);
  /// The server has written this.
  void wrote(std::string_view message);
  /// The server wanted to write, and the client has gone.
  void refused();
  /// Whether a wait has begun and not ended.
  bool isWaiting() const { return wait_.begun; }
  /// The server has ended.
  void ended();

  void note(std::string_view what);

 private:
  /// The call at hand.
  struct Call {
    int attempts = 0;
    std::string request;
    Duration over{};  // when the last exchange was
    bool sawAnswer = false;
    std::string threadTag;
  };
  /// The wait at hand. Durations are times that ran in order.
  struct Wait {
    bool begun = false;
    Instant deadline, heartbeatAt;
    Duration deadlineInOrder{};
    Duration roundStart{};
    std::optional<Duration> heartbeat, progress, pollEnd;
    std::optional<Instant> pollAt;  // when the last poll began
    int64_t progressCount = 0;
    std::optional<int64_t> cursor;  // of the next poll, when it is known
    std::optional<int64_t> feedRev;
    int pollsAfterDeadline = 0;
    bool mustEnd = false;
    bool endsInWords = false;
    std::string method;  // of the last request
    std::string threadTag;
  };

  [[noreturn]] void complain(std::string_view what) const;
  void require(bool holds, std::string_view what) const {
    if (!holds) complain(what);
  }

  void askedByCall(const TeamworkRequest& request, const std::string& encoded);
  void askedByWait(const TeamworkRequest& request);
  void beginWait();
  void checkHeartbeat(const TeamworkRequest& request);
  void checkPoll(const TeamworkRequest& request);
  void answeredToPoll(const std::optional<TeamworkResponse>& response);

  void checkProgress(const json::TreeObject& message);
  void checkAnswer(const json::TreeObject& message);
  void checkResult(const Expectation& expectation, const json::TreeObject& message);
  void checkText(const Expectation& expectation, std::string_view text);
  void checkCallText(const Expectation& expectation, std::string_view text);
  void checkWaitText(std::string_view text);
  void checkMemory() const;

  Scene scene_;
  Tally& tally_;
  std::string token_;
  Call call_;
  Wait wait_;
  bool exchanging_ = false;
  bool readerGone_ = false;
  // What the seat must remember.
  int64_t rev_ = 0;
  bool hasRev_ = false;
  int64_t waitSeq_ = 0;
};

}  // namespace quillpost::simulation
