#include "board/serving/store.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/serving/rows.h"
#include "board/serving/system.h"
#include "json/decoder.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

/// The layout of the file. Only files of this layout are opened.
constexpr int64_t layout = 2;

constexpr std::string_view inMemory = ":memory:";

// Exclusive, so that two boards never serve the same file; FULL, so that what is committed is on
// the disk when the commit returns.
constexpr const char* setUp =
    "PRAGMA locking_mode = EXCLUSIVE;"
    "PRAGMA journal_mode = WAL;"
    "PRAGMA synchronous = FULL;"
    "PRAGMA fullfsync = 1;"
    "PRAGMA secure_delete = ON;"
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS rows ("
    "  thread TEXT NOT NULL, kind TEXT NOT NULL, id TEXT NOT NULL, about TEXT, body TEXT NOT NULL,"
    "  PRIMARY KEY (thread, kind, id)) WITHOUT ROWID;"
    "CREATE INDEX IF NOT EXISTS rows_about ON rows (thread, about, id) WHERE about IS NOT NULL;"
    "CREATE TABLE IF NOT EXISTS damaged ("
    "  thread TEXT NOT NULL, kind TEXT NOT NULL, id TEXT NOT NULL, body TEXT NOT NULL);"
    "PRAGMA user_version = 2;"
    "COMMIT;";

constexpr std::string_view putRow =
    "INSERT OR REPLACE INTO rows (thread, kind, id, about, body) VALUES (?1, ?2, ?3, ?4, ?5)";
constexpr std::string_view dropRow = "DELETE FROM rows WHERE thread = ?1 AND kind = ?2 AND id = ?3";

/// Where the changes to a file are written first.
std::string logOf(const std::string& path) { return path + "-wal"; }

/// The tags of all threads; `isRead` becomes false when they cannot be read.
std::vector<std::string> threadsIn(Database& database, bool& isRead) {
  std::vector<std::string> tags;
  for (;;) {
    const std::string last = tags.empty() ? std::string() : tags.back();
    Statement next =
        database.prepare("SELECT thread FROM rows WHERE thread > ?1 ORDER BY thread LIMIT 1");
    next.bind(1, last);
    const bool isThere = next.next();
    isRead = isRead && !next.failed();
    if (!isThere) return tags;
    tags.emplace_back(next.text(0));
  }
}

}  // namespace

Store::Open::Open(Database opened)
    : database(std::move(opened)),
      begin(database.prepare("BEGIN IMMEDIATE")),
      commit(database.prepare("COMMIT")),
      put(database.prepare(putRow)),
      drop(database.prepare(dropRow)) {}

std::optional<Database> Store::openFile(const std::string& path, std::string& why) {
  std::optional<Database> database = Database::open(path, why);
  if (!database) return std::nullopt;
  bool isRead = false;
  {
    Statement version = database->prepare("PRAGMA user_version");
    const int64_t found = version.next() ? version.number(0) : 0;
    isRead = !version.failed();
    if (found != 0 && found != layout) {
      why = text::cat("cannot open ", path, ": it was written by ",
                      found > layout ? "a later" : "an earlier", " version");
      return std::nullopt;
    }
  }
  if (isRead && database->run(setUp)) return database;
  const std::string error = database->error();
  const bool isLocked = error.find("locked") != std::string::npos;
  why = text::cat("cannot open ", path, ": ",
                  isLocked ? "another board has it open, or another program" : error);
  return std::nullopt;
}

std::optional<Store> Store::open(const std::string& path, std::string& why) {
  std::optional<Database> database = openFile(path, why);
  if (!database) return std::nullopt;
  return Store(path == inMemory ? "" : path, *std::move(database));
}

Store::Store(std::string path, Database database)
    : path_(std::move(path)), open_(std::make_unique<Open>(std::move(database))) {
  remember();
}

Store::~Store() {
  if (open_ == nullptr || look() != FileState::replaced) return;
  const std::string log = logOf(path_);
  if (markOf(log) == log_) ::unlink(log.c_str());
}

std::optional<Loaded> Store::load(std::string& why) {
  // Of the changes only the latest are wanted, and the others, which may be very many, are not even
  // to be passed over.
  constexpr std::string_view queries[] = {
      "SELECT kind, id, body FROM rows WHERE thread = ?1 AND kind < 'change'",
      "SELECT kind, id, body FROM rows WHERE thread = ?1 AND kind > 'change'",
      "SELECT kind, id, body FROM rows WHERE thread = ?1 AND kind = 'change' "
      "ORDER BY id DESC LIMIT ?2"};
  Database& database = open_->database;
  Loaded loaded;
  std::vector<RowName> unreadable;
  bool isRead = true;
  for (const std::string& tag : threadsIn(database, isRead)) {
    Board board;
    for (const std::string_view query : queries) {
      Statement rows = database.prepare(query);
      rows.bind(1, tag);
      if (query == queries[2]) rows.bind(2, static_cast<int64_t>(changesKept));
      takeRows(rows, tag, board, unreadable);
      isRead = isRead && !rows.failed();
    }
    replaceMissing(board, tag);
    loaded.boards.push_back(std::move(board));
  }
  for (const RowName& row : unreadable) {
    loaded.damages.push_back(text::cat("the ", row.kind, " ", row.id, " of thread ", row.thread,
                                       " could not be read and was put aside"));
  }
  isRead = isRead && putAside(database, unreadable);
  if (!isRead) {
    why = text::cat("cannot read ", path_, ": ", database.error());
    return std::nullopt;
  }
  loaded.boards.sort(
      [](const Board& a, const Board& b) { return a.thread().place < b.thread().place; });
  return loaded;
}

bool Store::save(Board& board) {
  const bool isKept = isSaved(board) || write(board);
  if (isKept) {
    settle(board);
  } else {
    revert(board);
  }
  return isKept;
}

bool Store::put(const FileRow& row) {
  Statement& put = open_->put;
  put.bind(1, row.thread);
  put.bind(2, row.kind);
  put.bind(3, row.id);
  if (row.about.empty()) {
    put.bindNull(4);
  } else {
    put.bind(4, row.about);
  }
  put.bind(5, row.body);
  return put.run();
}

bool Store::drop(const FileRow& row) {
  Statement& drop = open_->drop;
  drop.bind(1, row.thread);
  drop.bind(2, row.kind);
  drop.bind(3, row.id);
  return drop.run();
}

bool Store::write(const Board& board) {
  if (!open_->begin.run()) return false;
  const std::string& thread = board.thread().id;
  bool isWritten = true;
  forEachTable(board, [&]<class Row>(std::string_view kind, const Table<Row>& table) {
    table.forEachUnsaved([&](const std::string& id, const Row* row) {
      if (!isWritten) return;
      if (row == nullptr) {
        isWritten = drop({thread, kind, id, {}, {}});
      } else {
        isWritten =
            put({thread, kind, id, aboutOf(*row), json::encode<json::Unsaid::omitted>(*row)});
      }
    });
  });
  if (isWritten && open_->commit.run()) return true;
  open_->database.run("ROLLBACK");
  return false;
}

std::vector<Change> Store::history(const HistoryQuery& query) const {
  const std::string_view all =
      "SELECT body FROM rows WHERE thread = ?1 AND kind = 'change' ORDER BY id DESC";
  const std::string_view ofTask =
      "SELECT body FROM rows WHERE thread = ?1 AND about = ?2 ORDER BY id DESC";
  Statement rows = open_->database.prepare(query.taskID.empty() ? all : ofTask);
  rows.bind(1, query.thread);
  if (!query.taskID.empty()) rows.bind(2, query.taskID);
  std::vector<Change> found;
  while (found.size() < query.atMost && rows.next()) {
    std::optional<Change> change = json::decode<Change>(std::string(rows.text(0)));
    if (!change) continue;
    if (change->atMs < query.sinceMs) break;
    const bool isWanted = query.by.empty() || change->by == query.by ||
                          unicode::equalIgnoringCase(change->byName, query.by);
    if (isWanted) found.push_back(*std::move(change));
  }
  std::ranges::reverse(found);
  return found;
}

Store::Mark Store::markOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return {};
  return {static_cast<uint64_t>(status.st_dev), static_cast<uint64_t>(status.st_ino)};
}

void Store::remember() {
  if (path_.empty()) return;
  file_ = markOf(path_);
  log_ = markOf(logOf(path_));
}

FileState Store::look() const {
  if (path_.empty()) return FileState::kept;
  const Mark file = markOf(path_);
  if (file != file_) return file == Mark{} ? FileState::gone : FileState::replaced;
  return markOf(logOf(path_)) == log_ ? FileState::kept : FileState::gone;
}

bool Store::writeAnew(std::string& why) {
  // What was deleted is still there for whoever has it open, until it is closed.
  const std::string fresh = path_ + ".new";
  ::unlink(fresh.c_str());
  {
    std::optional<Database> copy = Database::open(fresh, why);
    if (!copy) return false;
    if (!open_->database.copyTo(*copy) || !copy->run("PRAGMA journal_mode = DELETE;")) {
      why = text::cat("cannot write ", path_, " anew: ", copy->error());
      return false;
    }
  }
  ::unlink(logOf(path_).c_str());
  if (std::rename(fresh.c_str(), path_.c_str()) != 0) {
    why = text::cat("cannot write ", path_, " anew: ", reason());
    return false;
  }
  std::optional<Database> database = openFile(path_, why);
  if (!database) return false;
  open_ = std::make_unique<Open>(*std::move(database));
  remember();
  return true;
}

bool Store::backUp(const std::string& path, std::string& why) {
  if (exists(path)) {
    why = text::cat(path, " is there already");
    return false;
  }
  const std::string fresh = path + ".new";
  ::unlink(fresh.c_str());
  std::optional<Database> copy = Database::open(fresh, why);
  if (!copy) return false;
  if (!open_->database.copyTo(*copy) || !copy->run("PRAGMA journal_mode = DELETE;")) {
    why = text::cat("cannot write ", path, ": ", copy->error());
    ::unlink(fresh.c_str());
    return false;
  }
  copy.reset();
  if (std::rename(fresh.c_str(), path.c_str()) == 0) return true;
  why = text::cat("cannot write ", path, ": ", reason());
  ::unlink(fresh.c_str());
  return false;
}

std::vector<std::string> Store::check() const {
  std::vector<std::string> found;
  Statement integrity = open_->database.prepare("PRAGMA integrity_check");
  while (integrity.next())
    if (integrity.text(0) != "ok") found.emplace_back(integrity.text(0));
  if (integrity.failed()) found.push_back(open_->database.error());
  Statement damaged = open_->database.prepare("SELECT thread, kind, id, body FROM damaged");
  while (damaged.next()) {
    found.push_back(text::cat("the ", damaged.text(1), " ", damaged.text(2), " of thread ",
                              damaged.text(0), " cannot be read: ", damaged.text(3)));
  }
  return found;
}

std::optional<std::string> Store::exported() const {
  std::string lines;
  Statement rows = open_->database.prepare("SELECT thread, kind, id, body FROM rows");
  while (rows.next()) lines += exportLine(rows.text(0), rows.text(1), rows.text(2), rows.text(3));
  return rows.failed() ? std::nullopt : std::optional(std::move(lines));
}

bool Store::import(std::string_view lines, std::string& why) {
  Statement any = open_->database.prepare("SELECT 1 FROM rows LIMIT 1");
  if (any.next()) {
    why = "there are boards here already; lines are taken into an empty file only";
    return false;
  }
  if (!open_->begin.run()) {
    why = open_->database.error();
    return false;
  }
  int64_t number = 0;
  bool isTaken = true;
  for (const std::string_view line : text::split(lines, '\n')) {
    ++number;
    if (line.empty()) continue;
    const std::optional<ExportedRow> row = readExportLine(line);
    isTaken = row && put({row->thread, row->kind, row->id, row->about, row->body});
    if (isTaken) continue;
    why = row ? open_->database.error() : text::cat("line ", number, " is no row of a board");
    break;
  }
  if (isTaken && open_->commit.run()) return true;
  if (isTaken) why = open_->database.error();
  open_->database.run("ROLLBACK");
  return false;
}

}  // namespace quillpost::board
