#pragma once

// The boards on disk: one SQLite file, one row for each row of a board, each row a JSON document.

#include "board/rules/board.h"

#include <list>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;

namespace quillpost::board {

/// Boards in the order of their making. They stay where they are.
using Boards = std::list<Board>;

/// An open file of boards, and the only one to have it open. What `save` has taken outlives a crash
/// of the program and of the machine.
class Store {
 public:
  /// Opens the file, making it when there is none; ":memory:" keeps everything in memory. Nothing
  /// when that fails, as when another program has it open: then `why` says so in words.
  static std::optional<Store> open(const std::string& path, std::string& why);

  /// All boards. Nothing when a row cannot be read: then `why` names it.
  std::optional<Boards> load(std::string& why);

  /// Writes what has changed on the board, all of it or nothing, and settles the board. False when
  /// nothing could be written; the board is then put back as it was last saved.
  bool save(Board& board);

 private:
  struct Closing {
    void operator()(sqlite3* connection) const;
  };
  using Connection = std::unique_ptr<sqlite3, Closing>;

  bool write(const Board& board);

  explicit Store(Connection connection) : connection_(std::move(connection)) {}

  Connection connection_;
};

}  // namespace quillpost::board
