#pragma once

// Completion: three short scripts for three shells, and one place that knows what fits.

#include "qp/line.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// The script for a shell; nothing for one that is not known.
std::optional<std::string_view> completionScript(std::string_view shell);

/// What the board knows that may fit: ids of tasks, handles of agents.
enum class BoardWords { none, tasks, handles };

/// What may stand where the last word of a line stands.
struct Candidates {
  /// All that fit by their beginning, in order.
  std::vector<std::string> words;
  /// What else may fit there and only the board knows.
  BoardWords fromBoard = BoardWords::none;
  /// What of the last word stands before that, such as "--waits-on=t000001,".
  std::string before = {};
  /// How it begins.
  std::string begin = {};
};

/// The candidates for the last of the words after the program's name, which is as far as it has
/// been typed and may be empty.
Candidates candidatesFor(std::span<const std::string> typed);

/// The ids in the JSON of a backlog, or the handles in that of a roster, that are wanted.
std::vector<std::string> boardWordsIn(const std::string& json, const Candidates& wanted);

}  // namespace quillpost
