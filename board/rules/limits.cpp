#include "board/rules/limits.h"

#include "base/text.h"
#include "base/unicode.h"

namespace quillpost::board {

std::string cut(std::string_view whole, std::size_t limit) {
  return std::string(unicode::firstCharacters(whole, limit));
}

std::string cutWithMark(std::string_view whole, std::size_t limit) {
  if (unicode::firstCharacters(whole, limit).size() == whole.size()) return std::string(whole);
  return text::cat(unicode::firstCharacters(whole, limit - 1), "…");
}

std::string cutWithNotice(std::string_view whole, std::size_t limit, std::string_view what,
                          std::string& notice) {
  const std::string_view kept = unicode::firstCharacters(whole, limit);
  if (kept.size() < whole.size()) {
    if (!notice.empty()) notice += ' ';
    notice += text::cat("Your ", what, " was cut at ", limit, " characters; the rest is gone.");
  }
  return std::string(kept);
}

std::optional<std::string> unlessEmpty(std::string_view words) {
  return words.empty() ? std::nullopt : std::optional(std::string(words));
}

std::string oneLine(std::string_view whole) {
  std::string line(unicode::trim(whole));
  for (char& letter : line)
    if (letter == '\n' || letter == '\r') letter = ' ';
  return line;
}

}  // namespace quillpost::board
