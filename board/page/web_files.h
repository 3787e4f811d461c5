#pragma once

// The page's own files, built into the program. The source of this is made from board/page/web/
// when the program is built.

#include <span>
#include <string_view>

namespace quillpost::board {

/// One file, as a browser asks for it.
struct WebFile {
  /// Its path, with the slash before it.
  std::string_view path;
  std::string_view type;
  std::string_view bytes;
};

/// All of them.
std::span<const WebFile> webFiles();

}  // namespace quillpost::board
