#include "board/rules/feed.h"

#include "base/text.h"
#include "board/rules/people.h"
#include "board/rules/views.h"

#include <algorithm>
#include <string_view>

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
  for (const auto& [id, change] : board.changes) {
    const bool isOwn = !seat.fingerprint.empty() && change.by == seat.fingerprint;
    if (change.rev <= listening.sinceRev || isOwn || !isWatched(listening, change.taskID)) continue;
    changes.push_back(&change);
  }
  return changes;
}

/// Whether changes between the revision and the oldest one kept have been forgotten, or the
/// revision is of another board altogether.
bool hasLostTrack(const Board& board, int64_t sinceRev) {
  if (sinceRev > board.thread().rev) return true;
  return !board.changes.empty() && board.changes.begin()->second.rev > sinceRev + 1;
}

bool isShown(const Task& task, const std::vector<const Change*>& changes,
             const Listening& listening) {
  if (!listening.taskIDs.empty()) return isWatched(listening, task.id);
  return isOpen(task) || std::ranges::find(changes, task.id, &Change::taskID) != changes.end();
}

void addKind(std::vector<std::string>& kinds, std::string_view kind) {
  if (std::ranges::find(kinds, kind) == kinds.end()) kinds.emplace_back(kind);
}

std::optional<std::string> unlessEmpty(const std::string& words) {
  return words.empty() ? std::nullopt : std::optional(words);
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

bool isDeserted(const Board& board) { return board.tasks.empty() && othersHere(board, "").empty(); }

bool hasNews(const Board& board, const Seat& seat, const Listening& listening) {
  return board.thread().goalComplete || !seat.wakes.empty() || !seat.inbox.empty() ||
         hasMoved(board, seat, listening);
}

TeamworkChangeFeed feedFor(const Board& board, const Seat& seat, const Listening& listening,
                           Moment at) {
  const Thread& thread = board.thread();
  const std::vector<const Change*> changes = changesFor(board, seat, listening);
  TeamworkChangeFeed feed;
  feed.rev = thread.rev;
  feed.changed = hasMoved(board, seat, listening);
  if (seat.registered) feed.goal = thread.goal;
  feed.goalComplete = thread.goalComplete;
  feed.pendingGoalComplete = !thread.goalProposedBy.empty();
  if (listening.sinceRev > 0) {
    for (const Change* change : changes) {
      addKind(feed.changeKinds, change->kind);
      feed.changes.push_back({change->kind, unlessEmpty(change->taskID)});
    }
  }
  for (const auto& [id, task] : board.tasks) {
    if (!isShown(task, changes, listening)) continue;
    feed.tasks.push_back(seat.registered ? taskView(board, task, seat, at) : titleView(task));
  }
  for (const Wake& reason : seat.wakes) {
    if (reason.kind == "mentioned") addKind(feed.changeKinds, "youWereTagged");
    feed.wakeReasons.push_back(
        {reason.kind, unlessEmpty(reason.taskID), reason.summary, unlessEmpty(reason.cause)});
  }
  feed.messages = messagesFor(seat, at);
  return feed;
}

std::vector<TeamworkSquadMessage> messagesFor(const Seat& seat, Moment at) {
  std::vector<TeamworkSquadMessage> messages;
  for (const Message& message : seat.inbox) {
    messages.push_back({text::cat("m", message.number), message.from, message.fromName,
                        message.text, std::max<int64_t>(0, (at.nowMs - message.sentMs) / 1000)});
  }
  return messages;
}

Delivery deliveryOf(const Board& board, const Seat& seat) {
  Delivery delivery{board.thread().id, seat.id, 0, 0};
  if (!seat.wakes.empty()) delivery.wakesUpTo = seat.wakes.back().number;
  if (!seat.inbox.empty()) delivery.messagesUpTo = seat.inbox.back().number;
  return delivery;
}

}  // namespace quillpost::board
