#pragma once

// The squad: what may be addressed, which helpers may be started, and which ones run.

#include "json/writer.h"
#include "model/squad.h"
#include "render/texts/roster.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillpost {

/// How many helpers run, and how many may.
using HelperCount = texts::HelperCount;

/// Adds the eight members of the squad object. What the app did not say is null, and so is the
/// number of helpers left while the limit or the number running is not known.
void addSquad(json::Object& out, const TeamworkSquadState& squad);

/// The paragraph on the squad switch: "on", or any other mode for off.
std::string_view squadParagraph(std::string_view mode);

/// The paragraph on the helpers that may be started here, with the limit when it is known; nothing
/// without squad state or while the squad is off.
std::optional<std::string> helpersHereParagraph(const std::optional<TeamworkSquadState>& squad);

/// How many helpers run and how many more may start.
std::string helperLimitSentence(const HelperCount& count);

/// One running helper and whose it is. Without a caller handle, a run that is the caller's counts
/// as asked for by the caller.
std::string helperRunLine(const TeamworkHelperRun& run,
                          const std::optional<std::string>& callerHandle);

/// The paragraph on the helpers that run here, and how to stop one of the caller's when there is
/// one to stop; nothing when none runs.
std::optional<std::string> helpersRunningParagraph(std::span<const TeamworkHelperRun> runs,
                                                   const std::optional<std::string>& callerHandle);

}  // namespace quillpost
