#pragma once

// The command line of quillpost-board.

#include "board/person/commands.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillpost::board {

/// Why a command line makes no sense.
struct Misuse {
  std::string why;
  /// The command that was meant; null when that cannot be told.
  const Command* command = nullptr;
};

/// Reads the arguments, the program's name not among them. Nothing when they make no sense: then
/// `misuse` says why. Help that is asked for with an option is the command `help` with the other's
/// name for a word.
std::optional<Line> readLine(std::span<const std::string> arguments, Misuse& misuse);

/// A length of time in milliseconds: a number of seconds, or of another unit that stands behind it.
/// Nothing when it is none or not positive.
std::optional<int64_t> spanFrom(std::string_view written);

/// Puts what `read` gives, which is called at most once, in place of each text that is "-", without
/// the line feed at its end. False when there are several.
bool fillFromInput(Line& line, const std::function<std::string()>& read);

}  // namespace quillpost::board
