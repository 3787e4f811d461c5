#include "base/output.h"

#include <cerrno>
#include <chrono>

#include <poll.h>
#include <unistd.h>

namespace quillpost {
namespace {

/// Whether the call that just failed is worth another try. A descriptor that a harness has made
/// non-blocking is waited for, so that a full pipe never costs a message.
bool mayTryAgain(int fd, short event) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
  pollfd waited{.fd = fd, .events = event, .revents = 0};
  return ::poll(&waited, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace

bool FdOutput::write(std::string_view message) {
  while (!message.empty()) {
    const ssize_t written = ::write(fd_, message.data(), message.size());
    if (written > 0) {
      message.remove_prefix(static_cast<std::size_t>(written));
    } else if (written == 0 || !mayTryAgain(fd_, POLLOUT)) {
      return false;
    }
  }
  return true;
}

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
