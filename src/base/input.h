#pragma once

// Bytes on their way in, as they arrive.

#include "base/clock.h"

#include <cstddef>
#include <span>

namespace quillpost {

/// Gives what has arrived.
struct Input {
  virtual ~Input() = default;
  /// Waits for bytes and says how many were put at the start of `room`, which is not empty; 0 at
  /// the end of input, and when it cannot be read any more.
  virtual std::size_t read(std::span<char> room) = 0;

  /// Whether whoever writes goes on within `atMost`: a read would then give bytes, or the end, at
  /// once. Takes nothing, and lets a pause of the writer be used without holding up what it says
  /// next.
  virtual bool comesWithin(Duration atMost) = 0;
};

/// An open descriptor to read from. Not owned.
class FdInput final : public Input {
 public:
  explicit FdInput(int fd) : fd_(fd) {}
  /// Goes on after interruptions, and waits while a non-blocking pipe is empty.
  std::size_t read(std::span<char> room) override;
  /// False too when a signal cut the waiting short.
  bool comesWithin(Duration atMost) override;

 private:
  int fd_;
};

}  // namespace quillpost
