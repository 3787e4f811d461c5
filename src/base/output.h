#pragma once

// Whole messages on their way out: to the client, or to whoever reads a command's output.

#include <string_view>

namespace quillpost {

/// Takes messages, one line each.
struct Output {
  virtual ~Output() = default;
  /// Writes all of `message`, which ends in its line feed. False when the reader has gone or the
  /// message could not be written whole; nothing written after that would be understood.
  virtual bool write(std::string_view message) = 0;
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

}  // namespace quillpost
