#include "devboard/places.h"

#include <sys/stat.h>

#include "base/files.h"

namespace quillpost::devboard {

namespace {

constexpr std::string_view folder = "Quillpost-dev";

/// The XDG data home when it is a directory; nothing where there is no such thing.
std::optional<std::string> dataHome([[maybe_unused]] const Environment& environment,
                                    [[maybe_unused]] const std::string& home) {
#if defined(__APPLE__)
  return std::nullopt;
#else
  std::string path = environment.get("XDG_DATA_HOME").value_or("");
  if (!path.starts_with('/')) path = home.empty() ? "" : files::joinPath(home, ".local/share");
  struct stat status {};
  const bool isThere = ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  return isThere ? std::optional(path) : std::nullopt;
#endif
}

}  // namespace

std::optional<std::string> defaultDirectory(const Environment& environment) {
  const std::string home = environment.get("HOME").value_or("");
  if (const auto data = dataHome(environment, home)) return files::joinPath(*data, folder);
  if (home.empty()) return std::nullopt;
  return files::joinPath(files::joinPath(home, "Library/Application Support"), folder);
}

}  // namespace quillpost::devboard
