#pragma once

// What the page says of helpers, put together with what it may not say: the directory and the
// variables of the terminal that the page's program was started in.

#include "board/person/commands.h"
#include "board/rules/helper.h"

#include <optional>
#include <string>
#include <vector>

namespace quillpost::board {

/// A helper as a person describes it on the page.
struct HelperWish {
  std::string name;
  std::string explanation;
  /// The list of arguments, one by one; empty when a suggestion has them.
  std::vector<std::string> words;
  bool runsWithoutApprovals = false;
  bool hasTools = false;
};

/// The helper that is wished for, in this terminal, as a command there would allow it. Nothing when
/// the directory is gone: then `why` says so.
std::optional<Helper> helperWished(HelperWish wish, const Surroundings& around, std::string& why);

/// What a helper would be started with, as JSON: `directory`, `variables` (their names), and
/// `arguments`, the list that a command line is split into, as `shownWords` has it. `body` is an
/// object whose `command` is that line; without it there are no `arguments`. Nothing when the body
/// is something else or the line is no simple command: then `why` says so.
std::optional<std::string> launchOf(const std::string& body, const Surroundings& around,
                                    std::string& why);

}  // namespace quillpost::board
