#include "calls/blocker.h"

#include "base/text.h"
#include "base/unicode.h"
#include "model/markers.h"
#include "tools/tools.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillpost {
namespace {

struct Question {
  std::string text;
  bool isExplicit = false;
};

/// The first of the question's three sources that has any text.
std::optional<Question> findQuestion(const Arguments& arguments) {
  for (const std::string_view source : {"blockerQuestion", "progress", "summary"}) {
    const std::optional<std::string> given = arguments.text(source);
    if (!given) continue;
    const std::string_view cleaned = cleanSummary(*given);
    if (!cleaned.empty()) return Question{std::string(cleaned), source == "blockerQuestion"};
  }
  return std::nullopt;
}

/// The kind that was asked for, or the one that the other arguments point to.
std::string resolveKind(const AskMarker& ask) {
  if (ask.kind &&
      std::ranges::find(properties::blockerKinds, *ask.kind) != properties::blockerKinds.end())
    return *ask.kind;
  if (ask.secretName) return "secret";
  if (!ask.options.empty()) return "decision";
  if (ask.artifact) return "review";
  return "respond";
}

}  // namespace

BlockerQuestion composeBlockerQuestion(const Arguments& arguments) {
  std::optional<Question> question = findQuestion(arguments);
  if (question) {
    const std::size_t kept = unicode::firstCharacters(question->text, blockerQuestionLimit).size();
    if (kept < question->text.size() && question->isExplicit)
      return {.refusedLength = static_cast<int64_t>(unicode::countCharacters(question->text))};
    question->text.resize(kept);
  }

  AskMarker ask{
      .kind = arguments.text("blockerKind"),
      .options = arguments.texts("blockerOptions").value_or(std::vector<std::string>()),
      .secretName = arguments.text("blockerSecretName"),
      .artifact = arguments.text("blockerArtifact"),
      .consequence = arguments.text("blockerConsequence"),
  };
  const bool isTyped =
      ask.kind || !ask.options.empty() || ask.secretName || ask.artifact || ask.consequence;
  if (!isTyped) {
    if (!question) return {};
    return {.text = std::move(question->text)};
  }
  if (ask.kind) ask.kind = text::lowered(*ask.kind);
  ask.kind = resolveKind(ask);
  return {.text = askMarker(ask, question ? question->text : std::string())};
}

}  // namespace quillpost
