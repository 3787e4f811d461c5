#pragma once

// An agent that can run shell commands and nothing else, in a seat of a real board.

#include "base/files.h"
#include "base/text.h"
#include "board/real_seats.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillpost {

/// One agent: a seat, and bash.
class ShellAgent {
 public:
  explicit ShellAgent(const board::RealBoard& board) : ShellAgent(board.newSeat()) {}
  /// One that is told where its seat is by these variables.
  explicit ShellAgent(std::map<std::string, std::string> seat) : environment_(std::move(seat)) {
    environment_["HOME"] = home_.path();
    environment_["XDG_RUNTIME_DIR"] = home_.path();
    environment_["PATH"] = text::cat(files::parentPath(testing::commandProgram()),
                                     ":/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin");
  }

  /// What a command prints; it must end with that status.
  std::string run(const std::string& command, int status = 0) const {
    testing::Process process({"/bin/bash", {"-c", command}, environment_});
    process.closeInput();
    std::string printed = process.restOfOutput(board::realPatience);
    EXPECT_EQ(process.waitForExit(board::realPatience), status) << command << "\n"
                                                                << printed << process.errors();
    return printed;
  }

  /// The revision up to which it has been told. A wait that is told to begin there misses no move
  /// after it, however late the machine comes to start it and whatever others remember by then.
  std::string revision() const {
    std::string printed = run("qp wait --timeout 1 --json 2>/dev/null | jq -j .rev");
    EXPECT_FALSE(printed.empty());
    return printed;
  }

  /// A command that goes on.
  std::unique_ptr<testing::Process> start(const std::string& command) const {
    return std::make_unique<testing::Process>(
        testing::Command{"/bin/bash", {"-c", "exec " + command}, environment_});
  }

  /// Its own folder, which is the home of its shell.
  const testing::TempDir& home() const { return home_; }
  const std::map<std::string, std::string>& environment() const { return environment_; }

 private:
  testing::TempDir home_;
  std::map<std::string, std::string> environment_;
};

inline bool has(const std::string& text, std::string_view words) {
  return text.find(words) != std::string::npos;
}

/// How often the words stand in the text.
inline std::size_t count(const std::string& text, std::string_view words) {
  std::size_t found = 0;
  for (std::size_t at = text.find(words); at != std::string::npos; at = text.find(words, at + 1))
    ++found;
  return found;
}

/// What a wait that follows the board prints until the words have come.
inline std::string readUntil(testing::Process& follower, std::string_view words) {
  std::string told;
  while (!has(told, words)) {
    const std::optional<std::string> line = follower.readLine(board::realPatience);
    if (!line) {
      ADD_FAILURE() << "no line with \"" << words << "\" came after: " << told << follower.errors();
      return told;
    }
    told += *line + "\n";
  }
  return told;
}

}  // namespace quillpost
