#include "board/serving/keeping.h"

#include "base/output.h"
#include "base/text.h"
#include "base/unique_fd.h"
#include "board/serving/system.h"
#include "board/verbs/methods.h"
#include "board/verbs/person.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

/// Writes a new file that only this user can read; false when there is such a file or it cannot be
/// written, and then none is left.
bool writeNew(const std::string& path, const std::string& bytes, std::string& why) {
  const UniqueFd file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  const bool isWritten = file && FdOutput(file.get()).write(bytes) && ::fsync(file.get()) == 0;
  if (isWritten) return true;
  why = text::cat("cannot write ", path, ": ", reason());
  if (file) ::unlink(path.c_str());
  return false;
}

TeamworkResponse exportTo(const Store& store, const std::string& path) {
  std::string why;
  const std::optional<std::string> lines = store.exported();
  if (!lines) return refused("The board's file cannot be read; `check` says why.");
  if (!writeNew(path, *lines, why)) return refused(why);
  return written(text::cat("Exported to ", path, "."));
}

TeamworkResponse importFrom(Store& store, const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string lines(std::istreambuf_iterator<char>(file), {});
  if (!file.is_open()) return refused(text::cat("cannot read ", path));
  std::string why;
  if (!store.import(lines, why)) return refused(text::cat(path, ": ", why));
  return written(text::cat("Imported ", path, "."));
}

TeamworkResponse check(const Store& store) {
  const std::vector<std::string> found = store.check();
  if (found.empty()) return written("All is well with the board's file.");
  return refused(text::join(found, "\n"));
}

}  // namespace

bool isFileKeeping(std::string_view method) {
  return method == personExport || method == personImport || method == personBackup ||
         method == personCheck;
}

TeamworkResponse keepFile(Store& store, const TeamworkRequest& request) {
  const std::string path = request.body.value_or("");
  if (request.method == personExport) return exportTo(store, path);
  if (request.method == personImport) return importFrom(store, path);
  if (request.method == personCheck) return check(store);
  std::string why;
  if (!store.backUp(path, why)) return refused(why);
  return written(text::cat("Backed up to ", path, "."));
}

}  // namespace quillpost::board
