#pragma once

// The command of a helper: from one line to the list of its arguments, and from that list to the
// one that is run. No shell has a part in it.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// What holds the place of the opening line in a helper's command.
inline constexpr std::string_view promptPlace = "{prompt}";

/// The words of a command: blanks part them, and single or double quotes keep what stands between
/// them together, as it is. Nothing for what a shell would do more with: then `why` says so.
std::optional<std::vector<std::string>> commandWords(std::string_view command, std::string& why);

/// Why a list of arguments cannot be run; empty when it can.
std::string whyNotRunnable(const std::vector<std::string>& words);

/// The list with the opening line where its place is held, or as one more argument at the end.
std::vector<std::string> withOpening(std::vector<std::string> words, std::string_view opening);

/// The list as a person is shown it: each argument in quotes, so that none runs into another.
std::string shownWords(const std::vector<std::string>& words);

}  // namespace quillpost::board
