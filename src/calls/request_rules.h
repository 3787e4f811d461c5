#pragma once

// How the arguments of a tool become the fields of a request.

#include "calls/arguments.h"
#include "model/request.h"

#include <span>
#include <string_view>

namespace quillpost {

/// Fills every field that is read from an argument of its own. Each argument counts for every tool,
/// whether or not the tool's schema names it, except where a rule says otherwise; a field whose
/// argument is absent stays absent. The two composed texts (goal, blocker question) and what
/// belongs to waiting are left alone.
void fillFromArguments(TeamworkRequest& request, std::string_view tool, const Arguments& arguments);

/// The keys of the fields that have a rule, in the order of the rules; for checking that no field
/// is forgotten.
std::span<const std::string_view> ruledFields();

}  // namespace quillpost
