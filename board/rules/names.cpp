#include "board/rules/names.h"

#include "base/text.h"

#include <string_view>

namespace quillpost::board {

namespace {

constexpr std::string_view letters = "ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr std::string_view digits = "23456789";
constexpr std::string_view hexDigits = "0123456789abcdef";
constexpr int secretLength = 32;
constexpr std::string_view tagLetters = "abcdefghjkmnpqrstuvwxyz23456789";

char pick(const Random& random, std::string_view from) { return from[random() % from.size()]; }

std::string pickAll(const Random& random, std::string_view from, int count) {
  std::string picked;
  for (int i = 0; i < count; ++i) picked += pick(random, from);
  return picked;
}

}  // namespace

std::string mintTag(const Random& random) { return "T-" + pickAll(random, tagLetters, 6); }

std::string mintHandle(const Random& random) {
  return pickAll(random, letters, 2) + pick(random, digits);
}

std::string mintSecret(const Random& random) { return pickAll(random, hexDigits, secretLength); }

bool isSecret(std::string_view text) {
  return text.size() == std::size_t{secretLength} &&
         text.find_first_not_of(hexDigits) == std::string_view::npos;
}

std::string quotedForShell(std::string_view value) {
  std::string out = "'";
  for (const char letter : value) {
    if (letter == '\'') {
      out += "'\\''";
    } else {
      out += letter;
    }
  }
  return out + "'";
}

std::string wordForShell(std::string_view value) {
  constexpr std::string_view plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";
  const bool isPlain = !value.empty() && value.find_first_not_of(plain) == std::string_view::npos;
  return isPlain ? std::string(value) : quotedForShell(value);
}

std::string environmentLines(const SeatEnvironment& seat) {
  return text::cat("export QUILLPOST_SESSION_ID=", quotedForShell(seat.sessionID), "\n",
                   "export QUILLPOST_COLLAB_TOKEN_FILE=", quotedForShell(seat.tokenPath), "\n",
                   "export QUILLPOST_COLLAB_SOCKET=", quotedForShell(seat.socketPath), "\n");
}

}  // namespace quillpost::board
