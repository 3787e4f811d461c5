#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
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

/// The handle of whom a task is meant for; the text as it stands when that names nobody here.
std::string routeOf(const Board& board, const TeamworkRequest& request) {
  const std::string named = request.to.value_or(request.routedToFingerprint.value_or(""));
  const Seat* seat = whoIs(board, named);
  return seat != nullptr ? seat->handle : named;
}

std::string noticeOfUnresolved(const Board& board, const std::vector<std::string>& waitsOn) {
  const std::vector<std::string> missing = unresolved(board, waitsOn);
  if (missing.empty()) return {};
  return text::cat("No task on this board is called ", text::join(missing, ", "),
                   ", so nothing waits on that.");
}

/// Whether somebody else holds the task, so that it is not the caller's to take away.
bool isPeers(const Call& call, const Task& task) {
  return task.state == TaskState::claimed && task.owner != call.self();
}

/// Those who lose something when a task goes away: its holder and whoever asked for it.
std::vector<Notice> noticesOfRemoval(const Call& call, const Task& task, WakeKind kind,
                                     const std::string& summary) {
  std::vector<Notice> notices;
  if (const Seat* asker = seatAt(call.board, task.reportsTo)) {
    notices.push_back({asker->fingerprint, kind, summary});
  }
  for (const Task* dependent : dependentsOf(call.board, task.id))
    if (dependent->state == TaskState::claimed)
      notices.push_back({dependent->owner, kind, summary});
  return notices;
}

TeamworkResponse addTask(const Call& call) {
  const TeamworkRequest& request = call.request;
  Task task;
  task.title = oneLine(request.title.value_or(""));
  if (task.title.empty()) return refused("A task needs a `title`.");
  if (request.to) {
    if (const auto reason = whyUnreachable(call, *request.to)) return refused(*reason);
    task.reportsTo = call.seat.handle;
  }
  task.filedBy = call.self();
  task.priority = request.priority.value_or(0);
  task.type = request.taskType.value_or("");
  task.resources = request.resources.value_or(std::vector<std::string>{});
  task.waitsOn = request.waitsOn.value_or(std::vector<std::string>{});
  task.assignedRole = request.assignedRole.value_or("");
  task.routedTo = routeOf(call.board, request);
  Task& filed = fileTask(call.board, std::move(task), request.body.value_or(""));
  refreshSummary(call.board, filed, call.seat, request.summary.value_or(""), call.at.nowMs);
  std::vector<Notice> notices;
  if (const Seat* seat = whoIs(call.board, filed.routedTo)) {
    notices.push_back({seat->fingerprint, WakeKind::taskAssigned,
                       text::cat(call.seat.handle, " handed you ", named(filed))});
  }
  announce(call.board, call.move(MoveKind::taskAdded, filed.id, filed.title), notices);
  return written(text::cat("Added ", named(filed), ". It is ",
                           isReady(call.board, filed) ? "READY." : "waiting on other tasks."),
                 noticeOfUnresolved(call.board, filed.waitsOn));
}

TeamworkResponse listTasks(const Call& call) {
  TeamworkResponse response;
  response.kind = Kind::tasks;
  response.tasks.emplace();
  for (const auto& [id, task] : call.board.tasks) {
    response.tasks->push_back(call.seat.registered ? taskView(call.board, task, call.seat, call.at)
                                                   : titleView(task));
  }
  // Only here: whoever reads the backlog has seen all there is, and need not be woken for it.
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
  const auto notices = noticesOfRemoval(call, task, WakeKind::taskRejected,
                                        text::cat(call.seat.handle, " declined ", named(task)));
  task.state = TaskState::rejected;
  task.owner = call.self();
  task.blocked = false;
  task.releaseAsks.clear();
  addLine(call.board, task,
          {"", LogKind::comment, call.self(), call.seat.handle,
           text::cat("declined", reason.empty() ? "" : ": ", reason), call.at.nowMs});
  announce(call.board, call.move(MoveKind::taskRejected, task.id, reason), notices);
  return written(text::cat("Declined ", named(task), "."), std::move(notice));
}

TeamworkResponse deleteTask(const Call& call, Task& task) {
  if (isPeers(call, task)) {
    return refused(text::cat(named(task), " is held by ", calling(call.board, task.owner),
                             ". Ask them with comment_task or open_discussion."));
  }
  const std::string words = named(task);
  const auto notices = noticesOfRemoval(call, task, WakeKind::taskDeleted,
                                        text::cat(call.seat.handle, " deleted ", words));
  Task& deleted = call.board.trash.put(task);
  deleted.state = TaskState::open;
  deleted.owner.clear();
  deleted.deletedAtMs = call.at.nowMs;
  deleted.deleteReason = oneLine(call.request.releaseReason.value_or(""));
  const std::string id = deleted.id;
  call.board.tasks.remove(id);
  announce(call.board, call.move(MoveKind::taskDeleted, id, words), notices);
  return written(text::cat("Deleted ", words, "."));
}

}  // namespace

// clang-format off
std::span<const Method> taskMethods() {
  static constexpr Method rows[] = {
      {"add_task",     Entry::member, addTask},
      {"list_tasks",   Entry::anyone, listTasks},
      {"read_task",    Entry::member, readTask},
      {"reject_task",  Entry::member, rejectTask},
      {"delete_task",  Entry::member, deleteTask},
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
