#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/feed.h"
#include "board/rules/hook.h"
#include "board/rules/limits.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/runs.h"
#include "board/rules/views.h"
#include "board/rules/wakes.h"
#include "board/verbs/methods.h"

#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

using Kind = TeamworkResponse::Kind;

/// A new mark such as "#a3f9" that nobody on the board has.
std::string mintFingerprint(const Call& call) {
  constexpr std::string_view digits = "0123456789abcdef";
  for (;;) {
    std::string mark = "#";
    for (uint32_t bits = call.random(), i = 0; i < 4; ++i, bits >>= 4) mark += digits[bits & 15];
    if (seatOf(call.board, mark) == nullptr) return mark;
  }
}

/// Takes what the agent says of itself. What it leaves out stays as it was.
void describe(Seat& seat, const TeamworkRequest& request) {
  if (request.name) seat.name = cutWithMark(oneLine(*request.name), roleLimit);
  if (request.status) seat.status = cutWithMark(oneLine(*request.status), progressLimit);
  if (!request.role) return;
  seat.role = cutWithMark(oneLine(*request.role), roleLimit);
  seat.authority = authorityOf(seat.role);
}

/// Whether somebody else sits down where an agent's lease has lapsed, for whom nothing is meant
/// that was meant for that one.
bool isAnother(const Seat& seat, const TeamworkRequest& request) {
  if (!seat.away || seat.name.empty() || !request.name) return false;
  const std::string name = cutWithMark(oneLine(*request.name), roleLimit);
  return !name.empty() && !unicode::equalIgnoringCase(name, seat.name);
}

TeamworkResponse ownSeat(const Call& call) {
  TeamworkResponse response;
  response.kind = Kind::registered;
  response.agent = agentView(call.board, call.seat, call.seat, call.at);
  return response;
}

void deliverMessages(const Call& call, TeamworkResponse& response) {
  std::vector<TeamworkSquadMessage> messages = messagesFor(call.board, call.seat, call.at);
  if (!messages.empty()) response.messages = std::move(messages);
}

TeamworkResponse registerSeat(const Call& call) {
  Seat& seat = call.seat;
  if (isAnother(seat, call.request)) leave(call.board, seat, call.at);
  const bool isNew = !seat.registered;
  const bool isBack = seat.away;
  if (isNew) {
    seat.fingerprint = mintFingerprint(call);
    seat.name = seat.label;
    seat.status.clear();
    seat.role.clear();
    seat.authority = authorityOf("");
  }
  if (isNew) emptySeat(call.board, seat);
  seat.registered = true;
  startPresence(seat, call.at);
  describe(seat, call.request);
  if (isNew || isBack) record(call.board, call.move(MoveKind::agentJoined));
  noteRegistered(call.board, seat);
  TeamworkResponse response = ownSeat(call);
  response.squad = squadView(call.board);
  // A new agent can read all there is, and need be woken for none of it.
  if (isNew) response.rev = call.board.counted().rev;
  deliverMessages(call, response);
  return response;
}

TeamworkResponse unregister(const Call& call) {
  if (!call.seat.registered) return written("You were not on the roster; nothing to leave.");
  const int64_t helpers = text::countOf(runsUnder(call.board, call.seat.id));
  const int64_t returned = leave(call.board, call.seat, call.at);
  const std::string stopped =
      text::cat(" ", helpers, " helper", text::s(helpers), " that you had asked for ",
                helpers == 1 ? "is" : "are", " stopped.");
  return written(text::cat("You have left the board. ", returned, " claim", text::s(returned),
                           " went back to the pool.", helpers > 0 ? stopped : ""));
}

TeamworkResponse renew(const Call& call) {
  if (!call.seat.registered) {
    return refused("This terminal has no agent on the roster to renew. Call register first.");
  }
  Seat& seat = call.seat;
  startPresence(seat, call.at);
  describe(seat, call.request);
  seat.waiting = call.request.waiting.value_or(false);
  seat.stoodDown = call.request.standDown.value_or(false);
  seat.parkReason = cut(oneLine(call.request.parkReason.value_or("")), lineLimit);
  renewClaims(call.board, seat, call.at);
  for (Task* task : touchHeld(call.board, call.self()))
    settleReleaseAsks(call.board, *task, "", call.at);
  TeamworkResponse response = ownSeat(call);
  // The answer to the heartbeat of a wait is not read by anybody: its messages come with the poll.
  if (!seat.waiting) deliverMessages(call, response);
  return response;
}

TeamworkResponse listAgents(const Call& call) {
  TeamworkResponse response;
  response.kind = Kind::agents;
  response.agents.emplace();
  std::vector<TeamworkPane> panes;
  for (const auto& [id, seat] : call.board.seats) {
    if (isLive(seat)) {
      response.agents->push_back(agentView(call.board, seat, call.seat, call.at));
    } else if (call.board.runs.find(id) == nullptr) {
      panes.push_back({seat.handle});
    }
  }
  if (!panes.empty()) response.panes = panes;
  response.squad = squadView(call.board);
  std::vector<TeamworkHelperRun> runs = runViews(call.board, call.seat, call.at);
  if (!runs.empty()) response.runningHelpers = std::move(runs);
  return response;
}

TeamworkResponse poll(const Call& call) {
  TeamworkResponse response;
  if (isDeserted(call.board)) return response;
  response.kind = Kind::changes;
  response.changes = feedFor(call.board, call.seat, listeningOf(call.request), call.at);
  return response;
}

TeamworkResponse queryWake(const Call& call) {
  TeamworkResponse response;
  response.kind = Kind::wake;
  response.wakePending = call.isListening ? holdBackForDebts(call.board, call.seat, call.at)
                                          : holdBack(call.board, call.seat, call.at);
  return response;
}

TeamworkResponse sendMessage(const Call& call) {
  const std::string to = call.request.to.value_or("");
  if (const std::optional<std::string> reason = whyUnreachable(call, to)) return refused(*reason);
  const std::string words(unicode::trim(call.request.body.value_or("")));
  if (words.empty()) return refused("There is nothing to send: pass the note as `text`.");
  if (unicode::countCharacters(words) > messageLimit) {
    return refused(text::cat("That is longer than ", messageLimit,
                             " characters, so it is a task and not a message: use add_task."));
  }
  const Seat& reader = *seatAt(call.board, to);
  leaveMessage(call.board, reader, {call.seat.handle, call.seat.name, words, call.at.nowMs});
  return written(text::cat("Left for ", reader.handle, "."));
}

TeamworkResponse readMessages(const Call& call) {
  const int64_t count = text::countOf(messagesFor(call.board, call.seat, call.at));
  if (count == 0) {
    TeamworkResponse response;
    response.message = "Your inbox is empty.";
    return response;
  }
  TeamworkResponse response = written(text::cat(count, " message", text::s(count), "."));
  deliverMessages(call, response);
  return response;
}

}  // namespace

// clang-format off
std::span<const Method> seatMethods() {
  static constexpr Method rows[] = {
      {"register",      Entry::newcomer, registerSeat},
      {"unregister",    Entry::anyone,   unregister},
      {"heartbeat",     Entry::listener, renew},
      {"list_agents",   Entry::member,   listAgents, Effect::reads},
      {"send_message",  Entry::member,   sendMessage},
      {"read_messages", Entry::member,   readMessages, Effect::reads},
      {pollChanges,     Entry::listener, poll, Effect::reads},
      {wakeQuery,       Entry::listener, queryWake, Effect::reads},
  };
  return rows;
}
// clang-format on

}  // namespace quillpost::board
