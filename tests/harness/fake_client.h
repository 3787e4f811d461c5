#pragma once

// A client that is two lists: the pieces in which its bytes arrive, and the messages it was sent.

#include "base/input.h"
#include "base/output.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::testing {

/// Keeps every message. After `room` of them the reader has gone, and nothing is kept any more.
class FakeOutput final : public Output {
 public:
  bool write(std::string_view message) override {
    if (messages.size() >= room) {
      ++refused;
      return false;
    }
    messages.emplace_back(message);
    return true;
  }

  /// The messages since the last call, each with its line feed.
  std::vector<std::string> take() { return std::exchange(messages, {}); }

  std::vector<std::string> messages;
  std::size_t room = std::numeric_limits<std::size_t>::max();
  /// How many messages came after the reader had gone.
  int refused = 0;
};

/// Gives its pieces one by one, each in as many reads as the room asks for, then the end of input.
class FakeInput final : public Input {
 public:
  explicit FakeInput(std::deque<std::string> pieces) : pieces_(std::move(pieces)) {}

  /// A whole text in pieces of one size, which is at least 1.
  FakeInput(std::string_view whole, std::size_t pieceBytes) {
    for (; !whole.empty(); whole.remove_prefix(std::min(pieceBytes, whole.size())))
      pieces_.emplace_back(whole.substr(0, pieceBytes));
  }

  std::size_t read(std::span<char> space) override {
    ++reads;
    while (!pieces_.empty() && taken_ == pieces_.front().size()) {
      pieces_.pop_front();
      taken_ = 0;
    }
    if (pieces_.empty()) return 0;
    const std::string_view rest = std::string_view(pieces_.front()).substr(taken_);
    const std::size_t count = std::min(space.size(), rest.size());
    std::copy_n(rest.begin(), count, space.begin());
    taken_ += count;
    return count;
  }

  /// Always: this client never makes anybody wait.
  bool comesWithin(Duration /*atMost*/) override { return true; }

  /// How often it was read, the end included.
  int reads = 0;

 private:
  std::deque<std::string> pieces_;
  std::size_t taken_ = 0;  // of the first piece
};

}  // namespace quillpost::testing
