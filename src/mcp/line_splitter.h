#pragma once

// Bytes in, whole lines out.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost {

/// Cuts a stream of bytes at line feeds. Every byte is looked at once, however it arrives, and a
/// line that arrives whole is not copied.
class LineSplitter {
 public:
  /// Takes the next bytes, which must stay in place until next() has given nothing. Whatever was
  /// fed before has been taken out by then.
  void feed(std::string_view bytes) { chunk_ = bytes; }

  /// The next whole line without its line feed, valid until the next call of anything here;
  /// nothing when more bytes are needed.
  std::optional<std::string_view> next();

  /// What stands after the last line feed at the end of input; nothing when there is nothing.
  std::optional<std::string_view> rest();

 private:
  // A buffer that a huge line has grown beyond this is given back instead of kept for the next.
  static constexpr std::size_t keptBytes = std::size_t{1} << 20;

  void dropDelivered();

  std::string_view chunk_;
  std::string partial_;
  bool delivered_ = false;  // whether partial_ is a line that was handed out
};

}  // namespace quillpost
