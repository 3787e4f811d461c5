#include "board/person/options.h"

#include "base/text.h"
#include "board/verbs/person.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace quillpost::board {

namespace {

constexpr std::string_view usageText =
    R"(quillpost-board: a board for agents that plays the app's part on any machine.

  quillpost-board [serve]            serve the board until it is interrupted
  quillpost-board seat               print the environment lines of a new terminal's seat
  quillpost-board show               show the board as a table
  quillpost-board answer TASK TEXT   answer a task's question (an option by its number),
                                        comment on a task, or speak in a discussion
  quillpost-board confirm-goal       confirm that the goal is complete
  quillpost-board reopen-goal        take a proposal or a confirmation back
  quillpost-board say HANDLE TEXT    say something to an agent
  quillpost-board squad on|off       let agents address each other, or not
  quillpost-board restore TASK       put a deleted task back

  --dir DIR        where the socket is published and looked for
                   (default: Quillpost-board in the application-support directory)
  --suffix NAME    which board of that directory (serving: dev)
  --thread NAME    which thread of that board (default: the first; seat makes a missing one)
  --db FILE        where the board is kept (default: board.db in DIR; ":memory:" keeps nothing)
  --lease SECONDS  how long a claim is held without a sign of life (default: 900)
  --help           print this
  --               what follows is no option, whatever it begins with
)";

/// A command of the person's: its method, and what the words after it are.
struct Command {
  std::string_view name;
  std::string_view method;
  std::string_view words;
};

// clang-format off
constexpr Command commands[] = {
    {"serve",        "",                 ""},
    {"help",         "",                 ""},
    {"seat",         personSeat,         ""},
    {"show",         personShow,         ""},
    {"answer",       personAnswer,       "TASK TEXT"},
    {"confirm-goal", personConfirmGoal,  ""},
    {"reopen-goal",  personReopenGoal,   ""},
    {"say",          personSay,          "HANDLE TEXT"},
    {"squad",        personSquad,        "on|off"},
    {"restore",      personRestore,      "TASK"},
};
// clang-format on

std::size_t wordsWanted(const Command& command) {
  return command.words.empty() ? 0 : text::split(command.words, ' ').size();
}

/// Fills in what the words after a command mean; false when they make no sense.
bool takeWords(const Command& command, const std::vector<std::string>& words,
               TeamworkRequest& request) {
  request.method = command.method;
  if (command.method == personAnswer || command.method == personRestore) request.taskID = words[0];
  if (command.method == personSay) request.to = words[0];
  if (words.size() > 1) request.body = words[1];
  if (command.method != personSquad) return true;
  request.approve = words[0] == "on";
  return words[0] == "on" || words[0] == "off";
}

bool takeOption(const std::string& name, const std::string& value, Options& options) {
  if (name == "--dir") {
    options.directory = value;
  } else if (name == "--db") {
    options.database = value;
  } else if (name == "--suffix") {
    options.suffix = value;
  } else if (name == "--thread") {
    options.request.name = value;
  } else if (name == "--lease") {
    constexpr int64_t longest = std::numeric_limits<int32_t>::max();
    const std::optional<int64_t> seconds = text::parseInteger(value);
    if (!seconds || *seconds < 1 || *seconds > longest) return false;
    options.leaseMs = *seconds * 1000;
  } else {
    return false;
  }
  return !value.empty();
}

}  // namespace

std::string_view usage() { return usageText; }

std::optional<Options> readOptions(std::span<const std::string> arguments, std::string& why) {
  Options options;
  std::vector<std::string> words;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help" || argument == "-h") {
      options.command = "help";
      return options;
    }
    if (argument == "--") {
      words.insert(words.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                   arguments.end());
      break;
    }
    if (!argument.starts_with("--")) {
      words.push_back(argument);
      continue;
    }
    if (i + 1 == arguments.size() || !takeOption(argument, arguments[i + 1], options)) {
      why = text::cat("cannot make sense of ", argument);
      return std::nullopt;
    }
    ++i;
  }
  if (words.empty()) return options;
  options.command = words.front();
  words.erase(words.begin());
  const Command* command = std::ranges::find(commands, options.command, &Command::name);
  if (command == std::end(commands)) {
    why = text::cat("there is no command ", options.command);
    return std::nullopt;
  }
  const bool fits = words.size() == wordsWanted(*command);
  if (!fits || (!command->method.empty() && !takeWords(*command, words, options.request))) {
    why = text::cat("write: ", command->name, command->words.empty() ? "" : " ", command->words);
    return std::nullopt;
  }
  return options;
}

}  // namespace quillpost::board
