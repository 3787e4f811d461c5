#include "base/output.h"

#include "base/descriptors.h"

#include <cstddef>

#include <poll.h>
#include <unistd.h>

namespace quillpost {

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

}  // namespace quillpost
