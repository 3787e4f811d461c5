#pragma once

// A directory of a test's own that removes itself.

#include <ctime>
#include <string>
#include <string_view>

namespace quillpost::testing {

/// An empty directory, removed with all it holds at the end. Its path is short (under 20 bytes), so
/// that the path of a socket in it stays below the 104 bytes that every system allows.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  /// The directory itself, absolute, without a "/" at the end.
  const std::string& path() const { return path_; }

  /// The path of an entry, which need not exist. `name` may hold several components.
  std::string pathOf(std::string_view name) const;

  /// Writes a file, replacing an older one; the directories above it are made. Gives its path.
  std::string write(std::string_view name, std::string_view bytes) const;

  /// Makes a directory and those above it. Gives its path.
  std::string makeDirectory(std::string_view name) const;

  /// Sets when an entry was last modified.
  void setModified(std::string_view name, timespec time) const;

 private:
  std::string path_;
};

/// The bytes of a file; empty when it cannot be read.
std::string readFile(const std::string& path);

}  // namespace quillpost::testing
