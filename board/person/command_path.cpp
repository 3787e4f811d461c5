#include "board/person/command_path.h"

#include "base/files.h"
#include "base/text.h"
#include "board/person/console.h"
#include "board/rules/names.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace quillpost::board {

namespace {

/// The folder of the program of this path; empty when that is none, or only a name.
std::string folderOf(std::string_view program) {
  if (program.find('/') == std::string_view::npos) return {};
  std::error_code failed;
  const std::string whole = std::filesystem::canonical(std::string(program), failed).string();
  return failed ? std::string() : std::string(files::parentPath(whole));
}

}  // namespace

std::string pathWith(const Surroundings& around) {
  const std::string_view path = valueOf("PATH", around.variables);
  const std::string folder = folderOf(around.program);
  return text::cat("PATH=", folder, folder.empty() || path.empty() ? "" : ":", path);
}

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
