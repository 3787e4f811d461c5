#include "qp/options.h"

#include "base/text.h"

#include <algorithm>

namespace quillpost {
namespace {

bool isCapital(char letter) { return letter >= 'A' && letter <= 'Z'; }

bool isSpelled(std::string_view spelled, const Property& property) {
  return spelled == property.name || spelled == kebab(property.name);
}

}  // namespace

std::string kebab(std::string_view name) {
  std::string out;
  for (std::size_t i = 0; i < name.size(); ++i) {
    // A run of capitals, as in taskIDs, is one word.
    if (i > 0 && isCapital(name[i]) && !isCapital(name[i - 1])) out.push_back('-');
    out.push_back(name[i]);
  }
  return text::lowered(out);
}

std::optional<OptionRow> findOption(const Tool& tool, std::string_view spelled) {
  for (const Property& property : tool.properties)
    if (isSpelled(spelled, property)) return OptionRow{&property, property.name};
  for (const ExtraOption& extra : extraOptions) {
    if (extra.tool != tool.name || !isSpelled(spelled, extra.property)) continue;
    const bool isArgument = !extra.argument.empty();
    return OptionRow{.property = &extra.property,
                     .key = isArgument ? extra.argument : extra.property.name,
                     .isArgument = isArgument,
                     .least = extra.least};
  }
  return std::nullopt;
}

std::vector<std::string> optionsOf(const Tool& tool) {
  std::vector<std::string> options;
  for (const Property& property : tool.properties)
    options.push_back(text::cat("--", kebab(property.name)));
  for (const ExtraOption& extra : extraOptions)
    if (extra.tool == tool.name) options.push_back(text::cat("--", kebab(extra.property.name)));
  options.emplace_back("--json");
  return options;
}

std::string usageLine(const Tool& tool) {
  const CommandLine& line = tool.commandLine;
  std::string usage = text::cat("qp ", line.name);
  for (const std::string_view name : line.positionals) {
    const Property* property = findProperty(tool, name);
    if (property->type == Type::strings) {
      text::append(usage, text::cat(" [<", name, ">...]"));
    } else if (property->type == Type::boolean) {
      text::append(usage, text::cat(" ", line.yes, "|", line.no));
    } else {
      text::append(usage, text::cat(" <", name, ">"));
    }
  }
  if (!line.mainText.empty()) text::append(usage, text::cat(" [<", line.mainText, ">]"));
  for (const std::string& option : optionsOf(tool)) {
    const std::optional<OptionRow> row = findOption(tool, std::string_view(option).substr(2));
    const bool isWord = row && (line.positionals.contains(row->key) || line.mainText == row->key);
    if (!isWord) text::append(usage, text::cat(" [", option, "]"));
  }
  return usage;
}

}  // namespace quillpost
