#include "board/person/help.h"

#include "base/text.h"
#include "board/person/console.h"
#include "board/person/manual_text.h"

#include <algorithm>
#include <cstdio>
#include <functional>

namespace quillpost::board {

namespace {

/// The words on lines of a terminal's usual width that begin at a column; the first goes on behind
/// what stands there, or below it when there is no room.
std::string inColumn(std::string_view begin, std::string_view words, std::size_t column = 28) {
  constexpr std::size_t width = 80;
  std::string out(begin);
  std::size_t at = begin.size();
  if (at > 0 && at + 1 > column) {
    out += "\n";
    at = 0;
  }
  out.append(column - at, ' ');
  at = column;
  for (const std::string_view word : text::split(words, ' ')) {
    if (at > column && at + 1 + word.size() > width) {
      out += "\n" + std::string(column, ' ');
      at = column;
    }
    if (at > column) out += ' ';
    out += word;
    at += word.size() + (at > column ? 1 : 0);
  }
  return out + "\n";
}

std::string optionWords(const Option& option) {
  return text::cat(option.name, option.value.empty() ? "" : " ", option.value);
}

std::string invocationOf(const Command& command) {
  return text::cat(command.name, command.words.empty() ? "" : " ", command.words);
}

/// The options that every command takes, or those of a command.
std::string optionLines(const Command* command) {
  std::string lines;
  for (const Option& option : options()) {
    const bool isWanted = command == nullptr ? option.commands.empty()
                                             : !option.commands.empty() && takes(*command, option);
    if (isWanted) lines += inColumn(text::cat("  ", optionWords(option)), option.gist);
  }
  return lines;
}

/// Calls the first for each group, and the second for each of its commands.
void forEachCommand(const std::function<void(std::string_view)>& group,
                    const std::function<void(const Command&)>& visit) {
  std::string_view before;
  for (const Command& command : commands()) {
    if (command.group != before) group(command.group);
    before = command.group;
    visit(command);
  }
}

/// Sentences as a page has them, each on lines of its own; no word of ours begins as a request
/// would.
std::string manualLine(std::string_view words) {
  std::string lines;
  for (std::size_t at = 0; at < words.size();) {
    const std::size_t end = std::min(words.find(". ", at), words.size() - 1) + 1;
    lines += inColumn("", words.substr(at, end - at), 0);
    at = end + 1;
  }
  return lines;
}

/// An option or a command as an item of a list; words that would be macros are kept from it.
std::string manualItem(std::string_view macro, std::string_view name, std::string_view words) {
  if (words.empty()) return text::cat(".It ", macro, " ", name, "\n");
  return text::cat(".It ", macro, " ", name, " Ar \"", words, "\"\n");
}

std::string manualOptions(const std::function<bool(const Option&)>& isWanted) {
  std::string list;
  for (const Option& option : options()) {
    if (!isWanted(option)) continue;
    list += manualItem("Fl", text::cat("-", option.name.substr(2)), option.value) +
            manualLine(option.gist);
  }
  return list.empty() ? list : text::cat(".Bl -tag -width Ds\n", list, ".El\n");
}

}  // namespace

std::string overview() {
  std::string out = "quillpost-board: a board for agents, and for the person who leads them.\n";
  forEachCommand([&](std::string_view group) { out += text::cat("\n", group, "\n"); },
                 [&](const Command& command) {
                   out += inColumn(text::cat("  ", invocationOf(command)), command.gist);
                 });
  out += text::cat("\nEvery command\n", optionLines(nullptr));
  return out +
         "\nquillpost-board COMMAND --help says more.\n"
         "A text that is - is read from standard input.\n";
}

std::string helpOn(const Command& command) {
  std::string out =
      text::cat("usage: ", usageOf(command), "\n\n", inColumn("", text::cat(command.gist, "."), 0));
  if (!command.more.empty()) out += inColumn("", command.more, 0);
  const std::string own = optionLines(&command);
  if (!own.empty()) out += text::cat("\n", own);
  return text::cat(out, "\n", optionLines(nullptr));
}

std::string manualPage() {
  std::string page(texts::manualHead);
  forEachCommand([&](std::string_view group) { page += text::cat(".Ss ", group, "\n"); },
                 [&](const Command& command) {
                   page += text::cat(".Bl -tag -width Ds\n",
                                     manualItem("Cm", command.name, command.words),
                                     manualLine(text::cat(command.gist, ".")));
                   if (!command.more.empty()) page += manualLine(command.more);
                   page += manualOptions([&](const Option& option) {
                     return !option.commands.empty() && takes(command, option);
                   });
                   page += ".El\n";
                 });
  page += ".Sh OPTIONS\nEvery command takes these.\n";
  page += manualOptions([](const Option& option) { return option.commands.empty(); });
  return page + std::string(texts::manualTail);
}

std::string commandList() {
  std::string list;
  forEachCommand(
      [&](std::string_view group) {
        list += text::cat("\n### ", group, "\n\n| Command | What it does |\n|---|---|\n");
      },
      [&](const Command& command) {
        std::string words = usageOf(command).substr(sizeof("quillpost-board"));
        for (std::size_t at = 0; (at = words.find('|', at)) != std::string::npos; at += 2)
          words.insert(at, "\\");
        list += text::cat("| `", words, "` | ", command.gist, " |\n");
      });
  return list.substr(1);
}

int help(const Line& line, const Surroundings&) {
  const std::string word = text::join(line.words, " ");
  const Command* const command = commandNamed(word);
  // Two words that only the tree's own pages are made with.
  if (word == "manual-page") {
    printLaidOut(manualPage());
  } else if (word == "command-list") {
    printLaidOut(commandList());
  } else if (word.empty() || command != nullptr) {
    printLaidOut(command != nullptr ? helpOn(*command) : overview());
  } else {
    complain(text::cat("there is no command ", word));
    std::fputs(text::cat("usage: ", usageOf(*line.command), "\n").c_str(), stderr);
    return wrongUse;
  }
  return 0;
}

}  // namespace quillpost::board
