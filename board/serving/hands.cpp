#include "board/serving/hands.h"

#include "base/text.h"
#include "board/rules/command_words.h"
#include "board/rules/runs.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

using State = Sight::State;

/// How often a process is looked at of whose end nobody tells, in milliseconds.
constexpr int64_t lookMs = 100;

/// How much of a helper's output is taken before others have their turn, in pieces of so many
/// bytes.
constexpr std::size_t pieceSize = 65536;
constexpr int piecesAtOnce = 4;

std::vector<std::string> sessionsOf(const Board& board) {
  std::vector<std::string> sessions;
  for (const auto& [id, run] : board.runs) sessions.push_back(id);
  return sessions;
}

Ending endingOf(const Sight* sight) {
  if (sight == nullptr) return {false, "ended unseen, while the board could not be written"};
  return {sight->status == 0, text::cat("ended with status ", sight->status)};
}

}  // namespace

void Hands::adopt(Board& board, Moment at) {
  std::vector<std::string> left;
  for (const std::string& session : sessionsOf(board)) {
    const HelperRun& run = *board.runs.find(session);
    if (!isAtWork(run) && run.state != RunState::stopping) continue;
    left.push_back(session);
    const ProcessMark mark{run.pid, run.startMark};
    if (processes_ == nullptr || processes_->look(mark).state == State::gone) continue;
    all_.push_back({session, mark, {}, {}, true, 0, {State::running, 0}});
  }
  stopRuns(board, left, {"", "the board was started anew"}, at);
  tend(board, at);
}

void Hands::tend(Board& board, Moment at) {
  for (const std::string& session : sessionsOf(board)) {
    const HelperRun& run = *board.runs.find(session);
    Process* process = processOf(session);
    if (process == nullptr) {
      const bool isWanted = run.state == RunState::starting && run.pid == 0;
      const bool isLost = isAtWork(run) || run.state == RunState::stopping;
      if (isWanted) {
        start(board, session, at);
      } else if (isLost) {
        endRun(board, session, endingOf(nullptr), at);
      }
      continue;
    }
    if (isEnding(run) && process->killAtMs == 0) askToEnd(*process, at.nowMs);
    const bool isOver = process->sight.state != State::running;
    if (isOver && (isAtWork(run) || run.state == RunState::stopping)) {
      if (process->output) read(*process, board.outputs[session]);
      endRun(board, session, endingOf(&process->sight), at);
    } else if (run.pid != process->mark.pid) {
      HelperRun& row = *board.runs.touch(session);
      row.pid = process->mark.pid;
      row.startMark = process->mark.start;
    }
  }
  std::erase_if(all_, [&](const Process& process) {
    const HelperRun* run = board.runs.find(process.run);
    const bool isNoted = run == nullptr || run->state == RunState::stopped;
    return process.sight.state == State::gone && isNoted;
  });
}

void Hands::start(Board& board, const std::string& session, Moment at) {
  const HelperRun& run = *board.runs.find(session);
  const Helper* helper = board.helpers.find(run.helper);
  std::string why = "is no longer allowed";
  std::optional<Started> started;
  if (helper != nullptr && processes_ == nullptr) {
    why = "could not be started: this board starts no programs";
  } else if (helper != nullptr) {
    Launch launch{withOpening(helper->words, openingLine(*helper, run)), helper->directory,
                  helper->variables};
    launch.variables.push_back(text::cat("QUILLPOST_SESSION_ID=", session));
    launch.variables.push_back(text::cat("QUILLPOST_COLLAB_TOKEN_FILE=", files_.token));
    launch.variables.push_back(text::cat("QUILLPOST_COLLAB_SOCKET=", files_.socket));
    started = processes_->start(launch, why);
    if (!started) why = text::cat("could not be started: ", why);
  }
  if (!started) return endRun(board, session, {false, why}, at);
  HelperRun& row = *board.runs.touch(session);
  row.pid = started->mark.pid;
  row.startMark = started->mark.start;
  all_.push_back({session,
                  std::move(started->mark),
                  std::move(started->gate),
                  std::move(started->output),
                  false,
                  0,
                  {State::running, 0}});
}

void Hands::letGo(const Board& board) {
  for (Process& process : all_) {
    const HelperRun* run = board.runs.find(process.run);
    if (run != nullptr && isAtWork(*run) && run->pid == process.mark.pid) process.gate.open();
  }
}

void Hands::askToEnd(Process& process, int64_t nowMs) {
  processes_->signal(process.mark, SIGTERM);
  process.killAtMs = nowMs + graceMs;
}

void Hands::look(Process& process) const {
  if (process.sight.state != State::gone) {
    const int status = process.sight.status;
    process.sight = processes_->look(process.mark);
    // What has ended and is gone now still ended as it did.
    if (process.sight.state == State::gone && process.sight.status == 0) {
      process.sight.status = status;
    }
  }
}

std::optional<int64_t> Hands::press(int64_t nowMs) {
  std::optional<int64_t> next;
  for (Process& process : all_) {
    if (process.isOrphan) look(process);
    if (process.killAtMs > 0 && nowMs >= process.killAtMs && process.sight.state != State::gone) {
      processes_->signal(process.mark, SIGKILL);
      look(process);
      // Once more in a while, should it not have ended by then.
      process.killAtMs = nowMs + graceMs;
    }
    int64_t dueMs = process.killAtMs;
    if (process.isOrphan) dueMs = nowMs + lookMs;
    if (process.sight.state == State::gone) dueMs = nowMs;
    if (dueMs > 0) next = std::min(next.value_or(dueMs), dueMs);
  }
  return next;
}

std::vector<int> Hands::descriptors() const {
  std::vector<int> found;
  if (news_ >= 0) found.push_back(news_);
  for (const Process& process : all_)
    if (process.output) found.push_back(process.output.get());
  return found;
}

void Hands::hearOfEnds(int descriptor) {
  if (descriptor != news_) return;
  std::array<char, 256> bytes;
  while (::read(news_, bytes.data(), bytes.size()) > 0) continue;
  for (Process& process : all_) look(process);
}

void Hands::hearOutput(int descriptor, Board& board) {
  for (Process& process : all_) {
    if (!process.output || process.output.get() != descriptor) continue;
    if (board.runs.find(process.run) != nullptr) read(process, board.outputs[process.run]);
  }
}

void Hands::read(Process& process, Output& output) {
  std::array<char, pieceSize> bytes;
  for (int i = 0; i < piecesAtOnce; ++i) {
    const ssize_t count = ::read(process.output.get(), bytes.data(), bytes.size());
    if (count > 0) {
      addOutput(output, {bytes.data(), static_cast<std::size_t>(count)});
    } else {
      if (count == 0 || (errno != EAGAIN && errno != EINTR)) process.output = UniqueFd();
      return;
    }
  }
}

Hands::Process* Hands::processOf(std::string_view run) {
  const auto found = std::ranges::find(all_, run, &Process::run);
  return found == all_.end() ? nullptr : &*found;
}

void Hands::finish() {
  constexpr int rounds = static_cast<int>(graceMs / lookMs);
  const auto areOver = [&] {
    for (Process& process : all_) look(process);
    return std::ranges::none_of(
        all_, [](const Process& process) { return process.sight.state == State::running; });
  };
  for (Process& process : all_)
    if (process.killAtMs == 0) processes_->signal(process.mark, SIGTERM);
  for (int i = 0; i < rounds && !areOver(); ++i) {
    pollfd wanted{news_, POLLIN, 0};
    ::poll(&wanted, 1, static_cast<int>(lookMs));
    hearOfEnds(news_);
  }
  for (Process& process : all_) processes_->signal(process.mark, SIGKILL);
}

}  // namespace quillpost::board
