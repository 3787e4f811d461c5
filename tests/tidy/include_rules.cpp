#include "tidy/rules.h"

#include <algorithm>
#include <array>

namespace quillpost::tidy {
namespace {

/// An include directive.
struct Include {
  std::size_t line = 0;
  std::string path;
  bool isQuoted = false;
};

std::vector<Include> includesOf(const Source& source) {
  std::vector<Include> includes;
  if (!source.isCode()) return includes;
  constexpr std::string_view word = "#include ";
  for (std::size_t i = 0; i < source.lines.size(); ++i) {
    const std::string& line = source.lines[i];
    if (!line.starts_with(word) || line.size() < word.size() + 2) continue;
    const std::size_t end = line.find_first_of("\">", word.size() + 1);
    includes.push_back(
        {i + 1, line.substr(word.size() + 1, end - word.size() - 1), line[word.size()] == '"'});
  }
  return includes;
}

/// What a folder may include of ours: folders with a "/" at the end, or single files. The first row
/// that fits a file is its own.
struct FolderRow {
  std::string_view folder;
  std::array<std::string_view, 10> mayInclude;
};

// clang-format off
constexpr FolderRow folderTable[] = {
    {"src/base/",         {"base/"}},
    {"src/json/",         {"json/", "base/"}},
    {"src/model/",        {"model/", "json/", "base/"}},
    {"src/tools/",        {"tools/", "model/", "json/", "base/"}},
    {"src/bridge/",       {"bridge/", "model/", "json/", "base/"}},
    {"src/render/texts/", {"render/texts/", "base/text.h"}},
    {"src/render/",       {"render/", "tools/", "model/", "json/", "base/text.h", "base/unicode.h"}},
    {"src/calls/",        {"calls/", "render/", "tools/", "model/", "json/", "base/", "bridge/bridge.h"}},
    {"src/mcp/",          {"mcp/", "calls/", "render/", "tools/", "model/", "json/", "base/", "bridge/bridge.h"}},
    {"src/qp/",           {"qp/", "calls/", "render/", "tools/", "model/", "json/", "base/", "bridge/bridge.h"}},
    {"src/entry/",        {"entry/", "mcp/", "qp/", "calls/", "render/", "tools/", "bridge/", "model/", "json/", "base/"}},
    {"board/rules/",      {"board/rules/", "model/", "json/", "base/"}},
    {"board/verbs/",      {"board/verbs/", "board/rules/", "tools/tool_name.h", "model/", "json/", "base/"}},
    {"board/serving/",    {"board/serving/", "board/verbs/", "board/rules/", "tools/tool_name.h", "model/", "json/", "base/", "bridge/unix_socket.h"}},
    {"board/person/",     {"board/person/", "board/serving/", "board/verbs/", "board/rules/", "tools/tool_name.h", "model/", "json/", "base/", "bridge/unix_socket.h"}},
    {"board/page/",       {"board/page/", "board/person/", "board/serving/", "board/verbs/", "board/rules/", "model/", "json/", "base/"}},
    {"board/",            {"board/person/", "board/serving/", "base/"}},
};
// clang-format on

bool mayInclude(const FolderRow& row, std::string_view path) {
  return std::ranges::any_of(row.mayInclude, [&](std::string_view allowed) {
    if (allowed.empty()) return false;
    return allowed.ends_with('/') ? path.starts_with(allowed) : path == allowed;
  });
}

/// A system header and the only files of the programs that may include it.
struct HeaderRow {
  std::string_view header;
  std::array<std::string_view, 5> onlyIn;
};

// clang-format off
constexpr HeaderRow headerTable[] = {
    {"sys/socket.h",       {"src/bridge/unix_socket.cpp", "src/bridge/transport.cpp", "board/serving/", "board/person/client.cpp", "board/page/"}},
    {"sys/un.h",           {"src/bridge/unix_socket.cpp"}},
    {"netinet/in.h",       {}},
    {"arpa/inet.h",        {}},
    {"netdb.h",            {}},
    {"iostream",           {"board/main.cpp", "board/person/helper.cpp"}},
    {"thread",             {"src/base/clock.h", "board/page/"}},
    {"mutex",              {"board/page/"}},
    {"shared_mutex",       {}},
    {"condition_variable", {"board/page/"}},
    {"atomic",             {"board/page/", "board/person/spawn.cpp"}},
    {"future",             {}},
    {"typeinfo",           {}},
};
// clang-format on

}  // namespace

Findings checkFolders(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    const auto* const row = std::ranges::find_if(
        folderTable, [&](const FolderRow& candidate) { return source.isIn(candidate.folder); });
    for (const Include& include : includesOf(source)) {
      if (!include.isQuoted) continue;
      if (include.path.starts_with(".") || include.path.find('/') == std::string::npos) {
        findings.push_back(
            {source.path, include.line, "a path starts at the folder of the sources"});
      } else if (row != std::end(folderTable) && !mayInclude(*row, include.path)) {
        findings.push_back({source.path, include.line,
                            std::string(row->folder) + " may not include " + include.path});
      }
    }
  }
  return findings;
}

Findings checkSystemHeaders(const Tree& tree) {
  Findings findings;
  for (const Source& source : tree) {
    if (!source.isProgram()) continue;
    for (const Include& include : includesOf(source)) {
      const auto* const row = std::ranges::find(headerTable, include.path, &HeaderRow::header);
      if (include.isQuoted || row == std::end(headerTable)) continue;
      const bool allowed = std::ranges::any_of(row->onlyIn, [&](std::string_view place) {
        return !place.empty() && source.isIn(place);
      });
      if (!allowed) {
        findings.push_back(
            {source.path, include.line, "<" + include.path + "> is kept out of here"});
      }
    }
  }
  return findings;
}

}  // namespace quillpost::tidy
