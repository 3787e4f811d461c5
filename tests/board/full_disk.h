#pragma once

// A disk that is full, as far as this process can tell.

#include <csignal>

#include <sys/resource.h>

namespace quillpost::board {

/// Lets no file of this process grow beyond a few pages for as long as it lasts.
class FullDisk {
 public:
  FullDisk() {
    ::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &usual_);
    rlimit tight = usual_;
    tight.rlim_cur = 4096;
    ::setrlimit(RLIMIT_FSIZE, &tight);
  }
  ~FullDisk() { end(); }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

  /// There is room again.
  void end() const { ::setrlimit(RLIMIT_FSIZE, &usual_); }

 private:
  rlimit usual_{};
};

}  // namespace quillpost::board
