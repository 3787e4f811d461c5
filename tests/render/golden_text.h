#pragma once

// Expected results that quote the fixed texts by name, so that a whole result fits on a screen.

#include "harness/golden_text.h"
#include "json/writer.h"

#include <string>
#include <string_view>

namespace quillpost::testing {

/// The same inside JSON strings.
inline std::string expandedJson(std::string_view pattern) {
  return expanded(pattern, Quoting::json);
}

/// The text of one object whose members `fill` adds.
template <class Fill>
std::string objectText(Fill fill) {
  std::string out;
  {
    json::Object object(out);
    fill(object);
  }
  return out;
}

}  // namespace quillpost::testing
