#include "board/person/views.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/person/show.h"
#include "board/rules/ids.h"
#include "board/rules/people.h"
#include "board/verbs/methods.h"
#include "board/verbs/person.h"

#include <optional>
#include <string>

namespace quillpost::board {

namespace {

using Threads = std::span<const Board* const>;

TeamworkResponse shown(const Sheet& sheet) { return written(json::encode(sheet)); }

Extent extentOf(const TeamworkRequest& request) {
  const std::string word = request.status.value_or("");
  if (word == "mine") return Extent::mine;
  if (word == "open") return Extent::open;
  return word == "all" ? Extent::all : Extent::usual;
}

/// The thing of that name on the first of the Threads that has one.
TeamworkResponse showOne(Threads boards, const std::string& what, Moment at) {
  for (const Board* board : boards)
    if (const std::optional<Sheet> sheet = wholeSheet(*board, what, at)) return shown(*sheet);
  return refused(text::cat("Nothing here is called ", what,
                           ": a task is t and a number, a discussion d and a number, and `seats` "
                           "lists the handles."));
}

TeamworkResponse history(const Board& board, const Store& store, const TeamworkRequest& request,
                         Moment at) {
  HistoryQuery query{board.thread().id};
  query.taskID = wholeID(request.taskID.value_or(""));
  const std::string by = request.to.value_or("");
  const Seat* seat = by.empty() ? nullptr : whoIs(board, by);
  query.by = seat != nullptr                         ? seat->fingerprint
             : unicode::equalIgnoringCase(by, "you") ? human
                                                     : by;
  if (request.holdMs) query.sinceMs = text::saturatingSubtract(at.nowMs, *request.holdMs);
  return shown({at.nowMs, board.counted().rev, {moveRows(store.history(query))}});
}

}  // namespace

bool isViewing(std::string_view method) {
  return method == personShow || method == personSeats || method == personThreads ||
         method == personHistory;
}

TeamworkResponse view(Threads boards, const Store& store, const TeamworkRequest& request,
                      Moment at) {
  const std::string what = request.taskID.value_or("");
  if (request.method == personSeats) {
    return shown({at.nowMs, revisionOf(boards), {seatRows(boards, at)}});
  }
  if (request.method == personThreads) {
    return shown({at.nowMs, revisionOf(boards), {threadRows(boards)}});
  }
  if (request.method == personShow && !what.empty()) return showOne(boards, what, at);
  if (boards.empty()) return refused("There is no thread yet: `seat` or `thread` makes the first.");
  if (request.method == personHistory) return history(*boards.front(), store, request, at);
  Sheet sheet = boardSheet(boards, extentOf(request), at);
  sheet.rev = revisionOf(boards);
  return shown(sheet);
}

int64_t revisionOf(Threads boards) {
  int64_t sum = 0;
  for (const Board* board : boards) sum = text::saturatingAdd(sum, board->counted().rev);
  return sum;
}

}  // namespace quillpost::board
