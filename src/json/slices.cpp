#include "json/slices.h"

#include <algorithm>
#include <cstddef>

namespace quillpost::json {
namespace {

constexpr std::string_view whitespace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(whitespace);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(whitespace) + 1 - begin);
}

/// What stands between the first and the last character when they are these two; empty otherwise.
std::string_view inside(std::string_view text, char open, char close) {
  text = trimmed(text);
  if (text.size() < 2 || text.front() != open || text.back() != close) return {};
  return text.substr(1, text.size() - 2);
}

/// Behind the string that begins at `at` with its quotation mark.
std::size_t behindString(std::string_view text, std::size_t at) {
  for (;;) {
    at = text.find('"', at + 1);
    if (at == std::string_view::npos) return text.size();
    // The mark is a character of the string behind an odd number of backslashes.
    std::size_t backslashes = 0;
    while (text[at - 1 - backslashes] == '\\') ++backslashes;
    if (backslashes % 2 == 0) return at + 1;
  }
}

/// Cuts the first part, up to a comma that stands outside of strings and brackets, off `rest`.
std::string_view takePart(std::string_view& rest) {
  std::size_t depth = 0;
  std::size_t at = 0;
  while (at < rest.size()) {
    const char letter = rest[at];
    if (letter == '"') {
      at = behindString(rest, at);
      continue;
    }
    if (letter == ',' && depth == 0) break;
    if (letter == '{' || letter == '[') ++depth;
    if ((letter == '}' || letter == ']') && depth > 0) --depth;
    ++at;
  }
  const std::string_view part = rest.substr(0, at);
  rest.remove_prefix(std::min(at + 1, rest.size()));
  return trimmed(part);
}

}  // namespace

std::vector<MemberSlice> membersOf(std::string_view object) {
  std::vector<MemberSlice> members;
  for (std::string_view rest = inside(object, '{', '}'); !rest.empty();) {
    const std::string_view part = takePart(rest);
    if (!part.starts_with('"')) continue;
    const std::size_t behindKey = behindString(part, 0);
    const std::size_t colon = part.find(':', behindKey);
    if (colon == std::string_view::npos) continue;
    members.push_back({part.substr(1, behindKey - 2), trimmed(part.substr(colon + 1))});
  }
  return members;
}

std::vector<std::string_view> elementsOf(std::string_view array) {
  std::vector<std::string_view> elements;
  for (std::string_view rest = inside(array, '[', ']'); !rest.empty();) {
    const std::string_view part = takePart(rest);
    if (!part.empty()) elements.push_back(part);
  }
  return elements;
}

}  // namespace quillpost::json
