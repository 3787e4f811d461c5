#pragma once

// The person's commands' way to a board that is being served.

#include "model/request.h"
#include "model/response.h"

#include <optional>
#include <string>

namespace quillpost::board {

/// The one board that is served in a directory, of that suffix when one is given: its suffix.
/// Nothing when there is none, or more than one: then `why` says so in words.
std::optional<std::string> findServed(const std::string& directory,
                                      const std::optional<std::string>& suffix, std::string& why);

/// Sends a request of the person's to the board of that suffix, with the person's token, and waits
/// for the answer. Nothing when none comes: then `why` says so in words.
std::optional<TeamworkResponse> askBoard(const std::string& directory, const std::string& suffix,
                                         TeamworkRequest request, std::string& why);

}  // namespace quillpost::board
