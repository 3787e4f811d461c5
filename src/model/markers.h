#pragma once

// The markers that ride at the beginning of log lines and of questions to the person, for those who
// write them and those who read them.

#include <string_view>

namespace quillpost {

/// Begins a log line that carries the task's running summary.
inline constexpr std::string_view gistMarker = "[[gist]] ";

/// Begins a log line that is a hand-off note.
inline constexpr std::string_view forMarker = "[[for]] ";

/// Stand around the payload of a typed question (TeamworkHumanAsk), before the question itself,
/// from which they are parted by a blank.
inline constexpr std::string_view askMarkerBegin = "[[ask:";
inline constexpr std::string_view askMarkerEnd = "]]";

/// A view into `text` without white space at both ends and without gist markers at its beginning,
/// so that a summary that is stored never carries its marker twice. May be empty.
std::string_view cleanSummary(std::string_view text);

}  // namespace quillpost
