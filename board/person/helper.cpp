#include "board/person/helper.h"

#include "base/display.h"
#include "base/text.h"
#include "board/person/client.h"
#include "board/person/command_path.h"
#include "board/person/console.h"
#include "board/rules/command_words.h"
#include "board/verbs/person.h"
#include "json/writer.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace quillpost::board {

namespace {

constexpr std::string_view plainNames[] = {"HOME", "USER", "SHELL", "LANG", "TERM"};
constexpr std::string_view localeNames = "LC_";

bool isPlain(std::string_view name) {
  return name.starts_with(localeNames) ||
         std::ranges::find(plainNames, name) != std::end(plainNames);
}

/// Asks on the terminal; without one only what the command line says counts.
bool isAgreed(const Line& line) {
  if (line.isSure) return true;
  if (::isatty(STDIN_FILENO) == 0) return false;
  std::cout << "Allow it? [y/N] " << std::flush;
  std::string word;
  std::getline(std::cin, word);
  return word == "y" || word == "Y" || word == "yes";
}

/// Sends a helper to the board and prints what it says.
int send(const Line& line, const Helper& helper) {
  TeamworkRequest request = line.request;
  request.body = json::encode(helper);
  std::string why;
  const std::optional<TeamworkResponse> response = askServed(line, request, why);
  if (!response) return complain(why);
  print(response->message.value_or("Done."));
  return 0;
}

}  // namespace

std::optional<std::vector<std::string>> variablesOfHelper(const Surroundings& around,
                                                          std::span<const std::string> named,
                                                          std::string& why) {
  std::vector<std::string> variables;
  std::vector<std::string> missing(named.begin(), named.end());
  for (const std::string& variable : around.variables) {
    const std::string_view name = std::string_view(variable).substr(0, variable.find('='));
    const bool isNamed = std::erase(missing, name) > 0;
    if (name != "PATH" && (isNamed || isPlain(name))) variables.push_back(variable);
  }
  if (!missing.empty()) {
    why = text::cat("there is no variable ", missing.front(), " here");
    return std::nullopt;
  }
  variables.push_back(pathWith(around));
  return variables;
}

std::optional<Helper> helperHere(const Line& line, const Surroundings& around, std::string& why) {
  Helper helper;
  helper.id = line.request.agent.value_or("");
  helper.explanation = line.request.explanation.value_or("");
  helper.runsWithoutApprovals = line.runsWithoutApprovals;
  helper.hasTools = line.hasTools;
  std::error_code failed;
  helper.directory =
      std::filesystem::canonical(line.startIn.empty() ? "." : line.startIn, failed).string();
  if (failed || !std::filesystem::is_directory(helper.directory, failed)) {
    why = text::cat("there is no directory ", line.startIn.empty() ? "here" : line.startIn);
    return std::nullopt;
  }
  std::optional<std::vector<std::string>> variables =
      variablesOfHelper(around, line.request.tags.value_or(std::vector<std::string>{}), why);
  if (!variables) return std::nullopt;
  helper.variables = *std::move(variables);
  return helper;
}

int allowHelper(const Line& line, const Surroundings& around) {
  std::string why;
  std::optional<Helper> helper = helperHere(line, around, why);
  if (!helper) return complain(why);
  helper->words = line.words;
  return send(line, *helper);
}

int approveHelper(const Line& line, const Surroundings& around) {
  std::string why;
  const std::optional<Helper> helper = helperHere(line, around, why);
  if (!helper) return complain(why);
  TeamworkRequest looking = line.request;
  looking.method = personHelpers;
  const std::optional<Sheet> sheet = askForSheet(line, looking, why);
  if (!sheet) return complain(why);
  const Section* const suggested = sheet->find("suggested");
  for (const Section::Row& row : suggested->rows) {
    if (cellOf(*suggested, row, "helper") != helper->id) continue;
    Line approved = line;
    approved.request.command = std::string(cellOf(*suggested, row, "arguments"));
    print(text::cat(helper->id, ", suggested by ", cellOf(*suggested, row, "by"), ", would run in ",
                    helper->directory, ":\n  ", displayed(*approved.request.command, Marks::all),
                    "\nwith the line that names its task in the place of ", promptPlace,
                    ", or as one more argument."));
    if (!isAgreed(line)) return complain("nothing is allowed; --yes says so without being asked");
    return send(approved, *helper);
  }
  return complain(text::cat("no helper is suggested under the name ", helper->id));
}

}  // namespace quillpost::board
