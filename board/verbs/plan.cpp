#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/views.h"
#include "board/verbs/methods.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

using Kind = TeamworkResponse::Kind;

TeamworkResponse shown(const Call& call, const TeamworkDiscussion& discussion, std::string notice) {
  TeamworkResponse response;
  response.kind = Kind::discussion;
  response.discussion = discussionView(discussion, call.seat);
  if (!notice.empty()) response.notice = std::move(notice);
  return response;
}

/// The parties that a discussion is addressed to: fingerprints, and "human" for the person.
struct Addressees {
  std::vector<std::string> parties;
  /// Who was named and is not here, in words; empty when all are.
  std::string unknown;
};

Addressees addresseesOf(const Call& call, std::string& notice) {
  Addressees found;
  for (const std::string& name : entriesOf(call.request.tags, "to", notice)) {
    const bool isHuman = unicode::equalIgnoringCase(name, human);
    const Seat* seat = isHuman ? nullptr : whoIs(call.board, name);
    if (!isHuman && seat == nullptr) {
      found.unknown += text::cat(found.unknown.empty() ? "" : ", ", "\"", name, "\"");
      continue;
    }
    const std::string party = isHuman ? std::string(human) : seat->fingerprint;
    const bool isListed = std::ranges::find(found.parties, party) != found.parties.end();
    if (!isListed && party != call.self()) found.parties.push_back(party);
  }
  if (!found.parties.empty() || !found.unknown.empty()) return found;
  for (const Seat* seat : othersHere(call.board, call.self()))
    found.parties.push_back(seat->fingerprint);
  if (found.parties.empty()) found.parties.emplace_back(human);
  return found;
}

TeamworkResponse readPlan(const Call& call) {
  TeamworkResponse response;
  response.kind = Kind::plan;
  response.plan = planView(call.board, call.seat);
  return response;
}

TeamworkResponse setGoal(const Call& call) {
  std::string notice;
  const std::string goal = briefText(unicode::trim(call.request.name.value_or("")), "goal", notice);
  if (goal.empty()) return refused("A goal needs a `description`.");
  if (call.board.thread().goalComplete) {
    return refused("The goal is complete and locked. Only the person can reopen it.");
  }
  Thread& thread = call.board.editThread();
  thread.goal = goal;
  thread.goalProposedBy.clear();
  record(call.board, call.move(MoveKind::goalSet, "", cutWithMark(goal, noteLimit)));
  return written("The goal is set.", std::move(notice));
}

TeamworkResponse setCharter(const Call& call) {
  std::string notice;
  const std::string charter = lineOf(call.request.name.value_or(""), "charter", notice);
  if (charter.empty()) return refused("A charter needs a `name`: one short line.");
  call.board.editThread().charter = charter;
  record(call.board, call.move(MoveKind::charterSet, "", charter));
  return written("The charter is set.", std::move(notice));
}

TeamworkResponse proposeGoalComplete(const Call& call) {
  const Thread& thread = call.board.thread();
  if (thread.goal.empty()) return refused("There is no goal yet to be complete: set_goal first.");
  if (thread.goalComplete) return written("The goal is complete already; the person confirmed it.");
  const std::vector<const TeamworkDiscussion*> debates = openOn(call.board, "");
  if (!debates.empty()) {
    return refused(text::cat("An open discussion of the whole board holds this back: ",
                             debates.front()->id, ". resolve_discussion first."));
  }
  const int64_t open = text::countOf(call.board.tasks.with({openTasks, {}}));
  if (open > 0 && !call.request.acknowledgeOpenTasks.value_or(false)) {
    return refused(text::cat(open, " task", text::s(open), open == 1 ? " is" : " are",
                             " still open. Look at list_tasks; when the goal is done without ",
                             open == 1 ? "it" : "them", ", pass acknowledgeOpenTasks true."));
  }
  call.board.editThread().goalProposedBy = call.self();
  record(call.board, call.move(MoveKind::goalProposed));
  return written("Completion is proposed. The person decides.");
}

TeamworkResponse openDiscussion(const Call& call) {
  std::string notice;
  TeamworkDiscussion discussion;
  discussion.question =
      cutWithNotice(unicode::trim(call.request.body.value_or("")), volleyLimit, "question", notice);
  if (discussion.question.empty()) return refused("A discussion needs a `question`.");
  if (call.request.taskID && !call.request.taskID->empty()) {
    if (call.board.tasks.find(*call.request.taskID) == nullptr) {
      return refused(text::cat("There is no task ", *call.request.taskID, " on this board."));
    }
    discussion.taskID = call.request.taskID;
  }
  Addressees addressees = addresseesOf(call, notice);
  if (!addressees.unknown.empty()) {
    return refused(text::cat("Nobody here answers to ", addressees.unknown,
                             ". list_agents has the fingerprints; `human` is the person."));
  }
  discussion.openedBy = call.self();
  discussion.addressedTo = std::move(addressees.parties);
  return shown(call, openDebate(call.board, std::move(discussion), call.at.nowMs),
               std::move(notice));
}

TeamworkResponse replyDiscussion(const Call& call, TeamworkDiscussion& discussion) {
  if (!isOpen(discussion)) {
    return refused(text::cat(discussion.id, " is resolved: ", discussion.resolution.value_or("")));
  }
  std::string notice;
  std::string body =
      cutWithNotice(unicode::trim(call.request.body.value_or("")), volleyLimit, "volley", notice);
  if (body.empty()) return refused("A volley needs a `text`.");
  addVolley(call.board, discussion, {call.self(), std::move(body), call.at.nowMs});
  return shown(call, discussion, std::move(notice));
}

TeamworkResponse resolveDiscussion(const Call& call, TeamworkDiscussion& discussion) {
  if (!isOpen(discussion)) {
    return refused(text::cat(discussion.id, " is resolved: ", discussion.resolution.value_or("")));
  }
  std::string notice;
  const std::string resolution = cutWithNotice(unicode::trim(call.request.body.value_or("")),
                                               volleyLimit, "resolution", notice);
  if (resolution.empty()) return refused("A discussion is closed with a `resolution`.");
  resolve(call.board, discussion, {resolution, call.self(), call.at.nowMs});
  return shown(call, discussion, std::move(notice));
}

}  // namespace

// clang-format off
std::span<const Method> planMethods() {
  static constexpr Method rows[] = {
      {"read_plan",             Entry::member, readPlan, Effect::reads},
      {"set_goal",              Entry::member, setGoal},
      {"set_charter",           Entry::member, setCharter},
      {"open_discussion",       Entry::member, openDiscussion},
      {"reply_discussion",      Entry::member, replyDiscussion},
      {"resolve_discussion",    Entry::member, resolveDiscussion},
      {"propose_goal_complete", Entry::member, proposeGoalComplete},
  };
  return rows;
}
// clang-format on

}  // namespace quillpost::board
