#include "board/serving/store.h"

#include "board/desk.h"
#include "board/full_disk.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

namespace quillpost::board {
namespace {

using testing::TempDir;

std::optional<Store> openStore(const std::string& path) {
  std::string why;
  std::optional<Store> store = Store::open(path, why);
  EXPECT_TRUE(store) << why;
  return store;
}

Boards loadAll(Store& store) {
  std::string why;
  std::optional<Loaded> loaded = store.load(why);
  EXPECT_TRUE(loaded) << why;
  if (!loaded) return {};
  EXPECT_TRUE(loaded->damages.empty()) << loaded->damages.front();
  return std::move(loaded->boards);
}

/// Whether two boards hold the same rows.
void expectSame(const Board& one, const Board& other) {
  std::vector<std::string> ones, others;
  const auto writeDown = [](std::vector<std::string>& out) {
    return [&out](std::string_view kind, const auto& table) {
      for (const auto& [id, row] : table) out.push_back(text::cat(kind, " ", json::encode(row)));
    };
  };
  forEachTable(one, writeDown(ones));
  forEachTable(other, writeDown(others));
  EXPECT_EQ(ones, others);
}

/// Whether the board is what a program killed at this moment would leave in the directory: the
/// files as they are, opened anew.
void expectKeptIn(const TempDir& dir, const Board& board) {
  for (const char* name : {"board.db", "board.db-wal"})
    std::filesystem::copy_file(dir.pathOf(name), dir.pathOf(text::cat("left-", name)));
  std::optional<Store> left = openStore(dir.pathOf("left-board.db"));
  expectSame(loadAll(*left).front(), board);
}

/// A board with something in every table.
Desk fullDesk() {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  desk.ask("AA2", "set_goal", R"("name":"Ship \"it\" — ünïcode")");
  const std::string id = desk.add("one", R"("body":"a\nb","resources":["db"],"summary":"gist")");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task",
           Desk::on(id) + R"(,"note":"half","blocked":true,"blockerQuestion":"?")");
  desk.ask("AA2", "request_release", Desk::on(desk.add("two")));
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"x","tags":["BB3","human"])");
  desk.ask("AA2", "open_discussion", R"("body":"Why?")");
  desk.ask("BB3", "reply_discussion", R"("discussionID":"d000001","body":"Because")");
  desk.ask("AA2", "send_message", R"("to":"BB3","body":"hello")");
  desk.ask("AA2", "suggest_helper", R"("command":"run","explanation":"fast")");
  desk.person(personHelperAllow,
              R"("body":"{\"id\":\"scout\",\"directory\":\"/d\",\"words\":[\"run\"]}")");
  desk.ask("AA2", "request_hands", R"("title":"more")");
  desk.ask("AA2", "delete_task", Desk::on(desk.add("slip")));
  return desk;
}

TEST(Store, WhatIsSavedIsLoadedAgain) {
  const TempDir dir;
  Desk desk = fullDesk();
  {
    std::optional<Store> store = openStore(dir.pathOf("board.db"));
    EXPECT_TRUE(store->save(desk.board));
  }
  std::optional<Store> store = openStore(dir.pathOf("board.db"));
  const Boards boards = loadAll(*store);
  ASSERT_EQ(boards.size(), 1u);
  expectSame(boards.front(), desk.board);
  forEachTable(desk.board, [](std::string_view kind, const auto& table) {
    EXPECT_FALSE(table.empty()) << "the test is to cover " << kind;
  });
}

TEST(Store, ABoardThatWasNeverClosedLosesNothing) {
  const TempDir dir;
  Desk desk = fullDesk();
  std::optional<Store> store = openStore(dir.pathOf("board.db"));
  ASSERT_TRUE(store->save(desk.board));
  desk.add("written last");
  ASSERT_TRUE(store->save(desk.board));
  expectKeptIn(dir, desk.board);
}

TEST(Store, ChangesAndRemovalsAreSavedByThemselves) {
  const TempDir dir;
  Desk desk = fullDesk();
  std::optional<Store> store = openStore(dir.pathOf("board.db"));
  ASSERT_TRUE(store->save(desk.board));
  desk.ask("AA2", "delete_task", Desk::on("t000002"));
  desk.person(personRestore, Desk::on("t000003"));
  desk.ask("BB3", "unregister");
  ASSERT_TRUE(store->save(desk.board));
  expectSame(loadAll(*store).front(), desk.board);
  EXPECT_EQ(desk.board.tasks.find("t000002"), nullptr);
}

TEST(Store, SavingSettlesTheBoard) {
  Desk desk = fullDesk();
  std::optional<Store> store = openStore(":memory:");
  ASSERT_TRUE(store->save(desk.board));
  EXPECT_TRUE(isSaved(desk.board));
  EXPECT_TRUE(store->save(desk.board)) << "nothing to save is saved";
}

TEST(Store, SeveralThreadsShareAFile) {
  std::optional<Store> store = openStore(":memory:");
  Desk one, two;
  Thread thread;
  thread.id = "T-xyz567";
  thread.place = 2;
  two.board = newBoard(std::move(thread));
  one.add("only here");
  ASSERT_TRUE(store->save(one.board));
  ASSERT_TRUE(store->save(two.board));
  const Boards boards = loadAll(*store);
  ASSERT_EQ(boards.size(), 2u);
  EXPECT_EQ(boards.front().tasks.size(), 1u);
  EXPECT_EQ(boards.back().tasks.size(), 0u);
}

TEST(Store, AFileIsOpenOnlyOnce) {
  const TempDir dir;
  std::optional<Store> first = openStore(dir.pathOf("board.db"));
  std::string why;
  EXPECT_FALSE(Store::open(dir.pathOf("board.db"), why));
  EXPECT_THAT(why, ::testing::HasSubstr("board.db"));
  EXPECT_THAT(why, ::testing::HasSubstr("another board"));
}

TEST(Store, WhatIsNoBoardIsNotOpened) {
  const TempDir dir;
  std::string why;
  EXPECT_FALSE(Store::open(dir.write("notes.txt", std::string(4096, 'x')), why));
  EXPECT_THAT(why, ::testing::HasSubstr("notes.txt"));
  EXPECT_FALSE(Store::open(dir.pathOf("missing/board.db"), why));
}

/// Runs statements on a file that no store has open.
void alter(const std::string& path, const char* statements) {
  std::string why;
  std::optional<Database> database = Database::open(path, why);
  ASSERT_TRUE(database && database->run(statements)) << why;
}

TEST(Store, AnUnreadableRowIsPutAsideAndTheRestIsThere) {
  struct Row {
    const char* kind;
    const char* id;
  };
  for (const Row& row :
       {Row{"task", "t000001"}, Row{"thread", "T-abc234"}, Row{"counters", "T-abc234"}}) {
    SCOPED_TRACE(row.kind);
    const TempDir dir;
    const std::string path = dir.pathOf("board.db");
    Desk desk = fullDesk();
    ASSERT_TRUE(openStore(path)->save(desk.board));
    alter(path, text::cat("UPDATE rows SET body = '{\"half' WHERE kind = '", row.kind,
                          "' AND id = '", row.id, "'")
                    .c_str());
    std::optional<Store> store = openStore(path);
    std::string why;
    const std::optional<Loaded> loaded = store->load(why);
    ASSERT_TRUE(loaded) << why;
    ASSERT_EQ(loaded->damages.size(), 1u);
    EXPECT_THAT(loaded->damages.front(), ::testing::HasSubstr(row.id));
    const Board& board = loaded->boards.front();
    EXPECT_EQ(board.thread().id, "T-abc234");
    EXPECT_EQ(board.counted().tasksFiled, 4);
    EXPECT_EQ(board.counted().rev, desk.board.counted().rev);
    EXPECT_EQ(board.tasks.find("t000002") != nullptr, true);
    ASSERT_EQ(store->check().size(), 1u);
    EXPECT_THAT(store->check().front(), ::testing::HasSubstr("{\"half"));
  }
}

TEST(Store, EveryMoveStaysInTheHistory) {
  std::optional<Store> store = openStore(":memory:");
  Desk desk;
  const std::string one = desk.add("one"), two = desk.add("two");
  ASSERT_TRUE(store->save(desk.board));
  for (std::size_t i = 0; i < changesKept; ++i) {
    desk.pass(1);
    desk.ask("BB3", "comment_task", text::cat(Desk::on(one), R"(,"note":")", i, "\""));
    ASSERT_TRUE(store->save(desk.board));
  }
  desk.ask("AA2", "comment_task", Desk::on(two) + R"(,"note":"hm")");
  ASSERT_TRUE(store->save(desk.board));
  EXPECT_LE(desk.board.changes.size(), changesKept + 1);

  HistoryQuery all{"T-abc234", "", "", 0, 100'000};
  const std::vector<Change> history = store->history(all);
  EXPECT_EQ(text::countOf(history), desk.board.counted().rev);
  EXPECT_EQ(history.front().rev, 1);
  EXPECT_EQ(history.back().what, "hm");
  all.taskID = two;
  EXPECT_EQ(store->history(all).size(), 2u);
  all.taskID.clear();
  all.by = "bb3";
  EXPECT_EQ(store->history(all).size(), changesKept + 1) << "its arrival and its comments";
  all.by.clear();
  all.sinceMs = desk.at.nowMs;
  EXPECT_EQ(store->history(all).size(), 3u) << "a comment, the other's return and its comment";
  all.sinceMs = 0;
  all.atMost = 1;
  ASSERT_EQ(store->history(all).size(), 1u);
  EXPECT_EQ(store->history(all).front().what, "hm");
}

TEST(Store, WhatIsExportedAndImportedIsTheSameBoard) {
  Desk desk = fullDesk();
  std::optional<Store> from = openStore(":memory:"), to = openStore(":memory:");
  ASSERT_TRUE(from->save(desk.board));
  const std::optional<std::string> lines = from->exported();
  ASSERT_TRUE(lines);
  std::string why;
  ASSERT_TRUE(to->import(*lines, why)) << why;
  expectSame(loadAll(*to).front(), desk.board);
  EXPECT_EQ(to->exported(), lines);
  EXPECT_EQ(to->history({"T-abc234", "t000001"}), from->history({"T-abc234", "t000001"}));
  EXPECT_FALSE(to->import(*lines, why)) << "there are boards already";
  EXPECT_THAT(why, ::testing::HasSubstr("already"));
}

TEST(Store, LinesThatAreNoRowsAreNotImportedAndNothingElseIsEither) {
  Desk desk = fullDesk();
  std::optional<Store> from = openStore(":memory:"), to = openStore(":memory:");
  ASSERT_TRUE(from->save(desk.board));
  std::string why;
  EXPECT_FALSE(to->import(*from->exported() + "nonsense\n", why));
  EXPECT_THAT(why, ::testing::HasSubstr("is no row of a board"));
  EXPECT_TRUE(loadAll(*to).empty());
}

TEST(Store, ABackupIsABoardOfItsOwnAndReplacesNothing) {
  const TempDir dir;
  Desk desk = fullDesk();
  std::optional<Store> store = openStore(dir.pathOf("board.db"));
  ASSERT_TRUE(store->save(desk.board));
  std::string why;
  ASSERT_TRUE(store->backUp(dir.pathOf("copy.db"), why)) << why;
  std::optional<Store> copy = openStore(dir.pathOf("copy.db"));
  expectSame(loadAll(*copy).front(), desk.board);
  EXPECT_FALSE(store->backUp(dir.pathOf("copy.db"), why));
  EXPECT_FALSE(store->backUp(dir.pathOf("missing/copy.db"), why));
  dir.makeDirectory("folder");
  EXPECT_FALSE(store->backUp(dir.pathOf("folder/"), why));
  EXPECT_FALSE(std::filesystem::exists(dir.pathOf("folder/.new"))) << "nothing is left of it";
}

TEST(Store, AFileWrittenAnewHasAllThatTheDeletedOneHad) {
  const TempDir dir;
  const std::string path = dir.pathOf("board.db");
  Desk desk = fullDesk();
  std::optional<Store> store = openStore(path);
  ASSERT_TRUE(store->save(desk.board));
  EXPECT_EQ(store->look(), FileState::kept);
  std::filesystem::remove(path);
  EXPECT_EQ(store->look(), FileState::gone);
  desk.add("written meanwhile");
  ASSERT_TRUE(store->save(desk.board));
  std::string why;
  ASSERT_TRUE(store->writeAnew(why)) << why;
  EXPECT_EQ(store->look(), FileState::kept);
  desk.add("written afterwards");
  ASSERT_TRUE(store->save(desk.board));
  expectKeptIn(dir, desk.board);
}

TEST(Store, ALogOfChangesThatIsDeletedIsNoticed) {
  const TempDir dir;
  Desk desk = fullDesk();
  std::optional<Store> store = openStore(dir.pathOf("board.db"));
  ASSERT_TRUE(store->save(desk.board));
  std::filesystem::remove(dir.pathOf("board.db-wal"));
  EXPECT_EQ(store->look(), FileState::gone);
  std::string why;
  ASSERT_TRUE(store->writeAnew(why)) << why;
  EXPECT_EQ(store->look(), FileState::kept);
  expectSame(loadAll(*store).front(), desk.board);
}

TEST(Store, TheLogOfAFileIsNeverTakenForThatOfAnotherInItsPlace) {
  for (const bool hasOwnLog : {false, true}) {
    SCOPED_TRACE(hasOwnLog);
    const TempDir dir;
    const std::string path = dir.pathOf("board.db");
    Desk desk = fullDesk();
    Desk other;
    other.add("from the backup");
    std::optional<Store> store = openStore(path);
    ASSERT_TRUE(store->save(desk.board));
    ASSERT_TRUE(openStore(dir.pathOf("other.db"))->save(other.board));
    ASSERT_GT(std::filesystem::file_size(path + "-wal"), 0u);
    std::filesystem::rename(dir.pathOf("other.db"), path);
    if (hasOwnLog) {
      dir.write("log", "");
      std::filesystem::rename(dir.pathOf("log"), path + "-wal");
    }
    EXPECT_EQ(store->look(), FileState::replaced);
    store.reset();
    EXPECT_EQ(std::filesystem::exists(path + "-wal"), hasOwnLog);
    std::optional<Store> next = openStore(path);
    expectSame(loadAll(*next).front(), other.board);
  }
}

TEST(Store, AFileOfAnotherLayoutIsNotOpened) {
  const TempDir dir;
  const std::string path = dir.pathOf("board.db");
  for (const auto& [version, words] :
       {std::pair("PRAGMA user_version = 1", "earlier"), {"PRAGMA user_version = 99", "later"}}) {
    alter(path, version);
    std::string why;
    EXPECT_FALSE(Store::open(path, why));
    EXPECT_THAT(why, ::testing::HasSubstr(words));
  }
}

TEST(Store, WhatCannotBeWrittenIsTakenBack) {
  const TempDir dir;
  const std::string path = dir.pathOf("board.db");
  Desk desk = fullDesk();
  std::optional<Store> store = openStore(path);
  ASSERT_TRUE(store->save(desk.board));
  const std::size_t count = desk.board.tasks.size();
  const FullDisk full;
  desk.add("too much", text::cat(R"("body":")", std::string(200'000, 'x'), "\""));
  EXPECT_FALSE(store->save(desk.board));
  EXPECT_TRUE(isSaved(desk.board));
  EXPECT_EQ(desk.board.tasks.size(), count);
  full.end();
  desk.add("fits");
  EXPECT_TRUE(store->save(desk.board));
  expectSame(loadAll(*store).front(), desk.board);
}

}  // namespace
}  // namespace quillpost::board
