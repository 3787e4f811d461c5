#include "board/rules/board.h"

#include "board/desk.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(Board, IsPutBackWholeWhenItCannotBeSaved) {
  Desk desk;
  const std::string id = desk.add("one");
  board::settle(desk.board);
  const int64_t rev = desk.board.counted().rev;
  Task& task = *desk.board.tasks.touch(id);
  takeClaim(desk.board, task, desk.seat("BB3"), desk.at);
  announce(desk.board, {MoveKind::taskClaimed, id, desk.mark("BB3"), 1});
  EXPECT_FALSE(isSaved(desk.board));
  revert(desk.board);
  EXPECT_TRUE(isSaved(desk.board));
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_EQ(desk.board.counted().rev, rev);
  EXPECT_EQ(std::prev(desk.board.changes.end())->second.rev, rev);
}

}  // namespace
}  // namespace quillpost::board
