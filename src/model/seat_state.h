#pragma once

// What the process remembers between calls. It changes in the functions below and nowhere else,
// before anything is rendered.

#include "model/client_profile.h"
#include "model/obligations.h"
#include "model/response.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost {

/// The memory of one seat.
struct SeatState {
  /// The board's revision last seen, the cursor of the next wait; 0 until one has been seen.
  int64_t lastSeenRev = 0;
  /// Whether lastSeenRev came from the app.
  bool hasCursor = false;
  /// The caller's own fingerprint and handle; nothing until the app has told them.
  std::optional<std::string> selfFingerprint;
  std::optional<std::string> selfHandle;
  /// The last ones that came with a response; nothing until one has.
  std::optional<TeamworkObligations> lastObligations;
  std::optional<TeamworkAudience> lastAudience;
  /// The harness that speaks for the seat; unknown until it has named itself.
  TeamworkClientProfile::Profile clientProfile = TeamworkClientProfile::Profile::unknown;
  /// How many wait outcomes have been rendered, the one at hand included.
  int64_t waitSeq = 0;
};

/// Takes what an ordinary call's answer says: the revision, the obligations, the audience, the
/// caller's identity, and a count for an answer that will be rendered as a wait's outcome.
void absorbAnswer(SeatState& state, const TeamworkResponse& answer);

/// Takes what a poll's answer says: the feed's revision, the obligations and the audience. An
/// answer without a feed changes nothing.
void absorbFeed(SeatState& state, const TeamworkResponse& answer);

/// Takes the name that a client gives itself. One that is not told apart is unknown from then on.
void absorbClientName(SeatState& state, std::string_view clientName);

/// Counts a wait whose outcome is about to be rendered.
void absorbWaitEnd(SeatState& state);

/// What a process has learnt in this seat while another may have been in it too: what it began
/// with, and what it ended with.
struct SeatLesson {
  const SeatState& before;
  const SeatState& after;
  /// Whether it is about another board than the state that takes it, so that the two revisions say
  /// nothing of each other.
  bool isOfOtherBoard = false;
};

/// Takes what the process has learnt, and leaves alone what it only remembered. Of two revisions
/// the later one counts, so that a slow process never takes back what a quick one has seen; but a
/// board that itself has gone back, as one that was restored does, is believed. Waits add up. The
/// client's profile stays.
void absorbLesson(SeatState& state, const SeatLesson& lesson);

}  // namespace quillpost
