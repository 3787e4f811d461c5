#pragma once

// What the agent owes the board, in one line for texts and in full for objects, with advice that
// depends on who else reads the Thread.

#include "json/writer.h"
#include "model/obligations.h"

#include <optional>
#include <string>

namespace quillpost {

/// The obligations in one line; "nothing outstanding" when no phrase applies.
std::string summaryLine(const TeamworkObligations& obligations);

/// Adds the members of the obligations object: clear, and when it is false every list that is not
/// empty, with what to do. The advice for an unknown audience is given when there is none.
void addObligations(json::Object& out, const TeamworkObligations& obligations,
                    const std::optional<TeamworkAudience>& audience);

/// Whether nothing is owed: there are no obligations, or they are clear.
bool areClear(const std::optional<TeamworkObligations>& obligations);

/// The end of a text result, its blank line included; empty when nothing is owed.
std::string obligationsSuffix(const std::optional<TeamworkObligations>& obligations);

}  // namespace quillpost
