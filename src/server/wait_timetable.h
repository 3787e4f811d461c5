#pragma once

// What a wait has to do when. Arithmetic only: it never looks at a clock.

#include <algorithm>
#include <chrono>
#include <optional>

#include "base/clock.h"

namespace quillpost {

/// The deadline of one wait and the times of what it does meanwhile.
class WaitTimetable {
 public:
  /// The app takes a seat for gone after some minutes without a heartbeat.
  static constexpr Duration heartbeatEvery = std::chrono::seconds(20);
  /// Clients that show progress time a call out when none comes.
  static constexpr Duration progressEvery = std::chrono::seconds(5);

  WaitTimetable(Instant start, Duration hold, bool reportsProgress)
      : deadline_(start + hold), reportsProgress_(reportsProgress) {}

  bool heartbeatDue(Instant now) const { return due(heartbeat_, heartbeatEvery, now); }
  /// Never for a wait that does not report progress.
  bool progressDue(Instant now) const {
    return reportsProgress_ && due(progress_, progressEvery, now);
  }
  bool overAt(Instant now) const { return now >= deadline_; }

  void heartbeatSentAt(Instant now) { heartbeat_ = now; }
  void progressSentAt(Instant now) { progress_ = now; }

  /// When the wait must next do something by itself. Defined once the first heartbeat and, when it
  /// is reported, the first progress have gone out.
  Instant nextWake() const {
    const Instant wake = std::min(deadline_, *heartbeat_ + heartbeatEvery);
    return reportsProgress_ ? std::min(wake, *progress_ + progressEvery) : wake;
  }

 private:
  static bool due(const std::optional<Instant>& last, Duration every, Instant now) {
    return !last || now - *last >= every;
  }

  Instant deadline_;
  bool reportsProgress_;
  std::optional<Instant> heartbeat_, progress_;  // nothing yet stands for the distant past
};

}  // namespace quillpost
