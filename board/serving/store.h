#pragma once

// The boards on disk: one SQLite file, one row for each row of a board, each row a JSON document.

#include "board/rules/board.h"
#include "board/serving/database.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// Boards in the order of their making. They stay where they are.
using Boards = std::list<Board>;

/// What was found in a file.
struct Loaded {
  Boards boards;
  /// A sentence for each row that could not be read.
  std::vector<std::string> damages;
};

/// Which moves a reader of the history wants to see.
struct HistoryQuery {
  /// The Thread's tag.
  std::string thread;
  /// Those of one task only; empty for all.
  std::string taskID = {};
  /// Those of one mover only, by fingerprint or by what it was called; empty for all.
  std::string by = {};
  /// Those since then, in milliseconds since 1970.
  int64_t sinceMs = 0;
  /// The latest so many.
  std::size_t atMost = 1000;
};

/// How the file stands that the store has open.
enum class FileState {
  kept,      // where it was
  gone,      // deleted, with or without its log of changes
  replaced,  // another file stands in its place
};

/// An open file of boards, and the only one to have it open. What `save` has taken outlives a crash
/// of the program and of the machine.
class Store {
 public:
  /// Opens the file, making it when there is none; ":memory:" keeps everything in memory. Nothing
  /// when that fails, as when another program has it open: then `why` says so in words.
  static std::optional<Store> open(const std::string& path, std::string& why);

  /// Closes the file. When another stands in its place, the log of changes goes too: whoever opened
  /// that one would find it beside it, and take it for its own.
  ~Store();
  Store(Store&&) = default;
  Store& operator=(Store&&) = delete;
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  /// All boards. A row that cannot be read is put aside, where `check` shows it, and its board is
  /// given without it. Nothing when the file itself cannot be read: then `why` says so.
  std::optional<Loaded> load(std::string& why);

  /// Writes what has changed on the board, all of it or nothing, and settles the board. False when
  /// nothing could be written; the board is then put back as it was last saved.
  bool save(Board& board);

  /// The moves that a reader of the history wants to see, oldest first.
  std::vector<Change> history(const HistoryQuery& query) const;

  /// Whether there is a file at all, and not only memory.
  bool isFile() const { return !path_.empty(); }

  /// How the file stands now. A board in memory is always kept.
  FileState look() const;
  /// Writes the file anew, with all that is in the one that was deleted. False when that fails:
  /// then `why` says so, and nothing more can be kept.
  bool writeAnew(std::string& why);

  /// Copies everything into a new file. False when there is such a file already or it cannot be
  /// written: then `why` says so.
  bool backUp(const std::string& path, std::string& why);

  /// What is wrong with the file, in lines: what SQLite finds, and the rows that were put aside.
  /// Empty when all is well.
  std::vector<std::string> check() const;

  /// Everything as JSON Lines, one row of the file each, the ones that were put aside left out.
  /// Nothing when the file cannot be read.
  std::optional<std::string> exported() const;

  /// Takes such lines into a file without boards, all of them or none. False when there are boards
  /// already or a line cannot be read: then `why` says which.
  bool import(std::string_view lines, std::string& why);

 private:
  /// Which file stood at a path: its device and number, zeroes for none.
  struct Mark {
    uint64_t device = 0;
    uint64_t number = 0;
    bool operator==(const Mark&) const = default;
  };

  /// The open file with the statements of every save.
  struct Open {
    Database database;
    Statement begin, commit, put, drop;
    explicit Open(Database opened);
  };

  Store(std::string path, Database database);

  /// One row of the file.
  struct FileRow {
    std::string_view thread;
    std::string_view kind;
    std::string_view id;
    /// The task that a change is about; empty for every other row.
    std::string_view about;
    std::string_view body;
  };

  static std::optional<Database> openFile(const std::string& path, std::string& why);
  static Mark markOf(const std::string& path);
  bool put(const FileRow& row);
  bool drop(const FileRow& row);
  bool write(const Board& board);
  void remember();

  /// Empty for a board in memory.
  std::string path_;
  std::unique_ptr<Open> open_;
  Mark file_;
  Mark log_;
};

}  // namespace quillpost::board
