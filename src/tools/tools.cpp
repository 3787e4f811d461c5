#include "tools/tools.h"

#include "tools/row_rules.h"

#include <algorithm>

namespace quillpost {

static_assert(std::ranges::all_of(tools, isDescribed),
              "a tool and each of its properties is named once and described");
static_assert(std::ranges::all_of(tools, fillsItsProperties),
              "the words of a command line fill properties of its tool");
static_assert(std::ranges::all_of(tools, hasVerbsOfItsOwn), "a verb means one tool");
static_assert(std::ranges::all_of(tools, isShown, &Tool::commandLine),
              "a command line is explained, and shown by two examples");

const Tool* findByVerb(std::string_view verb) {
  const auto isSame = [](char given, char own) {
    return given == own || (given == '-' && own == '_');
  };
  for (const Tool& tool : tools) {
    const CommandLine& line = tool.commandLine;
    if (std::ranges::equal(verb, tool.name, isSame)) return &tool;
    if (verb == line.name || line.otherNames.contains(verb)) return &tool;
  }
  return nullptr;
}

}  // namespace quillpost
