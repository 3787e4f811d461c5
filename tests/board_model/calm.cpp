#include "board_model/calm.h"

#include "base/text.h"
#include "board/rules/debates.h"
#include "board/rules/feed.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/views.h"
#include "board/verbs/person.h"
#include "board_model/judge.h"
#include "tools/tool_name.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::board_model {

namespace {

using namespace board;

/// A round takes this part of a lease, so that whoever is left keeps what it holds, and none is
/// silent for long.
constexpr int64_t roundsOfLease = 2;

/// Once the leases of those that never speak again are over, a round takes each line of waiting
/// tasks one task further, and there are few of them.
constexpr int64_t mostRounds = roundsOfLease + 12;

class CalmEnd {
 public:
  explicit CalmEnd(const Calm& calm) : calm_(calm) {}

  std::optional<std::string> play() {
    chooseWhoIsLeft();
    for (int64_t round = 1; !wrong_ && round <= mostRounds; ++round) {
      const int64_t rev = calm_.board.counted().rev;
      calm_.at.nowMs += calm_.at.leaseMs / roundsOfLease;
      for (const std::string& session : left_) takeTurn(session);
      takeTurnOfPerson();
      handOutTasks();
      if (wrong_ || round <= roundsOfLease || calm_.board.counted().rev != rev) continue;
      return whatIsLeft();
    }
    return wrong_ ? wrong_ : text::cat("there is no end to it in ", mostRounds, " rounds");
  }

 private:
  const Board& board() const { return calm_.board; }
  const Seat& seat(const std::string& session) const { return *board().seats.find(session); }

  void ask(const std::string& session, std::string_view method, TeamworkRequest request = {}) {
    if (wrong_) return;
    request.sessionID = session;
    request.method = method;
    wrong_ = calm_.ask(std::move(request));
  }
  void askOn(const std::string& session, std::string_view method, const std::string& taskID) {
    TeamworkRequest request;
    request.taskID = taskID;
    request.summary = request.note = request.body = "calm";
    request.approve = true;
    ask(session, method, std::move(request));
  }
  void resolve(const std::string& session, const std::string& discussionID) {
    TeamworkRequest request;
    request.discussionID = discussionID;
    request.body = "calm";
    ask(session, "resolve_discussion", std::move(request));
  }

  /// At least one, who may be new.
  void chooseWhoIsLeft() {
    for (const auto& [session, seat] : board().seats)
      if (seat.registered && !calm_.dice.oneIn(4)) left_.push_back(session);
    if (!left_.empty()) return;
    left_.push_back(board().seats.begin()->first);
    ask(left_.front(), "register");
  }

  /// The agent listens, as a wait does, then pays what it owes and finishes what it holds.
  void takeTurn(const std::string& session) {
    TeamworkRequest waiting;
    waiting.waiting = true;
    ask(session, "heartbeat", waiting);
    ask(session, pollChanges);
    const TeamworkObligations owed = obligationsOf(board(), seat(session), calm_.at);
    for (const TeamworkObligations::DebateRef& reply : owed.oweReply) {
      if (reply.discussionID == "none") {
        askOn(session, "verify_task", *reply.taskID);
      } else {
        resolve(session, reply.discussionID);
      }
    }
    for (const std::string& id : owed.mentionsToAnswer) askOn(session, "comment_task", id);
    std::vector<std::string> held;
    for (const Task* task : board().tasks.with({byOwner, seat(session).fingerprint}))
      held.push_back(task->id);
    for (const std::string& id : held) {
      while (!wrong_ && !openOn(board(), id).empty())
        resolve(session, std::string(openOn(board(), id).front()->id));
      askOn(session, "complete_task", id);
    }
  }

  /// The person answers whatever is before them, and has the goal go on.
  void takeTurnOfPerson() {
    if (board().thread().goalComplete) ask("", personReopenGoal);
    std::vector<std::string> asked;
    for (const auto& [id, task] : board().tasks) {
      const bool isTagged = std::ranges::find(task.mentions, human) != task.mentions.end();
      if (task.blocked || isTagged) asked.push_back(id);
    }
    for (const auto& [id, discussion] : board().discussions)
      if (owes(discussion, human)) asked.push_back(id);
    for (const std::string& id : asked) askOn("", personAnswer, id);
  }

  /// Each READY task is claimed: by whom it is meant for, or by anybody when that is nobody here.
  void handOutTasks() {
    for (const auto& [id, only] : lookAt(board(), calm_.at).takeable) {
      const bool isKept = !only.empty() && std::ranges::find(left_, only) == left_.end();
      if (!isKept) askOn(only.empty() ? calm_.dice.oneOf(left_) : only, "claim_task", id);
    }
  }

  std::optional<std::string> whatIsLeft() {
    for (const auto& [id, task] : board().tasks)
      if (isOpen(task) && isReady(board(), task)) return text::cat(id, " was never done");
    for (const auto& [id, discussion] : board().discussions)
      if (owes(discussion, human)) return text::cat(id, " still waits for the person");
    for (const std::string& session : left_) {
      const TeamworkObligations owed = obligationsOf(board(), seat(session), calm_.at);
      if (!owed.clear) return text::cat(session, " still owes ", json::encode(owed));
      if (!wakesOf(board(), seat(session)).empty() || !messagesOf(board(), seat(session)).empty()) {
        return text::cat(session, " was not told of everything");
      }
      ask(session, wakeQuery);
    }
    return wrong_;
  }

  const Calm& calm_;
  /// The sessions of those who are left.
  std::vector<std::string> left_;
  std::optional<std::string> wrong_;
};

}  // namespace

std::optional<std::string> endCalmly(const Calm& calm) { return CalmEnd(calm).play(); }

}  // namespace quillpost::board_model
