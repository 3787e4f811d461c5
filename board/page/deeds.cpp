#include "board/page/deeds.h"

#include "board/page/launch.h"
#include "board/verbs/person.h"
#include "json/decoder.h"
#include "json/record.h"
#include "json/writer.h"

#include <algorithm>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

// clang-format off
constexpr std::string_view deeds[] = {
    personAnswer, personComment, personReply,  personAdd,    personEdit,    personAssign,
    personRelease, personReopen, personDone,   personReject, personDelete,  personRestore,
    personGoal,   personCharter, personConfirmGoal, personReopenGoal, personSay, personSquad,
    personHelperAllow, personHelperForget, personHelperApprove, personHelperRefuse,
};
// clang-format on

/// What the page writes, in the words of the request that it becomes.
struct Wish {
  std::string method;
  std::optional<std::string> name, taskID, to, body, title, taskType, assignedRole,
      routedToFingerprint, releaseReason, blockerQuestion, agent, explanation, command;
  std::optional<int64_t> priority;
  std::optional<bool> approve, acknowledgeOpenTasks, runsWithoutApprovals, quillpostTools;
  std::optional<std::vector<std::string>> resources, waitsOn, words;

  bool operator==(const Wish&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required("method",               &Wish::method),
        json::optional("name",                 &Wish::name),
        json::optional("taskID",               &Wish::taskID),
        json::optional("to",                   &Wish::to),
        json::optional("body",                 &Wish::body),
        json::optional("title",                &Wish::title),
        json::optional("taskType",             &Wish::taskType),
        json::optional("assignedRole",         &Wish::assignedRole),
        json::optional("routedToFingerprint",  &Wish::routedToFingerprint),
        json::optional("releaseReason",        &Wish::releaseReason),
        json::optional("blockerQuestion",      &Wish::blockerQuestion),
        json::optional("agent",                &Wish::agent),
        json::optional("explanation",          &Wish::explanation),
        json::optional("command",              &Wish::command),
        json::optional("priority",             &Wish::priority),
        json::optional("approve",              &Wish::approve),
        json::optional("acknowledgeOpenTasks", &Wish::acknowledgeOpenTasks),
        json::optional("runsWithoutApprovals", &Wish::runsWithoutApprovals),
        json::optional("quillpostTools",       &Wish::quillpostTools),
        json::optional("resources",            &Wish::resources),
        json::optional("waitsOn",              &Wish::waitsOn),
        json::optional("words",                &Wish::words),
    };
    // clang-format on
  }
};

/// Whether a deed allows a helper, so that it describes one.
bool isAllowing(std::string_view method) {
  return method == personHelperAllow || method == personHelperApprove;
}

}  // namespace

bool isDeedOfPage(std::string_view method) {
  return std::ranges::find(deeds, method) != std::end(deeds);
}

std::optional<TeamworkRequest> deedOf(const std::string& body, const Surroundings& around,
                                      std::string& why) {
  std::optional<Wish> wish = json::decode<Wish>(std::string(body));
  if (!wish) {
    why = "that is not what the page writes";
    return std::nullopt;
  }
  if (!isDeedOfPage(wish->method)) {
    why = "the page has no such button";
    return std::nullopt;
  }
  TeamworkRequest request;
  if (isAllowing(wish->method)) {
    const std::optional<Helper> helper = helperWished(
        {wish->agent.value_or(""), wish->explanation.value_or(""),
         std::move(wish->words).value_or(std::vector<std::string>{}),
         wish->runsWithoutApprovals.value_or(false), wish->quillpostTools.value_or(false)},
        around, why);
    if (!helper) return std::nullopt;
    wish->body = json::encode(*helper);
  }
  request.method = std::move(wish->method);
  request.name = std::move(wish->name);
  request.taskID = std::move(wish->taskID);
  request.to = std::move(wish->to);
  request.body = std::move(wish->body);
  request.title = std::move(wish->title);
  request.taskType = std::move(wish->taskType);
  request.assignedRole = std::move(wish->assignedRole);
  request.routedToFingerprint = std::move(wish->routedToFingerprint);
  request.releaseReason = std::move(wish->releaseReason);
  request.blockerQuestion = std::move(wish->blockerQuestion);
  request.agent = std::move(wish->agent);
  request.command = std::move(wish->command);
  request.priority = wish->priority;
  request.approve = wish->approve;
  request.acknowledgeOpenTasks = wish->acknowledgeOpenTasks;
  request.resources = std::move(wish->resources);
  request.waitsOn = std::move(wish->waitsOn);
  return request;
}

}  // namespace quillpost::board
