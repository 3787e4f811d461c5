#pragma once

// The question that a blocked task puts to the person.

#include "calls/arguments.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace quillpost {

/// The longest question, in characters: it renders as one line on a chip and on a phone.
inline constexpr std::size_t blockerQuestionLimit = 140;

/// What becomes of an update's question.
struct BlockerQuestion {
  /// The text to send, with an ask marker in front when the question is typed; nothing when the
  /// update asks nothing.
  std::optional<std::string> text = std::nullopt;
  /// How many characters the agent's own question has when that is more than the limit: then
  /// nothing may be sent.
  std::optional<int64_t> refusedLength = std::nullopt;
};

/// Reads the question of an update that sets `blocked`.
BlockerQuestion composeBlockerQuestion(const Arguments& arguments);

}  // namespace quillpost
