// Makes a file of a board for measuring, by the board's own rules:
//
//   make_board FILE SEATS TASKS LINES CHARACTERS MESSAGES
//
// One Thread with so many agents on it, and so many open tasks with logs of so many lines of so
// many characters; so many messages wait for the second agent. Prints the session id of each seat.

#include "base/text.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/wakes.h"
#include "board/serving/store.h"
#include "board/verbs/methods.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {
namespace {

Board boardOf(int64_t seats) {
  Thread thread;
  thread.id = "T-abc234";
  thread.name = "main";
  thread.place = 1;
  thread.squadOn = true;
  Board board = newBoard(std::move(thread));
  for (int64_t i = 0; i < seats; ++i) {
    Seat seat;
    seat.id = text::cat("session-", i);
    seat.handle = text::cat("AB", i);
    seat.fingerprint = text::cat("#00", i);
    seat.registered = true;
    board.seats.put(std::move(seat));
    std::puts(text::cat("session-", i).c_str());
  }
  return board;
}

void fill(Board& board, int64_t tasks, int64_t lines, std::size_t characters) {
  const std::string words(characters, 'x');
  for (int64_t i = 0; i < tasks; ++i) {
    Task task;
    task.title = text::cat("A task of the usual kind, number ", i);
    task.filedBy = "#000";
    Task& filed = fileTask(board, std::move(task), "What it is about.");
    for (int64_t line = 0; line < lines; ++line)
      addLine(board, filed, {"", LogKind::progress, "#000", "AB0", words, 1});
    record(board, {MoveKind::taskAdded, filed.id, "#000", 1, filed.title});
  }
}

int run(const std::vector<std::string>& arguments) {
  std::vector<int64_t> numbers;
  for (std::size_t i = 1; i < arguments.size(); ++i)
    numbers.push_back(text::parseInteger(arguments[i]).value_or(-1));
  if (numbers.size() != 5) {
    std::fputs("usage: make_board FILE SEATS TASKS LINES CHARACTERS MESSAGES\n", stderr);
    return 2;
  }
  std::string why;
  std::optional<Store> store = Store::open(arguments[0], why);
  Board board = boardOf(numbers[0]);
  fill(board, numbers[1], numbers[2], static_cast<std::size_t>(numbers[3]));
  for (int64_t i = 0; i < numbers[4]; ++i)
    leaveMessage(board, *board.seats.find("session-1"), {"AB0", "", "A word.", 1});
  const bool isMade = store && store->save(board);
  if (!isMade) std::fputs(text::cat("cannot write ", arguments[0], "\n").c_str(), stderr);
  return isMade ? 0 : 1;
}

}  // namespace
}  // namespace quillpost::board

int main(int argc, char** argv) { return quillpost::board::run({argv + 1, argv + argc}); }
