#include "model/client_profile.h"

#include "base/text.h"

#include <string>

namespace quillpost {

TeamworkClientProfile::Profile TeamworkClientProfile::fromName(std::string_view clientName) {
  const std::string name = text::lowered(clientName);
  const auto contains = [&](std::string_view word) { return name.find(word) != std::string::npos; };
  if (contains("claude")) return Profile::claude;
  if (contains("codex")) return Profile::codex;
  if (contains("antigravity") || name == "agy") return Profile::antigravity;
  if (contains("cursor")) return Profile::cursor;
  return Profile::unknown;
}

}  // namespace quillpost
