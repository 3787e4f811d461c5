#include "board/rules/ask.h"

#include "base/text.h"
#include "base/unicode.h"
#include "json/decoder.h"

#include <cstdint>

namespace quillpost::board {

namespace {

constexpr std::string_view opening = "[[ask:";
constexpr std::string_view closing = "]]";

}  // namespace

Ask splitAsk(std::string_view stored) {
  if (!stored.starts_with(opening)) return {std::nullopt, std::string(stored)};
  // An option may hold the closing brackets itself: the marker ends where its JSON is whole.
  for (std::size_t end = stored.find(closing); end != std::string_view::npos;
       end = stored.find(closing, end + 1)) {
    const std::string_view json = stored.substr(opening.size(), end - opening.size());
    auto payload = json::decode<TeamworkHumanAsk::Payload>(std::string(json));
    if (!payload) continue;
    return {std::move(payload), std::string(unicode::trim(stored.substr(end + closing.size())))};
  }
  return {std::nullopt, std::string(stored)};
}

std::string spellOut(const Ask& ask, std::string_view answer) {
  const std::optional<int64_t> number = text::parseInteger(answer);
  if (!number || !ask.payload || !ask.payload->o) return std::string(answer);
  if (*number < 1 || *number > text::countOf(*ask.payload->o)) return std::string(answer);
  return (*ask.payload->o)[static_cast<std::size_t>(*number) - 1];
}

}  // namespace quillpost::board
