#include "board/rules/feed.h"

#include "base/text.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/people.h"
#include "board/rules/views.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace quillpost::board {

namespace {

bool isWatched(const Listening& listening, std::string_view taskID) {
  return listening.taskIDs.empty() || taskID.empty() ||
         std::ranges::find(listening.taskIDs, taskID) != listening.taskIDs.end();
}

/// The changes by others since the revision, oldest first.
std::vector<const Change*> changesFor(const Board& board, const Seat& seat,
                                      const Listening& listening) {
  std::vector<const Change*> changes;
  for (auto at = board.changes.from(padded(text::saturatingAdd(listening.sinceRev, 1)));
       at != board.changes.end(); ++at) {
    const Change& change = at->second;
    const bool isOwn = !seat.fingerprint.empty() && change.by == seat.fingerprint;
    if (isOwn || !isWatched(listening, change.taskID)) continue;
    changes.push_back(&change);
  }
  return changes;
}

/// Whether changes between the revision and the oldest one kept have been forgotten, or the
/// revision is of another board altogether.
bool hasLostTrack(const Board& board, int64_t sinceRev) {
  if (sinceRev > board.counted().rev) return true;
  return !board.changes.empty() && board.changes.begin()->second.rev > sinceRev + 1;
}

/// The ids of the tasks that a feed is to tell: of those asked for all, of the whole backlog those
/// that moved and those that the agent holds.
std::set<std::string, std::less<>> shownIn(const Board& board, const Seat& seat,
                                           const Listening& listening) {
  std::set<std::string, std::less<>> ids;
  if (listening.sinceRev <= 0) return ids;
  if (!listening.taskIDs.empty()) return {listening.taskIDs.begin(), listening.taskIDs.end()};
  for (auto at = board.changes.from(padded(text::saturatingAdd(listening.sinceRev, 1)));
       at != board.changes.end(); ++at)
    ids.insert(at->second.taskID);
  if (!seat.registered) return ids;
  for (const Task* task : board.tasks.with({byOwner, seat.fingerprint})) ids.insert(task->id);
  return ids;
}

void addWord(std::vector<std::string>& words, std::string_view word) {
  if (std::ranges::find(words, word) == words.end()) words.emplace_back(word);
}

}  // namespace

Listening listeningOf(const TeamworkRequest& request) {
  return {request.sinceRev.value_or(0), request.taskIDs.value_or(std::vector<std::string>{}),
          request.wakeOnStateChanges.value_or(false)};
}

bool hasMoved(const Board& board, const Seat& seat, const Listening& listening) {
  if (listening.sinceRev <= 0) return false;
  if (hasLostTrack(board, listening.sinceRev)) return true;
  return std::ranges::any_of(changesFor(board, seat, listening), [&](const Change* change) {
    return listening.wakesOnStateChanges || !isQuiet(change->kind);
  });
}

bool isDeserted(const Board& board) {
  return board.tasks.empty() && board.runs.empty() && othersHere(board, "").empty();
}

bool hasNews(const Board& board, const Seat& seat, const Listening& listening) {
  return board.thread().goalComplete || board.wakes.has({bySeat, seat.id}) ||
         board.messages.has({bySeat, seat.id}) || hasMoved(board, seat, listening);
}

TeamworkChangeFeed feedFor(const Board& board, const Seat& seat, const Listening& listening,
                           Moment at) {
  const Thread& thread = board.thread();
  const std::vector<const Change*> changes = changesFor(board, seat, listening);
  TeamworkChangeFeed feed;
  feed.rev = board.counted().rev;
  feed.changed = hasMoved(board, seat, listening);
  if (seat.registered) feed.goal = cut(thread.goal, lineLimit);
  feed.goalComplete = thread.goalComplete;
  feed.pendingGoalComplete = !thread.goalProposedBy.empty();
  if (listening.sinceRev > 0) {
    for (const Change* change : changes) {
      const std::string word(json::wordFor(change->kind));
      addWord(feed.changeKinds, word);
      feed.changes.push_back({word, unlessEmpty(change->taskID)});
    }
  }
  for (const std::string& id : shownIn(board, seat, listening)) {
    const Task* task = board.tasks.find(id);
    if (task == nullptr) continue;
    feed.tasks.push_back(seat.registered ? leanView(board, *task, seat, at) : titleView(*task));
  }
  for (const Wake* wake : wakesCarried(board, seat)) {
    if (wake->kind == WakeKind::mentioned) addWord(feed.changeKinds, "youWereTagged");
    std::optional<std::string> cause;
    if (wake->cause) cause = json::wordFor(*wake->cause);
    feed.wakeReasons.push_back({std::string(json::wordFor(wake->kind)), unlessEmpty(wake->taskID),
                                wake->summary, std::move(cause)});
  }
  feed.messages = messagesFor(board, seat, at);
  return feed;
}

std::vector<TeamworkSquadMessage> messagesFor(const Board& board, const Seat& seat, Moment at) {
  std::vector<TeamworkSquadMessage> messages;
  for (const Message* message : messagesCarried(board, seat)) {
    const int64_t number = text::parseInteger(message->id).value_or(0);
    messages.push_back({text::cat("m", number), message->from, message->fromName, message->text,
                        std::max<int64_t>(0, (at.nowMs - message->sentMs) / 1000)});
  }
  return messages;
}

Delivery deliveryOf(const Board& board, const Seat& seat) {
  Delivery delivery{board.thread().id, seat.id, {}, {}, {}};
  const std::vector<const Wake*> wakes = wakesCarried(board, seat);
  const std::vector<const Message*> messages = messagesCarried(board, seat);
  if (!wakes.empty()) delivery.wakesUpTo = wakes.back()->id;
  if (!messages.empty()) delivery.messagesUpTo = messages.back()->id;
  return delivery;
}

}  // namespace quillpost::board
