#pragma once

// As much of TOML as a harness's configuration has.

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillpost::contrib {

using TomlValue = std::variant<std::string, int, std::vector<std::string>>;

/// Values by their dotted path, such as "mcp_servers.teamwork.command".
using Toml = std::map<std::string, TomlValue>;

/// Reads tables, texts in double quotes without escapes, whole numbers, lists of texts (on one line
/// or several) and comments on lines of their own. Nothing when there is anything else.
std::optional<Toml> parseToml(std::string_view source);

}  // namespace quillpost::contrib
