#pragma once

// What a program makes sure of before it opens anything.

#include <fcntl.h>
#include <unistd.h>

namespace quillpost {

/// A standard descriptor that was closed at start becomes the null device: the first socket would
/// get its number otherwise, and what is meant for a reader would go to the app.
inline void fillStandardDescriptors() {
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (::fcntl(fd, F_GETFD) < 0) ::open("/dev/null", O_RDWR | O_NOCTTY);
}

}  // namespace quillpost
