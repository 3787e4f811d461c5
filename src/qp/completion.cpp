#include "qp/completion.h"

#include "base/text.h"
#include "qp/options.h"
#include "tools/tools.h"

#include <algorithm>

namespace quillpost {
namespace {

constexpr std::string_view bashScript = R"sh(# qp in bash: eval "$(qp completion bash)"
_qp() {
  local IFS=$'\n' line=()
  line=("${COMP_WORDS[@]:1:COMP_CWORD}")
  COMPREPLY=($(qp __complete "${line[@]}" 2>/dev/null))
}
complete -o default -F _qp qp
)sh";

// Without a comment: at a prompt zsh takes one for a command.
constexpr std::string_view zshScript = R"sh(_qp() {
  local -a found
  found=("${(@f)$(qp __complete "${(@)words[2,CURRENT]}" 2>/dev/null)}")
  if [[ -n "$found" ]]; then
    compadd -- "${found[@]}"
  else
    _files
  fi
}
compdef _qp qp
)sh";

constexpr std::string_view fishScript = R"sh(# qp in fish: qp completion fish | source
function __qp_complete
  set -l line (commandline -opc) (commandline -ct)
  qp __complete $line[2..-1] 2>/dev/null
end
complete -c qp -f -a '(__qp_complete)'
)sh";

struct Script {
  std::string_view shell;
  std::string_view text;
};

constexpr Script scripts[] = {{"bash", bashScript}, {"zsh", zshScript}, {"fish", fishScript}};

using Part = std::span<const std::string>;

/// The words of the verb that is being typed.
Part lastVerb(Part words) {
  for (std::size_t at = words.size() - 1; at-- > 0;)
    if (words[at] == separator) return words.subspan(at + 1);
  return words;
}

void addFitting(std::vector<std::string>& out, std::string_view word, std::string_view begin) {
  if (word.starts_with(begin)) out.emplace_back(word);
}

BoardWords boardWordsFor(std::string_view property) {
  if (property == "taskID" || property == "taskIDs" || property == "waitsOn")
    return BoardWords::tasks;
  if (property == "to" || property == "addressTo" || property == "routedToFingerprint" ||
      property == "handle")
    return BoardWords::handles;
  return BoardWords::none;
}

/// What fits as a value of which this much is typed, behind what stands before it in the same word.
Candidates valuesOf(const Property& property, std::string_view typed,
                    std::string_view before = {}) {
  // The elements of a list that stand before the last comma are typed already.
  const std::size_t comma =
      property.type == Type::strings ? typed.rfind(',') : std::string_view::npos;
  const std::size_t kept = comma == std::string_view::npos ? 0 : comma + 1;
  Candidates candidates{.words = {},
                        .fromBoard = boardWordsFor(property.name),
                        .before = text::cat(before, typed.substr(0, kept)),
                        .begin = std::string(typed.substr(kept))};
  for (const std::string_view value : property.oneOf)
    if (!value.empty() && value.starts_with(candidates.begin))
      candidates.words.push_back(text::cat(candidates.before, value));
  return candidates;
}

/// A line as bash gives it, which breaks "--option=value" in three, with such words made whole.
/// The last one stays in pieces: only its last piece is completed there.
std::vector<std::string> withoutBreaks(Part words) {
  std::vector<std::string> whole;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const bool isBreak = words[i] == "=" && !whole.empty() && whole.back().starts_with("--");
    if (!isBreak) {
      whole.push_back(words[i]);
    } else if (i + 1 == words.size()) {
      whole.emplace_back();
    } else if (i + 2 < words.size()) {
      text::append(whole.back(), text::cat("=", words[++i]));
    }
  }
  return whole;
}

/// The property that a bare word at this place would fill; null when none would.
const Property* propertyAt(const Tool& tool, std::size_t place) {
  const Words& positionals = tool.commandLine.positionals;
  if (place < positionals.size()) return findProperty(tool, *(positionals.begin() + place));
  if (positionals.size() == 0) return nullptr;
  const Property* last = findProperty(tool, *(positionals.end() - 1));
  return last->type == Type::strings ? last : nullptr;
}

/// How many bare words stand before the last one.
std::size_t wordsBefore(const Tool& tool, Part words) {
  std::size_t count = 0;
  for (std::size_t i = 1; i + 1 < words.size(); ++i) {
    if (!words[i].starts_with("--")) {
      ++count;
      continue;
    }
    const std::optional<OptionRow> row = findOption(tool, std::string_view(words[i]).substr(2));
    if (row && row->property->type != Type::boolean) ++i;
  }
  return count;
}

Candidates wordsFor(const Tool& tool, Part words) {
  const std::string& last = words.back();
  const Property* const property = propertyAt(tool, wordsBefore(tool, words));
  Candidates candidates;
  if (property != nullptr) candidates = valuesOf(*property, last);
  if (property != nullptr && property->type == Type::boolean)
    for (const std::string_view value : {tool.commandLine.yes, tool.commandLine.no})
      addFitting(candidates.words, value, last);
  if (property == nullptr || !last.empty()) addFitting(candidates.words, separator, last);
  return candidates;
}

Candidates optionsFor(const Tool& tool, std::string_view begin) {
  Candidates candidates;
  for (const std::string& option : optionsOf(tool)) addFitting(candidates.words, option, begin);
  addFitting(candidates.words, "--help", begin);
  return candidates;
}

Candidates verbsFor(std::string_view begin) {
  Candidates candidates;
  for (const std::string_view verb : allVerbs()) {
    // A full name is offered to one who has begun to type it, the short ones to everybody.
    const bool isFullName = verb.find('_') != std::string_view::npos;
    if (!isFullName || begin.size() > 1) addFitting(candidates.words, verb, begin);
  }
  return candidates;
}

}  // namespace

std::optional<std::string_view> completionScript(std::string_view shell) {
  for (const Script& script : scripts)
    if (script.shell == shell) return script.text;
  return std::nullopt;
}

Candidates candidatesFor(std::span<const std::string> typed) {
  const std::vector<std::string> words = withoutBreaks(typed);
  if (words.empty()) return {};
  Part verb = lastVerb(words);
  while (verb.size() > 1 && verb.front() == "--json") verb = verb.subspan(1);
  const std::string& last = verb.back();
  if (verb.size() == 1 && last.starts_with('-')) {
    Candidates candidates;
    for (const std::string_view option : {"--json", "--help", "--version"})
      addFitting(candidates.words, option, last);
    return candidates;
  }
  if (verb.size() == 1) return verbsFor(last);
  if (verb.front() == "help") return verbsFor(last);
  if (verb.front() == "completion") {
    Candidates candidates;
    for (const Script& script : scripts) addFitting(candidates.words, script.shell, last);
    return candidates;
  }
  if (verb.front() == "brief") {
    Candidates candidates;
    addFitting(candidates.words, "--short", last);
    return candidates;
  }
  const Tool* const tool = toolForVerb(verb.front());
  if (tool == nullptr) return {};
  const std::size_t equals = last.starts_with("--") ? last.find('=') : std::string::npos;
  if (equals != std::string::npos) {
    const std::optional<OptionRow> row =
        findOption(*tool, std::string_view(last).substr(2, equals - 2));
    if (!row) return {};
    return valuesOf(*row->property, std::string_view(last).substr(equals + 1),
                    last.substr(0, equals + 1));
  }
  const std::string_view before = verb[verb.size() - 2];
  if (before.starts_with("--")) {
    const std::optional<OptionRow> row = findOption(*tool, before.substr(2));
    if (row && row->property->type != Type::boolean) return valuesOf(*row->property, last);
  }
  return last.starts_with('-') ? optionsFor(*tool, last) : wordsFor(*tool, verb);
}

std::vector<std::string> boardWordsIn(const std::string& json, const Candidates& wanted) {
  std::vector<std::string> found;
  const std::optional<json::Tree> tree = json::parse(json);
  if (!tree) return found;
  const auto addFrom = [&](const json::Tree& list, std::string_view key) {
    const boost::json::array* const elements = list.if_array();
    if (elements == nullptr) return;
    for (const json::Tree& element : *elements)
      if (const json::TreeObject* object = element.if_object())
        if (const std::optional<std::string_view> word = json::findText(*object, key))
          if (word->starts_with(wanted.begin)) found.push_back(text::cat(wanted.before, *word));
  };
  if (wanted.fromBoard == BoardWords::handles) addFrom(*tree, "handle");
  const json::TreeObject* const backlog = tree->if_object();
  if (wanted.fromBoard != BoardWords::tasks || backlog == nullptr) return found;
  for (const std::string_view bucket : bucketNames)
    if (const json::Tree* list = json::find(*backlog, bucket)) addFrom(*list, "id");
  return found;
}

}  // namespace quillpost
