#include "docs/command_page.h"

#include "base/text.h"
#include "tools/tools.h"

#include <string>
#include <string_view>

namespace quillpost::docs {
namespace {

std::string words(const CommandLine& line) {
  std::string out;
  for (const std::string_view name : line.positionals) out += text::cat(" ", name);
  return out.empty() ? out : out.substr(1);
}

}  // namespace

Blocks commandBlocks() {
  std::string table = "| Verb | Tool | Words | Main text | Also |\n|---|---|---|---|---|\n";
  for (const Tool& tool : tools) {
    const CommandLine& line = tool.commandLine;
    table += text::cat("| ", code(line.name), " | [", tool.name, "](tools.md#", tool.name, ") | ",
                       words(line), " | ", line.mainText, " | ", text::join(line.otherNames, ", "),
                       " |\n");
  }
  return {{"verbs", table}};
}

}  // namespace quillpost::docs
