#include "qp/seat_file.h"

#include "base/digest.h"
#include "base/files.h"
#include "base/text.h"

#include <cerrno>
#include <chrono>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost {
namespace {

constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;
constexpr mode_t othersMayEnter = 0077;
constexpr mode_t othersMayWrite = 0022;

// A write takes far less than a millisecond, so that even many at once are through by then, on a
// busy machine too. Only one that was stopped in the midst of it is ever waited for so long.
constexpr int lockTries = 1'000;
constexpr Duration lockPause = std::chrono::milliseconds(2);

std::string absoluteOr(const std::optional<std::string>& path, std::string_view otherwise) {
  return path && path->starts_with('/') ? *path : std::string(otherwise);
}

UniqueFd openFolder(const std::string& path) {
  return UniqueFd(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

/// Whether it is this user's and, perhaps after its mode was mended, nobody else's.
bool isOwnFolder(const UniqueFd& folder) {
  struct stat status {};
  if (::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid()) return false;
  return (status.st_mode & othersMayEnter) == 0 || ::fchmod(folder.get(), folderMode) == 0;
}

/// The folder, made when it is missing; none when it is not this user's own.
UniqueFd ownFolder(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) return {};
  UniqueFd folder = openFolder(path);
  if (!folder && errno == ENOENT) {
    // Another command may have made it in between, which is as good.
    ::mkdir(path.c_str(), folderMode);
    folder = openFolder(path);
  }
  if (!folder || !isOwnFolder(folder)) return {};
  return folder;
}

/// Holds the folder for this process alone, as long as it lives. A folder is locked rather than a
/// file, because the file is replaced at each write.
class FolderLock {
 public:
  FolderLock(const UniqueFd& folder, Clock& clock) : folder_(folder) {
    for (int i = 0; i < lockTries && !isHeld_; ++i) {
      if (i > 0) clock.sleepFor(lockPause);
      isHeld_ = ::flock(folder_.get(), LOCK_EX | LOCK_NB) == 0;
    }
  }
  ~FolderLock() {
    if (isHeld_) ::flock(folder_.get(), LOCK_UN);
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  bool isHeld() const { return isHeld_; }

 private:
  const UniqueFd& folder_;
  bool isHeld_ = false;
};

bool writeAll(const UniqueFd& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

MemoryPlaces memoryPlaces(const Environment& environment) {
  const std::string runtime = absoluteOr(environment.get("XDG_RUNTIME_DIR"), "");
  const std::string temporary = absoluteOr(environment.get("TMPDIR"), "/tmp");
  return {.runtime = runtime.empty() ? "" : files::joinPath(runtime, "quillpost"),
          .temporary = files::joinPath(temporary, text::cat("quillpost-", uint64_t{::geteuid()}))};
}

SeatFile::SeatFile(const MemoryPlaces& places, std::string_view sessionID) {
  if (sessionID.empty()) return;
  for (const std::string& path : {places.runtime, places.temporary}) {
    folder_ = ownFolder(path);
    if (!folder_) continue;
    folderPath_ = path;
    name_ = text::cat("seat-", sha256Hex(sessionID));
    return;
  }
}

std::string SeatFile::path() const {
  return folder_ ? files::joinPath(folderPath_, name_) : std::string();
}

SeatMemory SeatFile::load() {
  known_ = UniqueFd();
  memory_ = SeatMemory();
  if (!folder_) return {};
  constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  UniqueFd file(::openat(folder_.get(), name_.c_str(), flags));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) return {};
  if (status.st_uid != ::geteuid() || (status.st_mode & othersMayWrite) != 0) return {};
  std::optional<std::string> text = files::readOpenSmallText(file);
  std::optional<SeatMemory> memory = text ? decodeMemory(*std::move(text)) : std::nullopt;
  if (!memory) return {};
  known_ = std::move(file);
  memory_ = *std::move(memory);
  return memory_;
}

bool SeatFile::isAsKnown() const {
  struct stat known {};
  struct stat now {};
  return known_ && ::fstat(known_.get(), &known) == 0 &&
         ::fstatat(folder_.get(), name_.c_str(), &now, AT_SYMLINK_NOFOLLOW) == 0 &&
         known.st_ino == now.st_ino && known.st_dev == now.st_dev;
}

bool SeatFile::learn(const Lesson& lesson, Clock& clock) {
  if (!folder_) return false;
  const FolderLock lock(folder_, clock);
  if (!lock.isHeld()) return false;
  const SeatMemory kept = isAsKnown() ? memory_ : load();
  const SeatMemory learnt = merged(kept, lesson);
  return isSame(kept, learnt) || write(learnt);
}

bool SeatFile::write(const SeatMemory& memory) {
  // Always the same name, so that a command that is killed here leaves nothing that adds up.
  const std::string beside = text::cat(name_, ".new");
  constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const auto make = [&] {
    return UniqueFd(::openat(folder_.get(), beside.c_str(), flags, fileMode));
  };
  UniqueFd file = make();
  if (!file && errno == EEXIST) {
    ::unlinkat(folder_.get(), beside.c_str(), 0);
    file = make();
  }
  const bool isWhole = file && writeAll(file, encodeMemory(memory));
  if (isWhole && ::renameat(folder_.get(), beside.c_str(), folder_.get(), name_.c_str()) == 0) {
    known_ = std::move(file);
    memory_ = memory;
    return true;
  }
  ::unlinkat(folder_.get(), beside.c_str(), 0);
  return false;
}

}  // namespace quillpost
