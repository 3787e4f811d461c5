#include "board/serving/database.h"

#include "base/text.h"

#include <sqlite3.h>

#include <utility>

namespace quillpost::board {

Statement::Statement(sqlite3* connection, std::string_view sql) {
  sqlite3_stmt* prepared = nullptr;
  sqlite3_prepare_v2(connection, sql.data(), static_cast<int>(sql.size()), &prepared, nullptr);
  statement_.reset(prepared);
}

void Statement::Finalizing::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

void Statement::bind(int index, std::string_view value) {
  sqlite3_bind_text64(statement_.get(), index, value.data(), value.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
}

void Statement::bind(int index, int64_t value) {
  sqlite3_bind_int64(statement_.get(), index, value);
}

void Statement::bindNull(int index) { sqlite3_bind_null(statement_.get(), index); }

bool Statement::next() {
  const int result = sqlite3_step(statement_.get());
  failed_ = result != SQLITE_ROW && result != SQLITE_DONE;
  return result == SQLITE_ROW;
}

bool Statement::run() {
  next();
  sqlite3_reset(statement_.get());
  return !failed_;
}

std::string_view Statement::text(int column) const {
  const unsigned char* bytes = sqlite3_column_text(statement_.get(), column);
  if (bytes == nullptr) return {};
  return {reinterpret_cast<const char*>(bytes),
          static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

int64_t Statement::number(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

void Database::Closing::operator()(sqlite3* connection) const { sqlite3_close(connection); }

std::optional<Database> Database::open(const std::string& path, std::string& why) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(path.c_str(), &opened);
  Database database{Connection(opened)};
  if (result == SQLITE_OK) return database;
  why = text::cat("cannot open ", path, ": ", database.error());
  return std::nullopt;
}

bool Database::run(const char* statements) {
  return sqlite3_exec(connection_.get(), statements, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool Database::copyTo(Database& other) {
  sqlite3_backup* backup =
      sqlite3_backup_init(other.connection_.get(), "main", connection_.get(), "main");
  if (backup == nullptr) return false;
  sqlite3_backup_step(backup, -1);
  return sqlite3_backup_finish(backup) == SQLITE_OK;
}

std::string Database::error() const { return sqlite3_errmsg(connection_.get()); }

}  // namespace quillpost::board
