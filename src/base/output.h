#pragma once

// The client as two doors: bytes come in, whole messages go out.

#include "base/clock.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace quillpost {

/// Takes messages, one line each.
struct Output {
  virtual ~Output() = default;
  /// Writes all of `message`, which ends in its line feed. False when the reader has gone or the
  /// message could not be written whole; nothing written after that would be understood.
  virtual bool write(std::string_view message) = 0;
};

/// Gives what has arrived.
struct Input {
  virtual ~Input() = default;
  /// Waits for bytes and says how many were put at the start of `room`, which is not empty; 0 at
  /// the end of input, and when it cannot be read any more.
  virtual std::size_t read(std::span<char> room) = 0;

  /// Whether a read would give something, or the end, within `atMost`. For an input that never
  /// makes anybody wait, the answer is always yes.
  virtual bool comesWithin(Duration /*atMost*/) { return true; }
};

/// An open descriptor to write to. Not owned.
class FdOutput final : public Output {
 public:
  explicit FdOutput(int fd) : fd_(fd) {}
  /// Goes on after short writes and interruptions, and waits while a non-blocking pipe is full.
  bool write(std::string_view message) override;

 private:
  int fd_;
};

/// An open descriptor to read from. Not owned.
class FdInput final : public Input {
 public:
  explicit FdInput(int fd) : fd_(fd) {}
  /// Goes on after interruptions, and waits while a non-blocking pipe is empty.
  std::size_t read(std::span<char> room) override;
  bool comesWithin(Duration atMost) override;

 private:
  int fd_;
};

}  // namespace quillpost
