#include "board/rules/wakes.h"

#include "base/text.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

std::string nextNumber(Board& board) { return padded(++board.count().lastNumber); }

/// Whether a wake makes an earlier one needless: it says the same, or how a task stands by now. A
/// watcher is told of each move.
bool saysAll(const Reason& later, const Wake& earlier) {
  if (later.kind != earlier.kind || later.taskID != earlier.taskID) return false;
  if (later.kind == WakeKind::taskWatched) return false;
  return later.summary == earlier.summary || later.kind == WakeKind::claimExpiring ||
         later.kind == WakeKind::claimExpired;
}

/// Counts a watched move that is one too many to be told by itself; false when there is room.
bool countWatched(Board& board, const std::vector<const Wake*>& all) {
  std::size_t watched = 0;
  const Wake* counted = nullptr;
  for (const Wake* wake : all) {
    watched += wake->kind == WakeKind::taskWatched && wake->more == 0;
    if (wake->more > 0) counted = wake;
  }
  if (watched < watchNoticesKept) return false;
  Wake more{{}, all.front()->seat, WakeKind::taskWatched, {}, {}, {}, 1};
  if (counted != nullptr) {
    more.more += counted->more;
    board.wakes.remove(std::string(counted->id));
  }
  more.id = nextNumber(board);
  more.summary = text::cat(more.more, " more move", text::s(more.more), " of tasks that you watch");
  board.wakes.put(std::move(more));
  return true;
}

int64_t numberOf(const auto& row) { return text::parseInteger(row.id).value_or(0); }

/// The first of the rows, as many as an answer has room for and one at least.
template <class Row>
std::vector<const Row*> within(std::vector<const Row*> rows, std::string Row::*words,
                               std::size_t room) {
  std::size_t count = 0;
  for (std::size_t bytes = 0; count < rows.size(); ++count) {
    bytes += quotedSize(rows[count]->*words);
    if (bytes > room && count > 0) break;
  }
  rows.resize(count);
  return rows;
}

/// Removes the rows of a seat that match. The number of the last of them; 0 when there is none.
template <class Row, class Matches>
int64_t removeFrom(Table<Row>& table, std::string_view session, Matches&& matches) {
  int64_t last = 0;
  for (const Row* row : table.with({bySeat, session})) {
    if (!matches(*row)) continue;
    last = numberOf(*row);
    table.remove(std::string(row->id));
  }
  return last;
}

}  // namespace

void wake(Board& board, const Seat& seat, const Reason& reason) {
  if (reason.kind == WakeKind::taskWatched && countWatched(board, wakesOf(board, seat))) return;
  removeFrom(board.wakes, seat.id, [&](const Wake& earlier) { return saysAll(reason, earlier); });
  board.wakes.put(
      {nextNumber(board), seat.id, reason.kind, reason.taskID, reason.summary, reason.cause, 0});
  const std::vector<const Wake*> all = wakesOf(board, seat);
  if (all.size() <= wakesKept) return;
  auto leastMissed = std::ranges::find(all, WakeKind::taskWatched, &Wake::kind);
  if (leastMissed == all.end()) {
    // What the person says stays for as long as there is anything else.
    leastMissed = std::ranges::find_if(
        all, [](const Wake* wake) { return wake->kind != WakeKind::humanSaid; });
  }
  board.wakes.remove(std::string((leastMissed == all.end() ? all.front() : *leastMissed)->id));
}

void takeBackWakes(Board& board, const Seat& seat, WakeKind kind, std::string_view taskID) {
  removeFrom(board.wakes, seat.id, [&](const Wake& wake) {
    return wake.kind == kind && (taskID.empty() || wake.taskID == taskID);
  });
}

std::vector<const Wake*> wakesOf(const Board& board, const Seat& seat) {
  return board.wakes.with({bySeat, seat.id});
}

void leaveMessage(Board& board, const Seat& seat, Note note) {
  board.messages.put({nextNumber(board), seat.id, std::move(note.from), std::move(note.fromName),
                      std::move(note.text), note.sentMs});
}

std::vector<const Message*> messagesOf(const Board& board, const Seat& seat) {
  return board.messages.with({bySeat, seat.id});
}

std::vector<const Wake*> wakesCarried(const Board& board, const Seat& seat) {
  return within(wakesOf(board, seat), &Wake::summary, wakeBytesCarried);
}

std::vector<const Message*> messagesCarried(const Board& board, const Seat& seat) {
  return within(messagesOf(board, seat), &Message::text, messageBytesCarried);
}

void forgetDelivered(Board& board, const Delivery& delivery) {
  const int64_t lastWake = removeFrom(board.wakes, delivery.session, [&](const Wake& wake) {
    return wake.id <= delivery.wakesUpTo ||
           (wake.kind == WakeKind::humanSaid && wake.id <= delivery.saidUpTo);
  });
  const int64_t lastMessage =
      removeFrom(board.messages, delivery.session,
                 [&](const Message& message) { return message.id <= delivery.messagesUpTo; });
  // Something new to the agent that no stop hook has told of yet: what it owes counts from here.
  const Seat* seat = board.seats.find(delivery.session);
  if (seat == nullptr) return;
  int64_t last = std::max(lastWake, lastMessage);
  // What still waits from before has not been told.
  const auto stopBefore = [&](const auto& waiting) {
    if (!waiting.empty()) last = std::min(last, numberOf(*waiting.front()) - 1);
  };
  stopBefore(wakesOf(board, *seat));
  stopBefore(messagesOf(board, *seat));
  if (last <= seat->heldBackFor) return;
  Seat& reader = *board.seats.touch(delivery.session);
  reader.heldBackFor = last;
  reader.holdBacks = 0;
}

std::string carrySaid(const Board& board, const Seat& seat, TeamworkResponse& response) {
  using Kind = TeamworkResponse::Kind;
  std::vector<const Wake*> said = wakesOf(board, seat);
  std::erase_if(said, [](const Wake* wake) { return wake->kind != WakeKind::humanSaid; });
  if (said.empty()) return {};
  std::string words;
  std::string last;
  for (const Wake* wake : within(std::move(said), &Wake::summary, wakeBytesCarried)) {
    addSentence(words, wake->summary);
    last = wake->id;
  }
  const bool hasWords = response.message && !response.message->empty();
  switch (response.kind) {
    case Kind::written:
    case Kind::task:
    case Kind::discussion: {
      std::string notice = std::move(response.notice).value_or("");
      addSentence(notice, words);
      response.notice = std::move(notice);
      return last;
    }
    case Kind::error:
    case Kind::empty: {
      if (!hasWords) break;
      addSentence(*response.message, words);
      return last;
    }
    case Kind::registered:
    case Kind::agents:
    case Kind::tasks:
    case Kind::plan:
      break;
    case Kind::changes:
    case Kind::wake:
      return {};
  }
  // Among what is owed, since these answers have no room for a sentence of their own.
  if (!response.obligations) return {};
  response.obligations->oweReply.push_back({"none", std::nullopt, words, std::string(human)});
  response.obligations->clear = false;
  return last;
}

void emptySeat(Board& board, const Seat& seat) {
  removeFrom(board.wakes, seat.id, [](const Wake&) { return true; });
  removeFrom(board.messages, seat.id, [](const Message&) { return true; });
}

}  // namespace quillpost::board
