#pragma once

// A blocker question as it is stored: the question alone, or with the marker of a typed one before
// it.

#include "model/human_ask.h"

#include <optional>
#include <span>
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

/// A stored question, the parts of its marker cut to what a list and a line may have, with a
/// sentence in `notice` when that was needed.
std::string cutAsk(const std::string& stored, std::string& notice);

/// Whether the answer is to be a secret.
bool isForSecret(const Ask& ask);

/// The option that an answer names by its number, counted from 1; the answer itself when it is no
/// number or there are no options. Nothing when it is a number and there is no such option.
std::optional<std::string> spellOut(const Ask& ask, std::string_view answer);

/// The options with their numbers, in one line.
std::string numbered(std::span<const std::string> options);

}  // namespace quillpost::board
