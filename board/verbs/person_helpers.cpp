// What the person says of helpers. Nothing else ever allows one.

#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/command_words.h"
#include "board/rules/limits.h"
#include "board/rules/people.h"
#include "board/rules/wakes.h"
#include "board/verbs/methods.h"
#include "board/verbs/person.h"
#include "json/decoder.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// The variables of a seat are the board's to give.
constexpr std::string_view ownVariables = "QUILLPOST_";

std::string nameOf(const Deed& deed) { return oneLine(deed.request.agent.value_or("")); }

std::string noSuchSuggestion(const std::string& name) {
  return text::cat("No helper is suggested under the name \"", name, "\"; `helper list` has them.");
}

/// Why a helper cannot be allowed as it is described; empty when it can.
std::string whyNotAllowed(const Helper& helper) {
  if (helper.id.empty() || unicode::countCharacters(helper.id) > helperNameLimit) {
    return text::cat("The name of a helper may have 1 to ", helperNameLimit, " characters.");
  }
  if (unicode::countCharacters(helper.explanation) > explanationLimit) {
    return text::cat("The explanation may have ", explanationLimit, " characters.");
  }
  if (!helper.directory.starts_with('/')) return "A helper needs a directory to run in.";
  return whyNotRunnable(helper.words);
}

/// Allows a helper, and switches the squad on, which is for helpers to be asked for.
TeamworkResponse allow(const Deed& deed, Helper helper) {
  std::erase_if(helper.variables, [](const std::string& variable) {
    return variable.starts_with(ownVariables) || variable.find('=') == std::string::npos;
  });
  const std::string why = whyNotAllowed(helper);
  if (!why.empty()) return refused(why);
  const std::string name = helper.id;
  std::string words = text::cat("Agents may now have \"", name, "\" started, which runs ",
                                shownWords(helper.words), " in ", helper.directory, ".");
  if (deed.board.helpers.find(name) != nullptr) {
    addSentence(words, "It takes the place of the helper that had this name.");
  }
  deed.board.helpers.put(std::move(helper));
  record(deed.board, deed.move(MoveKind::helperAllowed, "", name));
  if (!deed.board.thread().squadOn) {
    deed.board.editThread().squadOn = true;
    record(deed.board, deed.move(MoveKind::squadSwitched, "", "on"));
    addSentence(words, "The squad is on.");
  }
  return written(std::move(words));
}

/// The helper that a request describes; nothing when it does not.
std::optional<Helper> described(const Deed& deed) {
  std::optional<Helper> helper = json::decode<Helper>(deed.request.body.value_or(""));
  if (!helper) return std::nullopt;
  helper->id = oneLine(helper->id);
  helper->explanation = oneLine(helper->explanation);
  return helper;
}

constexpr std::string_view notDescribed = "That describes no helper.";

TeamworkResponse allowHelper(const Deed& deed) {
  std::optional<Helper> helper = described(deed);
  if (!helper) return refused(std::string(notDescribed));
  return allow(deed, *std::move(helper));
}

TeamworkResponse forgetHelper(const Deed& deed) {
  const std::string name = nameOf(deed);
  if (deed.board.helpers.find(name) == nullptr) {
    return refused(text::cat("No helper is allowed under the name \"", name, "\"."));
  }
  deed.board.helpers.remove(name);
  record(deed.board, deed.move(MoveKind::helperForgotten, "", name));
  return written(
      text::cat("\"", name, "\" is started no more. Those that run go on; `unseat` stops one."));
}

/// Tells whoever suggested a helper what became of it.
void tellSuggester(const Deed& deed, const Suggestion& suggestion, std::string_view what) {
  const Seat* seat = seatAt(deed.board, suggestion.by);
  if (seat == nullptr || !seat->registered) return;
  wake(deed.board, *seat,
       {WakeKind::humanSaid, "",
        text::cat("The human ", what, " the helper \"", suggestion.id, "\" that you suggested.")});
}

TeamworkResponse approveHelper(const Deed& deed) {
  std::optional<Helper> helper = described(deed);
  if (!helper) return refused(std::string(notDescribed));
  const Suggestion* found = deed.board.suggestions.find(helper->id);
  if (found == nullptr) return refused(noSuchSuggestion(helper->id));
  const Suggestion suggestion = *found;
  std::string why;
  std::optional<std::vector<std::string>> words = commandWords(suggestion.command, why);
  if (!words) return refused(why);
  // What the person has seen is what is allowed, and nothing that came in its place meanwhile.
  if (deed.request.command != shownWords(*words)) {
    return refused(text::cat("The suggestion \"", suggestion.id,
                             "\" has been replaced since it was shown. Look at it again."));
  }
  helper->words = *std::move(words);
  if (helper->explanation.empty()) helper->explanation = suggestion.explanation;
  TeamworkResponse response = allow(deed, *std::move(helper));
  if (response.kind == TeamworkResponse::Kind::error) return response;
  deed.board.suggestions.remove(suggestion.id);
  tellSuggester(deed, suggestion, "allows");
  return response;
}

TeamworkResponse refuseHelper(const Deed& deed) {
  const std::string name = nameOf(deed);
  const Suggestion* found = deed.board.suggestions.find(name);
  if (found == nullptr) return refused(noSuchSuggestion(name));
  const Suggestion suggestion = *found;
  deed.board.suggestions.remove(name);
  record(deed.board, deed.move(MoveKind::helperForgotten, "", name));
  tellSuggester(deed, suggestion, "does not allow");
  return written(text::cat("\"", name, "\" is not allowed, and no longer suggested."));
}

}  // namespace

// clang-format off
std::span<const PersonMethod> personHelping() {
  static constexpr PersonMethod rows[] = {
      {personHelperAllow,   allowHelper},
      {personHelperForget,  forgetHelper},
      {personHelperApprove, approveHelper},
      {personHelperRefuse,  refuseHelper},
  };
  return rows;
}
// clang-format on

}  // namespace quillpost::board
