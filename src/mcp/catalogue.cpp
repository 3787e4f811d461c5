#include "mcp/catalogue.h"

#include "base/text.h"
#include "json/writer.h"
#include "tools/tool_name.h"
#include "tools/tools.h"

#include <algorithm>

namespace quillpost {
namespace {

void addProperty(json::Object schema, const Property& property) {
  schema.add("type", json::wordFor(property.type));
  if (property.type == Type::strings) schema.object("items").add("type", "string");
  schema.add("description", property.description);
  if (property.oneOf.empty()) return;
  json::Array choices = schema.array("enum");
  for (const std::string_view choice : property.oneOf) choices.add(choice);
}

void addProperties(json::Object out, const Tool& tool) {
  for (const Property& property : tool.properties) addProperty(out.object(property.name), property);
}

void addSchema(json::Object schema, const Tool& tool) {
  schema.add("type", "object");
  addProperties(schema.object("properties"), tool);
  const auto isRequired = [](const Property& property) { return property.need == Need::required; };
  if (std::ranges::any_of(tool.properties, isRequired)) {
    json::Array required = schema.array("required");
    for (const Property& property : tool.properties)
      if (isRequired(property)) required.add(property.name);
  }
  schema.add("additionalProperties", false);
}

}  // namespace

std::string toolListResult(TeamworkClientProfile::Profile profile) {
  const std::string_view waitEnding =
      traitsOf(profile).turnsExitIntoTurn ? texts::waitEndingForClaude : texts::waitEndingForOthers;
  std::string text;
  json::appendObject(text, [&](json::Object& result) {
    result.list("tools", tools, [&](json::Object& row, const Tool& tool) {
      row.add("name", tool.name);
      if (tool.name == waitForChanges) {
        row.add("description", text::cat(tool.description, waitEnding));
      } else {
        row.add("description", tool.description);
      }
      addSchema(row.object("inputSchema"), tool);
    });
  });
  return text;
}

}  // namespace quillpost
