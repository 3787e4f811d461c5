#include "board/serving/rows.h"

#include "base/text.h"
#include "json/decoder.h"
#include "json/writer.h"

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <utility>

namespace quillpost::board {

namespace {

/// Adds a row to the table of its kind, as saved; false when it cannot be read.
bool take(Board& board, std::string_view kind, std::string_view id, std::string_view body) {
  bool isTaken = false;
  forEachTable(board, [&]<class Row>(std::string_view name, Table<Row>& table) {
    if (name != kind) return;
    std::optional<Row> row = json::decode<Row>(std::string(body));
    if (!row || row->id != id) return;
    table.load(*std::move(row));
    isTaken = true;
  });
  return isTaken;
}

/// Moves a row to the table of those that could not be read; false when that cannot be written.
bool move(Database& database, const RowName& row) {
  const std::string_view where = " FROM rows WHERE thread = ?1 AND kind = ?2 AND id = ?3";
  for (const std::string_view start :
       {"INSERT INTO damaged (thread, kind, id, body) SELECT thread, kind, id, body", "DELETE"}) {
    const std::string sql = text::cat(start, where);
    Statement statement = database.prepare(sql);
    statement.bind(1, row.thread);
    statement.bind(2, row.kind);
    statement.bind(3, row.id);
    if (!statement.run()) return false;
  }
  return true;
}

/// The number in an id, which may begin with a letter; 0 when there is none.
int64_t numberIn(std::string_view id) {
  if (id.starts_with('t') || id.starts_with('d')) id.remove_prefix(1);
  return text::parseInteger(id).value_or(0);
}

/// The number of the last row; 0 for a table without any.
template <class Row>
int64_t lastNumberOf(const Table<Row>& table) {
  return table.empty() ? 0 : numberIn(std::prev(table.end())->first);
}

/// What stands before the body of an exported row.
struct RowHead {
  std::string thread;
  std::string kind;
  std::string id;

  static constexpr auto fields() {
    return std::tuple{json::required("thread", &RowHead::thread),
                      json::required("kind", &RowHead::kind), json::required("id", &RowHead::id)};
  }
};

constexpr std::string_view beforeBody = R"(,"row":)";

}  // namespace

void takeRows(Statement& rows, const std::string& thread, Board& board,
              std::vector<RowName>& unreadable) {
  while (rows.next()) {
    if (take(board, rows.text(0), rows.text(1), rows.text(2))) continue;
    unreadable.push_back({thread, std::string(rows.text(0)), std::string(rows.text(1))});
  }
}

bool putAside(Database& database, const std::vector<RowName>& rows) {
  bool isDone = rows.empty() || database.run("BEGIN IMMEDIATE");
  for (const RowName& row : rows) isDone = isDone && move(database, row);
  return isDone && (rows.empty() || database.run("COMMIT"));
}

void replaceMissing(Board& board, const std::string& tag) {
  if (board.threads.empty()) {
    Thread thread;
    thread.id = thread.name = tag;
    board.threads.put(std::move(thread));
  }
  if (!board.counters.empty()) return;
  Counters counters;
  counters.id = tag;
  counters.rev = lastNumberOf(board.changes);
  counters.lastNumber = std::max(lastNumberOf(board.wakes), lastNumberOf(board.messages));
  counters.tasksFiled = std::max(lastNumberOf(board.tasks), lastNumberOf(board.trash));
  for (const auto& [id, change] : board.changes)
    counters.tasksFiled = std::max(counters.tasksFiled, numberIn(change.taskID));
  counters.discussionsOpened = lastNumberOf(board.discussions);
  board.counters.put(std::move(counters));
}

std::string exportLine(std::string_view thread, std::string_view kind, std::string_view id,
                       std::string_view body) {
  std::string head = json::encode(RowHead{std::string(thread), std::string(kind), std::string(id)});
  head.pop_back();
  return text::cat(head, beforeBody, body, "}\n");
}

std::optional<ExportedRow> readExportLine(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  const std::optional<RowHead> head = json::decode<RowHead>(std::string(line));
  // Within a text the quotation marks would be escaped, so that this stands once before the body.
  const std::size_t start = line.find(beforeBody);
  if (!head || start == std::string_view::npos || !line.ends_with('}')) return std::nullopt;
  line.remove_suffix(1);
  ExportedRow row{
      head->thread, head->kind, head->id, std::string(line.substr(start + beforeBody.size())), {}};
  Board board;
  if (!take(board, row.kind, row.id, row.body)) return std::nullopt;
  if (!board.changes.empty()) row.about = board.changes.begin()->second.taskID;
  return row;
}

}  // namespace quillpost::board
