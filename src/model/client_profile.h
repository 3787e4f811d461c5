#pragma once

// Which harness is calling. Some cancel long tool calls, and one finds a shell command cheaper.

#include <string_view>

namespace quillpost {

/// The harnesses that the program tells apart.
struct TeamworkClientProfile {
  /// In the order in which a client's name is tested.
  enum class Profile { claude, codex, antigravity, cursor, unknown };

  /// The profile for the name that a client gives itself, whatever its case.
  static Profile fromName(std::string_view clientName);
};

}  // namespace quillpost
