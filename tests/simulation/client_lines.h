#pragma once

// What a client may send, by chance: every method and tool, arguments of right and wrong kinds, and
// noise.

#include "harness/dice.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::simulation {

/// What a wait asks for, as it is to be understood.
struct AskedWait {
  std::optional<int64_t> timeoutSeconds;
  std::optional<int64_t> sinceRev;
  std::vector<std::string> taskIDs;
  bool wakeOnClaims = false;
  bool standDown = false;
  std::optional<std::string> parkReason;
};

/// One line without its line feed.
struct ClientLine {
  std::string text;
  /// Only for a call that waits and was sent undamaged.
  std::optional<AskedWait> wait;
};

/// A line of any kind.
ClientLine anyLine(testing::Dice& dice);

/// A JSON text of any kind and little depth.
std::string anyJson(testing::Dice& dice, int depth = 2);

/// What the line must be answered with.
struct Expectation {
  enum class Kind { initialize, ping, toolsList, unknownMethod, unknownTool, call, wait };
  Kind kind;
  /// The id as JSON.
  std::string id;
  /// The name of the method or tool.
  std::string name;
  /// The progress token as JSON; nothing when there is none.
  std::optional<std::string> progressToken;
  /// As the line has it.
  std::optional<AskedWait> wait;
};

/// Nothing for a line that is not to be answered.
std::optional<Expectation> expectationOf(const ClientLine& line);

}  // namespace quillpost::simulation
