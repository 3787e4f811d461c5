#include "harness/sections.h"

#include <algorithm>
#include <optional>

namespace quillpost::testing {
namespace {

constexpr std::string_view opening = "-- ";
constexpr std::string_view closing = " --";

/// The name in a section header; nothing when the line is not one.
std::optional<std::string_view> sectionName(std::string_view line) {
  if (line.size() <= opening.size() + closing.size()) return std::nullopt;
  if (!line.starts_with(opening) || !line.ends_with(closing)) return std::nullopt;
  return line.substr(opening.size(), line.size() - opening.size() - closing.size());
}

}  // namespace

std::string_view SectionFile::body(std::string_view name) const {
  const auto found = std::find_if(sections.begin(), sections.end(),
                                  [&](const Section& section) { return section.name == name; });
  return found == sections.end() ? std::string_view() : std::string_view(found->body);
}

SectionFile parseSections(std::string_view text) {
  SectionFile file;
  for (const std::string& line : linesOf(text)) {
    if (const std::optional<std::string_view> name = sectionName(line)) {
      file.sections.push_back({std::string(*name), ""});
      continue;
    }
    std::string& place = file.sections.empty() ? file.prose : file.sections.back().body;
    place += line;
    place += '\n';
  }
  return file;
}

std::string renderSections(const SectionFile& file) {
  std::string text = file.prose;
  for (const Section& section : file.sections) {
    text += opening;
    text += section.name;
    text += closing;
    text += '\n';
    text += section.body;
  }
  return text;
}

std::vector<std::string> linesOf(std::string_view body) {
  std::vector<std::string> lines;
  while (!body.empty()) {
    const std::size_t end = std::min(body.find('\n'), body.size());
    lines.emplace_back(body.substr(0, end));
    body.remove_prefix(std::min(end + 1, body.size()));
  }
  return lines;
}

}  // namespace quillpost::testing
