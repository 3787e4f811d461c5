// Sheets as text: for a terminal in its width and perhaps in colour, for a file as long as it is.

#include "base/columns.h"
#include "base/display.h"
#include "base/text.h"
#include "board/person/columns.h"
#include "board/person/sheet.h"

#include <algorithm>
#include <ctime>
#include <numeric>

namespace quillpost::board {

namespace {

/// What stands before every line, and between two columns.
constexpr std::size_t gap = 2;
/// What a column of words is never narrower than, and where nothing is cut no wider than is made
/// even with the others.
constexpr std::size_t leastWords = 12;
constexpr std::size_t evenWords = 48;

constexpr int64_t secondMs = 1000;
constexpr int64_t minuteMs = 60 * secondMs;
constexpr int64_t hourMs = 60 * minuteMs;
constexpr int64_t dayMs = 24 * hourMs;

/// A cell; empty in a row that is too short.
std::string cellAt(const Section::Row& row, std::size_t column) {
  return column < row.cells.size() ? row.cells[column] : std::string();
}

/// A length of time in its largest unit that is full twice, so that it is neither long nor vague.
std::string spanText(int64_t lengthMs) {
  if (lengthMs < 2 * minuteMs) return text::cat(std::max<int64_t>(0, lengthMs) / secondMs, "s");
  if (lengthMs < 2 * hourMs) return text::cat(lengthMs / minuteMs, "m");
  if (lengthMs < 2 * dayMs) return text::cat(lengthMs / hourMs, "h");
  return text::cat(lengthMs / dayMs, "d");
}

/// The time of the day; with the date when that is not within the last half day.
std::string clockText(int64_t atMs, int64_t nowMs) {
  const auto seconds = static_cast<std::time_t>(atMs / secondMs);
  std::tm parts{};
  if (::localtime_r(&seconds, &parts) == nullptr) return {};
  char written[32];
  const bool isRecent = nowMs - atMs < dayMs / 2;
  const std::size_t length =
      std::strftime(written, sizeof written, isRecent ? "%H:%M:%S" : "%b %d %H:%M", &parts);
  return {written, length};
}

class Layout {
 public:
  Layout(const Sheet& sheet, const Page& page) : sheet_(sheet), page_(page) {}

  std::string text() {
    for (const Section& section : sheet_.sections)
      if (!section.rows.empty()) add(section);
    return std::move(out_);
  }

 private:
  struct Look {
    SectionRow section;
    std::vector<ColumnRow> columns;
  };

  std::string painted(std::string_view colour, const std::string& words) const {
    if (!page_.hasColour || colour.empty() || words.empty()) return words;
    return text::cat("\x1b[", colour, words, "\x1b[0m");
  }

  void add(const Section& section) {
    Look look{sectionNamed(section.name), {}};
    for (const std::string& name : section.columns) look.columns.push_back(columnNamed(name));
    if (!out_.empty()) out_ += "\n";
    const std::string_view title = look.section.title;
    if (!title.empty()) {
      const std::string_view colour = look.section.colour;
      out_ += painted(colour.empty() ? "1m" : colour, std::string(title)) + "\n";
    }
    if (look.section.form == Form::block) {
      for (const Section::Row& row : section.rows) addBlock(look, row);
    } else {
      addTable(look, section);
    }
  }

  /// A cell as it is printed, with what stands before it; empty when it says nothing.
  std::string shown(const ColumnRow& column, const std::string& cell) const {
    if (cell.empty()) return {};
    const int64_t number = text::parseInteger(cell).value_or(0);
    std::string words;
    if (column.kind == ColumnKind::ago) {
      words = spanText(sheet_.nowMs - number);
    } else if (column.kind == ColumnKind::span) {
      words = spanText(number);
    } else if (column.kind == ColumnKind::clock) {
      words = clockText(number, sheet_.nowMs);
    } else if (column.kind == ColumnKind::items) {
      words = itemsText(column, cell);
    } else if (column.kind == ColumnKind::exact) {
      words = displayed(cell, Marks::all);
    } else {
      words = displayedInLine(cell);
    }
    return text::cat(column.label, words);
  }

  /// The entries of a list; options with the numbers that an answer may give.
  static std::string itemsText(const ColumnRow& column, const std::string& cell) {
    const bool isNumbered = column.name == "options";
    std::string out;
    int64_t number = 0;
    for (const std::string_view item : text::split(cell, '\n')) {
      if (!out.empty()) out += isNumbered ? "   " : ", ";
      if (isNumbered) out += text::cat(++number, ") ");
      out += displayedInLine(item);
    }
    return out;
  }

  static bool isShort(ColumnKind kind) { return kind == ColumnKind::word || isNumber(kind); }

  /// Words over as many lines as they need, each after the first indented; the first goes on where
  /// the text stands.
  void addWrapped(std::string_view words, std::size_t indent, std::string_view colour) {
    const std::size_t room =
        page_.width == 0 ? std::string::npos : std::max(page_.width, indent + leastWords) - indent;
    bool isFirst = true;
    for (std::string_view rest : text::split(words, '\n')) {
      do {
        if (!isFirst) out_.append(indent, ' ');
        isFirst = false;
        const std::string_view line = firstLine(rest, room);
        out_ += painted(colour, std::string(line)) + "\n";
        rest.remove_prefix(line.size());
        while (rest.starts_with(' ')) rest.remove_prefix(1);
      } while (!rest.empty());
    }
  }

  /// As much as fits, up to the end of a word when one ends there.
  static std::string_view firstLine(std::string_view words, std::size_t room) {
    const std::string_view fits = unicode::firstColumns(words, room);
    if (fits.size() == words.size()) return fits;
    const std::size_t blank = words.rfind(' ', fits.size());
    return blank == std::string_view::npos || blank == 0 ? fits : words.substr(0, blank);
  }

  void addBlock(const Look& look, const Section::Row& row) {
    std::string head;
    std::size_t indent = gap;
    for (std::size_t i = 0; i < look.columns.size(); ++i) {
      if (!isShort(look.columns[i].kind)) continue;
      std::string cell = shown(look.columns[i], cellAt(row, i));
      if (cell.empty()) continue;
      if (look.columns[i].kind == ColumnKind::ago) cell += " ago";
      if (head.empty() && !look.section.isOne) indent += unicode::columnsOf(cell) + gap;
      head += text::cat(head.empty() ? "" : "  ", head.empty() ? painted("1m", cell) : cell);
    }
    out_ += text::cat("  ", head, "\n");
    for (std::size_t i = 0; i < look.columns.size(); ++i) {
      const std::string words = shown(look.columns[i], cellAt(row, i));
      if (isShort(look.columns[i].kind) || words.empty()) continue;
      out_.append(indent, ' ');
      if (look.columns[i].kind == ColumnKind::exact) {
        out_ += words + "\n";
        continue;
      }
      const bool isHint = look.columns[i].name == "do";
      addWrapped(words, indent + (isHint ? gap : 0), isHint ? "36m" : "");
    }
  }

  /// How wide each column is: as wide as it needs to be, and together no wider than the page, for
  /// which those of words give way.
  std::vector<std::size_t> widthsOf(const Look& look, const Section& section) const {
    std::vector<std::size_t> widths(look.columns.size());
    for (const Section::Row& row : section.rows)
      for (std::size_t i = 0; i < widths.size(); ++i)
        widths[i] = std::max(widths[i], unicode::columnsOf(shown(look.columns[i], cellAt(row, i))));
    std::vector<std::size_t> flexible;
    std::size_t fixed = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      if (look.columns[i].kind == ColumnKind::note) continue;
      if (widths[i] > 0) fixed += gap;
      if (isShort(look.columns[i].kind)) {
        fixed += widths[i];
      } else {
        flexible.push_back(i);
      }
    }
    if (page_.width == 0) {
      for (const std::size_t i : flexible) widths[i] = std::min(widths[i], evenWords);
      return widths;
    }
    // The narrowest first, so that what it does not need goes to the others.
    std::ranges::sort(flexible, {}, [&](std::size_t i) { return widths[i]; });
    std::size_t room = std::max(page_.width, fixed) - fixed;
    for (std::size_t left = flexible.size(); const std::size_t i : flexible) {
      widths[i] = std::min(widths[i], std::max(leastWords, room / left--));
      room -= std::min(room, widths[i]);
    }
    return widths;
  }

  void addTable(const Look& look, const Section& section) {
    const std::vector<std::size_t> widths = widthsOf(look, section);
    for (const Section::Row& row : section.rows) addLine(look, row, widths);
  }

  void addLine(const Look& look, const Section::Row& row, const std::vector<std::size_t>& widths) {
    std::string line;
    std::size_t at = 0;
    std::size_t wordsAt = 0;
    std::string note;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const ColumnRow& column = look.columns[i];
      if (widths[i] == 0) continue;
      if (column.kind == ColumnKind::note) {
        note = shown(column, cellAt(row, i));
        continue;
      }
      line.append(gap, ' ');
      at += gap;
      const bool isLast = i + 1 == widths.size();
      if (look.section.form == Form::wrapped && isLast) {
        out_ += line;
        addWrapped(displayed(cellAt(row, i)), at, "");
        return;
      }
      std::string cell = shown(column, cellAt(row, i));
      if (!isShort(column.kind)) {
        if (wordsAt == 0) wordsAt = at;
        if (page_.width != 0) cell = unicode::cutToColumns(cell, widths[i]);
      }
      const std::size_t taken = unicode::columnsOf(cell);
      line += column.name == "id" || column.name == "handle" ? painted("1m", cell) : cell;
      line.append(widths[i] - std::min(widths[i], taken), ' ');
      at += std::max(widths[i], taken);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out_ += line + "\n";
    if (note.empty()) return;
    out_.append(wordsAt, ' ');
    const std::size_t room = std::max(page_.width, wordsAt + leastWords) - wordsAt;
    if (page_.width != 0) note = unicode::cutToColumns(note, room);
    out_ += painted("2m", note) + "\n";
  }

  const Sheet& sheet_;
  const Page& page_;
  std::string out_;
};

}  // namespace

std::string sheetText(const Sheet& sheet, const Page& page) { return Layout(sheet, page).text(); }

}  // namespace quillpost::board
