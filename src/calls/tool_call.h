#pragma once

// One call of a tool that reaches the app: check, build, send, remember, compose.

#include "calls/arguments.h"
#include "calls/seat.h"
#include "calls/tool_reply.h"

#include <optional>
#include <string_view>

namespace quillpost {

/// The reply to a call that would be refused before anything is sent; nothing for any other call.
std::optional<ToolReply> refusalOf(std::string_view tool, const Arguments& arguments);

/// Carries out a call of a board method (isBoardMethod) and gives the words for the agent,
/// whatever happens: refused before anything is sent, not reached, or answered.
ToolReply callBoard(std::string_view tool, const Arguments& arguments, Seat& seat);

}  // namespace quillpost
