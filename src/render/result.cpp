#include "render/result.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "json/writer.h"
#include "model/verbs.h"
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
void appendParagraph(std::string& out, std::optional<std::string_view> paragraph) {
  if (!paragraph || paragraph->empty()) return;
  out += "\n\n";
  out += *paragraph;
}

/// A text result with what is owed at its end.
std::string closed(std::string text, const Answer& answer) {
  text += obligationsSuffix(answer.response.obligations);
  return text;
}

std::string closed(std::string_view text, const Answer& answer) {
  return closed(std::string(text), answer);
}

/// Adds what is owed, the last member of an object.
void addOwed(json::Object& out, const Answer& answer) {
  if (!answer.response.obligations) return;
  json::Object child = out.object("obligations");
  addObligations(child, *answer.response.obligations, answer.state.lastAudience);
}

std::string composeRegistered(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.agent) return closed(texts::registered, answer);
  std::string out;
  {
    json::Object object(out);
    addAgent(object, *response.agent);
    if (request.tool == registerTool.text) addRegistration(object, response.squad, state);
    if (response.messages) addDelivery(object, *response.messages);
    addOwed(object, answer);
  }
  return out;
}

void appendAgents(std::string& out, const std::optional<std::vector<TeamworkAgent>>& agents) {
  json::Array list(out);
  if (!agents) return;
  for (const TeamworkAgent& agent : *agents) {
    json::Object child = list.object();
    addAgent(child, agent);
  }
}

std::string composeAgents(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  std::string out;
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

std::string composeTasks(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.tasks || response.tasks->empty()) return closed(texts::backlogEmpty, answer);
  std::string out;
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

std::string composeTask(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.task) return closed(texts::taskNotFound, answer);
  std::string out;
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

std::string composePlan(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.plan) return closed(texts::noPlan, answer);
  std::string out;
  {
    json::Object object(out);
    addPlan(object, *response.plan, request.body);
    object.add("nextStep", nextStep(*response.plan, response.obligations));
    addOwed(object, answer);
  }
  return out;
}

/// As from a wait of the whole backlog that did not time out.
std::string composeChanges(const Answer& answer) {
  WaitOutcome outcome;
  if (answer.response.changes) outcome.feed = &*answer.response.changes;
  return waitOutcome(outcome, answer.state);
}

std::string composeDiscussion(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (!response.discussion) return closed(texts::discussionUpdated, answer);
  const TeamworkDiscussion& discussion = *response.discussion;
  std::string out;
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

std::string composeWritten(const Answer& answer) {
  const TeamworkResponse& response = answer.response;
  std::string out = response.message ? *response.message : std::string(texts::done);
  if (response.messages) appendDelivery(out, *response.messages);
  appendParagraph(out, response.notice);
  appendParagraph(out, nextHint(answer.request.tool));
  return closed(std::move(out), answer);
}

std::string composeEmpty(const Answer& answer) {
  const auto& [response, request, state] = answer;
  if (response.message && !response.message->empty()) return closed(*response.message, answer);
  const texts::EmptyAnswer* const row =
      std::ranges::find(texts::emptyAnswers, request.tool, &texts::EmptyAnswer::tool);
  if (row != std::end(texts::emptyAnswers)) return closed(row->text, answer);
  return closed(texts::nothingToShow(request.tool), answer);
}

std::string composeError(const Answer& answer) {
  const std::optional<std::string>& message = answer.response.message;
  return closed(message ? std::string_view(*message) : texts::teamworkError, answer);
}

}  // namespace

std::string composeResult(const TeamworkResponse& response, const ResultRequest& request,
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
