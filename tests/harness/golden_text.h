#pragma once

// The fixed texts by name, so that what quotes one of them says which, and fits on a screen.

#include <string>
#include <string_view>

namespace quillpost::testing {

/// The text of that name in golden/texts.golden, or for "hint of TOOL" that tool's in
/// golden/tools/; a failure when there is none.
std::string goldenText(std::string_view name);

/// Where quoted texts go: among other text, or between the quotes of a JSON string.
enum class Quoting { plain, json };

/// `pattern` with every {{name}} replaced by the golden text of that name; a failure when there is
/// none.
std::string expanded(std::string_view pattern, Quoting quoting = Quoting::plain);

/// JSON with every long golden text in it replaced by its {{name}}: what `expanded` reads back.
std::string abbreviatedJson(std::string json);

}  // namespace quillpost::testing
