#include "board/serving/store.h"

#include "base/text.h"
#include "board/rules/ids.h"
#include "json/decoder.h"

#include <sqlite3.h>

#include <map>
#include <string_view>
#include <utility>

namespace quillpost::board {

namespace {

/// The layout of the file. A file of a later layout is not opened.
constexpr int layout = 2;

// Exclusive, so that two boards never serve the same file; FULL, so that what is committed is on
// the disk when the commit returns.
constexpr const char* setUp =
    "PRAGMA locking_mode = EXCLUSIVE;"
    "PRAGMA journal_mode = WAL;"
    "PRAGMA synchronous = FULL;"
    "PRAGMA fullfsync = 1;"
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS rows ("
    "  thread TEXT NOT NULL, kind TEXT NOT NULL, id TEXT NOT NULL, body TEXT NOT NULL,"
    "  PRIMARY KEY (thread, kind, id)) WITHOUT ROWID;"
    "PRAGMA user_version = 2;"
    "COMMIT;";

bool execute(sqlite3* connection, const char* statements) {
  return sqlite3_exec(connection, statements, nullptr, nullptr, nullptr) == SQLITE_OK;
}

/// One prepared statement.
class Statement {
 public:
  Statement(sqlite3* connection, std::string_view sql) {
    sqlite3_prepare_v2(connection, sql.data(), static_cast<int>(sql.size()), &statement_, nullptr);
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  /// Binds a text, which must outlive the step.
  void bind(int index, std::string_view value) {
    sqlite3_bind_text(statement_, index, value.data(), static_cast<int>(value.size()),
                      SQLITE_STATIC);
  }
  int step() { return sqlite3_step(statement_); }
  void reset() { sqlite3_reset(statement_); }

  std::string_view text(int column) const {
    const unsigned char* bytes = sqlite3_column_text(statement_, column);
    if (bytes == nullptr) return {};
    return {reinterpret_cast<const char*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
  }
  int number(int column) const { return sqlite3_column_int(statement_, column); }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

/// Puts a row of the file into the table of its kind; false when it cannot be read.
bool take(Board& board, std::string_view kind, std::string_view body) {
  bool taken = false;
  forEachTable(board, [&]<class Row>(std::string_view name, Table<Row>& table) {
    if (name != kind) return;
    std::optional<Row> row = json::decode<Row>(std::string(body));
    if (!row) return;
    table.put(*std::move(row));
    taken = true;
  });
  return taken;
}

/// Puts all rows of a statement where they belong; false when one cannot be read.
bool takeAll(Statement& rows, std::map<std::string, Board>& byTag, std::string& why) {
  int result = rows.step();
  for (; result == SQLITE_ROW; result = rows.step()) {
    if (take(byTag[std::string(rows.text(0))], rows.text(1), rows.text(3))) continue;
    why =
        text::cat("cannot read the ", rows.text(1), " ", rows.text(2), " of thread ", rows.text(0));
    return false;
  }
  if (result != SQLITE_DONE) why = "the file cannot be read";
  return result == SQLITE_DONE;
}

}  // namespace

void Store::Closing::operator()(sqlite3* connection) const { sqlite3_close(connection); }

std::optional<Store> Store::open(const std::string& path, std::string& why) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(path.c_str(), &opened);
  Connection connection(opened);
  const auto fail = [&] {
    why = text::cat("cannot open ", path, ": ", sqlite3_errmsg(opened));
    return std::nullopt;
  };
  if (result != SQLITE_OK) return fail();
  {
    Statement version(opened, "PRAGMA user_version");
    if (version.step() == SQLITE_ROW && version.number(0) > layout) {
      why = text::cat("cannot open ", path, ": it was written by a later version");
      return std::nullopt;
    }
  }
  if (!execute(opened, setUp)) return fail();
  return Store(std::move(connection));
}

std::optional<Boards> Store::load(std::string& why) {
  std::map<std::string, Board> byTag;
  Statement rows(connection_.get(),
                 "SELECT thread, kind, id, body FROM rows WHERE kind <> 'change'");
  if (!takeAll(rows, byTag, why)) return std::nullopt;
  Boards boards;
  for (auto& [tag, board] : byTag) {
    if (board.threads.size() != 1 || board.counters.size() != 1) {
      why = text::cat("thread ", tag, " has no row of its own");
      return std::nullopt;
    }
    // Of the changes only the latest are wanted, and there may be very many.
    const std::string last = padded(board.counted().rev - static_cast<int64_t>(changesKept));
    Statement changes(connection_.get(),
                      "SELECT thread, kind, id, body FROM rows "
                      "WHERE thread = ?1 AND kind = 'change' AND id > ?2");
    changes.bind(1, tag);
    changes.bind(2, last);
    if (!takeAll(changes, byTag, why)) return std::nullopt;
  }
  for (auto& [tag, board] : byTag) {
    settle(board);
    boards.push_back(std::move(board));
  }
  boards.sort([](const Board& a, const Board& b) { return a.thread().place < b.thread().place; });
  return boards;
}

bool Store::save(Board& board) {
  if (isSaved(board)) {
    settle(board);
    return true;
  }
  if (write(board)) {
    settle(board);
    return true;
  }
  revert(board);
  return false;
}

bool Store::write(const Board& board) {
  sqlite3* connection = connection_.get();
  if (!execute(connection, "BEGIN IMMEDIATE")) return false;
  Statement put(connection, "INSERT OR REPLACE INTO rows VALUES (?1, ?2, ?3, ?4)");
  Statement drop(connection, "DELETE FROM rows WHERE thread = ?1 AND kind = ?2 AND id = ?3");
  bool written = true;
  forEachTable(board, [&]<class Row>(std::string_view kind, const Table<Row>& table) {
    table.forEachUnsaved([&](const std::string& id, const Row* row) {
      const std::string body = row != nullptr ? json::encode(*row) : std::string();
      Statement& statement = row != nullptr ? put : drop;
      statement.bind(1, board.thread().id);
      statement.bind(2, kind);
      statement.bind(3, id);
      if (row != nullptr) statement.bind(4, body);
      written = written && statement.step() == SQLITE_DONE;
      statement.reset();
    });
  });
  if (written && execute(connection, "COMMIT")) return true;
  execute(connection, "ROLLBACK");
  return false;
}

}  // namespace quillpost::board
