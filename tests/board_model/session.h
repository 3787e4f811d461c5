#pragma once

// A session by chance on a board: ten seats and the person ask for whatever comes to them, time
// passes, answers get lost, saves fail, the program is killed. After each step the judge looks
// whether everything that must always hold still does. At the end nothing more is lost, and what is
// owed arrives and what can be done gets done (calm.h).

#include "harness/chance.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quillpost::board_model {

using testing::Tally;

/// Plays the session of a seed and adds to the tally what happened in it. What went wrong, in
/// words; nothing when all held. `trace` is given a line for each step.
std::optional<std::string> playSession(uint64_t seed, Tally& tally, std::string* trace = nullptr);

}  // namespace quillpost::board_model
