#include "board/serving/places.h"

#include "base/files.h"
#include "base/support_directory.h"
#include "board/serving/system.h"

#include <string_view>

namespace quillpost::board {

namespace {

constexpr std::string_view folder = "Quillpost-board";

}  // namespace

std::optional<std::string> defaultDirectory(const Environment& environment) {
#if defined(__APPLE__)
  const std::optional<std::string> support = supportDirectory(environment);
  if (!support) return std::nullopt;
  return files::joinPath(*support, folder);
#else
  const std::string home = homeDirectory(environment).value_or("");
  const std::string data = xdgDataHome(environment.get("XDG_DATA_HOME"), home);
  if (home.empty() && !data.starts_with('/')) return std::nullopt;
  const std::string usual = files::joinPath(data, folder);
  const std::string former = files::joinPath(reportedSupportDirectory("", home), folder);
  const auto hasBoard = [](const std::string& place) {
    return exists(files::joinPath(place, "board.db"));
  };
  return hasBoard(former) && !hasBoard(usual) ? former : usual;
#endif
}

}  // namespace quillpost::board
