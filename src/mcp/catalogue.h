#pragma once

// The list of tools as the client gets it.

#include "model/client_profile.h"

#include <string>

namespace quillpost {

/// The result of tools/list as JSON text: {"tools": [...]}. It depends on the client in one
/// sentence of one description.
std::string toolListResult(TeamworkClientProfile::Profile profile);

/// Whether a client gets that sentence in its long form.
bool hasLongWaitEnding(TeamworkClientProfile::Profile profile);

}  // namespace quillpost
