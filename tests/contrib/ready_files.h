#pragma once

// The ready files of contrib/ as a test reads them, and the terminal in which a harness starts what
// they name.

#include "json/value.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::contrib {

using Variables = std::map<std::string, std::string>;

/// A way of keys from the top of a JSON file to one of its values; any step into a list leads to
/// its first element.
using Path = std::vector<std::string_view>;

/// Where the ready files say that an installation puts the program.
inline constexpr std::string_view program = "/usr/local/bin/quillpost-teamwork";

/// What the stop hook says when the board has news.
inline constexpr std::string_view hookLine =
    "Quillpost hook, automatic: board changed, call wait_for_changes, act on wakeReasons, then "
    "keep listening";

/// The text of a ready file, by its name below contrib/; empty when there is none.
std::string contribFile(std::string_view name);

/// A text with the installed paths replaced by those of the build and of the sources.
std::string here(std::string text);

/// A value in a JSON file; null when there is none.
const json::Tree* at(const json::Tree& tree, const Path& path);

/// A text in the source of a JSON file; empty when there is none.
std::string textAt(const std::string& source, const Path& path);

/// What the app sets in a terminal that it opens on a Thread.
Variables terminal(const std::string& socketPath);

}  // namespace quillpost::contrib
