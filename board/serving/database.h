#pragma once

// An SQLite file and statements on it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace quillpost::board {

/// One prepared statement. One that could not be prepared fails at its first step.
class Statement {
 public:
  Statement(sqlite3* connection, std::string_view sql);

  /// Binds a text, which must outlive the steps; or a null.
  void bind(int index, std::string_view value);
  void bind(int index, int64_t value);
  void bindNull(int index);

  /// Whether there is a row to be read, after which the next step looks for another. False at the
  /// end and after a failure.
  bool next();
  /// Runs a statement that gives no rows. Whether it was carried out.
  bool run();
  /// Whether the last step failed.
  bool failed() const { return failed_; }

  /// A column of the row, until the next step; empty and 0 for a null.
  std::string_view text(int column) const;
  int64_t number(int column) const;

 private:
  struct Finalizing {
    void operator()(sqlite3_stmt* statement) const;
  };
  std::unique_ptr<sqlite3_stmt, Finalizing> statement_;
  bool failed_ = false;
};

/// An open file. Closed when this object ends, which statements on it must not outlive.
class Database {
 public:
  /// Opens the file, making it when there is none. Nothing when that fails: then `why` says so in
  /// words.
  static std::optional<Database> open(const std::string& path, std::string& why);

  /// Carries out statements that give no rows, separated by semicolons. Whether all were.
  bool run(const char* statements);

  /// One statement.
  Statement prepare(std::string_view sql) const { return {connection_.get(), sql}; }

  /// Copies everything into another file, page by page. Whether all was copied.
  bool copyTo(Database& other);

  /// What went wrong last, in words.
  std::string error() const;

 private:
  struct Closing {
    void operator()(sqlite3* connection) const;
  };
  using Connection = std::unique_ptr<sqlite3, Closing>;

  explicit Database(Connection connection) : connection_(std::move(connection)) {}

  Connection connection_;
};

}  // namespace quillpost::board
