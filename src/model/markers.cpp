#include "model/markers.h"

#include "base/text.h"
#include "base/unicode.h"
#include "model/coding.h"
#include "model/human_ask.h"

#include <algorithm>
#include <cstddef>

namespace quillpost {
namespace {

// What the person's chip and phone have room for.
constexpr std::size_t optionsKept = 4;
constexpr std::size_t optionCharacters = 80;
constexpr std::size_t consequenceCharacters = 200;

bool asksOnlyTheQuestion(const AskMarker& ask) {
  return !ask.kind && ask.options.empty() && !ask.secretName && !ask.artifact && !ask.consequence;
}

std::optional<std::vector<std::string>> offered(const std::vector<std::string>& options) {
  if (options.empty()) return std::nullopt;
  std::vector<std::string> kept;
  for (std::size_t at = 0; at < std::min(options.size(), optionsKept); ++at) {
    kept.emplace_back(unicode::firstCharacters(options[at], optionCharacters));
  }
  return kept;
}

std::optional<std::string> cutConsequence(const std::optional<std::string>& consequence) {
  if (!consequence) return std::nullopt;
  return std::string(unicode::firstCharacters(*consequence, consequenceCharacters));
}

}  // namespace

std::string_view cleanSummary(std::string_view text) {
  text = unicode::trim(text);
  while (text.starts_with(gistMarker)) {
    text.remove_prefix(gistMarker.size());
    text = unicode::trim(text);
  }
  return text;
}

std::string askMarker(const AskMarker& ask, std::string_view question) {
  if (asksOnlyTheQuestion(ask)) return std::string(question);
  const std::string payload = encodeHumanAsk({
      .k = ask.kind.value_or("respond"),
      .o = offered(ask.options),
      .s = ask.secretName,
      .a = ask.artifact,
      .c = cutConsequence(ask.consequence),
  });
  if (!unicode::isValid(payload)) return std::string(question);
  return text::cat("[[ask:", payload, "]] ", question);
}

}  // namespace quillpost
