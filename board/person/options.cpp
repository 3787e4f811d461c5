#include "board/person/options.h"

#include "base/nearest.h"
#include "base/text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quillpost::board {

namespace {

/// The longest time that can be asked for: any longer one is a slip of the finger.
constexpr int64_t longestMs = int64_t{std::numeric_limits<int32_t>::max()} * 1000;

/// "; did you mean X?", or nothing when no word is near.
std::string guess(std::string_view written, const std::vector<std::string_view>& words) {
  const std::string_view nearest = nearestWord(written, words);
  return nearest.empty() ? std::string() : text::cat("; did you mean ", nearest, "?");
}

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

/// Puts a value where its option wants it; false when it makes no sense there.
bool put(const Option& option, const std::string& value, Line& line) {
  TeamworkRequest& request = line.request;
  return std::visit(Overloaded{[&](bool Line::*flag) { return line.*flag = true; },
                               [&](std::string Line::*text) {
                                 line.*text = value;
                                 return !value.empty();
                               },
                               [&](Span span) {
                                 const std::optional<int64_t> lengthMs = spanFrom(value);
                                 line.*span.member = lengthMs.value_or(0);
                                 return lengthMs.has_value();
                               },
                               [&](std::optional<std::string> TeamworkRequest::*text) {
                                 request.*text = value;
                                 return true;
                               },
                               [&](std::optional<int64_t> TeamworkRequest::*number) {
                                 request.*number = text::parseInteger(value);
                                 return (request.*number).has_value();
                               },
                               [&](std::optional<bool> TeamworkRequest::*flag) {
                                 request.*flag = true;
                                 return true;
                               },
                               [&](std::optional<std::vector<std::string>> TeamworkRequest::*list) {
                                 std::vector<std::string>& entries =
                                     request.*list ? *(request.*list) : (request.*list).emplace();
                                 for (const std::string_view entry : text::split(value, ','))
                                   if (!entry.empty()) entries.emplace_back(entry);
                                 return true;
                               }},
                    option.target);
}

/// Where the words after a command go, by what they are called.
struct Place {
  std::string_view word;
  std::variant<std::string Line::*, std::optional<std::string> TeamworkRequest::*> target;
};

// clang-format off
constexpr Place places[] = {
    {"TASK",       &TeamworkRequest::taskID},
    {"WHAT",       &TeamworkRequest::taskID},
    {"DISCUSSION", &TeamworkRequest::taskID},
    {"HANDLE",     &TeamworkRequest::to},
    {"HELPER",     &TeamworkRequest::agent},
    {"HANDLE|all", &TeamworkRequest::to},
    {"on|off",     &TeamworkRequest::status},
    {"TEXT",       &TeamworkRequest::body},
    {"OUTCOME",    &TeamworkRequest::body},
    {"TITLE",      &TeamworkRequest::title},
    {"REASON",     &TeamworkRequest::releaseReason},
    {"NAME",       &Line::thread},
    {"FILE",       &Line::file},
    {"COMMAND",    &Line::file},
};
// clang-format on

/// Puts a word where its place wants it; false when it makes no sense there.
bool putWord(std::string_view place, const std::string& value, Line& line) {
  const Place* const found = std::ranges::find(places, place, &Place::word);
  if (found == std::end(places)) return true;
  if (const auto* const ofLine = std::get_if<std::string Line::*>(&found->target)) {
    line.** ofLine = value;
    return !value.empty();
  }
  line.request.*std::get<1>(found->target) = value;
  return true;
}

/// Takes the switch that was named; false when it was not.
bool readSwitch(TeamworkRequest& request) {
  request.approve = request.status == "on";
  return request.status == "on" || request.status == "off";
}

/// Gives the words to the places of the command; false when there are too many or too few, or one
/// makes no sense there.
bool placeWords(const Command& command, std::vector<std::string> words, Line& line) {
  if (command.words.empty()) return words.empty();
  for (std::string_view place : text::split(command.words, ' ')) {
    const bool isOptional = place.starts_with('[');
    if (isOptional) place = place.substr(1, place.size() - 2);
    const bool takesAll = place.ends_with("...");
    if (takesAll) place.remove_suffix(3);
    if (words.empty() && isOptional) continue;
    if (words.empty()) return false;
    const std::string word = takesAll ? text::join(words, " ") : words.front();
    if (!putWord(place, word, line)) return false;
    if (takesAll) {
      line.words = std::exchange(words, {});
    } else {
      line.words.push_back(word);
      words.erase(words.begin());
    }
  }
  return words.empty() && (command.words != "on|off" || readSwitch(line.request));
}

/// Everything that was written, before it is known what it means: of each option the first row of
/// its name.
struct Parts {
  std::vector<std::string> words;
  std::vector<std::pair<const Option*, std::string>> options;
  bool wantsHelp = false;
};

/// Makes one word of the first two when these are the name of a command.
void joinName(std::vector<std::string>& words) {
  if (words.size() < 2) return;
  const std::string name = text::cat(words[0], " ", words[1]);
  if (commandNamed(name) == nullptr) return;
  words.erase(words.begin());
  words.front() = name;
}

/// Whether the next word begins what is only handed on: the rest of the command that a command
/// runs.
bool endsOptions(std::vector<std::string> words) {
  joinName(words);
  const Command* const command = words.size() > 1 ? commandNamed(words.front()) : nullptr;
  if (command == nullptr || !command->words.ends_with("COMMAND...")) return false;
  return words.size() > text::split(command->words, ' ').size();
}

/// The second words of the commands whose first word this is; empty when there are none.
std::string secondWords(std::string_view first) {
  std::string words;
  for (const Command& command : commands()) {
    if (command.name.size() <= first.size() || !command.name.starts_with(first)) continue;
    if (command.name[first.size()] != ' ') continue;
    words += text::cat(words.empty() ? "" : ", ", command.name.substr(first.size() + 1));
  }
  return words;
}

const Option* optionNamed(std::string_view name) {
  const Option* const found = std::ranges::find(options(), name, &Option::name).base();
  return found == options().data() + options().size() ? nullptr : found;
}

bool readParts(std::span<const std::string> arguments, Parts& parts, Misuse& misuse) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool isHandedOn = endsOptions(parts.words);
    if (argument == "--" || isHandedOn) {
      const std::size_t first = isHandedOn ? i : i + 1;
      parts.words.insert(parts.words.end(), arguments.begin() + static_cast<std::ptrdiff_t>(first),
                         arguments.end());
      return true;
    }
    if (argument == "--help" || argument == "-h") {
      parts.wantsHelp = true;
      continue;
    }
    if (!argument.starts_with("--")) {
      parts.words.push_back(argument);
      continue;
    }
    const std::size_t equals = std::min(argument.find('='), argument.size());
    const Option* const option = optionNamed(std::string_view(argument).substr(0, equals));
    if (option == nullptr) {
      std::vector<std::string_view> names;
      for (const Option& row : options()) names.push_back(row.name);
      misuse.why = text::cat("there is no option ", argument, guess(argument, names),
                             " (write -- before a text that begins so)");
      return false;
    }
    if (option->value.empty() != (equals < argument.size())) {
      parts.options.emplace_back(option, argument.substr(std::min(equals + 1, argument.size())));
    } else if (option->value.empty()) {
      misuse.why = text::cat(option->name, " takes no value");
      return false;
    } else if (i + 1 < arguments.size()) {
      parts.options.emplace_back(option, arguments[++i]);
    } else {
      misuse.why = text::cat(argument, " wants a value: ", option->gist);
      return false;
    }
  }
  return true;
}

}  // namespace

std::optional<int64_t> spanFrom(std::string_view written) {
  constexpr std::pair<char, int64_t> units[] = {
      {'s', 1000}, {'m', 60'000}, {'h', 3'600'000}, {'d', 86'400'000}};
  int64_t unitMs = 1000;
  for (const auto& [letter, lengthMs] : units) {
    if (!written.ends_with(letter)) continue;
    unitMs = lengthMs;
    written.remove_suffix(1);
    break;
  }
  const std::optional<int64_t> number = text::parseInteger(written);
  if (!number || *number < 1 || *number > longestMs / unitMs) return std::nullopt;
  return *number * unitMs;
}

std::optional<Line> readLine(std::span<const std::string> arguments, Misuse& misuse) {
  Parts parts;
  const bool isRead = readParts(arguments, parts, misuse);
  joinName(parts.words);
  const std::string name = parts.words.empty() ? "serve" : parts.words.front();
  misuse.command = commandNamed(name);
  if (!isRead) return std::nullopt;
  Line line;
  if (parts.wantsHelp) {
    line.command = commandNamed("help");
    if (!parts.words.empty()) line.words = {name};
    return line;
  }
  if (misuse.command == nullptr) {
    std::vector<std::string_view> names;
    for (const Command& row : commands()) names.push_back(row.name);
    const std::string seconds = secondWords(name);
    misuse.why = seconds.empty() ? text::cat("there is no command ", name, guess(name, names))
                                 : text::cat(name, " wants one of: ", seconds);
    return std::nullopt;
  }
  const Command& command = *misuse.command;
  line.command = &command;
  line.request.method = command.method;
  for (const auto& [option, value] : parts.options) {
    const Option* const own = optionOf(command, option->name);
    if (own == nullptr) {
      misuse.why = text::cat(command.name, " takes no ", option->name);
      return std::nullopt;
    }
    if (!put(*own, value, line)) {
      misuse.why = text::cat("\"", value, "\" makes no sense for ", own->name, ": ", own->gist);
      return std::nullopt;
    }
  }
  if (!parts.words.empty()) parts.words.erase(parts.words.begin());
  if (!placeWords(command, std::move(parts.words), line)) {
    misuse.why = command.words.empty() ? text::cat(command.name, " takes no words")
                                       : text::cat(command.name, " takes: ", command.words);
    return std::nullopt;
  }
  if (!line.thread.empty()) line.request.name = line.thread;
  return line;
}

bool fillFromInput(Line& line, const std::function<std::string()>& read) {
  TeamworkRequest& request = line.request;
  int count = 0;
  for (std::optional<std::string>* text : {&request.body, &request.title, &request.releaseReason}) {
    if (*text != "-") continue;
    if (++count > 1) return false;
    *text = read();
    if ((*text)->ends_with('\n')) (*text)->pop_back();
  }
  return true;
}

}  // namespace quillpost::board
