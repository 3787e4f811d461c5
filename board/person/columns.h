#pragma once

// What the tables of a sheet and their columns mean for a reader: one row each.

#include <string_view>

namespace quillpost::board {

/// How a column's cells are read.
enum class ColumnKind {
  word,   // never cut
  words,  // as much as there is room for
  exact,  // as it stands, with marks for what cannot be seen; never cut, folded or wrapped
  note,   // the same, in a line of its own below
  number,
  ago,    // a time, shown as how long ago it was
  clock,  // a time, shown as it is on the clock
  span,   // a length of time
  items,  // a list, one entry a line
};

/// Whether a column's cells are integers.
constexpr bool isNumber(ColumnKind kind) {
  return kind >= ColumnKind::number && kind <= ColumnKind::span;
}

/// One column: its name in JSON, and what stands before each cell for a person.
struct ColumnRow {
  std::string_view name;
  ColumnKind kind;
  std::string_view label;
};

/// How a section is laid out.
enum class Form {
  table,    // a line a row
  wrapped,  // the same, with words going on in further lines
  block,    // a line of what is short, then a line for each of the words
};

/// One section: its name in JSON, its title for a person, how it is coloured.
struct SectionRow {
  std::string_view name;
  std::string_view title;
  Form form;
  std::string_view colour;
  bool isOne = false;
};

/// The row of that name; one without title, label or colour when there is none.
ColumnRow columnNamed(std::string_view name);
SectionRow sectionNamed(std::string_view name);

}  // namespace quillpost::board
