#include "board/rules/leases.h"

#include "base/text.h"
#include "board/rules/people.h"

#include <string>
#include <vector>

namespace quillpost::board {

namespace {

std::string named(const Task& task) { return text::cat(task.id, " \"", task.title, "\""); }

/// Puts the task back into the pool, with everything that was written on it.
void dropClaim(Board& board, const Task& task) {
  Task& dropped = board.tasks.edit(task);
  dropped.state = TaskState::open;
  dropped.owner.clear();
  dropped.parkedReason.clear();
  dropped.expiryWarned = false;
}

const ReleaseAsk* firstAsker(const Board& board, const Task& task) {
  for (const ReleaseAsk& ask : task.releaseAsks) {
    const Seat* seat = seatOf(board, ask.requester);
    if (seat != nullptr && isLive(*seat) && task.owner != ask.requester) return &ask;
  }
  return nullptr;
}

/// Hands the claim from its holder to whoever asked first; nothing is done when nobody did.
bool handOver(Board& board, const Task& task, const std::string& by, Moment at) {
  const ReleaseAsk* ask = firstAsker(board, task);
  if (ask == nullptr) return false;
  const Seat& taker = *seatOf(board, ask->requester);
  const std::string former = task.owner;
  takeClaim(board, task, taker, at);
  board.seats.edit(taker).parkReason.clear();
  board.tasks.edit(task).log.push_back(
      {LogKind::handOff, "", "",
       text::cat(taker.handle, " took over from ", calling(board, former))});
  const Notice notices[] = {
      {taker.fingerprint, "releaseGranted", text::cat("You now hold ", named(task))},
      {former, "claimHandedOver", text::cat(named(task), " went to ", taker.handle)}};
  announce(board, {"taskHandedOver", task.id, by}, notices);
  return true;
}

void lapseSeats(Board& board, Moment at) {
  for (const auto& [id, seat] : board.seats) {
    if (!isLive(seat) || seat.leaseUntilMs > at.nowMs) continue;
    board.seats.edit(seat).away = true;
    record(board, {"agentLeft", "", seat.fingerprint});
  }
}

void lapseClaim(Board& board, const Task& task, Moment at) {
  const std::string former = task.owner;
  if (const Seat* holder = seatOf(board, former)) {
    takeBackWakes(board, *holder, "claimExpiring", task.id);
  }
  const Notice notices[] = {
      {former, "claimExpired", text::cat("Your claim on ", named(task), " lapsed")}};
  giveUpClaim(board, task, {"taskLapsed", task.id, ""}, at, notices);
}

void warnHolder(Board& board, const Task& task, Moment at) {
  board.tasks.edit(task).expiryWarned = true;
  const Seat* holder = seatOf(board, task.owner);
  if (holder == nullptr) return;
  const int64_t seconds = (task.leaseUntilMs - at.nowMs + 999) / 1000;
  wake(board, *holder,
       {0, "claimExpiring", task.id,
        text::cat("Your claim on ", named(task), " lapses in ", seconds, " s"), ""});
}

bool isOver(const Task& task, const Board& board, Moment at) {
  const Seat* holder = seatOf(board, task.owner);
  return task.leaseUntilMs <= at.nowMs || holder == nullptr || holder->away;
}

}  // namespace

void renewPresence(Board& board, const Seat& seat, Moment at) {
  const bool isFresh = seat.leaseUntilMs - at.nowMs > at.leaseMs - at.leaseMs / 10;
  if (!seat.registered || (isFresh && !seat.away)) return;
  if (seat.away) record(board, {"agentJoined", "", seat.fingerprint});
  Seat& renewed = board.seats.edit(seat);
  renewed.away = false;
  renewed.leaseUntilMs = at.nowMs + at.leaseMs;
  renewed.lastCallMs = at.nowMs;
}

void renewClaims(Board& board, const Seat& seat, Moment at) {
  for (const auto& [id, task] : board.tasks)
    if (isHeldBy(task, seat.fingerprint)) renewClaim(board, task, at);
}

void renewClaim(Board& board, const Task& task, Moment at) {
  Task& renewed = board.tasks.edit(task);
  renewed.leaseUntilMs = at.nowMs + at.leaseMs;
  renewed.expiryWarned = false;
  if (const Seat* holder = seatOf(board, task.owner)) {
    takeBackWakes(board, *holder, "claimExpiring", task.id);
  }
}

void takeClaim(Board& board, const Task& task, const Seat& seat, Moment at) {
  Task& taken = board.tasks.edit(task);
  taken.state = TaskState::claimed;
  taken.owner = seat.fingerprint;
  taken.claimedAtMs = at.nowMs;
  taken.leaseUntilMs = at.nowMs + at.leaseMs;
  taken.expiryWarned = false;
  taken.linesSinceClaim = 0;
  taken.parkedReason.clear();
  ++taken.claimAttempts;
  std::erase_if(taken.releaseAsks,
                [&](const ReleaseAsk& ask) { return ask.requester == seat.fingerprint; });
  watch(board, task, {seat.fingerprint, true});
  takeBackWakes(board, seat, "claimExpired", task.id);
}

bool giveUpClaim(Board& board, const Task& task, const Move& move, Moment at,
                 std::span<const Notice> notices) {
  if (handOver(board, task, move.by, at)) return true;
  dropClaim(board, task);
  announce(board, move, notices);
  return false;
}

bool isStuck(const Board& board, const Task& task) {
  const Seat* holder = seatOf(board, task.owner);
  return task.blocked || !task.parkedReason.empty() ||
         (holder != nullptr && !holder->parkReason.empty());
}

bool settleReleaseAsks(Board& board, const Task& task, const std::string& by, Moment at) {
  if (task.state != TaskState::claimed || !isStuck(board, task)) return false;
  return handOver(board, task, by, at);
}

void lapse(Board& board, Moment at) {
  lapseSeats(board, at);
  for (const auto& [id, task] : board.tasks) {
    if (task.state != TaskState::claimed) continue;
    if (isOver(task, board, at)) {
      lapseClaim(board, task, at);
    } else if (!task.expiryWarned && task.leaseUntilMs - at.nowMs <= at.warningMs()) {
      warnHolder(board, task, at);
    }
  }
  std::vector<std::string> forgotten;
  for (const auto& [id, task] : board.trash)
    if (at.nowMs - task.deletedAtMs >= trashKeptMs) forgotten.push_back(id);
  for (const std::string& id : forgotten) board.trash.remove(id);
}

std::optional<int64_t> nextLapse(const Board& board, Moment at) {
  std::optional<int64_t> next;
  const auto consider = [&next](int64_t whenMs) {
    if (!next || whenMs < *next) next = whenMs;
  };
  for (const auto& [id, seat] : board.seats)
    if (isLive(seat)) consider(seat.leaseUntilMs);
  for (const auto& [id, task] : board.tasks)
    if (task.state == TaskState::claimed) {
      consider(task.expiryWarned ? task.leaseUntilMs : task.leaseUntilMs - at.warningMs());
    }
  return next;
}

void forgiveAbsence(Board& board, Moment at) {
  for (const auto& [id, seat] : board.seats) {
    if (!isLive(seat)) continue;
    Seat& forgiven = board.seats.edit(seat);
    forgiven.leaseUntilMs = at.nowMs + at.leaseMs;
    forgiven.lastCallMs = at.nowMs;
    renewClaims(board, seat, at);
  }
}

}  // namespace quillpost::board
