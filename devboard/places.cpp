#include "devboard/places.h"

#include <string_view>

#include "base/files.h"
#include "bridge/support_directory.h"

namespace quillpost::devboard {

namespace {

constexpr std::string_view folder = "Quillpost-dev";

}  // namespace

std::optional<std::string> defaultDirectory(const Environment& environment) {
  const std::optional<std::string> support = supportDirectory(environment);
  if (!support) return std::nullopt;
  return files::joinPath(*support, folder);
}

}  // namespace quillpost::devboard
