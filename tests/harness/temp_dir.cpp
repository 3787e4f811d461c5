#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::testing {

TempDir::TempDir() {
  // Not where TMPDIR says: on macOS that is long enough to break the limit of socket paths.
  std::string name = "/tmp/qp-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) ADD_FAILURE() << "no temporary directory could be made";
  path_ = name;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::pathOf(std::string_view name) const { return path_ + "/" + std::string(name); }

std::string TempDir::write(std::string_view name, std::string_view bytes) const {
  const std::string path = pathOf(name);
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) ADD_FAILURE() << "could not write " << path;
  return path;
}

std::string TempDir::makeDirectory(std::string_view name) const {
  const std::string path = pathOf(name);
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) ADD_FAILURE() << "could not make " << path << ": " << error.message();
  return path;
}

void TempDir::setModified(std::string_view name, timespec time) const {
  const std::string path = pathOf(name);
  const std::array<timespec, 2> accessedAndModified = {time, time};
  if (::utimensat(AT_FDCWD, path.c_str(), accessedAndModified.data(), 0) != 0) {
    ADD_FAILURE() << "could not set the time of " << path;
  }
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace quillpost::testing
