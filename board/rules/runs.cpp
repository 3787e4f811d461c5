#include "board/rules/runs.h"

#include "base/text.h"
#include "board/rules/ask.h"
#include "board/rules/limits.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/wakes.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace quillpost::board {

namespace {

/// The helper in words: its handle and its name.
std::string named(const HelperRun& run) { return text::cat(run.handle, " (\"", run.helper, "\")"); }

/// Wakes the seat that asked for a helper; nothing when nobody sits there.
void wakeAsker(Board& board, const HelperRun& run, const Reason& reason) {
  const Seat* asker = board.seats.find(run.askedBy);
  if (asker != nullptr && asker->registered) wake(board, *asker, reason);
}

/// Makes what was handed to a helper and not claimed by it anybody's; a sentence for each task.
/// Everybody is told, unless its agent has left, which tells it.
std::string freeHanded(Board& board, const HelperRun& run, bool isTold, int64_t nowMs) {
  std::string words;
  for (const Task* handed : board.tasks.with({byRoute, text::lowered(run.handle)})) {
    Task& task = *board.tasks.touch(handed->id);
    task.routedTo.clear();
    if (!isTold && isTakeable(board, task)) {
      announce(board, {MoveKind::taskReady, task.id, "", nowMs,
                       text::cat("handed to ", run.handle, ", which does it no longer")});
    }
    addSentence(words, text::cat(named(task), " had been handed to it and is anybody's now."));
  }
  return words;
}

/// Has the helper's agent leave the board, if it is there; a sentence for each task that it held or
/// was to do.
std::string dismiss(Board& board, const HelperRun& run, Moment at) {
  std::vector<std::string> held;
  Seat* seat = board.seats.touch(run.id);
  const bool isHere = seat != nullptr && seat->registered;
  if (isHere) {
    for (const Task* task : board.tasks.with({byOwner, seat->fingerprint}))
      held.push_back(task->id);
    leave(board, *seat, at);
  }
  std::string words;
  for (const std::string& id : held) {
    Task& task = *board.tasks.touch(id);
    const bool isTaken = task.state == TaskState::claimed;
    if (!isTaken) task.routedTo.clear();
    addSentence(words, text::cat(named(task), isTaken ? " went to " : " went back to the pool",
                                 isTaken ? calling(board, task.owner) : "", "."));
  }
  addSentence(words, freeHanded(board, run, isHere, at.nowMs));
  return words;
}

/// Forgets the first of the stopped helpers when there are too many.
void forgetStopped(Board& board) {
  std::vector<const HelperRun*> stopped;
  for (const auto& [id, run] : board.runs)
    if (!isCounted(run)) stopped.push_back(&run);
  std::ranges::sort(stopped, {}, &HelperRun::askedAtMs);
  for (std::size_t i = 0; i + stoppedShown < stopped.size(); ++i) {
    const std::string id = stopped[i]->id;
    board.outputs.erase(id);
    board.runs.remove(id);
  }
}

/// The state as agents know it: those that have their words there, the others by their own.
std::string_view stateFor(const Board& board, const HelperRun& run) {
  switch (run.state) {
    case RunState::running: {
      const Seat* seat = board.seats.find(run.id);
      return seat != nullptr && isLive(*seat) && !seat->waiting ? "working" : "idle";
    }
    case RunState::failed:
      return "error";
    case RunState::stopped:
      return "exited";
    case RunState::starting:
    case RunState::done:
    case RunState::stopping:
      break;
  }
  return json::wordFor(run.state);
}

}  // namespace

int64_t helpersCounted(const Board& board) {
  return text::countOf(board.runs.with({countedRuns, {}}));
}

std::string limitSentence(const Board& board) {
  const int64_t counted = helpersCounted(board);
  const int64_t left = helperLimit - counted;
  return text::cat("HELPER LIMIT: ", counted, " of ", helperLimit,
                   " helpers are running in this thread, so ",
                   left < 1 ? "none" : text::cat(left, " more"), " may start",
                   left < 1 ? " until one is stopped." : ".");
}

const HelperRun* runAt(const Board& board, std::string_view handle) {
  const HelperRun* found = nullptr;
  for (const HelperRun* run : board.runs.with({byHandle, text::lowered(handle)}))
    if (found == nullptr || isCounted(*run)) found = run;
  return found;
}

const HelperRun* runFor(const Board& board, const Task& task) {
  if (task.routedTo.empty() || board.runs.empty()) return nullptr;
  const HelperRun* run = runAt(board, task.routedTo);
  return run != nullptr && isAtWork(*run) && run->taskID == task.id ? run : nullptr;
}

std::vector<std::string> runsUnder(const Board& board, std::string_view session) {
  std::vector<std::string> found;
  std::string asker(session);
  for (std::size_t next = 0;; ++next) {
    for (const HelperRun* run : board.runs.with({byAsker, asker})) found.push_back(run->id);
    if (next == found.size()) return found;
    asker = found[next];
  }
}

std::string stopRuns(Board& board, const std::vector<std::string>& sessions, const Stop& stop,
                     Moment at) {
  std::vector<std::string> stopped;
  // All first: none of them is left to stop another, or to be given what another one held.
  for (const std::string& session : sessions) {
    HelperRun& run = *board.runs.touch(session);
    if (isEnding(run)) continue;
    run.state = isAtWork(run) ? RunState::stopping : RunState::stopped;
    run.detail = stop.why;
    stopped.push_back(session);
  }
  if (stopped.empty()) return {};
  std::string words;
  for (const std::string& session : stopped) {
    const HelperRun& run = *board.runs.find(session);
    addSentence(words, dismiss(board, run, at));
    if (const Seat* seat = board.seats.find(session)) {
      emptySeat(board, *seat);
      board.seats.remove(session);
    }
    record(board, {MoveKind::helperStopped, run.taskID, stop.by, at.nowMs,
                   text::cat(named(run), ": ", stop.why)});
    const Seat* asker = board.seats.find(run.askedBy);
    if (asker == nullptr || asker->fingerprint == stop.by) continue;
    wakeAsker(board, run,
              {WakeKind::helperEnded, run.taskID,
               text::cat("Your helper ", named(run), " was stopped: ", stop.why),
               MoveKind::helperStopped});
  }
  forgetStopped(board);
  return words;
}

std::string stopWithHelpers(Board& board, const std::string& session, const Stop& stop, Moment at) {
  std::vector<std::string> sessions = runsUnder(board, session);
  sessions.insert(sessions.begin(), session);
  return stopRuns(board, sessions, stop, at);
}

int64_t stopHelpersOf(Board& board, const std::string& session, const Stop& stop, Moment at) {
  if (board.runs.empty()) return 0;
  const std::vector<std::string> sessions = runsUnder(board, session);
  stopRuns(board, sessions, stop, at);
  return text::countOf(sessions);
}

void noteRegistered(Board& board, const Seat& seat) {
  const HelperRun* run = board.runs.find(seat.id);
  if (run == nullptr || run->state != RunState::starting) return;
  board.runs.touch(seat.id)->state = RunState::running;
}

void endRun(Board& board, const std::string& session, const Ending& ending, Moment at) {
  HelperRun& run = *board.runs.touch(session);
  if (!isAtWork(run)) {
    if (run.state == RunState::stopping) run.state = RunState::stopped;
    return forgetStopped(board);
  }
  run.state = ending.isGood ? RunState::done : RunState::failed;
  run.detail = ending.words;
  dismiss(board, run, at);
  record(board, {MoveKind::helperEnded, run.taskID, "", at.nowMs,
                 text::cat(named(run), " ", ending.words)});
  const auto output = board.outputs.find(session);
  const std::string last = output != board.outputs.end() ? lastOutput(output->second) : "";
  if (!last.empty()) run.detail += text::cat(": ", last);
  wakeAsker(board, run,
            {WakeKind::helperEnded, run.taskID,
             text::cat("Your helper ", named(run), " ", ending.words, ". ",
                       last.empty() ? "It wrote nothing." : "It wrote last: ", last),
             MoveKind::helperEnded});
}

void tellAskerOfQuestion(Board& board, const Seat& helper, const Task& task) {
  const HelperRun* run = board.runs.find(helper.id);
  if (run == nullptr) return;
  wakeAsker(board, *run,
            {WakeKind::helperBlocked, task.id,
             text::cat("Your helper ", named(*run), " is blocked on ", named(task), ": ",
                       cutWithMark(splitAsk(task.blockerQuestion).question, questionLimit)),
             MoveKind::taskBlocked});
}

std::vector<TeamworkHelperRun> runViews(const Board& board, const Seat& viewer, Moment at) {
  const std::vector<std::string> own = runsUnder(board, viewer.id);
  std::vector<TeamworkHelperRun> views;
  for (const auto& [id, run] : board.runs) {
    TeamworkHelperRun view;
    view.handle = run.handle;
    view.helper = run.helper;
    view.state = stateFor(board, run);
    view.askedBy = run.askerHandle;
    if (isAtWork(run)) {
      view.runningForSeconds = std::max<int64_t>(0, (at.nowMs - run.askedAtMs) / 1000);
    }
    view.detail = unlessEmpty(run.detail);
    view.yours = run.askedBy == viewer.id || std::ranges::find(own, id) != own.end();
    views.push_back(std::move(view));
  }
  return views;
}

std::string openingLine(const Helper& helper, const HelperRun& run) {
  const std::string& task = run.taskID;
  if (helper.hasTools) {
    return text::cat("You are a helper on a shared board, started by ", run.askerHandle,
                     " to do one task. Call register, then read_task with the taskID ", task,
                     ": it says what is wanted. Claim it, work it as the board's rules say, "
                     "complete it, and unregister when you are done.");
  }
  return text::cat("You are a helper on a shared board, started by ", run.askerHandle,
                   " to do one task. In your shell run `qp register`, then `qp show ", task,
                   "`: it says what is wanted. Claim it, work it as the board's rules say (`qp "
                   "brief` has them), complete it with `qp done ",
                   task, "`, and run `qp unregister` when you are done.");
}

}  // namespace quillpost::board
