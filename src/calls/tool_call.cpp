#include "calls/tool_call.h"

#include "base/text.h"
#include "calls/blocker.h"
#include "calls/goal.h"
#include "calls/request_rules.h"
#include "render/result.h"
#include "render/texts/replies.h"
#include "tools/tool_name.h"

#include <chrono>
#include <utility>

namespace quillpost {
namespace {

// A passing hiccup of the app, such as its restart of the socket, is over within these.
constexpr int attempts = 3;
constexpr Duration pauseBetweenAttempts = std::chrono::milliseconds(150);

constexpr ToolName setGoal = "set_goal";
constexpr ToolName updateTask = "update_task";

/// The request is sent unchanged each time, its token included.
std::optional<TeamworkResponse> sendWithRetry(const TeamworkRequest& request, Seat& seat) {
  for (int attempt = 1;; ++attempt) {
    std::optional<TeamworkResponse> answer = send(request, seat);
    if (answer || attempt == attempts) return answer;
    seat.doors.clock.sleepFor(pauseBetweenAttempts);
  }
}

ResultRequest resultRequestFrom(std::string_view tool, const Arguments& arguments) {
  const std::optional<std::string> include = arguments.text("include");
  return {.tool = tool,
          .body = {.offset = arguments.integer("offset"), .limit = arguments.integer("limit")},
          .log = {.offset = arguments.integer("logOffset"), .limit = arguments.integer("logLimit")},
          .includeAll = include && text::lowered(*include) == "all"};
}

ToolReply inWords(std::string_view text, CallEnd end) {
  return {.text = json::EscapedText(text), .end = end};
}

/// Fills in the question of an update that blocks its task; a reply when it may not be asked.
std::optional<ToolReply> addQuestion(std::string_view tool, const Arguments& arguments,
                                     TeamworkRequest& request) {
  if (tool != updateTask || !request.blocked.value_or(false)) return std::nullopt;
  BlockerQuestion question = composeBlockerQuestion(arguments);
  request.blockerQuestion = std::move(question.text);
  if (!question.refusedLength) return std::nullopt;
  return inWords(texts::blockerQuestionTooLong(*question.refusedLength), CallEnd::refusedUnsent);
}

}  // namespace

std::optional<ToolReply> refusalOf(std::string_view tool, const Arguments& arguments) {
  TeamworkRequest request;
  fillFromArguments(request, tool, arguments);
  return addQuestion(tool, arguments, request);
}

ToolReply callBoard(std::string_view tool, const Arguments& arguments, Seat& seat) {
  TeamworkRequest request = requestFrom(seat, tool);
  fillFromArguments(request, tool, arguments);
  if (tool == setGoal) request.name = composeGoal(arguments);
  if (std::optional<ToolReply> refusal = addQuestion(tool, arguments, request))
    return *std::move(refusal);
  if (request.token.empty()) return inWords(texts::outsideThread, CallEnd::outsideThread);

  std::optional<TeamworkResponse> answer = sendWithRetry(request, seat);
  if (!answer) return inWords(texts::appUnreachable, CallEnd::unreachable);
  absorbAnswer(seat.state, *answer);
  const bool isRefused = answer->kind == TeamworkResponse::Kind::error;
  return {.text = composeResult(*answer, resultRequestFrom(tool, arguments), seat.state),
          .threadTag = std::move(answer->threadTag).value_or(std::string()),
          .end = isRefused ? CallEnd::refused : CallEnd::answered};
}

}  // namespace quillpost
