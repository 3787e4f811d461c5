#include "calls/wait_timetable.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using namespace std::chrono_literals;

constexpr Instant start{1000s};

TEST(WaitTimetable, HasTheFirstOfEverythingDueAtOnce) {
  const WaitTimetable timetable(start, 30s, true);
  EXPECT_TRUE(timetable.heartbeatDue(start));
  EXPECT_TRUE(timetable.progressDue(start));
  EXPECT_FALSE(timetable.overAt(start));
  EXPECT_EQ(timetable.nextWake(), start);
}

TEST(WaitTimetable, HasAHeartbeatDueEveryTwentySeconds) {
  WaitTimetable timetable(start, 60s, true);
  timetable.heartbeatSentAt(start + 1s);
  EXPECT_FALSE(timetable.heartbeatDue(start + 1s));
  EXPECT_FALSE(timetable.heartbeatDue(start + 21s - 1ns));
  EXPECT_TRUE(timetable.heartbeatDue(start + 21s));
  EXPECT_TRUE(timetable.heartbeatDue(start + 50s));
}

TEST(WaitTimetable, HasProgressDueEveryFiveSecondsWhenItIsReported) {
  WaitTimetable timetable(start, 60s, true);
  timetable.progressSentAt(start + 1s);
  EXPECT_FALSE(timetable.progressDue(start + 6s - 1ns));
  EXPECT_TRUE(timetable.progressDue(start + 6s));
  EXPECT_FALSE(WaitTimetable(start, 60s, false).progressDue(start + 50s));
}

TEST(WaitTimetable, IsOverAtItsDeadline) {
  const WaitTimetable timetable(start, 30s, false);
  EXPECT_FALSE(timetable.overAt(start + 30s - 1ns));
  EXPECT_TRUE(timetable.overAt(start + 30s));
  EXPECT_TRUE(timetable.overAt(start + 31s));
}

TEST(WaitTimetable, IsNeverOverWithoutAHold) {
  const WaitTimetable timetable(start, std::nullopt, false);
  EXPECT_FALSE(timetable.overAt(start + std::chrono::years(100)));
}

TEST(WaitTimetable, WakesForWhateverComesFirst) {
  struct Row {
    std::string_view name;
    std::optional<Duration> hold;
    bool reportsProgress;
    Duration heartbeatSent, progressSent, wake;
  };
  for (const Row& row : {
           Row{"the heartbeat", 60s, false, 0s, 0s, 20s},
           Row{"the deadline", 12s, false, 0s, 0s, 12s},
           Row{"the deadline at the heartbeat", 20s, false, 0s, 0s, 20s},
           Row{"the progress", 60s, true, 0s, 3s, 8s},
           Row{"the heartbeat before the progress", 60s, true, 0s, 17s, 20s},
           Row{"the deadline before the progress", 2s, true, 0s, 0s, 2s},
           Row{"the heartbeat although progress is noted", 60s, false, 1s, 1s, 21s},
           Row{"the heartbeat where there is no deadline", std::nullopt, false, 40s, 0s, 60s},
           Row{"a deadline that has passed", 30s, true, 40s, 40s, 30s},
       }) {
    WaitTimetable timetable(start, row.hold, row.reportsProgress);
    timetable.heartbeatSentAt(start + row.heartbeatSent);
    timetable.progressSentAt(start + row.progressSent);
    EXPECT_EQ(timetable.nextWake() - start, row.wake) << row.name;
  }
}

}  // namespace
}  // namespace quillpost
