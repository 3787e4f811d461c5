#include "board/rules/limits.h"

#include "base/text.h"
#include "base/unicode.h"

#include <algorithm>

namespace quillpost::board {

namespace {

/// The beginning of a text that ends with a whole character of UTF-8.
std::string_view firstBytes(std::string_view whole, std::size_t limit) {
  if (whole.size() <= limit) return whole;
  std::size_t end = limit;
  while (end > 0 && (static_cast<unsigned char>(whole[end]) & 0xC0U) == 0x80U) --end;
  return whole.substr(0, end);
}

std::string_view beginning(std::string_view whole, std::size_t limit) {
  return unicode::firstCharacters(firstBytes(whole, limit * bytesOfCharacter), limit);
}

}  // namespace

std::string cut(std::string_view whole, std::size_t limit) {
  return std::string(beginning(whole, limit));
}

std::string cutWithMark(std::string_view whole, std::size_t limit) {
  if (beginning(whole, limit).size() == whole.size()) return std::string(whole);
  return text::cat(beginning(whole, limit - 1), "…");
}

std::string cutWithNotice(std::string_view whole, std::size_t limit, std::string_view what,
                          std::string& notice) {
  const std::string_view kept = beginning(whole, limit);
  if (kept.size() < whole.size()) {
    addSentence(notice,
                text::cat("Your ", what, " was cut at ", limit, " characters; the rest is gone."));
  }
  return std::string(kept);
}

std::string lineOf(std::string_view whole, std::string_view what, std::string& notice) {
  return cutWithNotice(oneLine(whole), lineLimit, what, notice);
}

std::string briefText(std::string_view whole, std::string_view what, std::string& notice) {
  const std::string_view kept = firstBytes(whole, briefLimit);
  if (kept.size() < whole.size()) {
    addSentence(notice, text::cat("Your ", what, " was cut at ", briefLimit / 1024,
                                  " KB; the rest is gone. Put long material into a file and name "
                                  "it."));
  }
  return std::string(kept);
}

std::vector<std::string> entriesOf(const std::optional<std::vector<std::string>>& list,
                                   std::string_view what, std::string& notice) {
  std::vector<std::string> entries;
  if (!list) return entries;
  bool isCut = list->size() > listLimit;
  for (std::size_t i = 0; i < std::min(list->size(), listLimit); ++i) {
    const std::string line = oneLine((*list)[i]);
    entries.push_back(cut(line, entryLimit));
    isCut |= entries.back().size() < line.size();
  }
  if (isCut) {
    addSentence(notice, text::cat("Of `", what, "` the first ", listLimit, " entries of up to ",
                                  entryLimit, " characters were kept."));
  }
  return entries;
}

std::size_t quotedSize(std::string_view words) {
  std::size_t bytes = words.size();
  for (const char letter : words) {
    if (static_cast<unsigned char>(letter) < 0x20) bytes += 5;
    if (letter == '"' || letter == '\\') ++bytes;
  }
  return bytes;
}

void addSentence(std::string& notice, std::string_view sentence) {
  if (!notice.empty() && !sentence.empty()) notice += ' ';
  notice += sentence;
}

std::optional<std::string> unlessEmpty(std::string_view words) {
  return words.empty() ? std::nullopt : std::optional(std::string(words));
}

std::string oneLine(std::string_view whole) {
  std::string line(unicode::trim(whole));
  for (char& letter : line)
    if (letter == '\n' || letter == '\r' || letter == '\t') letter = ' ';
  return line;
}

}  // namespace quillpost::board
