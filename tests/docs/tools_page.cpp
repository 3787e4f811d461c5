#include "docs/tools_page.h"

#include "base/text.h"
#include "tools/tool_name.h"
#include "tools/tools.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::docs {
namespace {

std::string_view typeWord(Type type) {
  return type == Type::strings ? "list of strings" : json::wordFor(type);
}

std::string choices(const Property& property) {
  if (property.oneOf.empty()) return {};
  std::string out = " One of ";
  for (std::size_t i = 0; i < property.oneOf.size(); ++i) {
    if (i > 0) out += ", ";
    out += code(text::cat("\"", property.oneOf[i], "\""));
  }
  return out + ".";
}

std::string propertyTable(const Tool& tool) {
  if (tool.properties.empty()) return "No arguments.\n";
  std::string out = "| Argument | Type | Needed | Meaning |\n|---|---|---|---|\n";
  for (const Property& property : tool.properties)
    out += text::cat("| ", code(property.name), " | ", typeWord(property.type), " | ",
                     property.need == Need::required ? "yes" : "no", " | ",
                     cell(property.description), cell(choices(property)), " |\n");
  return out;
}

/// The text as the client gets it; the one that waits has an ending for each kind of client.
std::string description(const Tool& tool) {
  if (tool.name != waitForChanges) return text::cat(tool.description, "\n");
  return text::cat(tool.description, "\n\nFor Claude it ends:\n\n> ", texts::waitEndingForClaude,
                   "\n\nFor every other client:\n\n> ", texts::waitEndingForOthers, "\n");
}

}  // namespace

Blocks toolBlocks() {
  std::string list, sections;
  for (const Tool& tool : tools) {
    list += text::cat("- [", tool.name, "](#", tool.name, ")\n");
    if (!sections.empty()) sections += "\n";
    sections += text::cat("## ", tool.name, "\n\n", description(tool), "\n", propertyTable(tool));
  }
  return {{"list", list}, {"tools", sections}};
}

}  // namespace quillpost::docs
