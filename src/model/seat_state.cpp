#include "model/seat_state.h"

#include "base/text.h"

#include <algorithm>

namespace quillpost {
namespace {

void absorbNotes(SeatState& state, const TeamworkResponse& answer) {
  if (answer.obligations) state.lastObligations = answer.obligations;
  if (answer.audience) state.lastAudience = answer.audience;
}

void absorbRevision(SeatState& state, int64_t rev) {
  state.lastSeenRev = rev;
  state.hasCursor = true;
}

/// Takes a value that the process has learnt anew.
template <class Value>
void absorbNew(Value& value, const Value& before, const Value& after) {
  if (after != before) value = after;
}

void absorbLearntRevision(SeatState& state, const SeatLesson& lesson) {
  const SeatState& before = lesson.before;
  const SeatState& after = lesson.after;
  if (!after.hasCursor) return;
  // A board that went back while the process asked it, and that nobody has noticed before.
  const bool isNoticedFirst =
      after.lastSeenRev < before.lastSeenRev && state.lastSeenRev >= before.lastSeenRev;
  const bool isBelieved = lesson.isOfOtherBoard || isNoticedFirst || !state.hasCursor;
  absorbRevision(state,
                 isBelieved ? after.lastSeenRev : std::max(state.lastSeenRev, after.lastSeenRev));
}

}  // namespace

void absorbAnswer(SeatState& state, const TeamworkResponse& answer) {
  using Kind = TeamworkResponse::Kind;
  if (answer.rev) absorbRevision(state, *answer.rev);
  absorbNotes(state, answer);
  if (answer.kind == Kind::registered && answer.agent) {
    state.selfFingerprint = answer.agent->fingerprint;
    // An answer that names no handle leaves the one known: a seat does not lose its address.
    if (!answer.agent->handle.empty()) state.selfHandle = answer.agent->handle;
  }
  if (answer.kind == Kind::changes) absorbWaitEnd(state);
}

void absorbFeed(SeatState& state, const TeamworkResponse& answer) {
  if (!answer.changes) return;
  absorbRevision(state, answer.changes->rev);
  absorbNotes(state, answer);
}

void absorbClientName(SeatState& state, std::string_view clientName) {
  state.clientProfile = TeamworkClientProfile::fromName(clientName);
}

void absorbWaitEnd(SeatState& state) { state.waitSeq = text::saturatingAdd(state.waitSeq, 1); }

void absorbLesson(SeatState& state, const SeatLesson& lesson) {
  const SeatState& before = lesson.before;
  const SeatState& after = lesson.after;
  absorbLearntRevision(state, lesson);
  absorbNew(state.selfFingerprint, before.selfFingerprint, after.selfFingerprint);
  absorbNew(state.selfHandle, before.selfHandle, after.selfHandle);
  absorbNew(state.lastObligations, before.lastObligations, after.lastObligations);
  absorbNew(state.lastAudience, before.lastAudience, after.lastAudience);
  const int64_t waits = text::saturatingSubtract(after.waitSeq, before.waitSeq);
  state.waitSeq = text::saturatingAdd(state.waitSeq, std::max(waits, int64_t{0}));
}

}  // namespace quillpost
