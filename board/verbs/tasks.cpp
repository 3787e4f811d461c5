#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/limits.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/views.h"
#include "board/verbs/methods.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

using Kind = TeamworkResponse::Kind;

std::string taskID(int64_t number) {
  const std::string digits = text::cat(number);
  return "t" + std::string(6 - std::min<std::size_t>(6, digits.size()), '0') + digits;
}

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
std::vector<Notice> noticesOfRemoval(const Call& call, const Task& task, std::string_view kind,
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
  task.body = request.body.value_or("");
  task.filedBy = call.self();
  task.priority = request.priority.value_or(0);
  task.type = request.taskType.value_or("");
  task.resources = request.resources.value_or(std::vector<std::string>{});
  task.waitsOn = request.waitsOn.value_or(std::vector<std::string>{});
  task.assignedRole = request.assignedRole.value_or("");
  task.routedTo = routeOf(call.board, request);
  const Task& filed = fileTask(call.board, std::move(task));
  refreshSummary(call.board, filed, call.seat, request.summary.value_or(""));
  std::vector<Notice> notices;
  if (const Seat* seat = whoIs(call.board, filed.routedTo)) {
    notices.push_back({seat->fingerprint, "taskAssigned",
                       text::cat(call.seat.handle, " handed you ", named(filed))});
  }
  announce(call.board, {"taskAdded", filed.id, call.self()}, notices);
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
  response.rev = call.board.thread().rev;
  return response;
}

TeamworkResponse readTask(const Call& call, const Task& task) {
  TeamworkResponse response;
  response.kind = Kind::task;
  response.task = taskView(call.board, task, call.seat, call.at);
  return response;
}

TeamworkResponse watchTask(const Call& call, const Task& task) {
  watch(call.board, task, {call.self(), false});
  return written(text::cat("You are watching ", named(task), "."));
}

TeamworkResponse unwatchTask(const Call& call, const Task& task) {
  const bool watched = unwatch(call.board, task, call.self(), Unwatch::any);
  takeBackWakes(call.board, call.seat, "taskWatched", task.id);
  return written(
      text::cat("You ", watched ? "no longer watch " : "were not watching ", named(task), "."));
}

TeamworkResponse rejectTask(const Call& call, const Task& task) {
  if (!isOpen(task)) return refused(text::cat(named(task), " is closed already."));
  if (isPeers(call, task)) {
    return refused(text::cat(named(task), " is held by ", calling(call.board, task.owner),
                             ". Take it up with them: comment_task, or open_discussion."));
  }
  std::string notice;
  const std::string reason = cutWithNotice(oneLine(call.request.releaseReason.value_or("")),
                                           reasonLimit, "reason", notice);
  const auto notices = noticesOfRemoval(call, task, "taskRejected",
                                        text::cat(call.seat.handle, " declined ", named(task)));
  Task& rejected = call.board.tasks.edit(task);
  rejected.state = TaskState::rejected;
  rejected.owner = call.self();
  rejected.blocked = false;
  rejected.releaseAsks.clear();
  rejected.log.push_back({LogKind::comment, call.self(), call.seat.handle,
                          text::cat("declined", reason.empty() ? "" : ": ", reason)});
  announce(call.board, {"taskRejected", task.id, call.self()}, notices);
  return written(text::cat("Declined ", named(task), "."), std::move(notice));
}

TeamworkResponse deleteTask(const Call& call, const Task& task) {
  if (isPeers(call, task)) {
    return refused(text::cat(named(task), " is held by ", calling(call.board, task.owner),
                             ". Ask them with comment_task or open_discussion."));
  }
  const std::string words = named(task);
  const auto notices =
      noticesOfRemoval(call, task, "taskDeleted", text::cat(call.seat.handle, " deleted ", words));
  Task& deleted = call.board.trash.put(task);
  deleted.state = TaskState::open;
  deleted.owner.clear();
  deleted.deletedAtMs = call.at.nowMs;
  deleted.deleteReason = oneLine(call.request.releaseReason.value_or(""));
  const std::string id = deleted.id;
  call.board.tasks.remove(id);
  announce(call.board, {"taskDeleted", id, call.self()}, notices);
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

const Task& fileTask(Board& board, Task task) {
  task.id = taskID(++board.editThread().tasksFiled);
  return board.tasks.put(std::move(task));
}

void refreshSummary(Board& board, const Task& task, const Seat& author, std::string_view summary) {
  const std::string gist = cut(unicode::trim(summary), summaryLimit);
  if (gist.empty()) return;
  board.tasks.edit(task).log.push_back({LogKind::gist, author.fingerprint, author.handle, gist});
}

}  // namespace quillpost::board
