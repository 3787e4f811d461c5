#pragma once

// One line of a task's log, as it is kept. board/rules/log.h writes lines and shows them, and its
// test tries both.

#include "json/record.h"

#include <array>
#include <cstdint>
#include <string>
#include <tuple>

namespace quillpost::board {

/// What a line of a task's log is.
enum class LogKind { progress, comment, gist, handOff };

/// One line of a task's log.
struct LogLine {
  /// The task's id and the number of the line, as `lineID` (ids.h) puts them together.
  std::string id;
  LogKind kind = LogKind::progress;
  /// The author's fingerprint, "human", or empty for the board itself.
  std::string author;
  /// What the author is called on the line.
  std::string name;
  std::string text;
  /// When it was written, in milliseconds since 1970.
  int64_t atMs = 0;

  bool operator==(const LogLine&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",     &LogLine::id),
        json::required( "kind",   &LogLine::kind),
        json::defaulted("author", &LogLine::author),
        json::defaulted("name",   &LogLine::name),
        json::required( "text",   &LogLine::text),
        json::required( "atMs",   &LogLine::atMs),
    };
    // clang-format on
  }
};

}  // namespace quillpost::board

namespace quillpost {

template <>
struct json::Names<board::LogKind> {
  using Kind = board::LogKind;
  static constexpr std::array rows = {
      Name<Kind>{Kind::progress, "progress"},
      Name<Kind>{Kind::comment, "comment"},
      Name<Kind>{Kind::gist, "gist"},
      Name<Kind>{Kind::handOff, "handOff"},
  };
  static_assert(allDifferent(rows));
};

}  // namespace quillpost
