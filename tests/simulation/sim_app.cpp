#include "simulation/sim_app.h"

#include "base/text.h"
#include "model/coding.h"
#include "simulation/live_blocks.h"
#include "tools/tool_name.h"

#include <array>
#include <chrono>

namespace quillpost::simulation {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using text::cat;
using ResponseKind = TeamworkResponse::Kind;

/// Gives the member that the kind is about a value, so that most answers are whole ones.
void complete(TeamworkResponse& response, Dice& dice) {
  switch (response.kind) {
    case ResponseKind::registered:
      dice.fill(response.agent.emplace());
      break;
    case ResponseKind::agents:
      dice.fill(response.agents.emplace());
      break;
    case ResponseKind::tasks:
      dice.fill(response.tasks.emplace());
      break;
    case ResponseKind::task:
      dice.fill(response.task.emplace());
      break;
    case ResponseKind::plan:
      dice.fill(response.plan.emplace());
      break;
    case ResponseKind::changes:
      dice.fill(response.changes.emplace());
      break;
    case ResponseKind::discussion:
      dice.fill(response.discussion.emplace());
      break;
    default:
      break;
  }
}

}  // namespace

SimApp::SimApp(Dice& dice, SimClock& clock, Judge& judge)
    : dice_(dice), clock_(clock), judge_(judge), token_(cat(secretMark, dice.below(1000))) {}

std::string SimApp::currentToken() {
  {
    const BlockWatch outside(false);
    if (dice_.oneIn(10)) token_ = dice_.oneIn(4) ? "" : cat(secretMark, dice_.below(1000));
    judge_.tokenRead(token_);
  }
  return token_;
}

Exchange SimApp::send(const TeamworkRequest& request) {
  SimReply reply;
  {
    const BlockWatch outside(false);
    judge_.asked(request);
    clock_.mayJump = judge_.isWaiting();
    reply = replyTo(request);
    clock_.advance(reply.took);
  }
  Exchange exchange;
  if (reply.bytes)
    exchange = {.response = decodeResponse(*reply.bytes), .bytes = reply.bytes->size()};
  const BlockWatch outside(false);
  judge_.answered(exchange.response);
  reply = {};
  return exchange;
}

SimReply SimApp::replyTo(const TeamworkRequest& request) {
  if (request.method == pollChanges) return replyToPoll(request);
  if (dice_.oneIn(8)) return failure();
  SimReply reply{.bytes = anyResponse(std::nullopt), .took = milliseconds(dice_.below(30))};
  if (dice_.oneIn(12)) reply.bytes = damaged(*reply.bytes);
  if (dice_.oneIn(20)) reply.took = seconds(dice_.below(60));
  // Large enough for the server to give the memory back at once.
  if (dice_.oneIn(10'000)) {
    reply.bytes = cat(R"({"kind":"written","message":")", std::string(1 << 20, 'm'), R"("})");
  }
  return reply;
}

SimReply SimApp::replyToPoll(const TeamworkRequest& request) {
  const std::size_t chance = dice_.below(100);
  if (chance < 60) {
    const int64_t hold = request.holdMs.value_or(0);
    const int64_t used = dice_.oneIn(4) ? hold / 3 : hold;
    return {.bytes = quietFeed(request), .took = milliseconds(used)};
  }
  if (chance < 75) return failure();
  if (chance < 80) return {.bytes = damaged(quietFeed(request)), .took = {}};
  const Duration took = milliseconds(dice_.below(40'000));
  if (chance < 92) return {.bytes = anyResponse(ResponseKind::changes), .took = took};
  if (chance < 94) return {.bytes = R"({"kind":"changes","threadTag":"T-none00"})", .took = {}};
  return {.bytes = anyResponse(std::nullopt), .took = took};
}

std::string SimApp::quietFeed(const TeamworkRequest& request) {
  int64_t rev = text::saturatingAdd(request.sinceRev.value_or(0), dice_.oneIn(5) ? 1 : 0);
  if (rev < 1 && !dice_.oneIn(5)) rev = 1;
  if (dice_.oneIn(30)) dice_.fill(rev);
  return cat(R"({"kind":"changes","changes":{"rev":)", rev,
             R"(,"changed":false,"goal":"g","goalComplete":false,"pendingGoalComplete":false,)"
             R"("changeKinds":[],"tasks":[]},"threadTag":"T-abc123"})");
}

std::string SimApp::anyResponse(std::optional<ResponseKind> kind) {
  TeamworkResponse response;
  dice_.fill(response);
  if (kind) response.kind = *kind;
  if (dice_.flip()) complete(response, dice_);
  return encodeResponse(response).value_or("");
}

std::string SimApp::damaged(std::string bytes) {
  constexpr std::array<std::string_view, 9> others = {
      "",
      "null",
      "[]",
      "{}",
      R"({"kind":"unheard"})",
      R"({"kind":3})",
      "\xff\xfe",
      "{\"kind\":",
      R"({"kind":"written","rev":99999999999999999999})"};
  if (dice_.oneIn(50)) return cat(R"({"kind":"empty","x":)", std::string(2000, '['));
  switch (dice_.below(4)) {
    case 0:
      return std::string(dice_.oneOf(others));
    case 1:
      bytes.resize(dice_.below(bytes.size() + 1));
      return bytes;
    case 2:
      if (!bytes.empty()) bytes[dice_.below(bytes.size())] = static_cast<char>(dice_.below(256));
      return bytes;
    default:
      return bytes + "}";
  }
}

SimReply SimApp::failure() {
  // Refused or closed at once; a write or a read that took all the time it may.
  constexpr std::array<int, 5> taken = {0, 0, 0, 10, 40};
  return {.bytes = std::nullopt, .took = seconds(dice_.oneOf(taken))};
}

}  // namespace quillpost::simulation
