#include "render/wait_outcome.h"

#include "base/text.h"
#include "json/writer.h"
#include "render/delivery.h"
#include "render/obligations.h"
#include "render/task.h"
#include "render/texts/plan.h"
#include "render/texts/waiting.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace quillpost {
namespace {

constexpr std::string_view claimExpiringKind = "claimExpiring";
constexpr std::string_view claimExpiredKind = "claimExpired";
constexpr std::string_view taskWatchedKind = "taskWatched";
constexpr std::string_view youWereTaggedKind = "youWereTagged";

using WakeReasons = std::span<const TeamworkWakeReason>;

WakeReasons wakeReasonsOf(const TeamworkChangeFeed* feed) {
  return feed ? WakeReasons(feed->wakeReasons) : WakeReasons();
}

bool hasKind(WakeReasons reasons, std::string_view kind) {
  return std::ranges::find(reasons, kind, &TeamworkWakeReason::kind) != reasons.end();
}

bool goalIsComplete(const WaitOutcome& outcome) {
  return outcome.feed && outcome.feed->goalComplete;
}

bool wasTagged(const TeamworkChangeFeed& feed) {
  return std::ranges::find(feed.changeKinds, youWereTaggedKind) != feed.changeKinds.end() ||
         std::ranges::any_of(feed.tasks, &TeamworkTask::mentionsYou);
}

std::string_view quietTurn(const SeatState& state) {
  if (traitsOf(state.clientProfile).turnsExitIntoTurn) return texts::quietCheaperWait;
  return texts::quietTurns[static_cast<uint64_t>(state.waitSeq) % std::size(texts::quietTurns)];
}

std::string quietText(const WaitOutcome& outcome, const SeatState& state) {
  std::string text(quietTurn(state));
  if (outcome.cannotHoldLong) text += texts::quickReturn;
  if (!areClear(state.lastObligations))
    text += texts::quietButOwing(summaryLine(*state.lastObligations));
  return text;
}

/// What to do now, without regard to tags and to replies that are owed.
std::string mainStep(const WaitOutcome& outcome, const SeatState& state) {
  const TeamworkChangeFeed* const feed = outcome.feed;
  const WakeReasons reasons = wakeReasonsOf(feed);
  if (goalIsComplete(outcome) && !areClear(state.lastObligations))
    return texts::goalCompleteButOwing(summaryLine(*state.lastObligations));
  if (goalIsComplete(outcome)) return std::string(texts::goalConfirmed);
  if (hasKind(reasons, claimExpiringKind)) return std::string(texts::claimExpiring);
  if (hasKind(reasons, claimExpiredKind)) return std::string(texts::claimExpired);
  const auto watched = [](const TeamworkWakeReason& one) { return one.kind == taskWatchedKind; };
  if (!reasons.empty())
    return std::string(std::ranges::all_of(reasons, watched) ? texts::watchedTasksMoved
                                                             : texts::woken);
  if (outcome.timedOut) return quietText(outcome, state);
  if (feed && feed->pendingGoalComplete) return std::string(texts::completionAwaited);
  return std::string(texts::boardMoved);
}

std::string owedDiscussions(const TeamworkObligations& obligations) {
  return text::join(obligations.oweReply, ", ", &TeamworkObligations::DebateRef::discussionID);
}

std::string nextStepAfterWait(const WaitOutcome& outcome, const SeatState& state) {
  std::string step;
  if (state.lastObligations && !state.lastObligations->oweReply.empty())
    step += texts::youOweReplies(owedDiscussions(*state.lastObligations));
  if (outcome.feed && wasTagged(*outcome.feed)) step += texts::youWereTagged;
  return step + mainStep(outcome, state);
}

void addWatching(json::Object& out, std::span<const std::string> watching) {
  if (watching.empty()) {
    out.add("watching", texts::entireBacklog);
  } else {
    out.add("watching", watching);
  }
}

void addHold(json::Object& out, const WaitOutcome& outcome) {
  if (!outcome.shortenedFrom) return;
  out.add("heldForSeconds", outcome.heldSeconds);
  out.add("heldForSecondsNote", texts::heldForSecondsNote({.asked = *outcome.shortenedFrom,
                                                           .granted = outcome.heldSeconds}));
}

void addWakeReason(json::Object& out, const TeamworkWakeReason& reason) {
  out.add("kind", reason.kind).add("summary", reason.summary);
  out.addText("taskID", reason.taskID).addText("cause", reason.cause);
}

void addOutcome(json::Object& out, const WaitOutcome& outcome, const SeatState& state) {
  const TeamworkChangeFeed* const feed = outcome.feed;
  out.add("waitSeq", state.waitSeq);
  if (feed) out.add("rev", feed->rev);
  addWatching(out, outcome.watching);
  if (feed) out.list("tasks", feed->tasks, addTask);
  addHold(out, outcome);
  if (feed) {
    out.add("pendingGoalComplete", feed->pendingGoalComplete).add("changed", feed->changed);
    out.add("goalComplete", feed->goalComplete);
  }
  out.list("wakeReasons", wakeReasonsOf(feed), addWakeReason);
  if (feed) addDelivery(out, feed->messages);
  out.add("resolved", goalIsComplete(outcome) && areClear(state.lastObligations));
  out.add("nextStep", nextStepAfterWait(outcome, state));
  if (!state.lastObligations) return;
  json::Object obligations = out.object("obligations");
  addObligations(obligations, *state.lastObligations, state.lastAudience);
}

}  // namespace

json::EscapedText waitOutcome(const WaitOutcome& outcome, const SeatState& state) {
  json::EscapedText out;
  json::appendObject(out, [&](json::Object& object) { addOutcome(object, outcome, state); });
  return out;
}

}  // namespace quillpost
