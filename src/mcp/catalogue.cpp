#include "mcp/catalogue.h"

#include "base/text.h"
#include "json/writer.h"
#include "tools/tools.h"

#include <algorithm>

namespace quillpost {
namespace {

constexpr std::string_view typeWord(Type type) {
  switch (type) {
    case Type::string:
      return "string";
    case Type::integer:
      return "integer";
    case Type::boolean:
      return "boolean";
    case Type::strings:
      return "array";
  }
  return {};
}

void addProperty(json::Object& properties, const Property& property) {
  json::Object schema = properties.object(property.name);
  schema.add("type", typeWord(property.type));
  if (property.type == Type::strings) schema.object("items").add("type", "string");
  schema.add("description", property.description);
  if (property.oneOf.empty()) return;
  json::Array choices = schema.array("enum");
  for (const std::string_view choice : property.oneOf) choices.add(choice);
}

void addSchema(json::Object& schema, const Tool& tool) {
  schema.add("type", "object");
  {
    json::Object properties = schema.object("properties");
    for (const Property& property : tool.properties) addProperty(properties, property);
  }
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
  {
    json::Object result(text);
    json::Array list = result.array("tools");
    for (const Tool& tool : tools) {
      json::Object row = list.object();
      row.add("name", tool.nameText());
      if (tool.nameText() == waitForChanges) {
        row.add("description", text::cat(tool.description, waitEnding));
      } else {
        row.add("description", tool.description);
      }
      json::Object schema = row.object("inputSchema");
      addSchema(schema, tool);
    }
  }
  return text;
}

}  // namespace quillpost
