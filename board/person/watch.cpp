#include "board/person/watch.h"

#include "base/clock.h"
#include "base/display.h"
#include "base/environment.h"
#include "base/text.h"
#include "board/person/client.h"
#include "board/person/commands.h"
#include "board/person/console.h"
#include "board/person/spawn.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace quillpost::board {

namespace {

/// How long the board may hold an answer back while nothing moves, in milliseconds: what is shown
/// of times is never older than that, and a terminal of another size is noticed as soon.
constexpr int64_t holdMs = 2000;

/// How long to rest before a board that cannot be asked is asked again.
constexpr Duration rest = std::chrono::seconds(2);

constexpr std::string_view fromTheTop = "\x1b[H";
constexpr std::string_view clearRestOfLine = "\x1b[K\n";
constexpr std::string_view clearRest = "\x1b[J";
constexpr std::string_view bell = "\a";

/// Puts who is at work above the work: a small terminal shows the beginning.
void putAgentsFirst(Sheet& sheet) {
  const auto needs = std::ranges::find(sheet.sections, "needs", &Section::name);
  const auto atWork = std::ranges::find(sheet.sections, "agents", &Section::name);
  if (needs == sheet.sections.end() || atWork == sheet.sections.end() || atWork < needs) return;
  std::rotate(std::next(needs), atWork, std::next(atWork));
}

void runFor(const Section& needs, const Section::Row& row, const Line& line,
            const Surroundings& around) {
  std::vector<std::string> variables = around.variables;
  const auto add = [&](std::string_view name, std::string_view column) {
    variables.push_back(text::cat(name, "=", displayedInLine(cellOf(needs, row, column))));
  };
  add("QUILLPOST_NEED_ID", "id");
  add("QUILLPOST_NEED_KIND", "kind");
  add("QUILLPOST_NEED", "question");
  std::string why;
  const std::optional<Spawned> spawned =
      spawn({{"sh", "-c", line.exec}, std::move(variables)}, why);
  if (spawned) {
    waitFor(spawned->pid);
  } else {
    complain(why);
  }
}

/// Shows a text: over what stands on the terminal, or after what was printed.
void draw(const std::string& text, std::size_t lines) {
  printLaidOut(lines == 0 ? text + "\n" : screenOf(text, lines));
}

}  // namespace

std::string screenOf(const std::string& text, std::size_t lines) {
  std::vector<std::string_view> rows = text::split(text, '\n');
  if (!rows.empty() && rows.back().empty()) rows.pop_back();
  std::string out(fromTheTop);
  const std::size_t room = std::max<std::size_t>(lines, 2) - 1;
  const bool isCut = rows.size() > room;
  const std::size_t shown = isCut ? room - 1 : rows.size();
  for (std::size_t i = 0; i < shown; ++i) out += text::cat(rows[i], clearRestOfLine);
  if (isCut) {
    out += text::cat("  ... ", rows.size() - shown, " more lines: `quillpost-board show` has all",
                     clearRestOfLine);
  }
  return text::cat(out, clearRest);
}

std::vector<const Section::Row*> newNeeds(const Sheet& sheet, Needs& known) {
  std::vector<const Section::Row*> fresh;
  const Section* const needs = sheet.find("needs");
  Needs now;
  if (needs != nullptr) {
    for (const Section::Row& row : needs->rows) {
      std::string key;
      for (const std::string_view column : {"thread", "kind", "id", "since"})
        key += text::cat(cellOf(*needs, row, column), "\n");
      if (!known.contains(key)) fresh.push_back(&row);
      now.insert(std::move(key));
    }
  }
  known = std::move(now);
  return fresh;
}

/// What a watcher sees: the board, or why there is none.
std::string seenText(const std::optional<Sheet>& sheet, std::string_view why) {
  if (!sheet) return text::cat(displayed(why), "\n");
  std::string text = sheetText(*sheet, pageOf(ProcessEnvironment()));
  return text.empty() ? "Nothing needs you.\n" : text;
}

/// Rings, and runs what the person wants run, for what newly needs them.
void tellFresh(const Sheet& sheet, const std::vector<const Section::Row*>& fresh, const Line& line,
               const Surroundings& around) {
  if (fresh.empty()) return;
  if (terminalLines() > 0) printLaidOut(bell);
  if (line.exec.empty()) return;
  for (const Section::Row* row : fresh) runFor(*sheet.find("needs"), *row, line, around);
}

int watchBoard(const Line& line, const Surroundings& around) {
  SteadyClock clock;
  Needs known;
  bool isFirst = true;
  int64_t rev = -1;
  std::string drawn;
  for (;;) {
    TeamworkRequest request = viewOf(line);
    request.sinceRev = rev;
    request.holdMs = holdMs;
    std::string why;
    std::optional<Sheet> sheet = askForSheet(line, request, why);
    if (sheet) putAgentsFirst(*sheet);
    if (!sheet && isFirst) return complain(why);
    const std::size_t lines = terminalLines();
    const std::string text = seenText(sheet, why);
    // Without a terminal only what moved is worth printing, and not that time goes by.
    const bool hasMoved = !sheet || sheet->rev != rev;
    if (text != drawn && (lines > 0 || hasMoved)) {
      if (isFirst && lines > 0) printLaidOut("\x1b[2J");
      draw(text, lines);
      drawn = text;
    }
    if (!sheet) {
      rev = -1;
      clock.sleepFor(rest);
      continue;
    }
    rev = sheet->rev;
    const std::vector<const Section::Row*> fresh = newNeeds(*sheet, known);
    if (!isFirst) tellFresh(*sheet, fresh, line, around);
    isFirst = false;
  }
}

}  // namespace quillpost::board
