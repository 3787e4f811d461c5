#include "board/rules/leases.h"

#include "base/text.h"
#include "board/rules/debates.h"
#include "board/rules/ids.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/runs.h"
#include "board/rules/wakes.h"

#include <string>
#include <vector>

namespace quillpost::board {

namespace {

/// Takes from the holder of a task what nobody else is to have.
void forgetOwnSecret(Task& task) {
  if (task.blockedBy == task.owner) forgetSecret(task);
}

/// Puts the task back into the pool, with everything that was written on it.
void dropClaim(Task& task) {
  forgetOwnSecret(task);
  task.state = TaskState::open;
  task.owner.clear();
  task.parkedReason.clear();
  task.expiryWarned = false;
}

const ReleaseAsk* firstAsker(const Board& board, const Task& task) {
  for (const ReleaseAsk& ask : task.releaseAsks) {
    const Seat* seat = seatOf(board, ask.requester);
    if (seat != nullptr && isLive(*seat) && task.owner != ask.requester) return &ask;
  }
  return nullptr;
}

/// Hands the claim from its holder to whoever asked first; nothing is done when nobody did.
bool handOver(Board& board, Task& task, const std::string& by, Moment at) {
  const ReleaseAsk* ask = firstAsker(board, task);
  if (ask == nullptr) return false;
  Seat& taker = *touchSeatOf(board, ask->requester);
  const std::string former = task.owner;
  forgetOwnSecret(task);
  takeClaim(board, task, taker, at);
  taker.parkReason.clear();
  const std::string words = text::cat(taker.handle, " took over from ", calling(board, former));
  addLine(board, task, {"", LogKind::handOff, "", "", words, at.nowMs});
  const Notice notices[] = {
      {taker.fingerprint, WakeKind::releaseGranted, text::cat("You now hold ", named(task))},
      {former, WakeKind::claimHandedOver, text::cat(named(task), " went to ", taker.handle)}};
  announce(board, {MoveKind::taskHandedOver, task.id, by, at.nowMs, words}, notices);
  return true;
}

/// Counts a claim's lease anew from now.
void startLease(Task& task, Moment at) {
  task.leaseUntilMs = at.nowMs + at.leaseMs;
  task.dueMs = task.leaseUntilMs - at.warningMs();
  task.expiryWarned = false;
}

void lapseClaim(Board& board, Task& task, Moment at) {
  const std::string former = task.owner;
  if (const Seat* holder = seatOf(board, former)) {
    takeBackWakes(board, *holder, WakeKind::claimExpiring, task.id);
  }
  const Notice notices[] = {
      {former, WakeKind::claimExpired, text::cat("Your claim on ", named(task), " lapsed")}};
  giveUpClaim(board, task, {MoveKind::taskLapsed, task.id, "", at.nowMs, calling(board, former)},
              at, notices);
}

/// Tells all of the tasks that were meant for an agent and now are anybody's.
void freeRouted(Board& board, const Seat& seat, Moment at) {
  for (const std::string& route : {text::lowered(seat.handle), seat.fingerprint}) {
    for (const Task* task : board.tasks.with({byRoute, route})) {
      if (!isTakeable(board, *task)) continue;
      announce(board, {MoveKind::taskReady, task->id, "", at.nowMs,
                       text::cat("handed to ", seat.handle, ", who is gone or silent")});
    }
  }
}

/// What else follows when an agent has gone: what was meant for it is anybody's, secrets that it
/// was given are forgotten, and debates that only it could have gone on with are the person's.
void missAgent(Board& board, const Seat& seat, Moment at) {
  freeRouted(board, seat, at);
  for (const Task* task : board.tasks.with({bySecret, seat.fingerprint}))
    forgetSecret(*board.tasks.touch(task->id));
  for (const TeamworkDiscussion* discussion :
       board.discussions.with({openByParty, seat.fingerprint})) {
    if (isAbandoned(board, *discussion)) {
      escalate(board, *board.discussions.touch(discussion->id), at.nowMs);
    }
  }
}

/// Sends away whoever's lease is over, returns what they hold, and notes who has fallen silent.
void lapseSeats(Board& board, Moment at) {
  std::vector<Seat*> lapsed;
  std::vector<Seat*> silent;
  for (const Seat* due : board.seats.upTo(bySeatDueTime, padded(at.nowMs))) {
    Seat* seat = board.seats.touch(due->id);
    (seat->leaseUntilMs <= at.nowMs ? lapsed : silent).push_back(seat);
  }
  // All first: none of them is to be given what another one held.
  for (Seat* seat : lapsed) seat->away = true;
  for (Seat* seat : silent) seat->isQuiet = true;
  for (const Seat* seat : lapsed) {
    record(board, {MoveKind::agentLeft, "", seat->fingerprint, at.nowMs});
    for (Task* task : touchHeld(board, seat->fingerprint)) lapseClaim(board, *task, at);
    missAgent(board, *seat, at);
  }
  for (const Seat* seat : silent) freeRouted(board, *seat, at);
  // Last, since the seats of helpers go with them.
  std::vector<std::string> sessions;
  sessions.reserve(lapsed.size());
  for (const Seat* seat : lapsed) sessions.push_back(seat->id);
  for (const std::string& session : sessions) {
    const Seat* seat = board.seats.find(session);
    if (seat == nullptr) continue;
    stopHelpersOf(board, session, {"", text::cat("the lease of ", seat->handle, " is over")}, at);
  }
}

void warnHolder(Board& board, Task& task, Moment at) {
  task.expiryWarned = true;
  task.dueMs = task.leaseUntilMs;
  const Seat* holder = seatOf(board, task.owner);
  if (holder == nullptr) return;
  const int64_t seconds = (task.leaseUntilMs - at.nowMs + 999) / 1000;
  wake(board, *holder,
       {WakeKind::claimExpiring, task.id,
        text::cat("Your claim on ", named(task), " lapses in ", seconds, " s")});
}

}  // namespace

std::vector<Task*> touchHeld(Board& board, std::string_view fingerprint) {
  std::vector<Task*> held;
  for (const Task* task : board.tasks.with({byOwner, fingerprint}))
    held.push_back(board.tasks.touch(task->id));
  return held;
}

void startPresence(Seat& seat, Moment at) {
  seat.away = seat.isQuiet = false;
  seat.leaseUntilMs = at.nowMs + at.leaseMs;
  seat.lastCallMs = at.nowMs;
}

void renewPresence(Board& board, Seat& seat, Moment at) {
  const bool isFresh = seat.leaseUntilMs - at.nowMs > at.leaseMs - at.leaseMs / 10;
  if (!seat.registered || (isFresh && !seat.away && !seat.isQuiet)) return;
  if (seat.away) record(board, {MoveKind::agentJoined, "", seat.fingerprint, at.nowMs});
  startPresence(seat, at);
}

void renewClaims(Board& board, const Seat& seat, Moment at) {
  for (Task* task : touchHeld(board, seat.fingerprint)) renewClaim(board, *task, at);
}

void renewClaim(Board& board, Task& task, Moment at) {
  startLease(task, at);
  if (const Seat* holder = seatOf(board, task.owner)) {
    takeBackWakes(board, *holder, WakeKind::claimExpiring, task.id);
  }
}

void takeClaim(Board& board, Task& task, const Seat& seat, Moment at) {
  task.state = TaskState::claimed;
  task.owner = seat.fingerprint;
  task.claimedAtMs = at.nowMs;
  startLease(task, at);
  task.linesSinceClaim = 0;
  task.parkedReason.clear();
  ++task.claimAttempts;
  std::erase_if(task.releaseAsks,
                [&](const ReleaseAsk& ask) { return ask.requester == seat.fingerprint; });
  watch(task, {seat.fingerprint, true});
  takeBackWakes(board, seat, WakeKind::claimExpired, task.id);
}

bool giveUpClaim(Board& board, Task& task, const Move& move, Moment at,
                 std::span<const Notice> notices) {
  if (handOver(board, task, move.by, at)) return true;
  dropClaim(task);
  announce(board, move, notices);
  return false;
}

int64_t leave(Board& board, Seat& seat, Moment at) {
  const std::vector<Task*> held = touchHeld(board, seat.fingerprint);
  for (Task* task : held) {
    giveUpClaim(board, *task, {MoveKind::taskReleased, task->id, seat.fingerprint, at.nowMs}, at);
  }
  record(board, {MoveKind::agentLeft, "", seat.fingerprint, at.nowMs});
  seat.registered = seat.waiting = seat.stoodDown = false;
  seat.parkReason.clear();
  stopHelpersOf(board, seat.id, {seat.fingerprint, text::cat(seat.handle, " has left")}, at);
  emptySeat(board, seat);
  missAgent(board, seat, at);
  return text::countOf(held);
}

bool isStuck(const Board& board, const Task& task) {
  const Seat* holder = seatOf(board, task.owner);
  return task.blocked || !task.parkedReason.empty() ||
         (holder != nullptr && !holder->parkReason.empty());
}

bool settleReleaseAsks(Board& board, Task& task, const std::string& by, Moment at) {
  if (task.state != TaskState::claimed || !isStuck(board, task)) return false;
  return handOver(board, task, by, at);
}

void lapse(Board& board, Moment at) {
  lapseSeats(board, at);
  for (const Task* due : board.tasks.upTo(byDueTime, padded(at.nowMs))) {
    Task& task = *board.tasks.touch(due->id);
    if (task.leaseUntilMs <= at.nowMs) {
      lapseClaim(board, task, at);
    } else {
      warnHolder(board, task, at);
    }
  }
  for (const Task* due : board.trash.upTo(byDueTime, padded(at.nowMs))) {
    const std::string id = due->id;
    board.trash.remove(id);
    forgetWritings(board, id);
  }
}

std::optional<int64_t> nextLapse(const Board& board) {
  std::optional<int64_t> next;
  for (const std::optional<std::string>& word :
       {board.seats.firstWord(bySeatDueTime), board.tasks.firstWord(byDueTime),
        board.trash.firstWord(byDueTime)}) {
    const std::optional<int64_t> dueMs = word ? text::parseInteger(*word) : std::nullopt;
    if (dueMs && (!next || *dueMs < *next)) next = dueMs;
  }
  return next;
}

void forgiveAbsence(Board& board, Moment at) {
  std::vector<std::string> here;
  for (const auto& [id, seat] : board.seats)
    if (isLive(seat)) here.push_back(id);
  for (const std::string& id : here) {
    Seat& seat = *board.seats.touch(id);
    startPresence(seat, at);
    renewClaims(board, seat, at);
  }
}

}  // namespace quillpost::board
