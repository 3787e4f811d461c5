#include "calls/wait.h"

#include "calls/hold_budget.h"
#include "calls/wait_timetable.h"
#include "render/obligations.h"
#include "render/texts/replies.h"
#include "render/texts/waiting.h"
#include "render/wait_outcome.h"
#include "tools/tool_name.h"

#include <chrono>
#include <cstddef>
#include <utility>

namespace quillpost {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::size_t watchedTaskLimit = 64;              // the app refuses longer lists
constexpr Duration shortestPollHold = milliseconds(200);  // below it a hold is not worth asking
constexpr Duration quickPoll = milliseconds(500);         // a quiet poll faster than this rests
constexpr Duration restBetweenPolls = seconds(2);

/// What one call waits for, and how long.
struct WaitPlan {
  std::vector<std::string> taskIDs;
  bool wakeOnClaims = false;
  bool standDown = false;
  std::optional<std::string> parkReason;
  std::optional<int64_t> asked;
  Hold hold;
  int64_t cursor = 0;
};

/// How the listening ended.
struct WaitEnd {
  enum class Why { moved, timedOut, nothingToWaitOn, refused, clientGone };
  Why why = Why::timedOut;
  std::optional<TeamworkChangeFeed> feed;  // the last one; nothing when none ever came
  std::string text;                        // of an ending that the app worded
  std::string threadTag;                   // the last one told
};

WaitPlan planFrom(const Arguments& arguments, const Seat& seat, const HoldSettings& settings) {
  WaitPlan plan;
  plan.taskIDs = arguments.texts("taskIDs").value_or(std::vector<std::string>());
  if (plan.taskIDs.size() > watchedTaskLimit) plan.taskIDs.resize(watchedTaskLimit);
  plan.wakeOnClaims = arguments.flag("wakeOnClaims").value_or(false);
  plan.standDown = arguments.flag("standDown").value_or(false);
  plan.parkReason = arguments.text("parkReason");
  plan.asked = arguments.integer("timeoutSeconds");
  plan.hold = holdFor(plan.asked, holdBudget(seat.state.clientProfile, settings));
  plan.cursor = arguments.integer("sinceRev").value_or(seat.state.lastSeenRev);
  return plan;
}

TeamworkRequest heartbeatFor(const Seat& seat, const WaitPlan& plan) {
  TeamworkRequest request = requestFrom(seat, heartbeat);
  request.waiting = true;
  request.standDown = plan.standDown;
  request.parkReason = plan.parkReason;
  return request;
}

/// `remaining` is how long the app may hold the poll open.
TeamworkRequest pollFor(const Seat& seat, const WaitPlan& plan, Duration remaining) {
  TeamworkRequest request = requestFrom(seat, pollChanges);
  request.sinceRev = plan.cursor;
  request.wakeOnStateChanges = plan.wakeOnClaims;
  if (!plan.taskIDs.empty()) request.taskIDs = plan.taskIDs;
  // Without a revision there is nothing to hold for: the app answers at once with the first one.
  if (plan.cursor >= 1 && remaining > shortestPollHold)
    request.holdMs = std::chrono::duration_cast<milliseconds>(remaining).count();
  return request;
}

bool bringsNews(const TeamworkChangeFeed& feed) {
  return feed.goalComplete || !feed.wakeReasons.empty() || !feed.messages.empty() || feed.changed;
}

/// Takes one poll's answer. The reason to stop, or nothing to go on listening.
std::optional<WaitEnd::Why> takeAnswer(TeamworkResponse& answer, WaitPlan& plan, SeatState& state,
                                       WaitEnd& end) {
  using Kind = TeamworkResponse::Kind;
  if (answer.threadTag && !answer.threadTag->empty()) end.threadTag = *answer.threadTag;
  if (answer.kind == Kind::empty) {
    end.text = texts::nothingToWaitOn;
  } else if (answer.kind == Kind::error) {
    end.text = answer.message ? *answer.message : std::string(texts::teamworkError);
  } else if (answer.kind == Kind::changes && answer.changes) {
    absorbFeed(state, answer);
    plan.cursor = answer.changes->rev;
    end.feed = std::move(answer.changes);
    if (bringsNews(*end.feed)) return WaitEnd::Why::moved;
    return std::nullopt;
  } else {
    return std::nullopt;
  }
  end.text += obligationsSuffix(answer.obligations);
  return answer.kind == Kind::empty ? WaitEnd::Why::nothingToWaitOn : WaitEnd::Why::refused;
}

WaitEnd listen(WaitPlan plan, Seat& seat, const ProgressReport& progress) {
  Clock& clock = seat.doors.clock;
  Bridge& bridge = seat.doors.bridge;
  WaitTimetable timetable(clock.now(), seconds(plan.hold.seconds), static_cast<bool>(progress));
  WaitEnd end;
  for (int64_t progressCount = 0;;) {  // bounded by the deadline
    if (timetable.heartbeatDue(clock.now())) {
      bridge.send(heartbeatFor(seat, plan));
      timetable.heartbeatSentAt(clock.now());
    }
    if (timetable.progressDue(clock.now())) {
      if (!progress(++progressCount)) {
        end.why = WaitEnd::Why::clientGone;
        return end;
      }
      timetable.progressSentAt(clock.now());
    }

    const Instant asked = clock.now();
    std::optional<TeamworkResponse> answer =
        bridge.send(pollFor(seat, plan, timetable.nextWake() - asked));
    if (answer) {
      const std::optional<WaitEnd::Why> why = takeAnswer(*answer, plan, seat.state, end);
      if (why) {
        end.why = *why;
        return end;
      }
    }

    const Instant answered = clock.now();
    if (timetable.overAt(answered)) return end;
    if (!answer || answered - asked < quickPoll) clock.sleepFor(restBetweenPolls);
  }
}

}  // namespace

ToolReply runWait(const Arguments& arguments, Seat& seat, const ProgressReport& progress) {
  if (seat.sessionID.empty())
    return {.text = json::EscapedText(texts::outsideThread), .threadTag = {}};
  const HoldSettings settings = readHoldSettings(seat.doors.environment);
  const WaitPlan plan = planFrom(arguments, seat, settings);
  WaitEnd end = listen(plan, seat, progress);
  if (end.why == WaitEnd::Why::nothingToWaitOn || end.why == WaitEnd::Why::refused)
    return {.text = json::EscapedText(end.text), .threadTag = std::move(end.threadTag)};

  absorbWaitEnd(seat.state);
  const WaitOutcome outcome = {
      .feed = end.feed ? &*end.feed : nullptr,
      .watching = plan.taskIDs,
      .heldSeconds = plan.hold.seconds,
      .shortenedFrom = plan.hold.isShortened ? plan.asked : std::nullopt,
      .timedOut = end.why == WaitEnd::Why::timedOut,
      .cannotHoldLong = cannotHoldLong(seat.state.clientProfile, settings),
  };
  return {.text = waitOutcome(outcome, seat.state), .threadTag = std::move(end.threadTag)};
}

}  // namespace quillpost
