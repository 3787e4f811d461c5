#pragma once

// A blocker question as it is stored: the question alone, or with the marker of a typed one before
// it.

#include "model/human_ask.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board {

/// A blocker question taken apart.
struct Ask {
  /// What the marker says; nothing for a plain question.
  std::optional<TeamworkHumanAsk::Payload> payload;
  std::string question;
};

/// Takes the marker off a question. A marker that cannot be read is part of the question.
Ask splitAsk(std::string_view stored);

/// Whether the answer is to be a secret.
bool isForSecret(const Ask& ask);

/// The option that an answer names by its number, counted from 1; the answer itself when it names
/// none.
std::string spellOut(const Ask& ask, std::string_view answer);

}  // namespace quillpost::board
