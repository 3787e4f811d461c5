#include "tidy/rules.h"

#include <algorithm>
#include <array>

namespace quillpost::tidy {
namespace {

constexpr std::size_t mostColumns = 100;
constexpr std::size_t mostHeaderLines = 200;
constexpr std::size_t mostSourceLines = 400;
constexpr std::size_t mostFunctionLines = 60;

bool isProgram(const Source& source) {
  return source.isCode() && (source.isIn("src/") || source.isIn("board/"));
}

/// The programs and what the tests share; a test itself is as long as its table.
bool hasLimitedLength(const Source& source) {
  if (isProgram(source)) return true;
  const bool isShared = source.isIn("tests/harness/") || source.isIn("tests/tidy/");
  return source.isCode() && isShared && !source.path.ends_with("_test.cpp");
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

std::size_t unfencedLines(const Source& source, std::size_t first, std::size_t last) {
  std::size_t count = 0;
  for (std::size_t i = first; i <= last; ++i) count += source.fenced[i] ? 0 : 1;
  return count;
}

std::size_t charactersIn(std::string_view line) {
  constexpr unsigned marker = 0xC0, continuation = 0x80;
  return static_cast<std::size_t>(std::ranges::count_if(
      line, [](char byte) { return (static_cast<unsigned char>(byte) & marker) != continuation; }));
}

std::string_view stemOf(std::string_view path) {
  path.remove_prefix(path.rfind('/') + 1);
  return path.substr(0, path.rfind('.'));
}

/// Whether a comment for the reader stands above the line, perhaps with sisters in between.
bool isDocumented(const Source& source, std::size_t line) {
  const auto contains = [&](std::size_t i, std::string_view text) {
    const std::size_t first = source.lines[i].find_first_not_of(' ');
    return first != std::string::npos &&
           std::string_view(source.lines[i]).substr(first).starts_with(text);
  };
  for (std::size_t i = line; i-- > 0;) {
    if (contains(i, "///")) return true;
    if (source.lines[i].empty() || contains(i, "namespace")) return false;
  }
  return false;
}

bool isOneOf(std::string_view folder) {
  constexpr auto folders =
      std::to_array<std::string_view>({"base", "json", "model", "bridge", "tools", "render",
                                       "calls", "mcp", "qp", "entry", "harness"});
  return std::ranges::count(folders, folder) > 0 || folder.starts_with("board/");
}

/// The folders of a path between its top folder and its file, with "/" between them.
std::string_view foldersBelowTop(std::string_view path) {
  path.remove_prefix(path.find('/') + 1);
  const std::size_t end = path.rfind('/');
  return end == std::string_view::npos ? std::string_view() : path.substr(0, end);
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

Findings checkColumns(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!source.isCode()) continue;
    for (std::size_t i = 0; i < source.lines.size(); ++i) {
      if (source.fenced[i] || source.literal[i]) continue;
      if (charactersIn(source.lines[i]) > mostColumns) {
        findings.push_back({source.path, i + 1, "more than 100 columns"});
      }
    }
  }
  return findings;
}

Findings checkFileLengths(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!hasLimitedLength(source) || isTableOrWords(source) || source.lines.empty()) continue;
    const std::size_t most = source.isHeader() ? mostHeaderLines : mostSourceLines;
    const std::size_t length = unfencedLines(source, 0, source.lines.size() - 1);
    if (length > most) {
      findings.push_back({source.path, source.lines.size(),
                          std::to_string(length) + " lines, and " + std::to_string(most) +
                              " are enough: cut it in two"});
    }
  }
  return findings;
}

Findings checkFunctionLengths(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!hasLimitedLength(source)) continue;
    for (const Declaration& declaration : declarationsOf(source)) {
      if (declaration.kind != Kind::function || !declaration.hasBody) continue;
      if (unfencedLines(source, declaration.open, declaration.close) > mostFunctionLines) {
        findings.push_back(
            {source.path, declaration.first + 1, "a function of more than 60 lines"});
      }
    }
  }
  return findings;
}

Findings checkDocumentation(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!hasLimitedLength(source) || !source.isHeader()) continue;
    for (const Declaration& declaration : declarationsOf(source)) {
      const bool isType = declaration.kind == Kind::type && declaration.hasBody;
      if (!declaration.atNamespaceScope || declaration.isDetail) continue;
      if (!isType && declaration.kind != Kind::function) continue;
      if (!isDocumented(source, declaration.first)) {
        findings.push_back({source.path, declaration.first + 1, "no /// says what this gives"});
      }
    }
  }
  return findings;
}

Findings checkGlobals(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!isProgram(source)) continue;
    for (const Declaration& declaration : declarationsOf(source)) {
      if (declaration.kind != Kind::data || !declaration.atNamespaceScope) continue;
      if (declaration.head.find("constexpr ") == std::string::npos) {
        findings.push_back(
            {source.path, declaration.first + 1, "outside functions, constexpr only"});
      }
    }
  }
  return findings;
}

Findings checkTestPerSource(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!isProgram(source) || source.isHeader() || stemOf(source.path) == "main") continue;
    const std::string_view path = source.path;
    const std::string folder(source.isIn("board/") ? path.substr(0, path.rfind('/'))
                                                   : foldersBelowTop(path));
    const std::string test =
        "tests/" + folder + "/" + std::string(stemOf(source.path)) + "_test.cpp";
    if (std::ranges::find(tree, test, &Source::path) == tree.end()) {
      findings.push_back({source.path, 1, "there is no " + test});
    }
  }
  return findings;
}

Findings checkTargets(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!source.isIn("tests/") || !source.path.ends_with(".cpp")) continue;
    const std::string_view folder = foldersBelowTop(source.path);
    const bool isTest = source.path.ends_with("_test.cpp");
    const std::string owner = "tests/" + std::string(folder) + "_test.cpp";
    const bool servesWhole = std::ranges::find(tree, owner, &Source::path) != tree.end();
    const bool built =
        isTest ? folder.empty() || isOneOf(folder) : folder == "harness" || servesWhole;
    if (!built) findings.push_back({source.path, 1, "no target builds this"});
  }
  return findings;
}

}  // namespace quillpost::tidy
