#include "board/rules/ask.h"

#include "base/text.h"
#include "base/unicode.h"
#include "json/decoder.h"
#include "model/markers.h"

#include <cstdint>

namespace quillpost::board {

namespace {

/// Where the closing brackets stand that are in none of the JSON's texts, since an option may hold
/// some itself; npos when there are none.
std::size_t closingOf(std::string_view marked) {
  bool isInText = false;
  for (std::size_t at = 0; at < marked.size(); ++at) {
    const char letter = marked[at];
    if (isInText && letter == '\\') {
      ++at;
    } else if (letter == '"') {
      isInText = !isInText;
    } else if (!isInText && marked.substr(at).starts_with("}]]")) {
      return at + 1;
    }
  }
  return std::string_view::npos;
}

}  // namespace

Ask splitAsk(std::string_view stored) {
  if (!stored.starts_with(askMarkerBegin)) return {std::nullopt, std::string(stored)};
  const std::string_view marked = stored.substr(askMarkerBegin.size());
  const std::size_t end = closingOf(marked);
  if (end == std::string_view::npos) return {std::nullopt, std::string(stored)};
  auto payload = json::decode<TeamworkHumanAsk::Payload>(std::string(marked.substr(0, end)));
  if (!payload) return {std::nullopt, std::string(stored)};
  return {std::move(payload), std::string(unicode::trim(marked.substr(end + askMarkerEnd.size())))};
}

bool isForSecret(const Ask& ask) { return ask.payload && ask.payload->k == "secret"; }

std::string spellOut(const Ask& ask, std::string_view answer) {
  const std::optional<int64_t> number = text::parseInteger(answer);
  if (!number || !ask.payload || !ask.payload->o) return std::string(answer);
  if (*number < 1 || *number > text::countOf(*ask.payload->o)) return std::string(answer);
  return (*ask.payload->o)[static_cast<std::size_t>(*number) - 1];
}

}  // namespace quillpost::board
