#pragma once

// Names and secrets that the board gives out, and how a shell is told of them.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace quillpost::board {

/// Where unguessable and merely different names come from: 32 random bits at each call.
using Random = std::function<uint32_t()>;

/// A Thread's tag: "T-" and six characters.
std::string mintTag(const Random& random);

/// A handle that can be read out: two letters and a digit, none that looks like another.
std::string mintHandle(const Random& random);

/// A secret of 128 bits as 32 digits.
std::string mintSecret(const Random& random);
/// Whether a text has the form of such a secret.
bool isSecret(std::string_view text);

/// What a terminal's environment holds for its seat.
struct SeatEnvironment {
  std::string sessionID;
  std::string tokenPath;
  std::string socketPath;
};

/// A word as a shell takes it, whatever stands in it.
std::string quotedForShell(std::string_view value);

/// The same, in quotes only when it needs them, for a person who reads it.
std::string wordForShell(std::string_view value);

/// The lines that put a seat into a shell's environment, quoted so that any path survives.
std::string environmentLines(const SeatEnvironment& seat);

}  // namespace quillpost::board
