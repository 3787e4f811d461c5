#pragma once

// One whole session: a client, the server and an app, in one thread, on virtual time, by chance.

#include "simulation/judge.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quillpost::simulation {

/// Plays the session of a seed. Gives what was wrong, or nothing; `trace`, when there is one,
/// takes what happened.
std::optional<std::string> playSession(uint64_t seed, Tally& tally, std::string* trace = nullptr);

}  // namespace quillpost::simulation
