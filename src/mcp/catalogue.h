#pragma once

// The list of tools as the client gets it.

#include "model/client_profile.h"

#include <string>

namespace quillpost {

/// The result of tools/list as JSON text: {"tools": [...]}. It depends on the client in one
/// sentence of one description, and there on nothing but the trait `turnsExitIntoTurn`.
std::string toolListResult(TeamworkClientProfile::Profile profile);

}  // namespace quillpost
