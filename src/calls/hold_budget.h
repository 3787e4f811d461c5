#pragma once

// How long a client may be held in one wait.

#include "base/environment.h"
#include "model/client_profile.h"

#include <cstdint>
#include <optional>

namespace quillpost {

/// What the environment says about holding, in seconds; a variable that is not a whole decimal
/// integer counts as unset.
struct HoldSettings {
  /// For every client.
  std::optional<int64_t> budget;
  /// For clients that heed it, when there is no budget.
  std::optional<int64_t> maximum;
};

/// Reads the settings afresh.
HoldSettings readHoldSettings(const Environment& environment);

/// The longest hold for a client, in seconds.
int64_t holdBudget(TeamworkClientProfile::Profile profile, const HoldSettings& settings);

/// Whether a client has to be told that quick returns are meant.
bool cannotHoldLong(TeamworkClientProfile::Profile profile, const HoldSettings& settings);

/// The hold of one call.
struct Hold {
  /// Nothing for a hold without an end.
  std::optional<int64_t> seconds = std::nullopt;
  /// Whether that is less than the agent asked for.
  bool isShortened = false;
};

/// The hold for a call that asked for `asked` seconds, or for nothing in particular, by a caller
/// who stands `budget` seconds, or any number of them.
Hold holdFor(std::optional<int64_t> asked, std::optional<int64_t> budget);

}  // namespace quillpost
