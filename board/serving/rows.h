#pragma once

// Rows of boards as text: taking them from a file, putting aside what cannot be read, and the lines
// that a board is exported as.

#include "board/rules/board.h"
#include "board/serving/database.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// Which row of a file is meant.
struct RowName {
  std::string thread;
  std::string kind;
  std::string id;
};

/// What a row is about: the task of a change; empty for every other row.
template <class Row>
std::string_view aboutOf(const Row&) {
  return {};
}
inline std::string_view aboutOf(const Change& change) { return change.taskID; }

/// Puts every row of a statement (kind, id, body) onto the board of that thread; those that cannot
/// be read are named in `unreadable`.
void takeRows(Statement& rows, const std::string& thread, Board& board,
              std::vector<RowName>& unreadable);

/// Moves rows to the table of those that could not be read, all or none. False when that could not
/// be written.
bool putAside(Database& database, const std::vector<RowName>& rows);

/// Gives a board whose own rows could not be read such rows again, from what else is on it: its tag
/// for a name, and counters from which no id is given twice. Nothing when they are there.
void replaceMissing(Board& board, const std::string& tag);

/// One row as it is exported.
struct ExportedRow {
  std::string thread;
  std::string kind;
  std::string id;
  /// As JSON.
  std::string body;
  std::string about;
};

/// The row as a line of JSON, with its line feed.
std::string exportLine(std::string_view thread, std::string_view kind, std::string_view id,
                       std::string_view body);

/// Reads such a line, its line feed not among it; nothing when it is none or holds no row of a
/// board.
std::optional<ExportedRow> readExportLine(std::string_view line);

}  // namespace quillpost::board
