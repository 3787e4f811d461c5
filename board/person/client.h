#pragma once

// The person's commands' way to a board that is being served.

#include "board/person/commands.h"
#include "board/person/sheet.h"
#include "model/request.h"
#include "model/response.h"

#include <chrono>
#include <optional>
#include <string>

namespace quillpost::board {

/// The one board that is served in a directory, of that suffix unless it is empty: its suffix.
/// Nothing when there is none, or more than one: then `why` says so in words.
std::optional<std::string> findServed(const std::string& directory, const std::string& suffix,
                                      std::string& why);

/// Sends a request of the person's to the board of that suffix, with the person's token, and waits
/// for the answer, or for so long as `patience` says when it is not zero. Nothing when none comes:
/// then `why` says so in words.
std::optional<TeamworkResponse> askBoard(const std::string& directory, const std::string& suffix,
                                         TeamworkRequest request, std::string& why,
                                         std::chrono::seconds patience = {});

/// The answer of the board that a command line means; nothing when there is none or it refuses:
/// then `why` says so.
std::optional<TeamworkResponse> askServed(const Line& line, const TeamworkRequest& request,
                                          std::string& why);

/// The same for a request that is answered with a sheet.
std::optional<Sheet> askForSheet(const Line& line, const TeamworkRequest& request,
                                 std::string& why);

/// The request for what a command line wants to see.
TeamworkRequest viewOf(const Line& line);

}  // namespace quillpost::board
