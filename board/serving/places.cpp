#include "board/serving/places.h"

#include "base/files.h"
#include "base/support_directory.h"

#include <string_view>

namespace quillpost::board {

namespace {

constexpr std::string_view folder = "Quillpost-board";

}  // namespace

std::optional<std::string> defaultDirectory(const Environment& environment) {
  const std::optional<std::string> support = supportDirectory(environment);
  if (!support) return std::nullopt;
  return files::joinPath(*support, folder);
}

}  // namespace quillpost::board
