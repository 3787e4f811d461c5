#include "board/rules/board.h"

#include <utility>

namespace quillpost::board {

Board newBoard(Thread thread) {
  Board board;
  Counters counters;
  counters.id = thread.id;
  board.counters.put(std::move(counters));
  board.threads.put(std::move(thread));
  return board;
}

bool isSaved(const Board& board) {
  bool isSaved = true;
  forEachTable(board, [&](std::string_view, const auto& table) { isSaved &= table.isSaved(); });
  return isSaved;
}

void settle(Board& board) {
  forEachTable(board, [](std::string_view, auto& table) { table.settle(); });
  board.changes.forgetAllBut(changesKept);
}

void revert(Board& board) {
  forEachTable(board, [](std::string_view, auto& table) { table.revert(); });
}

}  // namespace quillpost::board
