#pragma once

// What the person is shown, as it travels from the board to the command that prints it: tables of
// texts that are not yet laid out. Times are milliseconds since 1970, spans milliseconds.

#include "base/text.h"
#include "json/record.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace quillpost::board {

/// One table. What its name and its columns' names mean for a reader is said in layout.cpp.
struct Section {
  /// The cells of one row, as many as there are columns; one that is empty says nothing.
  struct Row {
    std::vector<std::string> cells;

    bool operator==(const Row&) const = default;
    static constexpr auto fields() { return std::tuple{json::required("cells", &Row::cells)}; }
  };

  std::string name;
  std::vector<std::string> columns;
  std::vector<Row> rows;

  bool operator==(const Section&) const = default;

  static constexpr auto fields() {
    return std::tuple{json::required("name", &Section::name),
                      json::required("columns", &Section::columns),
                      json::required("rows", &Section::rows)};
  }

  /// Adds a row of texts and integers.
  template <class... Cells>
  void add(const Cells&... cells) {
    rows.push_back({{text::cat(cells)...}});
  }
};

/// All that one command shows.
struct Sheet {
  /// When it was made, by the board's clock.
  int64_t nowMs = 0;
  /// The board's revision then.
  int64_t rev = 0;
  std::vector<Section> sections;

  bool operator==(const Sheet&) const = default;

  static constexpr auto fields() {
    return std::tuple{json::required("nowMs", &Sheet::nowMs), json::required("rev", &Sheet::rev),
                      json::required("sections", &Sheet::sections)};
  }

  /// The rows of a section, in which columns are looked up by name; none when it is not there.
  const Section* find(std::string_view name) const;
};

/// The cell of that column; empty when there is none.
std::string_view cellOf(const Section& section, const Section::Row& row, std::string_view column);

/// How a sheet is to be laid out.
struct Page {
  /// The columns of the terminal; 0 when it is none, and nothing is cut or wrapped.
  std::size_t width = 0;
  bool hasColour = false;
};

/// The sheet as text.
std::string sheetText(const Sheet& sheet, const Page& page);

/// The sheet as one JSON object: a list of objects for each section, or one object for a section
/// that has but one row.
std::string sheetJson(const Sheet& sheet);

}  // namespace quillpost::board
