#include "board/rules/helper.h"

#include "base/display.h"
#include "board/rules/limits.h"

#include <algorithm>

namespace quillpost::board {

namespace {

/// How many of a helper's last lines its asker is told, and how many characters of each.
constexpr std::size_t lastLines = 3;
constexpr std::size_t lastCharacters = 120;

/// What is kept, from the beginning of a character on.
std::string_view kept(const Output& output) {
  std::string_view bytes = output.bytes;
  if (bytes.size() > outputKept) bytes.remove_prefix(bytes.size() - outputKept);
  if (bytes.size() == output.bytes.size() && output.forgotten == 0) return bytes;
  constexpr auto isInside = [](char byte) { return (static_cast<unsigned char>(byte) >> 6) == 2; };
  const auto* const start = std::ranges::find_if_not(bytes, isInside);
  bytes.remove_prefix(static_cast<std::size_t>(start - bytes.begin()));
  return bytes;
}

}  // namespace

void addOutput(Output& output, std::string_view bytes) {
  if (bytes.size() > outputKept) {
    output.forgotten += bytes.size() - outputKept;
    bytes.remove_prefix(bytes.size() - outputKept);
  }
  output.bytes += bytes;
  // Only now and then, so that each byte is moved once at most.
  if (output.bytes.size() < 2 * outputKept) return;
  output.forgotten += output.bytes.size() - outputKept;
  output.bytes.erase(0, output.bytes.size() - outputKept);
}

std::string outputText(const Output& output) {
  const std::string_view bytes = kept(output);
  const uint64_t forgotten = output.forgotten + (output.bytes.size() - bytes.size());
  std::string shown;
  if (forgotten > 0) shown = text::cat("(", forgotten, " earlier bytes are forgotten)\n");
  shown += displayed(bytes);
  while (shown.ends_with('\n')) shown.pop_back();
  return shown;
}

std::string lastOutput(const Output& output) {
  // Four bytes a character are enough to choose from.
  std::string_view bytes = kept(output);
  constexpr std::size_t looked = 4 * lastLines * lastCharacters;
  if (bytes.size() > looked) bytes.remove_prefix(bytes.size() - looked);
  std::vector<std::string> lines;
  for (const std::string_view line : text::split(bytes, '\n')) {
    std::string words = cutWithMark(oneLine(displayedInLine(line)), lastCharacters);
    if (!words.empty()) lines.push_back(std::move(words));
  }
  if (lines.size() > lastLines) lines.erase(lines.begin(), lines.end() - lastLines);
  return text::join(lines, " / ");
}

}  // namespace quillpost::board
