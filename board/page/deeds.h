#pragma once

// What the page may ask of the board: of all that the person can do, what the page has a place for.

#include "board/person/commands.h"
#include "model/request.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board {

/// The request that a body asks to be sent to the board, with nothing in it but what the page may
/// say; the token is left to whoever sends it. A helper that is allowed is put together with the
/// directory and the variables that `around` has, which the page has no word for. Nothing when it
/// is not one JSON object with a `method` that the page has: then `why` says so.
std::optional<TeamworkRequest> deedOf(const std::string& body, const Surroundings& around,
                                      std::string& why);

/// Whether the page may ask for it: what changes the board, and no file, seat or token.
bool isDeedOfPage(std::string_view method);

}  // namespace quillpost::board
