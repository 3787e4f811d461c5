#pragma once

// How a command ends, as its exit status tells.

#include "calls/tool_reply.h"

#include <array>
#include <string_view>

namespace quillpost {

/// The statuses; scripts rely on the numbers. A signal gives 128 and its own, as the system does.
enum class Status {
  done = 0,
  /// By the board, or before anything was sent; the result says why.
  refused = 1,
  /// The line makes no sense, and nothing was sent.
  misuse = 2,
  /// A wait with a deadline ended without news.
  noNews = 3,
  /// This terminal has no board, or it cannot be reached.
  noBoard = 4,
  /// Whoever started the wait has gone.
  hungUp = 129,
};

/// One ending of a call as a status, and in a word for the line that says what was not tried.
struct EndRow {
  CallEnd end;
  Status status;
  std::string_view word;
};

// clang-format off

/// All of them.
inline constexpr auto endRows = std::to_array<EndRow>({
    {CallEnd::answered,        Status::done,    "was done"},
    {CallEnd::moved,           Status::done,    "was done"},
    {CallEnd::refused,         Status::refused, "was refused"},
    {CallEnd::refusedUnsent,   Status::refused, "was refused"},
    {CallEnd::nothingToWaitOn, Status::refused, "has nothing to wait on"},
    {CallEnd::timedOut,        Status::noNews,  "ended without news"},
    {CallEnd::outsideThread,   Status::noBoard, "has no board here"},
    {CallEnd::unreachable,     Status::noBoard, "did not reach the board"},
    {CallEnd::callerGone,      Status::hungUp,  "was left by its caller"},
});

// clang-format on

/// The row of an ending.
constexpr const EndRow& rowOf(CallEnd end) {
  for (const EndRow& row : endRows)
    if (row.end == end) return row;
  return endRows.front();
}

/// The status that tells of an ending.
constexpr Status statusOf(CallEnd end) { return rowOf(end).status; }

static_assert(endRows.size() == static_cast<std::size_t>(CallEnd::callerGone) + 1);

}  // namespace quillpost
