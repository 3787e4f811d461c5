#include "tidy/rules.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace quillpost::tidy {
namespace {

constexpr std::size_t mostHeaderLines = 200;
constexpr std::size_t mostSourceLines = 400;

/// The programs and what the tests share; a test itself is as long as its table.
bool hasLimitedLength(const Source& source) {
  const bool isShared = source.isIn("tests/harness/") || source.isIn("tests/tidy/");
  return source.isProgram() || (source.isCode() && isShared && !source.isTest());
}

/// Files that are one table, or nothing but words.
bool isTableOrWords(const Source& source) {
  // Of the tools' headers, these have functions.
  constexpr auto functions = std::to_array<std::string_view>(
      {"src/tools/tool.h", "src/tools/tool_name.h", "src/tools/tools.h", "src/tools/row_rules.h"});
  if (source.isIn("src/tools/") && source.isHeader())
    return std::ranges::count(functions, source.path) == 0;
  return source.isIn("src/render/texts/") || source.path == "src/mcp/instructions.h";
}

std::string_view stemOf(std::string_view path) {
  path.remove_prefix(path.rfind('/') + 1);
  return path.substr(0, path.rfind('.'));
}

/// The folders of a path between its top folder and its file, with "/" between them.
std::string_view foldersBelowTop(std::string_view path) {
  path.remove_prefix(path.find('/') + 1);
  const std::size_t end = path.rfind('/');
  return end == std::string_view::npos ? std::string_view() : path.substr(0, end);
}

bool isThere(const Tree& tree, const std::string& path) {
  return std::ranges::find(tree, path, &Source::path) != tree.end();
}

/// Whether a line that begins a group of declarations begins one that a reader needs told: not the
/// end of something, a name for something else, a constant, a declaration ahead, nor a part of what
/// is declared above it. `next` is the line after it.
bool wantsDocumentation(std::string_view line, std::string_view next) {
  constexpr auto others =
      std::to_array<std::string_view>({"using ", "static_assert(", "extern ", "template <>"});
  constexpr auto types = std::to_array<std::string_view>({"struct ", "class ", "union ", "enum "});
  if (std::isalpha(static_cast<unsigned char>(line.front())) == 0) return false;
  if (std::ranges::any_of(others, [&](auto word) { return line.starts_with(word); })) return false;
  const std::string_view head = line.starts_with("template ") ? next : line;
  if (std::ranges::any_of(types, [&](auto word) { return head.starts_with(word); }))
    return head.find('{') != std::string_view::npos && head.find('<') >= head.find(" : ");
  const std::size_t call = head.find('(');
  if (call >= head.find(" = ")) return false;
  const std::string_view name = head.substr(0, call);
  return name.find("::", name.rfind(' ') + 1) == std::string_view::npos;
}

}  // namespace

Findings checkPragmaOnce(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!source.isHeader()) continue;
    if (source.lines.empty() || source.lines.front() != "#pragma once") {
      findings.push_back({source.path, 1, "a header begins with #pragma once"});
    }
  }
  return findings;
}

Findings checkFileLengths(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!hasLimitedLength(source) || isTableOrWords(source)) continue;
    const auto most = source.isHeader() ? mostHeaderLines : mostSourceLines;
    const auto length = static_cast<std::size_t>(std::ranges::count(source.fenced, false));
    if (length > most) {
      findings.push_back({source.path, source.lines.size(),
                          std::to_string(length) + " lines, and " + std::to_string(most) +
                              " are enough: cut it in two"});
    }
  }
  return findings;
}

Findings checkDocumentation(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!hasLimitedLength(source) || !source.isHeader()) continue;
    bool isDetail = false, isTold = false, isGroup = false;
    for (std::size_t i = 0; i < source.lines.size(); ++i) {
      const std::string& line = source.lines[i];
      if (line.starts_with("namespace detail")) isDetail = true;
      if (line.starts_with("}  // namespace detail")) isDetail = false;
      if (line.empty() || line.starts_with("namespace") || line.starts_with("#")) {
        isTold = isGroup = false;
      } else if (line.starts_with("//")) {
        isTold = isTold || line.starts_with("///");
      } else if (!isGroup) {
        isGroup = true;
        const std::string next = i + 1 < source.code.size() ? source.code[i + 1] : "";
        if (!isTold && !isDetail && !source.fenced[i] && wantsDocumentation(source.code[i], next))
          findings.push_back({source.path, i + 1, "no /// says what this gives"});
      }
    }
  }
  return findings;
}

Findings checkTestPerSource(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    const std::string_view path = source.path;
    if (!source.isProgram() || source.isHeader() || stemOf(path) == "main") continue;
    const std::string folder(source.isIn("board/") ? path.substr(0, path.rfind('/'))
                                                   : foldersBelowTop(path));
    const std::string test = "tests/" + folder + "/" + std::string(stemOf(path)) + "_test.cpp";
    if (!isThere(tree, test)) findings.push_back({source.path, 1, "there is no " + test});
  }
  return findings;
}

Findings checkTargets(const Tree& tree) {
  constexpr auto programs =
      std::to_array<std::string_view>({"base", "json", "model", "bridge", "tools", "render",
                                       "calls", "mcp", "qp", "entry", "harness"});
  Findings findings;
  for (const Source& source : tree) {
    if (!source.isIn("tests/") || !source.path.ends_with(".cpp")) continue;
    const std::string_view folder = foldersBelowTop(source.path);
    const bool hasProgram =
        folder.empty() || folder.starts_with("board/") || std::ranges::count(programs, folder) > 0;
    const bool servesWhole = isThere(tree, "tests/" + std::string(folder) + "_test.cpp");
    const bool isBuilt = source.isTest() ? hasProgram : folder == "harness" || servesWhole;
    if (!isBuilt) findings.push_back({source.path, 1, "no target builds this"});
  }
  return findings;
}

}  // namespace quillpost::tidy
