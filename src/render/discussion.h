#pragma once

// A discussion as an object, and what to do after a move in one.

#include "json/writer.h"
#include "model/discussion.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillpost {

/// Adds the members of one discussion's object. The times of its volleys, its task and who opened
/// and resolved it are left out.
void addDiscussion(json::Object& out, const TeamworkDiscussion& discussion);

/// What to do after opening, answering or resolving a discussion; nothing for any other verb.
/// `boardLevel` says that the discussion hangs on no task.
std::optional<std::string> discussionHint(std::string_view verb, std::string_view discussionID,
                                          bool boardLevel);

}  // namespace quillpost
