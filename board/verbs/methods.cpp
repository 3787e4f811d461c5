#include "board/verbs/methods.h"

#include "base/text.h"
#include "board/rules/people.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

/// An agent that acts is no longer waiting, parked or stood down.
void markActive(const Call& call) {
  const Seat& seat = call.seat;
  if (!seat.waiting && !seat.stoodDown && seat.parkReason.empty()) return;
  Seat& active = call.board.seats.edit(seat);
  active.waiting = active.stoodDown = false;
  active.parkReason.clear();
}

const Method* findMethod(std::string_view name) {
  for (const auto& methods : {seatMethods(), planMethods(), taskMethods(), claimMethods(),
                              writingMethods(), helperMethods()}) {
    const auto found = std::ranges::find(methods, name, &Method::name);
    if (found != methods.end()) return &*found;
  }
  return nullptr;
}

TeamworkResponse run(const Method& method, const Call& call) {
  if (method.runOnTask != nullptr) {
    const std::string id = call.request.taskID.value_or("");
    const Task* task = call.board.tasks.find(id);
    if (task != nullptr) return method.runOnTask(call, *task);
    if (id.empty()) return refused(text::cat(method.name, " needs a taskID from list_tasks."));
    return refused(text::cat("There is no task ", id, " on this board. list_tasks has the ids."));
  }
  if (method.runOnDiscussion != nullptr) {
    const std::string id = call.request.discussionID.value_or("");
    const TeamworkDiscussion* discussion = call.board.discussions.find(id);
    if (discussion != nullptr) return method.runOnDiscussion(call, *discussion);
    return refused(text::cat("There is no discussion ", id, " on this board. read_plan has those ",
                             "that are open."));
  }
  return method.run(call);
}

}  // namespace

TeamworkResponse carryOut(const Call& call) {
  const Method* method = findMethod(call.request.method);
  if (method == nullptr) {
    return refused(text::cat("This board does not know the method ", call.request.method, "."));
  }
  if (method->entry == Entry::member && !call.seat.registered) {
    return refused(
        "This terminal has no agent on the roster, so it sees ticket titles and nothing else. "
        "Call register first.");
  }
  renewPresence(call.board, call.seat, call.at);
  if (method->entry != Entry::listener) markActive(call);
  return run(*method, call);
}

TeamworkResponse written(std::string message, std::string notice) {
  TeamworkResponse response;
  response.kind = TeamworkResponse::Kind::written;
  response.message = std::move(message);
  if (!notice.empty()) response.notice = std::move(notice);
  return response;
}

TeamworkResponse refused(std::string message) {
  TeamworkResponse response;
  response.kind = TeamworkResponse::Kind::error;
  response.message = std::move(message);
  return response;
}

std::string named(const Task& task) { return text::cat(task.id, " \"", task.title, "\""); }

std::optional<std::string> whyUnreachable(const Call& call, const std::string& handle) {
  if (!call.board.thread().squadOn) {
    return "The squad is off for this thread, so no agent can be addressed. The switch is the "
           "person's; until then coordinate through the board.";
  }
  if (handle.find('@') != std::string::npos) {
    return text::cat("No other device is on this thread, so ", handle, " reaches nobody.");
  }
  const Seat* seat = seatAt(call.board, handle);
  if (seat == nullptr) {
    return text::cat("Nobody here answers to \"", handle, "\". list_agents has the handles.");
  }
  if (!isLive(*seat)) {
    return text::cat("Nobody is home at ", seat->handle, ": no agent has confirmed there.");
  }
  return std::nullopt;
}

}  // namespace quillpost::board
