#pragma once

// Messages of other agents, delivered with a result: never without the note on how to take them.

#include "json/writer.h"
#include "model/squad.h"

#include <span>
#include <string>

namespace quillpost {

/// Adds the messages and the note to an object; nothing when there are no messages.
void addDelivery(json::Object& out, std::span<const TeamworkSquadMessage> messages);

/// Appends the messages as compact JSON and then the note, each as a paragraph of its own; nothing
/// when there are no messages.
void appendDelivery(json::EscapedText& out, std::span<const TeamworkSquadMessage> messages);

}  // namespace quillpost
