#pragma once

// The roster: agents as objects, and the paragraphs on open terminals and on the person's other
// Macs.

#include "json/writer.h"
#include "model/roster.h"

#include <optional>
#include <span>
#include <string>

namespace quillpost {

/// Adds the members of one agent's object. An agent on another Mac gets no lease, because that is
/// not this Mac's to report.
void addAgent(json::Object& out, const TeamworkAgent& agent);

/// The paragraph on terminals that are open and have no agent; nothing when there are none.
std::optional<std::string> openPanesParagraph(std::span<const TeamworkPane> panes);

/// The paragraph on the person's other Macs, each in every group it belongs to; nothing when there
/// are none.
std::optional<std::string> otherDevicesParagraph(std::span<const TeamworkMac> macs);

/// The note on the board's command line. The short form is for clients that have been told
/// elsewhere what the command line is best at.
std::string commandLineNote(bool shortForm);

}  // namespace quillpost
