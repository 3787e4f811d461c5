#pragma once

// The part of a long text that one result shows: numbered lines of a task's body, lines of a log.

#include "json/writer.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillpost {

/// Which lines were asked for. Any number will do.
struct Page {
  /// The first line, counted from 1.
  std::optional<int64_t> offset = std::nullopt;
  /// How many lines; less than 1 counts as 1.
  std::optional<int64_t> limit = std::nullopt;
};

/// The lines of the page, each behind its number, and a foot when the page is not the whole body.
/// From the first line and 2000 lines long unless the page says otherwise. A body without lines and
/// a page past the last line are answered in words.
std::string numberedBody(std::string_view body, const Page& page);

/// Adds the lines of the page, behind a line that says how many were left out before them. The
/// latest lines and 30 of them unless the page says otherwise; nothing when the log is empty.
void addLogPage(json::Array& out, std::span<const std::string> log, const Page& page);

}  // namespace quillpost
