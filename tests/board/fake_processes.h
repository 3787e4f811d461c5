#pragma once

// Processes that are started, looked at and signalled in memory.

#include "base/text.h"
#include "board/serving/processes.h"

#include <csignal>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace quillpost::board {

/// Processes that do what a test says.
struct FakeProcesses final : Processes {
  struct One {
    Launch launch;
    ProcessMark mark;
    Sight sight{Sight::State::running, 0};
    std::vector<int> signals;
    /// What its gate is opened with comes here.
    UniqueFd gate;
    bool isLetGo = false;
  };

  std::optional<Started> start(const Launch& launch, std::string& why) override {
    if (!refusal.empty()) {
      why = refusal;
      return std::nullopt;
    }
    if (beforeStart) beforeStart();
    const int64_t number = 100 + static_cast<int64_t>(all.size());
    Pipe gate;
    UniqueFd behind(::dup(gate.reading.get()));
    ::fcntl(behind.get(), F_SETFL, O_NONBLOCK);
    all.push_back({launch,
                   {number, text::cat("start ", number)},
                   {Sight::State::running, 0},
                   {},
                   std::move(behind)});
    return Started{all.back().mark, Gate(std::move(gate)), std::exchange(nextOutput, UniqueFd())};
  }
  Sight look(const ProcessMark& mark) override {
    for (const One& one : all)
      if (one.mark == mark) return one.sight;
    return {Sight::State::gone, 0};
  }
  void signal(const ProcessMark& mark, int number) override {
    for (One& one : all) {
      if (one.mark != mark || one.sight.state == Sight::State::gone) continue;
      one.signals.push_back(number);
      if (number == SIGKILL) {
        one.sight = {Sight::State::gone, 128 + SIGKILL};
      } else if (one.sight.state == Sight::State::running && !ignoresRequests) {
        one.sight = {Sight::State::ended, 128 + number};
      }
    }
  }

  /// Whether the program of one runs: its gate has been opened.
  bool isLetGo(std::size_t which) {
    One& one = all.at(which);
    char opened = 0;
    one.isLetGo = one.isLetGo || ::read(one.gate.get(), &opened, 1) == 1;
    return one.isLetGo;
  }
  void end(std::size_t which, int status) { all.at(which).sight = {Sight::State::ended, status}; }

  std::vector<One> all;
  /// Why nothing can be started; empty while it can.
  std::string refusal;
  /// Whether nothing ends when it is asked to.
  bool ignoresRequests = false;
  /// What happens in the world just before one is started.
  std::function<void()> beforeStart;
  /// The output that the next one is given.
  UniqueFd nextOutput;
};

}  // namespace quillpost::board
