#include "board/person/command_path.h"

#include "base/files.h"
#include "base/text.h"
#include "board/serving/names.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace quillpost::board {

std::string commandPathLine(std::string_view program, const Environment& environment) {
  if (program.find('/') == std::string_view::npos) return {};
  std::error_code failed;
  const std::string folder =
      std::filesystem::canonical(std::string(files::parentPath(program)), failed).string();
  if (failed || ::access(files::joinPath(folder, "qp").c_str(), X_OK) != 0) return {};
  const std::string path = environment.get("PATH").value_or("");
  const std::vector<std::string_view> folders = text::split(path, ':');
  if (std::ranges::find(folders, folder) != folders.end()) return {};
  return text::cat("export PATH=\"$PATH\":", quotedForShell(folder), "\n");
}

}  // namespace quillpost::board
