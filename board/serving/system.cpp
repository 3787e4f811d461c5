#include "board/serving/system.h"

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace quillpost::board {

bool exists(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

std::string reason() {
  return std::strerror(errno);  // NOLINT(concurrency-mt-unsafe): there is one thread
}

}  // namespace quillpost::board
