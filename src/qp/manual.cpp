#include "qp/manual.h"

#include "base/text.h"
#include "qp/help.h"
#include "qp/line.h"
#include "qp/manual_text.h"
#include "qp/options.h"
#include "qp/status.h"
#include "tools/tools.h"

#include <string_view>

namespace quillpost {
namespace {

struct Spelling {
  std::string_view character;
  std::string_view escape;
};

// What the characters of the texts are called in a page, which holds none but ASCII itself.
constexpr Spelling spellings[] = {{"\\", "\\e"},  {"—", "\\(em"}, {"–", "\\(en"},
                                  {"…", "..."},   {"≤", "\\(<="}, {"‘", "\\(oq"},
                                  {"’", "\\(cq"}, {"“", "\\(lq"}, {"”", "\\(rq"}};

/// The text as words of a page.
std::string escaped(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const Spelling* found = nullptr;
    for (const Spelling& spelling : spellings)
      if (text.starts_with(spelling.character)) found = &spelling;
    out += found != nullptr ? found->escape : text.substr(0, 1);
    text.remove_prefix(found != nullptr ? found->character.size() : 1);
  }
  return out;
}

/// A line of words: one that begins as a request would is kept from being one.
std::string line(std::string_view words) {
  const bool isRequest = words.starts_with('.') || words.starts_with('\'');
  return text::cat(isRequest ? "\\&" : "", escaped(words), "\n");
}

std::string literal(std::string_view words) { return text::cat(".Dl ", escaped(words), "\n"); }

std::string optionItem(const Property& property) {
  std::string item = text::cat(".It Fl -", kebab(property.name));
  if (property.type != Type::boolean)
    item += text::cat(" Ar ", property.type == Type::integer ? "number" : "text",
                      property.type == Type::strings ? " , ..." : "");
  item += "\n" + line(property.description);
  std::string_view before = "One of ";
  std::string values;
  for (const std::string_view value : property.oneOf) {
    values += text::cat(before, value.empty() ? std::string_view("\"\"") : value);
    before = ", ";
  }
  return values.empty() ? item : text::cat(item, line(values + "."));
}

std::string verbPart(const Tool& tool) {
  const CommandLine& words = tool.commandLine;
  std::string part = text::cat(".Ss ", words.name, "\n", literal(usageLine(tool)), ".Pp\n");
  part += line(tool.description);
  std::string options;
  for (const Property& property : tool.properties) options += optionItem(property);
  for (const ExtraOption& extra : extraOptions)
    if (extra.tool == tool.name) options += optionItem(extra.property);
  if (!options.empty()) part += text::cat(".Bl -tag -width Ds\n", options, ".El\n");
  std::string names = tool.name == words.name ? "" : std::string(tool.name);
  for (const std::string_view name : words.otherNames)
    names += text::cat(names.empty() ? "" : ", ", name);
  part += ".Pp\n";
  if (!names.empty()) part += line(text::cat("Also: ", names, "."));
  part += "Examples:\n.Pp\n";
  for (const std::string& example : examplesOf(tool)) part += literal(example);
  return part;
}

std::string statusPart() {
  std::string part = ".Sh EXIT STATUS\n.Bl -tag -width Ds\n";
  for (const auto& [number, meaning] : texts::statusMeanings)
    part += text::cat(".It ", number, "\n", line(meaning));
  return part + ".El\n";
}

}  // namespace

std::string manualPage() {
  std::string page(texts::manualHead);
  page += ".Sh THE COMMAND'S OWN VERBS\n.Bl -tag -width Ds\n";
  for (const CommandRow& row : commandRows)
    if (!row.gist.empty())
      page += text::cat(".It Cm ", row.name, row.words.empty() ? "" : " ", row.words, "\n",
                        line(row.gist));
  page += ".El\n";
  page += ".Sh THE BOARD'S VERBS\n";
  for (const Subject& subject : subjects)
    for (const Tool& tool : subject.tools) page += verbPart(tool);
  return text::cat(page, statusPart(), texts::manualTail);
}

}  // namespace quillpost
