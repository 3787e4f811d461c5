#include "board/serving/store.h"

#include "board/desk.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

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
  std::optional<Boards> boards = store.load(why);
  EXPECT_TRUE(boards) << why;
  return boards.value_or(Boards{});
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
  // What a killed program leaves behind: the files as they are at this moment.
  for (const char* name : {"board.db", "board.db-wal"}) {
    std::filesystem::copy_file(dir.pathOf(name), dir.pathOf(std::string("left-") + name));
  }
  std::optional<Store> left = openStore(dir.pathOf("left-board.db"));
  expectSame(loadAll(*left).front(), desk.board);
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
}

TEST(Store, WhatIsNoBoardIsNotOpened) {
  const TempDir dir;
  std::string why;
  EXPECT_FALSE(Store::open(dir.write("notes.txt", std::string(4096, 'x')), why));
  EXPECT_THAT(why, ::testing::HasSubstr("notes.txt"));
  EXPECT_FALSE(Store::open(dir.pathOf("missing/board.db"), why));
}

}  // namespace
}  // namespace quillpost::board
