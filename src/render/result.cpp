#include "render/result.h"

#include "json/writer.h"
#include "render/briefing.h"
#include "render/delivery.h"
#include "render/discussion.h"
#include "render/obligations.h"
#include "render/plan.h"
#include "render/registration.h"
#include "render/roster.h"
#include "render/squad.h"
#include "render/task.h"
#include "render/texts/replies.h"
#include "render/wait_outcome.h"
#include "tools/backlog.h"
#include "tools/tool_name.h"
#include "tools/tools.h"

#include <optional>
#include <utility>
#include <vector>

namespace quillpost {
namespace {

constexpr ToolName registerTool = "register";

/// What one result is made from.
struct Answer {
  const TeamworkResponse& response;
  const ResultRequest& request;
  const SeatState& state;
};

/// Appends a text as a paragraph of its own; nothing when there is none or it is empty.
void appendParagraph(json::EscapedText& out, std::optional<std::string_view> paragraph) {
  if (!paragraph || paragraph->empty()) return;
  out.append("\n\n").append(*paragraph);
}

/// A text result with what is owed at its end.
json::EscapedText withOwed(json::EscapedText text, const Answer& answer) {
  text.append(obligationsSuffix(answer.response.obligations));
  return text;
}

json::EscapedText withOwed(std::string_view text, const Answer& answer) {
  return withOwed(json::EscapedText(text), answer);
}

/// An object with what is owed as its last member, the others added by `addMembers(object)`.
template <class AddMembers>
json::EscapedText objectWithOwed(const Answer& answer, AddMembers addMembers) {
  const std::optional<TeamworkObligations>& owed = answer.response.obligations;
  json::EscapedText out;
  json::appendObject(out, [&](json::Object& object) {
    addMembers(object);
    if (!owed) return;
    json::Object child = object.object("obligations");
    addObligations(child, *owed, answer.state.lastAudience);
  });
  return out;
}

json::EscapedText composeRegistered(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  if (!response.agent) return withOwed(texts::registered, answer);
  return objectWithOwed(answer, [&](json::Object& object) {
    addAgent(object, *response.agent);
    if (answer.request.tool == registerTool) addRegistration(object, response.squad, answer.state);
    if (response.messages) addDelivery(object, *response.messages);
  });
}

json::EscapedText composeAgents(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  json::EscapedText out;
  const std::vector<TeamworkAgent> none;
  json::appendList(out, response.agents ? *response.agents : none, addAgent);
  if (response.squad) appendParagraph(out, squadParagraph(response.squad->mode));
  if (response.panes) appendParagraph(out, openPanesParagraph(*response.panes));
  if (response.macs) appendParagraph(out, otherDevicesParagraph(*response.macs));
  appendParagraph(out, helpersHereParagraph(response.squad));
  if (response.runningHelpers) {
    appendParagraph(out,
                    helpersRunningParagraph(*response.runningHelpers, answer.state.selfHandle));
  }
  return withOwed(std::move(out), answer);
}

json::EscapedText composeTasks(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  if (!response.tasks || response.tasks->empty()) return withOwed(texts::backlogEmpty, answer);
  return objectWithOwed(answer, [&](json::Object& object) {
    addBriefing(object, *response.tasks,
                {.includeAll = answer.request.includeAll,
                 .fingerprint = answer.state.selfFingerprint,
                 .handle = answer.state.selfHandle});
  });
}

json::EscapedText composeTask(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  if (!response.task) return withOwed(texts::taskNotFound, answer);
  return objectWithOwed(answer, [&](json::Object& object) {
    addTask(object, *response.task);
    object.add("body", numberedBody(response.task->body, answer.request.body));
    object.array(
        "log", [&](json::Array& log) { addLogPage(log, response.task->log, answer.request.log); });
    object.addText("notice", response.notice);
  });
}

json::EscapedText composePlan(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  if (!response.plan) return withOwed(texts::noPlan, answer);
  return objectWithOwed(answer, [&](json::Object& object) {
    addPlan(object, *response.plan, answer.request.body);
    object.add("nextStep", nextStep(*response.plan, response.obligations));
  });
}

/// As from a wait of the whole backlog that did not time out.
json::EscapedText composeChanges(const Answer& answer) {
  WaitOutcome outcome;
  if (answer.response.changes) outcome.feed = &*answer.response.changes;
  return waitOutcome(outcome, answer.state);
}

json::EscapedText composeDiscussion(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  if (!response.discussion) return withOwed(texts::discussionUpdated, answer);
  const TeamworkDiscussion& discussion = *response.discussion;
  return objectWithOwed(answer, [&](json::Object& object) {
    addDiscussion(object, discussion);
    object.add("nextStep",
               discussionHint(answer.request.tool, discussion.id, !discussion.taskID.has_value()));
    object.addText("note", response.message).addText("notice", response.notice);
  });
}

json::EscapedText composeWritten(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  json::EscapedText out(response.message ? std::string_view(*response.message) : texts::done);
  if (response.messages) appendDelivery(out, *response.messages);
  appendParagraph(out, response.notice);
  if (const Tool* tool = findTool(answer.request.tool)) appendParagraph(out, tool->nextHint);
  return withOwed(std::move(out), answer);
}

json::EscapedText composeEmpty(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (response.message && !response.message->empty()) return withOwed(*response.message, answer);
  const Tool* const tool = findTool(request.tool);
  if (tool != nullptr && !tool->emptyWords.empty()) return withOwed(tool->emptyWords, answer);
  return withOwed(texts::nothingToShow(request.tool), answer);
}

json::EscapedText composeError(const Answer& answer) {
  const std::optional<std::string>& message = answer.response.message;
  return withOwed(message ? std::string_view(*message) : texts::teamworkError, answer);
}

}  // namespace

json::EscapedText composeResult(const TeamworkResponse& response, const ResultRequest& request,
                                const SeatState& state) {
  using Kind = TeamworkResponse::Kind;
  const Answer answer{.response = response, .request = request, .state = state};
  switch (response.kind) {
    case Kind::registered:
      return composeRegistered(answer);
    case Kind::agents:
      return composeAgents(answer);
    case Kind::tasks:
      return composeTasks(answer);
    case Kind::task:
      return composeTask(answer);
    case Kind::plan:
      return composePlan(answer);
    case Kind::changes:
      return composeChanges(answer);
    case Kind::discussion:
      return composeDiscussion(answer);
    case Kind::wake:
      return withOwed(texts::nothingToActOn, answer);
    case Kind::written:
      return composeWritten(answer);
    case Kind::empty:
      return composeEmpty(answer);
    case Kind::error:
      break;
  }
  return composeError(answer);
}

}  // namespace quillpost
