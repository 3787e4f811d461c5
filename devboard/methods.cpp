#include "devboard/methods.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"
#include "devboard/rules/people.h"
#include "model/verbs.h"

namespace quillpost::devboard {

namespace {

// clang-format off
constexpr Method table[] = {
    {"register",              Entry::anyone,   methods::registerSeat},
    {"unregister",            Entry::anyone,   methods::unregister},
    {heartbeat,               Entry::listener, methods::heartbeat},
    {"list_agents",           Entry::member,   methods::listAgents},
    {"read_plan",             Entry::member,   methods::readPlan},
    {"set_goal",              Entry::member,   methods::setGoal},
    {"set_charter",           Entry::member,   methods::setCharter},
    {"add_task",              Entry::member,   methods::addTask},
    {"list_tasks",            Entry::anyone,   methods::listTasks},
    {"read_task",             Entry::member,   methods::readTask},
    {"claim_task",            Entry::member,   methods::claimTask},
    {"update_task",           Entry::member,   methods::updateTask},
    {"complete_task",         Entry::member,   methods::completeTask},
    {"reject_task",           Entry::member,   methods::rejectTask},
    {"delete_task",           Entry::member,   methods::deleteTask},
    {"release_task",          Entry::member,   methods::releaseTask},
    {"watch_task",            Entry::member,   methods::watchTask},
    {"unwatch_task",          Entry::member,   methods::unwatchTask},
    {"request_review",        Entry::member,   methods::requestReview},
    {"verify_task",           Entry::member,   methods::verifyTask},
    {"comment_task",          Entry::member,   methods::commentTask},
    {"open_discussion",       Entry::member,   methods::openDiscussion},
    {"reply_discussion",      Entry::member,   methods::replyDiscussion},
    {"resolve_discussion",    Entry::member,   methods::resolveDiscussion},
    {"request_release",       Entry::member,   methods::requestRelease},
    {"propose_goal_complete", Entry::member,   methods::proposeGoalComplete},
    {"assign_task",           Entry::member,   methods::assignTask},
    {"send_message",          Entry::member,   methods::sendMessage},
    {"read_messages",         Entry::member,   methods::readMessages},
    {"request_hands",         Entry::member,   methods::requestHands},
    {"suggest_helper",        Entry::member,   methods::suggestHelper},
    {"stop_helper",           Entry::member,   methods::stopHelper},
    {pollChanges,             Entry::listener, methods::pollChanges},
    {wakeQuery,               Entry::listener, methods::wakeQuery},
};
// clang-format on

constexpr bool isServed(std::string_view name) {
  return std::ranges::count(table, name, &Method::name) == 1;
}
static_assert(std::ranges::all_of(boardMethods, isServed) && isServed(pollChanges) &&
                  isServed(wakeQuery),
              "every method has one row");

/// An agent that acts is no longer waiting, parked or stood down.
void markActive(const Call& call) {
  const Seat& seat = call.seat;
  if (!seat.waiting && !seat.stoodDown && seat.parkReason.empty()) return;
  Seat& active = call.board.seats.edit(seat);
  active.waiting = active.stoodDown = false;
  active.parkReason.clear();
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
  const Method* method = std::ranges::find(table, call.request.method, &Method::name);
  if (method == std::end(table)) {
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

}  // namespace quillpost::devboard
