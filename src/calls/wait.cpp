#include "calls/wait.h"

#include "base/text.h"
#include "calls/hold_budget.h"
#include "calls/wait_timetable.h"
#include "render/obligations.h"
#include "render/texts/replies.h"
#include "render/texts/waiting.h"
#include "render/wait_outcome.h"
#include "tools/tool_name.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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
};

/// What has come in since the listening began.
struct Heard {
  std::optional<TeamworkChangeFeed> feed = {};  // the last one; nothing when none ever came
  std::string threadTag = {};                   // the last one told
  int64_t cursor = 0;                           // the revision that the next poll asks from
};

/// How the listening ended.
struct WaitEnd {
  CallEnd how = CallEnd::timedOut;
  std::string text = {};  // of an ending that the app worded
};

WaitPlan planFrom(const Arguments& arguments, const Listener& listener) {
  WaitPlan plan;
  plan.taskIDs = arguments.texts("taskIDs").value_or(std::vector<std::string>());
  if (plan.taskIDs.size() > watchedTaskLimit) plan.taskIDs.resize(watchedTaskLimit);
  plan.wakeOnClaims = arguments.flag("wakeOnClaims").value_or(false);
  plan.standDown = arguments.flag("standDown").value_or(false);
  plan.parkReason = arguments.text("parkReason");
  plan.asked = arguments.integer("timeoutSeconds");
  plan.hold = holdFor(plan.asked, listener.budget);
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
TeamworkRequest pollFor(const Seat& seat, const WaitPlan& plan, int64_t cursor,
                        Duration remaining) {
  TeamworkRequest request = requestFrom(seat, pollChanges);
  request.sinceRev = cursor;
  request.wakeOnStateChanges = plan.wakeOnClaims;
  if (!plan.taskIDs.empty()) request.taskIDs = plan.taskIDs;
  // Without a revision there is nothing to hold for: the app answers at once with the first one.
  if (cursor >= 1 && remaining > shortestPollHold)
    request.holdMs = std::chrono::duration_cast<milliseconds>(remaining).count();
  return request;
}

bool bringsNews(const TeamworkChangeFeed& feed) {
  return feed.goalComplete || !feed.wakeReasons.empty() || !feed.messages.empty() || feed.changed;
}

/// An ending that the app worded, with what is owed behind it.
WaitEnd worded(CallEnd how, std::string_view text, const TeamworkResponse& answer) {
  return {.how = how, .text = text::cat(text, obligationsSuffix(answer.obligations))};
}

/// Takes one poll's answer. How the listening ends with it, or nothing to go on.
std::optional<WaitEnd> takeAnswer(TeamworkResponse& answer, Heard& heard, SeatState& state) {
  using Kind = TeamworkResponse::Kind;
  if (answer.threadTag && !answer.threadTag->empty()) heard.threadTag = *answer.threadTag;
  switch (answer.kind) {
    case Kind::empty:
      return worded(CallEnd::nothingToWaitOn, texts::nothingToWaitOn, answer);
    case Kind::error:
      return worded(CallEnd::refused, answer.message ? *answer.message : texts::teamworkError,
                    answer);
    case Kind::changes:
      if (!answer.changes) return std::nullopt;
      absorbFeed(state, answer);
      heard.cursor = answer.changes->rev;
      heard.feed = std::move(answer.changes);
      return bringsNews(*heard.feed) ? std::optional(WaitEnd{CallEnd::moved}) : std::nullopt;
    default:
      return std::nullopt;
  }
}

/// The same, but for an ending that the listener goes on after.
std::optional<WaitEnd> endAfter(TeamworkResponse& answer, Heard& heard, SeatState& state,
                                const Listener& listener) {
  std::optional<WaitEnd> end = takeAnswer(answer, heard, state);
  const TeamworkChangeFeed* const feed = heard.feed ? &*heard.feed : nullptr;
  if (end && listener.goesOn && listener.goesOn(end->how, feed)) return std::nullopt;
  return end;
}

WaitEnd listen(const WaitPlan& plan, Heard& heard, Seat& seat, const Listener& listener) {
  Clock& clock = seat.doors.clock;
  const std::optional<int64_t> held = plan.hold.seconds;
  WaitTimetable timetable(clock.now(),
                          held ? std::optional<Duration>(seconds(*held)) : std::nullopt,
                          static_cast<bool>(listener.progress));
  for (int64_t progressCount = 0;;) {  // bounded by the deadline, where there is one
    if (listener.isThere && !listener.isThere()) return {CallEnd::callerGone};
    if (timetable.heartbeatDue(clock.now())) {
      send(heartbeatFor(seat, plan), seat);
      timetable.heartbeatSentAt(clock.now());
    }
    if (timetable.progressDue(clock.now())) {
      if (!listener.progress(++progressCount)) return {CallEnd::callerGone};
      timetable.progressSentAt(clock.now());
    }

    const Instant asked = clock.now();
    std::optional<TeamworkResponse> answer =
        send(pollFor(seat, plan, heard.cursor, timetable.nextWake() - asked), seat);
    if (answer) {
      if (std::optional<WaitEnd> end = endAfter(*answer, heard, seat.state, listener))
        return std::move(*end);
    }

    const Instant answered = clock.now();
    if (timetable.overAt(answered)) return {CallEnd::timedOut};
    if (!answer || answered - asked < quickPoll) clock.sleepFor(restBetweenPolls);
  }
}

}  // namespace

Listener clientOf(const Seat& seat, ProgressReport progress) {
  const HoldSettings settings = readHoldSettings(seat.doors.environment);
  return {.budget = holdBudget(seat.state.clientProfile, settings),
          .cannotHoldLong = cannotHoldLong(seat.state.clientProfile, settings),
          .progress = std::move(progress)};
}

ToolReply runWait(const Arguments& arguments, Seat& seat, const Listener& listener) {
  if (seat.sessionID.empty())
    return {.text = json::EscapedText(texts::outsideThread), .end = CallEnd::outsideThread};
  const WaitPlan plan = planFrom(arguments, listener);
  Heard heard{.cursor = arguments.integer("sinceRev").value_or(seat.state.lastSeenRev)};
  const WaitEnd end = listen(plan, heard, seat, listener);
  if (end.how == CallEnd::nothingToWaitOn || end.how == CallEnd::refused)
    return {.text = json::EscapedText(end.text),
            .threadTag = std::move(heard.threadTag),
            .end = end.how};

  absorbWaitEnd(seat.state);
  const WaitOutcome outcome = {
      .feed = heard.feed ? &*heard.feed : nullptr,
      .watching = plan.taskIDs,
      .heldSeconds = plan.hold.seconds.value_or(0),
      .shortenedFrom = plan.hold.isShortened ? plan.asked : std::nullopt,
      .timedOut = end.how == CallEnd::timedOut,
      .cannotHoldLong = listener.cannotHoldLong,
  };
  return {.text = waitOutcome(outcome, seat.state),
          .threadTag = std::move(heard.threadTag),
          .end = end.how};
}

}  // namespace quillpost
