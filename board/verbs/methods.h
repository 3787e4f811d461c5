#pragma once

// The verbs: one function per method of the protocol, in one table. A method checks first and then
// changes the board, so that a refusal changes nothing.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "board/rules/moves.h"
#include "board/rules/names.h"
#include "model/request.h"
#include "model/response.h"
#include "tools/tool_name.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace quillpost::board {

/// One request on its way: who asks, when, on which board.
struct Call {
  Board& board;
  const TeamworkRequest& request;
  /// The caller's own seat; of the board's own table.
  Seat& seat;
  Moment at;
  const Random& random;
  /// Whether a poll of the caller's is held meanwhile, which is told what comes.
  bool isListening = false;

  /// The caller's fingerprint; empty when no agent has registered there.
  const std::string& self() const { return seat.fingerprint; }

  /// A move of the caller's, now; about no task when `taskID` is empty.
  Move move(MoveKind kind, std::string taskID = {}, std::string what = {}) const {
    return {kind, std::move(taskID), self(), at.nowMs, std::move(what)};
  }
};

/// What a caller must be: anyone with a seat; a newcomer (the same, and its presence begins with
/// the method and not before it); a listener (the same as anyone, and it stays marked as waiting);
/// a member, whose agent has registered.
enum class Entry { anyone, newcomer, listener, member };

/// Whether a method may change the board beyond the caller's own presence and what was carried to
/// it.
enum class Effect { writes, reads };

/// One method. What a task or a discussion is asked for is looked up before the function is called.
struct Method {
  using Run = TeamworkResponse (*)(const Call&);
  using RunOnTask = TeamworkResponse (*)(const Call&, Task&);
  using RunOnDiscussion = TeamworkResponse (*)(const Call&, TeamworkDiscussion&);
  using AnyRun = std::variant<Run, RunOnTask, RunOnDiscussion>;

  std::string_view name;
  Entry entry;
  AnyRun run;
  Effect effect;

  constexpr Method(MethodName method, Entry who, AnyRun function, Effect what = Effect::writes)
      : name(method), entry(who), run(function), effect(what) {}
};

/// Carries out one request of a seat: renews the caller's presence, and answers in words when the
/// method is unknown or the caller may not call it.
TeamworkResponse carryOut(const Call& call);

/// Whether the method of that name only reads; so does one that is unknown.
bool onlyReads(std::string_view name);

/// A write that was done.
TeamworkResponse written(std::string message, std::string notice = {});
/// A write that was not, and why.
TeamworkResponse refused(std::string message);

/// The methods of each file, in rows. Together they are every method of the protocol, once.
std::span<const Method> seatMethods();
/// The goal, the charter and the discussions.
std::span<const Method> planMethods();
/// The backlog.
std::span<const Method> taskMethods();
/// Who works on what.
std::span<const Method> claimMethods();
/// What holders and peers write on a task.
std::span<const Method> writingMethods();
/// Helpers, which the board starts and stops.
std::span<const Method> helperMethods();

/// Adds a task with the next id and that brief; everything else is taken from `task`.
Task& fileTask(Board& board, Task task, std::string brief);

/// Replaces what a request says of a task, its brief too, and leaves the rest. Whether anything was
/// replaced; sentences about what was cut are added to `notice`.
bool correct(Board& board, const TeamworkRequest& request, Task& task, std::string& notice);

/// Tells whom it concerns that a task waits on less or is meant for somebody else than `before`, by
/// moves like `move` but for their kind.
void tellOfCorrection(Board& board, const Task& before, Move move);

/// Tells of every task that is READY now that this one is done, by moves like `move` but for their
/// kind.
void announceUnlocked(Board& board, const Task& done, Move move);

/// Asks for a verdict on a task that has just been completed, when one was asked for while it was
/// under way or of a completion before; by moves like `move` but for their kind.
void askForVerdict(Board& board, Task& task, Move move);

/// Why a handle cannot be addressed from here; nothing when its agent can. Squad verbs ask this.
std::optional<std::string> whyUnreachable(const Call& call, const std::string& handle);

}  // namespace quillpost::board
