#include "base/descriptors.h"

#include <cerrno>

#include <poll.h>

namespace quillpost {

bool mayTryAgain(int fd, short event) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
  pollfd waited{.fd = fd, .events = event, .revents = 0};
  return ::poll(&waited, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace quillpost
