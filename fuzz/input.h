#pragma once

// What every fuzz target needs: the bytes taken apart, and a way to stop at what must not be.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

namespace quillpost::fuzz {

/// Stops the run when it does not hold; the engine keeps the bytes that led here.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

/// Takes values off the front of the bytes; zeros when they run out.
class Source {
 public:
  Source(const uint8_t* bytes, std::size_t size)
      : rest_(reinterpret_cast<const char*>(bytes), size) {}

  uint8_t byte() {
    if (rest_.empty()) return 0;
    const auto first = static_cast<uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return first;
  }
  int64_t number() {
    int64_t value = 0;
    const std::size_t size = rest_.size() < sizeof value ? rest_.size() : sizeof value;
    std::memcpy(&value, rest_.data(), size);
    rest_.remove_prefix(size);
    return value;
  }
  /// Nothing, a small number of either sign, or any number.
  std::optional<int64_t> anyNumber() {
    switch (byte() % 3) {
      case 0:
        return std::nullopt;
      case 1:
        return static_cast<int8_t>(byte());
      default:
        return number();
    }
  }
  /// As many bytes, or fewer when they run out.
  std::string_view bytes(std::size_t count) {
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  /// All that is left.
  std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
};

}  // namespace quillpost::fuzz
