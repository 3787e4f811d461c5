#include "model/seat_state.h"

#include "base/text.h"

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

}  // namespace quillpost
