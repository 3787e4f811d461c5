#include "board/rules/command_words.h"

#include "base/text.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

/// What a shell takes for more than a character, wherever it stands outside of quotes.
struct Special {
  std::string_view text;
  std::string_view what;
};

// clang-format off
constexpr Special specials[] = {
    {";",  "the operator `;`"},
    {"|",  "a pipe"},
    {"&",  "the operator `&`"},
    {"<",  "a redirect"},
    {">",  "a redirect"},
    {"(",  "a bracket of a shell"},
    {")",  "a bracket of a shell"},
    {"\n", "a line break"},
    {"\r", "a line break"},
    {"`",  "a substitution"},
    {"$",  "a substitution"},
    {"\\", "a backslash"},
    {"\xe2\x80\x98", "a quote that is neither ' nor \""},
    {"\xe2\x80\x99", "a quote that is neither ' nor \""},
    {"\xe2\x80\x9a", "a quote that is neither ' nor \""},
    {"\xe2\x80\x9c", "a quote that is neither ' nor \""},
    {"\xe2\x80\x9d", "a quote that is neither ' nor \""},
    {"\xe2\x80\x9e", "a quote that is neither ' nor \""},
    {"\xc2\xab",     "a quote that is neither ' nor \""},
    {"\xc2\xbb",     "a quote that is neither ' nor \""},
};
// clang-format on

/// What a shell would see at the beginning of this; empty when a plain character.
std::string_view specialAt(std::string_view rest) {
  const Special* const found = std::ranges::find_if(
      specials, [&](const Special& special) { return rest.starts_with(special.text); });
  return found == std::end(specials) ? std::string_view() : found->what;
}

/// What a shell would see at the beginning of this within quotes of this kind, 0 for outside of
/// them; empty when a plain character. Within double quotes it still substitutes.
std::string_view specialWithin(char quote, std::string_view rest) {
  const bool isSubstitution = rest[0] == '$' || rest[0] == '`' || rest[0] == '\\';
  return quote == 0 || (quote == '"' && isSubstitution) ? specialAt(rest) : std::string_view();
}

std::string notSimple(std::string_view what) {
  return text::cat("The `command` is to be one simple command, and this one has ", what,
                   ". No shell reads it: no `;`, pipes, redirects or `$(`; quotes keep words "
                   "together.");
}

}  // namespace

std::optional<std::vector<std::string>> commandWords(std::string_view command, std::string& why) {
  std::vector<std::string> words;
  std::optional<std::string> word;
  char quote = 0;
  for (std::size_t at = 0; at < command.size(); ++at) {
    const char letter = command[at];
    const std::string_view special = specialWithin(quote, command.substr(at));
    if (!special.empty()) {
      why = notSimple(special);
      return std::nullopt;
    }
    if (quote != 0 && letter == quote) {
      quote = 0;
    } else if (quote == 0 && (letter == '\'' || letter == '"')) {
      quote = letter;
      if (!word) word.emplace();
    } else if (quote == 0 && (letter == ' ' || letter == '\t')) {
      if (word) words.push_back(*std::exchange(word, std::nullopt));
    } else {
      if (!word) word.emplace();
      *word += letter;
    }
  }
  if (quote != 0) {
    why = notSimple("a quote without an end");
    return std::nullopt;
  }
  if (word) words.push_back(*std::move(word));
  why = whyNotRunnable(words);
  return why.empty() ? std::optional(std::move(words)) : std::nullopt;
}

std::string whyNotRunnable(const std::vector<std::string>& words) {
  if (words.empty() || words.front().empty()) return "A helper needs a `command`.";
  const std::string& program = words.front();
  if (program.find(promptPlace) != std::string::npos) {
    return text::cat("The first word of the `command` is the program, and cannot be ", promptPlace,
                     ".");
  }
  if (program.find('=') != std::string::npos && program.find('/') > program.find('=')) {
    return notSimple("a variable before the program");
  }
  for (const std::string& word : words)
    if (word.find('\0') != std::string::npos) return notSimple("a byte that no argument can have");
  return {};
}

std::vector<std::string> withOpening(std::vector<std::string> words, std::string_view opening) {
  bool hasPlace = false;
  for (std::string& word : words) {
    std::size_t at = 0;
    while ((at = word.find(promptPlace, at)) != std::string::npos) {
      word.replace(at, promptPlace.size(), opening);
      at += opening.size();
      hasPlace = true;
    }
  }
  if (!hasPlace) words.emplace_back(opening);
  return words;
}

std::string shownWords(const std::vector<std::string>& words) {
  return text::join(words, " ", [](const std::string& word) {
    std::string quoted = "'";
    for (const char letter : word) {
      if (letter == '\'') {
        quoted += R"('\'')";
      } else {
        quoted += letter;
      }
    }
    return quoted + "'";
  });
}

}  // namespace quillpost::board
