#include "board/rules/ask.h"

#include "base/text.h"
#include "base/unicode.h"
#include "json/decoder.h"
#include "model/markers.h"

#include <cstdint>

namespace quillpost::board {

Ask splitAsk(std::string_view stored) {
  if (!stored.starts_with(askMarkerBegin)) return {std::nullopt, std::string(stored)};
  // An option may hold the closing brackets itself: the marker ends where its JSON is whole.
  for (std::size_t end = stored.find(askMarkerEnd); end != std::string_view::npos;
       end = stored.find(askMarkerEnd, end + 1)) {
    const std::string_view json = stored.substr(askMarkerBegin.size(), end - askMarkerBegin.size());
    auto payload = json::decode<TeamworkHumanAsk::Payload>(std::string(json));
    if (!payload) continue;
    return {std::move(payload),
            std::string(unicode::trim(stored.substr(end + askMarkerEnd.size())))};
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
