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
#include "tools/tool_name.h"

#include <algorithm>
#include <iterator>
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
json::EscapedText closed(json::EscapedText text, const Answer& answer) {
  text.append(obligationsSuffix(answer.response.obligations));
  return text;
}

json::EscapedText closed(std::string_view text, const Answer& answer) {
  return closed(json::EscapedText(text), answer);
}

/// Adds what is owed, the last member of an object.
void addOwed(json::Object& out, const Answer& answer) {
  if (!answer.response.obligations) return;
  json::Object child = out.object("obligations");
  addObligations(child, *answer.response.obligations, answer.state.lastAudience);
}

json::EscapedText composeRegistered(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.agent) return closed(texts::registered, answer);
  json::EscapedText out;
  {
    json::Object object(out);
    addAgent(object, *response.agent);
    if (request.tool == registerTool.text) addRegistration(object, response.squad, state);
    if (response.messages) addDelivery(object, *response.messages);
    addOwed(object, answer);
  }
  return out;
}

void appendAgents(json::EscapedText& out, const std::optional<std::vector<TeamworkAgent>>& agents) {
  json::Array list(out);
  if (!agents) return;
  for (const TeamworkAgent& agent : *agents) {
    json::Object child = list.object();
    addAgent(child, agent);
  }
}

json::EscapedText composeAgents(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  json::EscapedText out;
  appendAgents(out, response.agents);
  if (response.squad) appendParagraph(out, squadParagraph(response.squad->mode));
  if (response.panes) appendParagraph(out, openPanesParagraph(*response.panes));
  if (response.macs) appendParagraph(out, otherDevicesParagraph(*response.macs));
  appendParagraph(out, helpersHereParagraph(response.squad));
  if (response.runningHelpers) {
    appendParagraph(out,
                    helpersRunningParagraph(*response.runningHelpers, answer.state.selfHandle));
  }
  return closed(std::move(out), answer);
}

json::EscapedText composeTasks(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.tasks || response.tasks->empty()) return closed(texts::backlogEmpty, answer);
  json::EscapedText out;
  {
    json::Object object(out);
    addBriefing(object, *response.tasks,
                {.includeAll = request.includeAll,
                 .fingerprint = state.selfFingerprint,
                 .handle = state.selfHandle});
    addOwed(object, answer);
  }
  return out;
}

json::EscapedText composeTask(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.task) return closed(texts::taskNotFound, answer);
  json::EscapedText out;
  {
    json::Object object(out);
    addTask(object, *response.task);
    object.add("body", numberedBody(response.task->body, request.body));
    {
      json::Array log = object.array("log");
      addLogPage(log, response.task->log, request.log);
    }
    object.addText("notice", response.notice);
    addOwed(object, answer);
  }
  return out;
}

json::EscapedText composePlan(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.plan) return closed(texts::noPlan, answer);
  json::EscapedText out;
  {
    json::Object object(out);
    addPlan(object, *response.plan, request.body);
    object.add("nextStep", nextStep(*response.plan, response.obligations));
    addOwed(object, answer);
  }
  return out;
}

/// As from a wait of the whole backlog that did not time out.
json::EscapedText composeChanges(const Answer& answer) {
  WaitOutcome outcome;
  if (answer.response.changes) outcome.feed = &*answer.response.changes;
  return waitOutcome(outcome, answer.state);
}

json::EscapedText composeDiscussion(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.discussion) return closed(texts::discussionUpdated, answer);
  const TeamworkDiscussion& discussion = *response.discussion;
  json::EscapedText out;
  {
    json::Object object(out);
    addDiscussion(object, discussion);
    object.add("nextStep",
               discussionHint(request.tool, discussion.id, !discussion.taskID.has_value()));
    object.addText("note", response.message).addText("notice", response.notice);
    addOwed(object, answer);
  }
  return out;
}

json::EscapedText composeWritten(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  json::EscapedText out(response.message ? std::string_view(*response.message) : texts::done);
  if (response.messages) appendDelivery(out, *response.messages);
  appendParagraph(out, response.notice);
  appendParagraph(out, nextHint(answer.request.tool));
  return closed(std::move(out), answer);
}

json::EscapedText composeEmpty(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (response.message && !response.message->empty()) return closed(*response.message, answer);
  const texts::EmptyAnswer* const row =
      std::ranges::find(texts::emptyAnswers, request.tool, &texts::EmptyAnswer::tool);
  if (row != std::end(texts::emptyAnswers)) return closed(row->text, answer);
  return closed(texts::nothingToShow(request.tool), answer);
}

json::EscapedText composeError(const Answer& answer) {
  const std::optional<std::string>& message = answer.response.message;
  return closed(message ? std::string_view(*message) : texts::teamworkError, answer);
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
      return closed(texts::nothingToActOn, answer);
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
