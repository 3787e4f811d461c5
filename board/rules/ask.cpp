#include "board/rules/ask.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/limits.h"
#include "json/decoder.h"
#include "model/markers.h"

#include <algorithm>
#include <cstdint>
#include <vector>

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
  std::optional<TeamworkHumanAsk::Payload> payload =
      json::decode<TeamworkHumanAsk::Payload>(std::string(marked.substr(0, end)));
  if (!payload) return {std::nullopt, std::string(stored)};
  return {std::move(payload), std::string(unicode::trim(marked.substr(end + askMarkerEnd.size())))};
}

std::string cutAsk(const std::string& stored, std::string& notice) {
  Ask ask = splitAsk(stored);
  if (!ask.payload) return stored;
  TeamworkHumanAsk::Payload& payload = *ask.payload;
  const TeamworkHumanAsk::Payload whole = payload;
  payload.k = cut(payload.k, entryLimit);
  if (payload.o) payload.o = entriesOf(payload.o, "blockerOptions", notice);
  if (payload.s) payload.s = cutWithNotice(*payload.s, lineLimit, "secret's name", notice);
  if (payload.a) payload.a = cutWithNotice(*payload.a, lineLimit, "artifact", notice);
  if (payload.c) payload.c = cutWithNotice(*payload.c, lineLimit, "consequence", notice);
  if (payload == whole) return stored;
  return text::cat(askMarkerBegin, json::encode(payload), askMarkerEnd, " ", ask.question);
}

bool isForSecret(const Ask& ask) { return ask.payload && ask.payload->k == "secret"; }

std::optional<std::string> spellOut(const Ask& ask, std::string_view answer) {
  const std::optional<int64_t> number = text::parseInteger(answer);
  if (!number || !ask.payload || !ask.payload->o) return std::string(answer);
  const std::vector<std::string>& options = *ask.payload->o;
  if (*number >= 1 && *number <= text::countOf(options)) {
    return options[static_cast<std::size_t>(*number) - 1];
  }
  const bool isOption = options.empty() || std::ranges::find(options, answer) != options.end();
  return isOption ? std::optional(std::string(answer)) : std::nullopt;
}

std::string numbered(std::span<const std::string> options) {
  std::string line;
  int64_t number = 0;
  for (const std::string& option : options)
    line += text::cat(line.empty() ? "" : ", ", ++number, ") ", option);
  return line;
}

}  // namespace quillpost::board
