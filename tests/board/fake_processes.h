#pragma once

// Processes that are started, looked at and signalled in memory.

#include "base/text.h"
#include "board/serving/processes.h"

#include <csignal>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

/// Processes that do what a test says.
struct FakeProcesses final : Processes {
  struct One {
    Launch launch;
    ProcessMark mark;
    Sight sight{Sight::State::running, 0};
    std::vector<int> signals;
  };

  std::optional<Started> start(const Launch& launch, std::string& why) override {
    if (!refusal.empty()) {
      why = refusal;
      return std::nullopt;
    }
    const int64_t number = 100 + static_cast<int64_t>(all.size());
    all.push_back({launch, {number, text::cat("start ", number)}, {Sight::State::running, 0}, {}});
    return Started{all.back().mark, std::exchange(nextOutput, UniqueFd())};
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

  void end(std::size_t which, int status) { all.at(which).sight = {Sight::State::ended, status}; }

  std::vector<One> all;
  /// Why nothing can be started; empty while it can.
  std::string refusal;
  /// Whether nothing ends when it is asked to.
  bool ignoresRequests = false;
  /// The output that the next one is given.
  UniqueFd nextOutput;
};

}  // namespace quillpost::board
