#pragma once

// What a wait has to do when. Arithmetic only: it never looks at a clock.

#include "base/clock.h"

#include <algorithm>
#include <chrono>
#include <optional>

namespace quillpost {

/// The deadline of one wait and the times of what it does meanwhile.
class WaitTimetable {
 public:
  /// The app takes a seat for gone after some minutes without a heartbeat.
  static constexpr Duration heartbeatEvery = std::chrono::seconds(20);
  /// Clients that show progress time a call out when none comes.
  static constexpr Duration progressEvery = std::chrono::seconds(5);

  /// Until it has been sent once, everything is due from the start on. Without a hold the wait is
  /// never over.
  WaitTimetable(Instant start, std::optional<Duration> hold, bool reportsProgress)
      : deadline_(hold ? start + *hold : Instant::max()),
        reportsProgress_(reportsProgress),
        nextHeartbeat_(start),
        nextProgress_(start) {}

  bool heartbeatDue(Instant now) const { return now >= nextHeartbeat_; }
  /// Never for a wait that does not report progress.
  bool progressDue(Instant now) const { return reportsProgress_ && now >= nextProgress_; }
  bool overAt(Instant now) const { return now >= deadline_; }

  void heartbeatSentAt(Instant now) { nextHeartbeat_ = now + heartbeatEvery; }
  void progressSentAt(Instant now) { nextProgress_ = now + progressEvery; }

  /// When the wait must next do something by itself: at its start, and then whenever the next
  /// heartbeat, the next progress or the deadline comes.
  Instant nextWake() const {
    const Instant wake = std::min(deadline_, nextHeartbeat_);
    return reportsProgress_ ? std::min(wake, nextProgress_) : wake;
  }

 private:
  Instant deadline_;
  bool reportsProgress_;
  Instant nextHeartbeat_, nextProgress_;
};

}  // namespace quillpost
