#pragma once

// The verbs: one function per method of the protocol, in one table. A method checks first and then
// changes the board, so that a refusal changes nothing.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "model/request.h"
#include "model/response.h"
#include "tools/tool_name.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quillpost::board {

/// Where unguessable and merely different names come from: 32 random bits at each call.
using Random = std::function<uint32_t()>;

/// One request on its way: who asks, when, on which board.
struct Call {
  Board& board;
  const TeamworkRequest& request;
  /// The caller's own seat; of the board's own table.
  const Seat& seat;
  Moment at;
  const Random& random;

  /// The caller's fingerprint; empty when no agent has registered there.
  const std::string& self() const { return seat.fingerprint; }
};

/// What a caller must be: anyone with a seat; a listener (the same, and it stays marked as
/// waiting); a member, whose agent has registered.
enum class Entry { anyone, listener, member };

/// One method. Exactly one of the three functions is there; what a task or a discussion is asked
/// for is looked up before the function is called.
struct Method {
  using Run = TeamworkResponse (*)(const Call&);
  using RunOnTask = TeamworkResponse (*)(const Call&, const Task&);
  using RunOnDiscussion = TeamworkResponse (*)(const Call&, const TeamworkDiscussion&);

  std::string_view name;
  Entry entry;
  Run run = nullptr;
  RunOnTask runOnTask = nullptr;
  RunOnDiscussion runOnDiscussion = nullptr;

  constexpr Method(MethodName method, Entry who, Run function)
      : name(method), entry(who), run(function) {}
  constexpr Method(MethodName method, Entry who, RunOnTask function)
      : name(method), entry(who), runOnTask(function) {}
  constexpr Method(MethodName method, Entry who, RunOnDiscussion function)
      : name(method), entry(who), runOnDiscussion(function) {}
};

/// Carries out one request of a seat: renews the caller's presence, and answers in words when the
/// method is unknown or the caller may not call it.
TeamworkResponse carryOut(const Call& call);

/// A write that was done.
TeamworkResponse written(std::string message, std::string notice = {});
/// A write that was not, and why.
TeamworkResponse refused(std::string message);
/// A task in words: its id and its title.
std::string named(const Task& task);

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
/// Helpers, of which none is ever allowed.
std::span<const Method> helperMethods();

/// Adds a task with the next id; everything but the id is taken from `task`.
const Task& fileTask(Board& board, Task task);

/// Puts the person's or an agent's summary on the task; nothing when it says nothing.
void refreshSummary(Board& board, const Task& task, const Seat& author, std::string_view summary);

/// Why a handle cannot be addressed from here; nothing when its agent can. Squad verbs ask this.
std::optional<std::string> whyUnreachable(const Call& call, const std::string& handle);

}  // namespace quillpost::board
