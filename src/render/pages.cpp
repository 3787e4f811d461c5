#include "render/pages.h"

#include "base/text.h"
#include "base/unicode.h"
#include "render/texts/tasks.h"

#include <algorithm>
#include <cstddef>

namespace quillpost {
namespace {

// Limits that keep one result small beside all else that the agent has in mind: most bodies are
// shown whole, of a log the end matters, and a longer line is data rather than prose.
constexpr int64_t bodyPageLines = 2000;
constexpr int64_t logPageLines = 30;
constexpr std::size_t bodyLineCharacters = 2000;

/// The text up to the next line feed, which is taken off `rest` together with the line.
std::string_view takeLine(std::string_view& rest) {
  const std::string_view line = rest.substr(0, rest.find('\n'));
  rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  return line;
}

void appendCut(std::string& out, std::string_view line) {
  const std::string_view kept = unicode::firstCharacters(line, bodyLineCharacters);
  out.append(kept);
  if (kept.size() < line.size()) out.append("…");
}

void appendAligned(std::string& out, int64_t number, std::size_t width) {
  const std::string digits = text::cat(number);
  out.append(width - digits.size(), ' ').append(digits);
}

/// How many lines a page has.
int64_t pageSize(const Page& page, int64_t usual) {
  return std::max<int64_t>(page.limit.value_or(usual), 1);
}

}  // namespace

std::string numberedBody(std::string_view body, const Page& page) {
  // A line feed at the end closes the last line and begins no other.
  if (body.ends_with('\n')) body.remove_suffix(1);
  if (body.empty()) return std::string(texts::emptyBody);

  const int64_t lineCount = 1 + std::count(body.begin(), body.end(), '\n');
  const int64_t first = std::max<int64_t>(page.offset.value_or(1), 1);
  if (lineCount < first) return texts::offsetPastEnd({.offset = first, .lineCount = lineCount});
  const int64_t last =
      std::min(text::saturatingAdd(first - 1, pageSize(page, bodyPageLines)), lineCount);

  std::string_view rest = body;
  for (int64_t skipped = 1; skipped < first; ++skipped) takeLine(rest);
  const std::size_t width = text::cat(last).size();
  std::string out;
  for (int64_t number = first; number <= last; ++number) {
    if (number > first) out.push_back('\n');
    appendAligned(out, number, width);
    out.push_back('\t');
    appendCut(out, takeLine(rest));
  }

  const bool linesRemain = last < lineCount;
  if (first > 1 || linesRemain) {
    const std::string more = linesRemain ? texts::continueAt(last + 1) : std::string();
    out.append("\n\n").append(
        texts::pageFooter({.first = first, .last = last, .lineCount = lineCount}, more));
  }
  return out;
}

void addLogPage(json::Array& out, std::span<const std::string> log, const Page& page) {
  if (log.empty()) return;
  const int64_t lineCount = text::countOf(log);
  const int64_t size = pageSize(page, logPageLines);
  const int64_t skipped =
      page.offset ? std::clamp<int64_t>(text::saturatingSubtract(*page.offset, 1), 0, lineCount)
                  : std::max<int64_t>(lineCount - size, 0);
  const int64_t shown = std::min(size, lineCount - skipped);

  if (skipped > 0) out.add(texts::earlierLinesOmitted(skipped));
  for (const std::string& line :
       log.subspan(static_cast<std::size_t>(skipped), static_cast<std::size_t>(shown))) {
    out.add(line);
  }
}

}  // namespace quillpost
