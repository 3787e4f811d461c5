#include "board/page/launch.h"

#include "board/person/helper.h"
#include "board/rules/command_words.h"
#include "json/decoder.h"
#include "json/record.h"
#include "json/writer.h"

#include <tuple>
#include <utility>

namespace quillpost::board {

namespace {

/// What the page asks for.
struct Asked {
  std::optional<std::string> command;

  bool operator==(const Asked&) const = default;
  static constexpr auto fields() { return std::tuple{json::optional("command", &Asked::command)}; }
};

/// What it is told.
struct Told {
  std::string directory;
  std::vector<std::string> variables;
  std::optional<std::string> arguments;

  bool operator==(const Told&) const = default;

  static constexpr auto fields() {
    return std::tuple{json::required("directory", &Told::directory),
                      json::required("variables", &Told::variables),
                      json::optional("arguments", &Told::arguments)};
  }
};

}  // namespace

std::optional<Helper> helperWished(HelperWish wish, const Surroundings& around, std::string& why) {
  Line line;
  line.request.agent = std::move(wish.name);
  line.request.explanation = std::move(wish.explanation);
  line.runsWithoutApprovals = wish.runsWithoutApprovals;
  line.hasTools = wish.hasTools;
  std::optional<Helper> helper = helperHere(line, around, why);
  if (helper) helper->words = std::move(wish.words);
  return helper;
}

std::optional<std::string> launchOf(const std::string& body, const Surroundings& around,
                                    std::string& why) {
  const std::optional<Asked> asked = json::decode<Asked>(std::string(body));
  if (!asked) {
    why = "that is not what the page writes";
    return std::nullopt;
  }
  const std::optional<Helper> helper = helperWished({}, around, why);
  if (!helper) return std::nullopt;
  Told told;
  told.directory = helper->directory;
  for (const std::string& variable : helper->variables)
    told.variables.push_back(variable.substr(0, variable.find('=')));
  if (asked->command) {
    const std::optional<std::vector<std::string>> words = commandWords(*asked->command, why);
    if (!words) return std::nullopt;
    told.arguments = shownWords(*words);
  }
  return json::encode(told);
}

}  // namespace quillpost::board
