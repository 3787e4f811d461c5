#include "base/files.h"

#include "base/unicode.h"
#include "base/unique_fd.h"

#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::files {

namespace {

/// Bytes asked for at a time: a token or seat file comes whole in one piece.
constexpr std::size_t readSize = 4096;

/// The system would cut such a path at the zero and read another file than the one that was named.
bool holdsZeroByte(const std::string& path) { return path.find('\0') != std::string::npos; }

UniqueFd openForReading(const std::string& path) {
  // Without O_NONBLOCK the mere opening of a FIFO would wait for a writer.
  constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  int fd = -1;
  do {
    fd = ::open(path.c_str(), flags);
  } while (fd < 0 && errno == EINTR);
  return UniqueFd(fd);
}

/// The size of a regular file; nothing for anything else and for one above smallFileLimit.
std::optional<std::size_t> sizeWhenSmallAndRegular(const UniqueFd& file) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  if (std::cmp_greater(status.st_size, smallFileLimit)) return std::nullopt;
  return static_cast<std::size_t>(status.st_size);
}

/// Everything up to the end; nothing when reading fails or there is more than smallFileLimit.
/// `size` is what the file was said to hold.
std::optional<std::string> readToEnd(const UniqueFd& file, std::size_t size) {
  std::string whole;
  std::array<char, readSize> piece;
  for (;;) {
    const ssize_t got = ::read(file.get(), piece.data(), piece.size());
    if (got == 0) return whole;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    whole.append(piece.data(), static_cast<std::size_t>(got));
    // The size is not trusted: the file may have grown since, or have none, as in /proc.
    if (whole.size() > smallFileLimit) return std::nullopt;
    // Less than was asked for means the end, and saves the read that would find it. A file that
    // names no size, or has not come up to it yet, may give less and still go on.
    const bool isShort = static_cast<std::size_t>(got) < piece.size();
    if (isShort && size > 0 && whole.size() >= size) return whole;
  }
}

timespec modificationTime(const struct stat& status) {
#if defined(__APPLE__)
  return status.st_mtimespec;
#else
  return status.st_mtim;
#endif
}

Entry entryNamed(const char* name, int directory) {
  Entry entry{name, std::nullopt, false};
  struct stat status {};
  if (::fstatat(directory, name, &status, 0) == 0) {
    entry.modified = modificationTime(status);
    entry.isDirectory = S_ISDIR(status.st_mode);
  }
  return entry;
}

}  // namespace

std::optional<std::string> readSmallText(const std::string& path) {
  if (holdsZeroByte(path)) return std::nullopt;
  return readOpenSmallText(openForReading(path));
}

std::optional<std::string> readOpenSmallText(const UniqueFd& file) {
  if (!file) return std::nullopt;
  const std::optional<std::size_t> size = sizeWhenSmallAndRegular(file);
  if (!size) return std::nullopt;
  std::optional<std::string> whole = readToEnd(file, *size);
  if (!whole || !unicode::isValid(*whole)) return std::nullopt;
  return whole;
}

std::vector<Entry> list(const std::string& directory, const IsWanted& isWanted) {
  struct Close {
    void operator()(DIR* stream) const { ::closedir(stream); }
  };
  if (holdsZeroByte(directory)) return {};
  const std::unique_ptr<DIR, Close> stream(::opendir(directory.c_str()));
  if (!stream) return {};
  std::vector<Entry> entries;
  for (;;) {
    // At the end the stream gives no entry and leaves errno alone; on failure it sets it.
    errno = 0;
    const dirent* found = ::readdir(stream.get());
    if (found == nullptr) break;
    if (found->d_name[0] == '.' || !isWanted(found->d_name)) continue;
    entries.push_back(entryNamed(found->d_name, ::dirfd(stream.get())));
  }
  if (errno != 0) return {};
  return entries;
}

std::string joinPath(std::string_view directory, std::string_view name) {
  if (directory.empty()) return std::string(name);
  while (directory.ends_with('/')) directory.remove_suffix(1);
  while (name.starts_with('/')) name.remove_prefix(1);
  std::string path(directory);
  path += '/';
  path += name;
  return path;
}

std::string_view lastComponent(std::string_view path) {
  // Without a "/" npos + 1 is 0, which is the whole path.
  return path.substr(path.rfind('/') + 1);
}

std::string_view parentPath(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return path.substr(0, slash == 0 ? 1 : slash);
}

std::string withExtension(std::string_view path, std::string_view extension) {
  while (path.ends_with('/') && path.size() > 1) path.remove_suffix(1);
  const std::string_view name = lastComponent(path);
  if (name.empty()) return std::string(path);
  // A leading dot hides the file and starts no extension.
  const std::size_t dot = name.rfind('.');
  if (dot != std::string_view::npos && dot > 0) path.remove_suffix(name.size() - dot);
  std::string replaced(path);
  replaced += '.';
  replaced += extension;
  return replaced;
}

}  // namespace quillpost::files
