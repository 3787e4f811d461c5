#pragma once

// What every row keeps. tools.cpp holds each tool to it when it is compiled.

#include "tools/tools.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace quillpost {

/// Whether a tool and each of its properties has a name of its own and says what it is for.
constexpr bool isDescribed(const Tool& tool) {
  const auto isClear = [&tool](const Property& property) {
    return findProperty(tool, property.name) == &property && !property.description.empty();
  };
  return !tool.description.empty() && std::ranges::all_of(tool.properties, isClear);
}

/// Whether a word may fill the property: one of the tool's, a list only when no word follows.
constexpr bool isPositional(const Tool& tool, std::string_view name, bool isLast) {
  return std::ranges::any_of(tool.properties, [name, isLast](const Property& property) {
    return property.name == name && (property.type != Type::strings || isLast);
  });
}

/// Whether the words of a call fill properties of the tool: all that are required, none twice, and
/// nothing but a text with the main text's word. A boolean among them has its spellings.
constexpr bool fillsItsProperties(const Tool& tool) {
  const CommandLine& line = tool.commandLine;
  std::size_t booleans = 0;
  for (const std::string_view& name : line.positionals) {
    const bool isLast = &name + 1 == line.positionals.end() && line.mainText.empty();
    if (!isPositional(tool, name, isLast)) return false;
    if (std::ranges::count(line.positionals, name) != 1) return false;
    if (findProperty(tool, name)->type == Type::boolean) ++booleans;
  }
  if (line.yes.empty() != line.no.empty()) return false;
  if (booleans != (line.yes.empty() ? 0 : 1)) return false;
  for (const Property& property : tool.properties)
    if (property.need == Need::required && !line.positionals.contains(property.name)) return false;
  if (line.mainText.empty()) return true;
  if (line.positionals.contains(line.mainText)) return false;
  return std::ranges::any_of(tool.properties, [&line](const Property& property) {
    return property.name == line.mainText && property.type == Type::string;
  });
}

/// The name of the only tool that the verb can mean; empty when it is none or one of several.
constexpr std::string_view onlyMeaning(std::string_view verb) {
  std::string_view found;
  for (const Tool& tool : tools) {
    const CommandLine& line = tool.commandLine;
    if (verb != tool.name && verb != line.name && !line.otherNames.contains(verb)) continue;
    if (!found.empty()) return {};
    found = tool.name;
  }
  return found;
}

/// Whether the tool's name and each verb of its command line means this tool and no other.
constexpr bool hasVerbsOfItsOwn(const Tool& tool) {
  const CommandLine& line = tool.commandLine;
  const auto meansIt = [&tool](std::string_view verb) { return onlyMeaning(verb) == tool.name; };
  return meansIt(tool.name) && meansIt(line.name) && std::ranges::all_of(line.otherNames, meansIt);
}

/// Whether the command line says what it is for and shows two examples, of which at least the first
/// begins with its verb.
constexpr bool isShown(const CommandLine& line) {
  if (line.gist.empty() || line.examples.size() != 2) return false;
  const std::string_view first = *line.examples.begin();
  return first.starts_with(line.name) &&
         (first.size() == line.name.size() || first[line.name.size()] == ' ');
}

}  // namespace quillpost
