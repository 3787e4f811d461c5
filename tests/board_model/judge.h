#pragma once

// What must hold on every board after every request.

#include "board/rules/board.h"
#include "board/rules/leases.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace quillpost::board_model {

/// How a board stood before a step, as far as the judge compares it.
struct Before {
  int64_t rev = 0;
  /// By task that somebody could have claimed, the only seat that could; empty for all.
  std::map<std::string, std::string> takeable;

  /// Whether the agent of a seat could have claimed a task.
  bool isTakeable(const std::string& session, const std::string& taskID) const {
    const auto found = takeable.find(taskID);
    return found != takeable.end() && (found->second.empty() || found->second == session);
  }
};

/// Notes how the board stands.
Before lookAt(const board::Board& board, board::Moment at);

/// What is wrong with the board as it stands, in words; nothing when all is well. One owner at
/// most; READY exactly when the waits are done; no circles; what the indices say is what the rows
/// say.
std::optional<std::string> whatIsWrong(const board::Board& board, board::Moment at);

/// What is wrong with how the board got from there to here: revisions move forward, one for each
/// change; and whoever could not claim a task before and can now has something that ends its wait,
/// unless it was its own doing (`mover` is a fingerprint).
std::optional<std::string> whatWasMissed(const board::Board& board, const Before& before,
                                         board::Moment at, const std::string& mover);

/// All rows of a board as text.
std::string rowsOf(const board::Board& board);

}  // namespace quillpost::board_model
