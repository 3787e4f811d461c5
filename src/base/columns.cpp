#include "base/columns.h"

#include "base/unicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <optional>

namespace quillpost::unicode {
namespace {

/// The columns of one user-perceived character: those of its widest code point, since the others
/// are drawn onto it.
std::size_t columnsOfOne(std::string_view character) {
  int widest = 0;
  while (!character.empty()) {
    const std::optional<CodePoint> point = firstCodePoint(character);
    widest = std::max(widest, point ? utf8proc_charwidth(point->value) : 1);
    character.remove_prefix(point ? point->length : 1);
  }
  return static_cast<std::size_t>(widest);
}

bool isPrintableAscii(char byte) { return byte >= ' ' && byte <= '~'; }

/// The first character; one byte where that is known not to be joined by what follows.
std::string_view firstOf(std::string_view whole) {
  const bool standsAlone =
      isPrintableAscii(whole[0]) && (whole.size() == 1 || isPrintableAscii(whole[1]));
  return standsAlone ? whole.substr(0, 1) : firstCharacters(whole, 1);
}

}  // namespace

std::size_t columnsOf(std::string_view whole) {
  std::size_t columns = 0;
  while (!whole.empty()) {
    const std::string_view first = firstOf(whole);
    columns += columnsOfOne(first);
    whole.remove_prefix(first.size());
  }
  return columns;
}

std::string_view firstColumns(std::string_view whole, std::size_t columns) {
  std::size_t bytes = 0;
  while (bytes < whole.size()) {
    const std::string_view first = firstOf(whole.substr(bytes));
    const std::size_t taken = columnsOfOne(first);
    if (taken > columns) break;
    columns -= taken;
    bytes += first.size();
  }
  return whole.substr(0, bytes);
}

std::string cutToColumns(std::string_view whole, std::size_t columns) {
  if (firstColumns(whole, columns).size() == whole.size()) return std::string(whole);
  if (columns == 0) return {};
  return std::string(firstColumns(whole, columns - 1)) + "…";
}

}  // namespace quillpost::unicode
