#pragma once

// The little of the file system that the program reads. Nothing here throws or reports why
// something could not be read: absence is the answer.

#include "base/unique_fd.h"

#include <cstddef>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::files {

/// The largest file that readSmallText takes, in bytes: far above any token or seat file, and low
/// enough that a path that names a device or a huge file costs nothing.
inline constexpr std::size_t smallFileLimit = std::size_t{1} << 20;

/// The whole file. Nothing when it is missing, unreadable, not UTF-8 or above smallFileLimit, and
/// when it is no regular file (a FIFO or a device is never waited for).
std::optional<std::string> readSmallText(const std::string& path);
/// The same of a file that is open at its beginning.
std::optional<std::string> readOpenSmallText(const UniqueFd& file);

/// One entry of a directory.
struct Entry {
  std::string name;
  /// Content-modification time; nothing when it cannot be read.
  std::optional<timespec> modified;
  bool isDirectory = false;
};

/// Judges an entry by its name.
using IsWanted = std::function<bool(std::string_view name)>;

/// The entries of a directory that are wanted, in the system's own order, hidden ones (a leading
/// ".") left out. Symbolic links are followed. No other entry is looked at: it may be a file system
/// that no longer answers. Empty when the directory cannot be listed.
std::vector<Entry> list(const std::string& directory, const IsWanted& isWanted);

/// `directory` and `name` with exactly one "/" between them, however many stand there already; just
/// `name` when `directory` is empty.
std::string joinPath(std::string_view directory, std::string_view name);

/// The last component of a path: what follows the last "/".
std::string_view lastComponent(std::string_view path);

/// What stands before the last component, without the "/" between; "/" for a root entry, empty when
/// the path has no "/".
std::string_view parentPath(std::string_view path);

/// The path with its last extension (the last dot of the last component and what follows) replaced
/// by `extension`, which is given without a dot; appended when there is none. A dot that begins the
/// component starts no extension, a dot that ends it starts an empty one. A "/" at the end goes.
/// A path without any component, "" or "/", has nothing to extend and stays as it is.
std::string withExtension(std::string_view path, std::string_view extension);

}  // namespace quillpost::files
