#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/removal.h"
#include "board/rules/views.h"
#include "board/rules/wakes.h"
#include "board/verbs/methods.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

using Kind = TeamworkResponse::Kind;

/// Whether somebody else holds the task, so that it is not the caller's to take away.
bool isPeers(const Call& call, const Task& task) {
  return task.state == TaskState::claimed && task.owner != call.self();
}

TeamworkResponse addTask(const Call& call) {
  const TeamworkRequest& request = call.request;
  std::string notice;
  Task task;
  task.title = lineOf(request.title.value_or(""), "title", notice);
  if (task.title.empty()) return refused("A task needs a `title`.");
  if (request.to) {
    if (const std::optional<std::string> reason = whyUnreachable(call, *request.to))
      return refused(*reason);
    task.reportsTo = call.seat.handle;
  }
  task.waitsOn = entriesOf(request.waitsOn, "waitsOn", notice);
  // Some may wait already on the id that it is going to have.
  const std::string id = taskID(call.board.counted().tasksFiled + 1);
  if (wouldWaitOnItself(call.board, id, task.waitsOn)) {
    return refused(text::cat("The new task would be ", id,
                             " and wait on itself around corners. Leave out of `waitsOn` what "
                             "waits on it."));
  }
  task.filedBy = call.self();
  task.priority = request.priority.value_or(0);
  task.type = lineOf(request.taskType.value_or(""), "type", notice);
  task.resources = entriesOf(request.resources, "resources", notice);
  task.assignedRole = lineOf(request.assignedRole.value_or(""), "role", notice);
  task.routedTo =
      routeTo(call.board, request.to.value_or(request.routedToFingerprint.value_or("")), notice);
  const std::string brief = briefText(request.body.value_or(""), "brief", notice);
  Task& filed = fileTask(call.board, std::move(task), brief);
  refreshSummary(call.board, filed, call.seat, request.summary.value_or(""), call.at.nowMs);
  std::vector<Notice> notices;
  if (const Seat* seat = addresseeOf(call.board, filed)) {
    notices.push_back({seat->fingerprint, WakeKind::taskAssigned,
                       text::cat(call.seat.handle, " handed you ", named(filed))});
  }
  announce(call.board, call.move(MoveKind::taskAdded, filed.id, filed.title), notices);
  addSentence(notice, noticeOfWaits(call.board, filed.waitsOn));
  return written(text::cat("Added ", named(filed), ". It is ",
                           isReady(call.board, filed) ? "READY." : "waiting on other tasks."),
                 std::move(notice));
}

/// The closed tasks that a list shows, the latest ones: an answer with all of those of years would
/// be too large to be sent.
constexpr std::size_t closedShown = 20'000;

TeamworkResponse listTasks(const Call& call) {
  TeamworkResponse response;
  response.kind = Kind::tasks;
  response.tasks.emplace();
  const std::size_t closed =
      call.board.tasks.size() - call.board.tasks.with({openTasks, {}}).size();
  std::size_t leftOut = closed - std::min(closed, closedShown);
  for (const auto& [id, task] : call.board.tasks) {
    if (leftOut > 0 && !isOpen(task)) {
      --leftOut;
      continue;
    }
    response.tasks->push_back(call.seat.registered ? leanView(call.board, task, call.seat, call.at)
                                                   : titleView(task));
  }
  // Whoever reads the backlog has seen all there is, and need not be woken for it.
  response.rev = call.board.counted().rev;
  return response;
}

TeamworkResponse readTask(const Call& call, Task& task) {
  TeamworkResponse response;
  response.kind = Kind::task;
  response.task = taskView(call.board, task, call.seat, call.at);
  return response;
}

TeamworkResponse watchTask(const Call& call, Task& task) {
  watch(task, {call.self(), false});
  return written(text::cat("You are watching ", named(task), "."));
}

TeamworkResponse unwatchTask(const Call& call, Task& task) {
  const bool watched = unwatch(task, call.self(), Unwatch::any);
  takeBackWakes(call.board, call.seat, WakeKind::taskWatched, task.id);
  return written(
      text::cat("You ", watched ? "no longer watch " : "were not watching ", named(task), "."));
}

TeamworkResponse rejectTask(const Call& call, Task& task) {
  if (!isOpen(task)) return refused(text::cat(named(task), " is closed already."));
  if (isPeers(call, task)) {
    return refused(text::cat(named(task), " is held by ", calling(call.board, task.owner),
                             ". Take it up with them: comment_task, or open_discussion."));
  }
  std::string notice;
  const std::string reason = cutWithNotice(oneLine(call.request.releaseReason.value_or("")),
                                           reasonLimit, "reason", notice);
  addLine(call.board, task,
          {"", LogKind::comment, call.self(), call.seat.handle,
           text::cat("declined", reason.empty() ? "" : ": ", reason), call.at.nowMs});
  declineTask(call.board, task, call.move(MoveKind::taskRejected, task.id, reason));
  return written(text::cat("Declined ", named(task), "."), std::move(notice));
}

TeamworkResponse deleteOne(const Call& call, Task& task) {
  if (isPeers(call, task)) {
    return refused(text::cat(named(task), " is held by ", calling(call.board, task.owner),
                             ". Ask them with comment_task or open_discussion."));
  }
  if (const std::optional<std::string> reason = whyNotDeletable(call.board, task))
    return refused(*reason);
  std::string notice;
  const std::string words = named(task);
  const std::string reason = lineOf(call.request.releaseReason.value_or(""), "reason", notice);
  deleteTask(call.board, task, call.move(MoveKind::taskDeleted, task.id, words), reason);
  return written(text::cat("Deleted ", words, "."), std::move(notice));
}

}  // namespace

// clang-format off
std::span<const Method> taskMethods() {
  static constexpr Method rows[] = {
      {"add_task",     Entry::member, addTask},
      {"list_tasks",   Entry::anyone, listTasks, Effect::reads},
      {"read_task",    Entry::member, readTask, Effect::reads},
      {"reject_task",  Entry::member, rejectTask},
      {"delete_task",  Entry::member, deleteOne},
      {"watch_task",   Entry::member, watchTask},
      {"unwatch_task", Entry::member, unwatchTask},
  };
  return rows;
}
// clang-format on

Task& fileTask(Board& board, Task task, std::string brief) {
  task.id = taskID(++board.count().tasksFiled);
  setBrief(board, task.id, std::move(brief));
  return board.tasks.put(std::move(task));
}

}  // namespace quillpost::board
