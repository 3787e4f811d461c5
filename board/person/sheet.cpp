#include "board/person/sheet.h"

#include "base/display.h"
#include "board/person/columns.h"
#include "json/writer.h"

#include <algorithm>
#include <optional>

namespace quillpost::board {

namespace {

void addValue(json::Object& out, const ColumnRow& column, std::string_view cell) {
  const std::optional<int64_t> number = text::parseInteger(cell);
  if (isNumber(column.kind)) {
    out.addOrNull(column.name, number);
  } else if (column.kind == ColumnKind::items) {
    out.array(column.name, [&](json::Array& list) {
      for (const std::string_view item : text::split(cell, '\n'))
        if (!item.empty()) list.add(item);
    });
  } else {
    out.add(column.name, cell);
  }
}

void addRow(json::Object& out, const Section& section, const Section::Row& row) {
  for (std::size_t i = 0; i < section.columns.size() && i < row.cells.size(); ++i)
    addValue(out, columnNamed(section.columns[i]), row.cells[i]);
}

}  // namespace

const Section* Sheet::find(std::string_view name) const {
  const auto found = std::ranges::find(sections, name, &Section::name);
  return found == sections.end() ? nullptr : &*found;
}

std::string_view cellOf(const Section& section, const Section::Row& row, std::string_view column) {
  for (std::size_t i = 0; i < section.columns.size() && i < row.cells.size(); ++i)
    if (section.columns[i] == column) return row.cells[i];
  return {};
}

std::string sheetJson(const Sheet& sheet) {
  std::string out;
  json::appendObject(out, [&](json::Object& object) {
    object.add("nowMs", sheet.nowMs).add("rev", sheet.rev);
    for (const Section& section : sheet.sections) {
      if (sectionNamed(section.name).isOne && section.rows.size() == 1) {
        json::Object child = object.object(section.name);
        addRow(child, section, section.rows.front());
      } else {
        object.list(section.name, section.rows, [&](json::Object& child, const Section::Row& row) {
          addRow(child, section, row);
        });
      }
    }
  });
  return displayed(out, Marks::escapes) + "\n";
}

}  // namespace quillpost::board
