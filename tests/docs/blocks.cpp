#include "docs/blocks.h"

#include "base/text.h"

#include <vector>

namespace quillpost::docs {
namespace {

constexpr std::string_view blockStart = "<!-- generated: ";
constexpr std::string_view markEnd = " -->\n";
constexpr std::string_view blockEnd = "<!-- end -->\n";

std::string_view withoutIndent(std::string_view line) {
  const std::size_t start = line.find_first_not_of(' ');
  return start == std::string_view::npos ? std::string_view() : line.substr(start);
}

/// Whether a line declares this member: its last word before a ";" or an initialiser.
bool declares(std::string_view line, std::string_view member) {
  if (!line.ends_with(';')) return false;
  const std::string_view declaration = line.substr(0, line.find_first_of("=;"));
  const std::size_t last = declaration.find_last_not_of(' ');
  if (last == std::string_view::npos) return false;
  const std::string_view words = declaration.substr(0, last + 1);
  return words.ends_with(text::cat(" ", member));
}

std::string escaped(std::string_view content) {
  std::string out;
  for (const char byte : content) {
    if (byte == '|') out += '\\';
    out += byte == '\n' ? ' ' : byte;
  }
  return out;
}

}  // namespace

std::string filled(std::string_view page, const Blocks& blocks) {
  std::string out;
  while (true) {
    const std::size_t start = page.find(blockStart);
    const std::size_t nameStart = start + blockStart.size();
    const std::size_t nameEnd =
        start == std::string_view::npos ? start : page.find(markEnd, nameStart);
    const std::size_t end =
        nameEnd == std::string_view::npos ? nameEnd : page.find(blockEnd, nameEnd);
    if (end == std::string_view::npos) break;
    const auto block = blocks.find(page.substr(nameStart, nameEnd - nameStart));
    const std::size_t content = nameEnd + markEnd.size();
    out += page.substr(0, content);
    out += block != blocks.end() ? std::string_view(block->second)
                                 : page.substr(content, end - content);
    out += blockEnd;
    page.remove_prefix(end + blockEnd.size());
  }
  out += page;
  return out;
}

int countOf(std::string_view page, std::string_view block) {
  const std::string mark = text::cat(blockStart, block, markEnd);
  int count = 0;
  for (std::size_t at = page.find(mark); at != std::string_view::npos; at = page.find(mark, at + 1))
    ++count;
  return count;
}

std::string cell(std::string_view content) { return escaped(content); }

std::string code(std::string_view content) { return text::cat("`", content, "`"); }

std::string memberComment(std::string_view source, std::string_view structName,
                          std::string_view member) {
  const std::size_t start = source.find(text::cat("struct ", structName, " {"));
  if (start == std::string_view::npos) return {};
  std::string comment;
  int depth = 0;
  for (const std::string_view whole : text::split(source.substr(start), '\n')) {
    const std::string_view line = withoutIndent(whole);
    if (depth == 1 && line.starts_with("///")) {
      if (!comment.empty()) comment += ' ';
      comment += withoutIndent(line.substr(3));
    } else {
      if (depth == 1 && declares(line, member)) return comment;
      comment.clear();
    }
    for (const char byte : line) depth += byte == '{' ? 1 : byte == '}' ? -1 : 0;
    if (depth == 0) return {};
  }
  return {};
}

}  // namespace quillpost::docs
