#include "board/person/views.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/person/find.h"
#include "board/person/live.h"
#include "board/person/show.h"
#include "board/rules/ids.h"
#include "board/rules/people.h"
#include "board/verbs/methods.h"
#include "board/verbs/person.h"

#include <optional>
#include <string>

namespace quillpost::board {

namespace {

/// As many of the latest moves as a picture of them can show.
constexpr std::size_t movesDrawn = 20'000;

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
  if (request.status == "all") query.atMost = movesDrawn;
  if (request.holdMs) query.sinceMs = text::saturatingSubtract(at.nowMs, *request.holdMs);
  const std::vector<Change> moves = store.history(query);
  const std::string& task = query.taskID;
  const bool isTask =
      task.empty() || board.tasks.find(task) != nullptr || board.trash.find(task) != nullptr;
  // Moves outlive those who made them and what they were made on.
  if (moves.empty() && !isTask) return refused(text::cat("No task is called ", task, "."));
  if (moves.empty() && seat == nullptr && !query.by.empty() && query.by != human) {
    return refused(text::cat("Nobody is called ", by, ", and nobody of that name has moved."));
  }
  return shown({at.nowMs, board.counted().rev, {moveRows(moves)}});
}

}  // namespace

bool isViewing(std::string_view method) {
  return method == personShow || method == personSeats || method == personThreads ||
         method == personHistory || method == personLive || method == personFind ||
         method == personHelpers;
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
  if (request.method == personLive) return shown(liveSheet(boards, request.sinceRev, at));
  if (boards.empty()) return refused(std::string(noThreadYet));
  if (request.method == personHelpers) return shown(helperSheet(*boards.front(), at));
  if (request.method == personHistory) return history(*boards.front(), store, request, at);
  if (request.method == personFind) {
    return shown(foundSheet(*boards.front(), request.body.value_or(""), at));
  }
  Sheet sheet = boardSheet(boards, extentOf(request), at);
  sheet.rev = revisionOf(boards);
  return shown(sheet);
}

bool isUpToDate(Threads boards, const TeamworkRequest& request) {
  if (request.method == personShow) return request.sinceRev == revisionOf(boards);
  if (request.method != personLive) return false;
  return request.sinceRev == (boards.empty() ? 0 : boards.front()->counted().rev);
}

int64_t revisionOf(Threads boards) {
  int64_t sum = 0;
  for (const Board* board : boards) sum = text::saturatingAdd(sum, board->counted().rev);
  return sum;
}

}  // namespace quillpost::board
