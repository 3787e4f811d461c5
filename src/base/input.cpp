#include "base/input.h"

#include "base/descriptors.h"

#include <chrono>

#include <poll.h>
#include <unistd.h>

namespace quillpost {

std::size_t FdInput::read(std::span<char> room) {
  while (true) {
    const ssize_t count = ::read(fd_, room.data(), room.size());
    if (count >= 0) return static_cast<std::size_t>(count);
    if (!mayTryAgain(fd_, POLLIN)) return 0;
  }
}

bool FdInput::comesWithin(Duration atMost) {
  pollfd waited{.fd = fd_, .events = POLLIN, .revents = 0};
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(atMost).count();
  return ::poll(&waited, 1, static_cast<int>(milliseconds)) > 0;
}

}  // namespace quillpost
