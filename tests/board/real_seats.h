#pragma once

// A board and agents as real processes: quillpost-board, and quillpost-teamwork in its seats.

#include "base/text.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/temp_dir.h"
#include "json/value.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// How long a condition may take to come true; only a failing test waits for so long.
inline constexpr auto realPatience = std::chrono::seconds(60);

/// Whether there is still time until then.
inline bool isBefore(Instant deadline) { return SteadyClock().now() < deadline; }

/// A board process on a directory of its own, which can be killed and started again.
class RealBoard {
 public:
  RealBoard() { start(); }

  void start() {
    board_ = std::make_unique<testing::Process>(
        testing::Command{testing::boardProgram(), {"--dir", dir_.path()}, {}});
    // It is served as soon as it answers.
    const Instant deadline = SteadyClock().now() + realPatience;
    while (!person({"seat", "--thread", "warming-up"}) && isBefore(deadline)) continue;
    EXPECT_TRUE(isBefore(deadline)) << "the board never answered";
  }
  void kill() {
    board_->signal(SIGKILL);
    EXPECT_EQ(board_->waitForExit(), 128 + SIGKILL);
  }
  /// Ends it in order; gives its exit status.
  int stop(int signal) {
    board_->signal(signal);
    return board_->waitForExit().value_or(-1);
  }

  /// What a command of the person's prints; nothing when it fails.
  std::optional<std::string> person(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--dir", dir_.path()});
    testing::Process process({testing::boardProgram(), arguments, {}});
    std::string printed = process.restOfOutput();
    if (process.waitForExit() != 0) return std::nullopt;
    return printed;
  }

  /// The environment of a new seat on the thread "main".
  std::map<std::string, std::string> newSeat() const {
    std::map<std::string, std::string> environment;
    const std::string lines = person({"seat", "--thread", "main"}).value_or("");
    for (const std::string_view line : text::split(lines, '\n')) {
      const std::size_t equals = line.find("='");
      if (equals == std::string_view::npos) continue;
      const std::string_view name = line.substr(0, equals);
      environment[std::string(name.substr(name.find(' ') + 1))] =
          line.substr(equals + 2, line.size() - equals - 3);
    }
    EXPECT_EQ(environment.size(), 3u) << lines;
    return environment;
  }

  const testing::TempDir& directory() const { return dir_; }

 private:
  testing::TempDir dir_;
  std::unique_ptr<testing::Process> board_;
};

/// An agent's program in a seat, spoken to as its harness would.
class RealSeat {
 public:
  explicit RealSeat(std::map<std::string, std::string> environment)
      : environment_(std::move(environment)),
        process_({testing::seatProgram(), {}, environment_}) {}
  /// One that another program starts, in an environment that it makes.
  explicit RealSeat(const testing::Command& command) : process_(command) {}

  /// Ends the agent's input; gives the exit status of what was started.
  int end() {
    process_.closeInput();
    return process_.waitForExit().value_or(-1);
  }

  /// Calls a tool and gives the text of its result; `arguments` is a JSON object. Progress on the
  /// way is passed over.
  std::string call(std::string_view tool, std::string_view arguments = "{}") {
    const int64_t id = ++lastID_;
    process_.writeLine(text::cat(R"({"jsonrpc":"2.0","id":)", id,
                                 R"(,"method":"tools/call","params":{"name":")", tool,
                                 R"(","arguments":)", arguments, "}}"));
    const std::optional<std::string> line = process_.readLine(realPatience);
    if (!line) {
      ADD_FAILURE() << tool << " gave no result";
      return {};
    }
    const std::optional<json::Tree> tree = json::parse(*line);
    const json::TreeObject* result = tree ? json::findObject(tree->as_object(), "result") : nullptr;
    if (result == nullptr) {
      ADD_FAILURE() << *line;
      return {};
    }
    return std::string(result->at("content").as_array().at(0).as_object().at("text").as_string());
  }

  /// The same for a tool whose result is a JSON object; an empty one when it is none. The line that
  /// names the thread is cut off.
  json::TreeObject callForObject(std::string_view tool, std::string_view arguments = "{}") {
    const std::string text = call(tool, arguments);
    const std::optional<json::Tree> tree = json::parse(text.substr(0, text.find("\n\n(thread ")));
    return tree && tree->is_object() ? tree->as_object() : json::TreeObject();
  }

  /// The same, until the board can be reached.
  std::string callUntilReached(std::string_view tool, std::string_view arguments) {
    const Instant deadline = SteadyClock().now() + realPatience;
    while (isBefore(deadline)) {
      std::string text = call(tool, arguments);
      if (!text.starts_with("Couldn't reach")) return text;
    }
    ADD_FAILURE() << "the board was never reached";
    return {};
  }

  /// The exit status of the stop hook in this seat.
  int stopHook() const {
    testing::Process hook({testing::seatProgram(), {"--wake-stop-hook"}, environment_});
    hook.closeInput();
    return hook.waitForExit().value_or(-1);
  }

 private:
  std::map<std::string, std::string> environment_;
  testing::Process process_;
  int64_t lastID_ = 0;
};

}  // namespace quillpost::board
