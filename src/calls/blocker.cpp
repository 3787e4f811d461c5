#include "calls/blocker.h"

#include "base/text.h"
#include "base/unicode.h"
#include "model/coding.h"
#include "model/human_ask.h"
#include "model/markers.h"
#include "tools/claims.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost {
namespace {

using Payload = TeamworkHumanAsk::Payload;

// What the person's chip and phone have room for, in characters but for the number of options.
constexpr std::size_t optionsKept = 4;
constexpr std::size_t optionCharacters = 80;
constexpr std::size_t consequenceCharacters = 200;

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

/// The kind that was asked for, or the one that the rest of the ask points to.
std::string resolveKind(const std::optional<std::string>& asked, const Payload& ask) {
  std::string kind = text::lowered(asked.value_or(""));
  if (std::ranges::find(properties::blockerKinds, kind) != properties::blockerKinds.end())
    return kind;
  if (ask.s) return "secret";
  if (ask.o) return "decision";
  if (ask.a) return "review";
  return "respond";
}

/// The options that are kept, each as much of it as is kept; nothing when none was given.
std::optional<std::vector<std::string>> offered(std::optional<std::vector<std::string>> options) {
  if (!options || options->empty()) return std::nullopt;
  if (options->size() > optionsKept) options->resize(optionsKept);
  for (std::string& option : *options)
    option.resize(unicode::firstCharacters(option, optionCharacters).size());
  return options;
}

/// How the person is asked, besides the question itself; nothing when the arguments do not say. An
/// optional text that is there counts as given even when it is empty.
std::optional<Payload> readAsk(const Arguments& arguments) {
  const std::optional<std::string> kind = arguments.text("blockerKind");
  Payload ask;
  ask.o = offered(arguments.texts("blockerOptions"));
  ask.s = arguments.text("blockerSecretName");
  ask.a = arguments.text("blockerArtifact");
  ask.c = arguments.text("blockerConsequence");
  if (!kind && !ask.o && !ask.s && !ask.a && !ask.c) return std::nullopt;
  ask.k = resolveKind(kind, ask);
  if (ask.c) ask.c->resize(unicode::firstCharacters(*ask.c, consequenceCharacters).size());
  return ask;
}

/// The question behind its marker; the question alone when the marker would hold a text that is not
/// UTF-8.
std::string marked(const Payload& ask, std::string_view question) {
  const std::string payload = encodeHumanAsk(ask);
  if (!unicode::isValid(payload)) return std::string(question);
  return text::cat(askMarkerBegin, payload, askMarkerEnd, " ", question);
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

  const std::optional<Payload> ask = readAsk(arguments);
  if (ask) return {.text = marked(*ask, question ? question->text : std::string())};
  if (!question) return {};
  return {.text = std::move(question->text)};
}

}  // namespace quillpost
