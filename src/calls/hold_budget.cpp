#include "calls/hold_budget.h"

#include "base/text.h"

#include <algorithm>
#include <string>

namespace quillpost {
namespace {

using Profile = TeamworkClientProfile::Profile;

// Seconds. Thirty is what every client is known to stand.
constexpr int64_t defaultHold = 30;
constexpr int64_t shortestBudget = 15;
constexpr int64_t shortestMaximum = 110;
constexpr int64_t longestHold = 3600;
constexpr int64_t shortestHold = 1;
// As good as for ever, and far below what a clock can count.
constexpr int64_t aYear = 31'536'000;

std::optional<int64_t> readSeconds(const Environment& environment, const char* name) {
  const std::optional<std::string> value = environment.get(name);
  return value ? text::parseInteger(*value) : std::nullopt;
}

}  // namespace

HoldSettings readHoldSettings(const Environment& environment) {
  return {.budget = readSeconds(environment, "QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS"),
          .maximum = readSeconds(environment, "QUILLPOST_COLLAB_WAIT_MAX_SECONDS")};
}

int64_t holdBudget(Profile profile, const HoldSettings& settings) {
  const ClientTraits& client = traitsOf(profile);
  if (settings.budget) {
    const int64_t budget = std::clamp(*settings.budget, shortestBudget, longestHold);
    return client.cancelsLongCalls ? std::min(budget, defaultHold) : budget;
  }
  if (client.heedsLongestWait && settings.maximum)
    return std::clamp(*settings.maximum, shortestMaximum, longestHold);
  return defaultHold;
}

bool cannotHoldLong(Profile profile, const HoldSettings& settings) {
  const ClientTraits& client = traitsOf(profile);
  return client.cancelsLongCalls || (client.holdsLongByBudgetOnly && !settings.budget);
}

Hold holdFor(std::optional<int64_t> asked, std::optional<int64_t> budget) {
  if (!asked) return {.seconds = budget};
  const int64_t seconds = std::min(budget.value_or(aYear), std::max(*asked, shortestHold));
  return {.seconds = seconds, .isShortened = seconds < *asked};
}

}  // namespace quillpost
