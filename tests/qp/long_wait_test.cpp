// A wait that lasts a day, on a clock that has it pass in a moment.

#include "harness/fake_environment.h"
#include "harness/json_object.h"
#include "harness/sanitized.h"
#include "harness/temp_dir.h"
#include "qp/run.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#if QUILLPOST_SANITIZED
#include <sanitizer/allocator_interface.h>
#endif

namespace quillpost {
namespace {

using namespace std::chrono_literals;

/// How many bytes of memory this process occupies; where the system does not tell, the most that it
/// ever has.
std::size_t residentBytes() {
#if QUILLPOST_SANITIZED
  return __sanitizer_get_current_allocated_bytes();
#endif
  std::ifstream file("/proc/self/statm");
  std::size_t allPages = 0, residentPages = 0;
  if (file >> allPages >> residentPages)
    return residentPages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss);
}

/// A clock that keeps nothing of what it was asked.
class PassingClock final : public Clock {
 public:
  Instant now() override { return now_; }
  void sleepFor(Duration duration) override { now_ += duration; }
  Duration elapsed() const { return now_.time_since_epoch(); }

 private:
  Instant now_{};
};

/// A board of a hundred tasks, which holds each poll as long as it is asked to and is away for ten
/// minutes of each hour. Every tenth poll brings news to a follower.
class DaysBoard final : public Bridge {
 public:
  DaysBoard(PassingClock& clock, bool bringsNews) : clock_(clock), bringsNews_(bringsNews) {}

  std::string currentToken() override { return "tok"; }
  Exchange send(const TeamworkRequest& request) override {
    ++requests;
    if (clock_.elapsed() % 1h > 50min) return {};
    if (request.method != "poll_changes")
      return {.response = testing::responseFrom(R"({"kind":"written"})")};
    const int64_t rev = ++polls_;
    const bool isNews = bringsNews_ && rev % 10 == 0;
    if (!isNews) clock_.sleepFor(std::chrono::milliseconds(request.holdMs.value_or(0)));
    return {.response = testing::responseFrom(feed(rev, isNews))};
  }

  int64_t requests = 0;

 private:
  static std::string feed(int64_t rev, bool isNews) {
    std::string tasks;
    for (int i = 1; i <= 100; ++i)
      tasks += text::cat(i == 1 ? "" : ",", R"({"id":"t)", i, R"(","title":"A task of the board",)",
                         R"("body":"","state":"open","log":[],"resources":[]})");
    return text::cat(
        R"({"kind":"changes","changes":{"rev":)", rev, R"(,"changed":)", isNews ? "true" : "false",
        R"(,"goal":"g","goalComplete":false,"pendingGoalComplete":false,"changeKinds":[],)",
        R"("tasks":[)", tasks, "]}}");
  }

  PassingClock& clock_;
  bool bringsNews_;
  int64_t polls_ = 0;
};

/// Somebody who reads and keeps nothing.
struct Reader final : Output {
  bool write(std::string_view message) override {
    lines += message.empty() ? 0 : 1;
    return true;
  }
  int64_t lines = 0;
};

/// How long the day is: where every byte is watched over, a part of it shows what is kept as well.
constexpr Duration wholeDay = QUILLPOST_SANITIZED ? 4h : 24h;

/// Waits for a day, and notes what memory the process has after an hour and at the end.
class Day final : public Lifetime {
 public:
  explicit Day(PassingClock& clock) : clock_(clock) {}

  void begin() override {}
  bool isOver() override {
    if (clock_.elapsed() >= 1h && afterAnHour == 0) afterAnHour = residentBytes();
    return clock_.elapsed() >= wholeDay;
  }
  bool isUnread() const override { return false; }

  std::size_t afterAnHour = 0;

 private:
  PassingClock& clock_;
};

void expectNoGrowth(const std::vector<std::string>& words, bool bringsNews) {
  constexpr std::size_t noise = std::size_t{512} << 10;  // what the allocator may still take
  const testing::TempDir home;
  const testing::FakeEnvironment environment;
  PassingClock clock;
  DaysBoard board(clock, bringsNews);
  Day day(clock);
  Reader reader;
  const Status status =
      runLine(words, {.doors = {.clock = clock, .environment = environment, .bridge = board},
                      .sessionID = "ses",
                      .memory = {.runtime = home.pathOf("memory"), .temporary = ""},
                      .lifetime = day,
                      .console = {.output = reader, .errors = reader},
                      .texts = {.input = [] { return std::nullopt; },
                                .file = [](const std::string&) { return std::nullopt; }},
                      .places = [] { return Places(); }});
  EXPECT_EQ(status, Status::hungUp);
  EXPECT_GE(board.requests, wholeDay / 20s)
      << "a poll and a heartbeat each twenty seconds, and more";
  EXPECT_EQ(reader.lines > 1, bringsNews);
  EXPECT_GT(day.afterAnHour, 0u);
  EXPECT_LE(residentBytes(), day.afterAnHour + noise);
}

TEST(LongWait, TakesNoMoreMemoryAfterADayThanAfterAnHour) { expectNoGrowth({"wait"}, false); }

TEST(LongWait, TakesNoMoreThoughItFollowsTheBoardMoveByMove) {
  expectNoGrowth({"wait", "--follow"}, true);
}

}  // namespace
}  // namespace quillpost
