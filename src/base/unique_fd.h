#pragma once

// A file descriptor that closes itself.

#include <utility>

#include <unistd.h>

namespace quillpost {

/// Owns one descriptor, or none. Movable, not copyable.
class UniqueFd {
 public:
  UniqueFd() = default;
  /// Takes ownership of `fd`; a negative number stands for none.
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, none)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    if (this != &other) {
      close();
      fd_ = std::exchange(other.fd_, none);
    }
    return *this;
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd() { close(); }

  /// The descriptor, still owned; -1 when there is none.
  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  static constexpr int none = -1;

  void close() {
    // Not retried on EINTR: Linux has released the descriptor by then, and closing it again could
    // close somebody else's.
    if (fd_ >= 0) ::close(std::exchange(fd_, none));
  }

  int fd_ = none;
};

}  // namespace quillpost
