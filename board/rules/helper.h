#pragma once

// Helpers: agents that the board itself may start, and those that it has started.

#include "base/text.h"
#include "board/rules/seat.h"
#include "board/rules/table.h"
#include "json/record.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost::board {

/// How many helpers a Thread may have at once, those that helpers asked for included.
inline constexpr int64_t helperLimit = 20;

/// A helper that the person allows: exactly what is run, where and with which variables.
struct Helper {
  /// Its name.
  std::string id;
  std::string explanation;
  /// The program and its arguments; one of them may hold the place of the opening line.
  std::vector<std::string> words;
  std::string directory;
  /// NAME=VALUE, beyond those of its seat.
  std::vector<std::string> variables;
  bool runsWithoutApprovals = false;
  /// Whether it is given the board's tools, or has `qp` alone.
  bool hasTools = false;

  bool operator==(const Helper&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",                   &Helper::id),
        json::defaulted("explanation",          &Helper::explanation),
        json::defaulted("words",                &Helper::words),
        json::required( "directory",            &Helper::directory),
        json::defaulted("variables",            &Helper::variables),
        json::defaulted("runsWithoutApprovals", &Helper::runsWithoutApprovals),
        json::defaulted("quillpostTools",       &Helper::hasTools),
    };
    // clang-format on
  }
};

/// How a helper that was asked for stands: its agent has not registered yet; it has; its process
/// has ended well, or not; it is being stopped; it is stopped, and counts no longer.
enum class RunState { starting, running, done, failed, stopping, stopped };

/// A helper that was asked for, in a seat of its own.
struct HelperRun {
  /// The session id of its seat.
  std::string id;
  /// The handle of its seat, which it is known by when that is gone.
  std::string handle;
  /// The name of the helper that it is.
  std::string helper;
  std::string taskID;
  /// The session id of the seat that asked for it, and that seat's handle.
  std::string askedBy;
  std::string askerHandle;
  RunState state = RunState::starting;
  /// When it was asked for, in milliseconds since 1970.
  int64_t askedAtMs = 0;
  /// Its process, and what tells that one from another of the same number; 0 before it has one.
  int64_t pid = 0;
  std::string startMark;
  /// How it ended, or why it was stopped.
  std::string detail;

  bool operator==(const HelperRun&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",          &HelperRun::id),
        json::required( "handle",      &HelperRun::handle),
        json::required( "helper",      &HelperRun::helper),
        json::defaulted("taskID",      &HelperRun::taskID),
        json::required( "askedBy",     &HelperRun::askedBy),
        json::defaulted("askerHandle", &HelperRun::askerHandle),
        json::required( "state",       &HelperRun::state),
        json::required( "askedAtMs",   &HelperRun::askedAtMs),
        json::defaulted("pid",         &HelperRun::pid),
        json::defaulted("startMark",   &HelperRun::startMark),
        json::defaulted("detail",      &HelperRun::detail),
    };
    // clang-format on
  }
};

/// Whether a helper counts against the limit: until it is stopped.
inline bool isCounted(const HelperRun& run) { return run.state != RunState::stopped; }

/// Whether a helper is stopped, or about to be.
inline bool isEnding(const HelperRun& run) {
  return run.state == RunState::stopping || run.state == RunState::stopped;
}

/// Whether a helper is at its work: asked for, its process not known to have ended, not stopped.
inline bool isAtWork(const HelperRun& run) {
  return run.state == RunState::starting || run.state == RunState::running;
}

// The indices of helpers that were asked for: those that count, and these by who asked; all of them
// by their handle, in the index of seats' handles.
inline constexpr std::string_view countedRuns = "counted";
inline constexpr std::string_view byAsker = "asker";

template <>
struct Keys<HelperRun> {
  template <class Found>
  static void visit(const HelperRun& run, Found&& found) {
    found(Key{byHandle, text::lowered(run.handle)});
    if (!isCounted(run)) return;
    found(Key{countedRuns, {}});
    found(Key{byAsker, run.askedBy});
  }
};

/// How much of what a helper wrote is kept, in bytes.
inline constexpr std::size_t outputKept = std::size_t{64} << 10;

/// What a helper wrote last on its standard output and error, byte by byte.
struct Output {
  std::string bytes;
  /// How much came before that and is forgotten, in bytes.
  uint64_t forgotten = 0;
};

/// Adds what a helper wrote, and forgets what is then too much.
void addOutput(Output& output, std::string_view bytes);

/// The last of it that is kept, made fit to be shown: UTF-8, without what steers a terminal, with a
/// first line that says what is forgotten.
std::string outputText(const Output& output);

/// Its last lines that say something, in one line of a few hundred characters; empty when there are
/// none.
std::string lastOutput(const Output& output);

}  // namespace quillpost::board

namespace quillpost {

template <>
struct json::Names<board::RunState> {
  using Kind = board::RunState;
  static constexpr std::array rows = {
      Name<Kind>{Kind::starting, "starting"}, Name<Kind>{Kind::running, "running"},
      Name<Kind>{Kind::done, "done"},         Name<Kind>{Kind::failed, "failed"},
      Name<Kind>{Kind::stopping, "stopping"}, Name<Kind>{Kind::stopped, "stopped"},
  };
  static_assert(allDifferent(rows));
};

}  // namespace quillpost
