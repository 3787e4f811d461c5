#pragma once

// The plan as an object, and the step that follows from it.

#include "json/writer.h"
#include "model/obligations.h"
#include "model/plan.h"
#include "render/pages.h"

#include <optional>
#include <string>

namespace quillpost {

/// Adds the members of the plan's object, without the next step. The goal stands as it is, or as a
/// numbered page when `goalPage` says where to begin or how much; an empty goal and an empty
/// charter are left out.
void addPlan(json::Object& out, const TeamworkPlan& plan, const Page& goalPage);

/// What to do now that the plan has been read. Unknown obligations count as clear.
std::string nextStep(const TeamworkPlan& plan,
                     const std::optional<TeamworkObligations>& obligations);

}  // namespace quillpost
