#pragma once

// What the person is shown, as a test reads it.

#include "board/desk.h"
#include "board/person/sheet.h"
#include "board/person/show.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// The overview of a desk's board.
inline Sheet overviewOf(const Desk& desk, Extent extent = Extent::usual) {
  const Board* const boards[] = {&desk.board};
  return boardSheet(boards, extent, desk.at);
}

/// A task, discussion or agent of it, laid out; empty when there is none of that name.
inline std::string wholeOf(const Desk& desk, std::string_view what, std::size_t width = 0) {
  const std::optional<Sheet> sheet = wholeSheet(desk.board, what, desk.at);
  return sheet ? sheetText(*sheet, {width, false}) : std::string();
}

/// The cells of one column of a section, from its first row to its last.
inline std::vector<std::string> columnOf(const Sheet& sheet, std::string_view section,
                                         std::string_view column) {
  std::vector<std::string> cells;
  const Section* const found = sheet.find(section);
  if (found == nullptr) return {"(no section)"};
  for (const Section::Row& row : found->rows) cells.emplace_back(cellOf(*found, row, column));
  return cells;
}

}  // namespace quillpost::board
