#include "board/verbs/methods.h"

#include "base/text.h"
#include "board/rules/people.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

/// An agent that acts is no longer waiting, parked or stood down.
void markActive(Seat& seat) {
  seat.waiting = seat.stoodDown = false;
  seat.parkReason.clear();
}

const Method* findMethod(std::string_view name) {
  for (const std::span<const Method> methods :
       {seatMethods(), planMethods(), taskMethods(), claimMethods(), writingMethods(),
        helperMethods()}) {
    const auto found = std::ranges::find(methods, name, &Method::name);
    if (found != methods.end()) return &*found;
  }
  return nullptr;
}

TeamworkResponse runOn(Task* task, Method::RunOnTask run, const Method& method, const Call& call) {
  if (task != nullptr) return run(call, *task);
  const std::string id = call.request.taskID.value_or("");
  if (id.empty()) return refused(text::cat(method.name, " needs a taskID from list_tasks."));
  return refused(text::cat("There is no task ", id, " on this board. list_tasks has the ids."));
}

TeamworkResponse run(const Method& method, const Call& call) {
  if (const auto* onTask = std::get_if<Method::RunOnTask>(&method.run)) {
    return runOn(call.board.tasks.touch(call.request.taskID.value_or("")), *onTask, method, call);
  }
  if (const auto* onDiscussion = std::get_if<Method::RunOnDiscussion>(&method.run)) {
    const std::string id = call.request.discussionID.value_or("");
    TeamworkDiscussion* discussion = call.board.discussions.touch(id);
    if (discussion != nullptr) return (*onDiscussion)(call, *discussion);
    return refused(text::cat("There is no discussion ", id, " on this board. read_plan has those ",
                             "that are open."));
  }
  return std::get<Method::Run>(method.run)(call);
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
  if (method->entry != Entry::newcomer) renewPresence(call.board, call.seat, call.at);
  if (method->entry != Entry::listener) markActive(call.seat);
  return run(*method, call);
}

bool onlyReads(std::string_view name) {
  const Method* method = findMethod(name);
  return method == nullptr || method->effect == Effect::reads;
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
