#include "board/verbs/person.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ask.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/removal.h"
#include "board/rules/wakes.h"
#include "board/verbs/methods.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

struct Deed {
  Board& board;
  const TeamworkRequest& request;
  Moment at;

  std::string words() const { return std::string(unicode::trim(request.body.value_or(""))); }
  std::string subject() const { return request.taskID.value_or(""); }

  /// A move of the person's, now; about no task when `taskID` is empty.
  Move move(MoveKind kind, std::string taskID = {}, std::string what = {}) const {
    return {kind, std::move(taskID), std::string(human), at.nowMs, std::move(what)};
  }
};

TeamworkResponse show(const Deed& deed) { return written(showBoard(deed.board, deed.at)); }

TeamworkResponse answerTask(const Deed& deed, Task& task) {
  const bool wasBlocked = task.blocked;
  const Ask ask = splitAsk(task.blockerQuestion);
  const std::string given = spellOut(ask, deed.words());
  // Everybody reads the log, the wakes and the history.
  const bool isSecret = wasBlocked && isForSecret(ask);
  const std::string words = isSecret ? "a secret was given" : given;
  addLine(deed.board, task,
          {"", LogKind::comment, std::string(human), std::string(human), words, deed.at.nowMs});
  std::erase(task.mentions, human);
  if (wasBlocked) {
    task.blocked = false;
    task.blockerAnswer = given;
    task.isAnswerSecret = isSecret;
  }
  const WakeKind kind = wasBlocked ? WakeKind::blockerAnswered : WakeKind::humanReplied;
  const std::string summary = text::cat("The human answered on ", named(task), ": ", words);
  std::vector<Notice> notices;
  for (const std::string& party : {task.blockedBy, task.owner, task.filedBy}) {
    const bool isConcerned = !wasBlocked || party != task.filedBy || party == task.blockedBy;
    if (!party.empty() && isConcerned) notices.push_back({party, kind, summary});
  }
  announce(deed.board,
           deed.move(wasBlocked ? MoveKind::taskUnblocked : MoveKind::taskCommented, task.id,
                     cutWithMark(words, noteLimit)),
           notices);
  return written(text::cat(wasBlocked ? "Answered " : "Commented on ", named(task), "."));
}

TeamworkResponse answer(const Deed& deed) {
  if (deed.words().empty()) return refused("Say something.");
  if (Task* task = deed.board.tasks.touch(deed.subject())) return answerTask(deed, *task);
  TeamworkDiscussion* discussion = deed.board.discussions.touch(deed.subject());
  if (discussion == nullptr || !isOpen(*discussion)) {
    return refused(text::cat("No task and no open discussion is called ", deed.subject(), "."));
  }
  addVolley(deed.board, *discussion, {std::string(human), deed.words(), deed.at.nowMs});
  return written(text::cat("Spoke in ", discussion->id, "."));
}

void wakeEverybody(Board& board, const Reason& reason) {
  for (const auto& [id, seat] : board.seats)
    if (isLive(seat)) wake(board, seat, reason);
}

TeamworkResponse confirmGoal(const Deed& deed) {
  if (deed.board.thread().goal.empty()) return refused("There is no goal to confirm.");
  Thread& thread = deed.board.editThread();
  thread.goalComplete = true;
  thread.goalProposedBy.clear();
  record(deed.board, deed.move(MoveKind::goalConfirmed));
  wakeEverybody(deed.board,
                {WakeKind::goalConfirmed, "", "The human confirmed that the goal is complete",
                 MoveKind::goalConfirmed});
  return written("The goal is complete.");
}

TeamworkResponse reopenGoal(const Deed& deed) {
  Thread& thread = deed.board.editThread();
  thread.goalComplete = false;
  thread.goalProposedBy.clear();
  record(deed.board, deed.move(MoveKind::goalReopened));
  wakeEverybody(deed.board, {WakeKind::goalReopened, "", "The human reopened the goal",
                             MoveKind::goalReopened});
  return written("The goal is open again.");
}

TeamworkResponse say(const Deed& deed) {
  const std::string handle = deed.request.to.value_or("");
  const Seat* seat = seatAt(deed.board, handle);
  if (seat == nullptr || !seat->registered)
    return refused(text::cat("Nobody is home at ", handle, "."));
  if (deed.words().empty()) return refused("Say something.");
  // A wake and not a message: messages are told as another agent's words.
  wake(deed.board, *seat, {WakeKind::humanSaid, "", text::cat("The human says: ", deed.words())});
  return written(text::cat("Said to ", seat->handle, "."));
}

TeamworkResponse switchSquad(const Deed& deed) {
  deed.board.editThread().squadOn = deed.request.approve.value_or(false);
  record(deed.board,
         deed.move(MoveKind::squadSwitched, "", deed.board.thread().squadOn ? "on" : "off"));
  return written(deed.board.thread().squadOn ? "The squad is on." : "The squad is off.");
}

TeamworkResponse restore(const Deed& deed) {
  const Task* deleted = deed.board.trash.find(deed.subject());
  if (deleted == nullptr) {
    return refused(text::cat("No deleted task is called ", deed.subject(), "."));
  }
  if (const auto reason = whyNotRestorable(deed.board, *deleted)) return refused(*reason);
  const Task& restored =
      restoreTask(deed.board, std::string(deleted->id),
                  deed.move(MoveKind::taskAdded, deleted->id, deleted->title), deed.at);
  return written(text::cat("Put back ", named(restored), "."));
}

struct PersonMethod {
  std::string_view name;
  TeamworkResponse (*run)(const Deed&);
};

// clang-format off
constexpr PersonMethod table[] = {
    {personShow,        show},
    {personAnswer,      answer},
    {personConfirmGoal, confirmGoal},
    {personReopenGoal,  reopenGoal},
    {personSay,         say},
    {personSquad,       switchSquad},
    {personRestore,     restore},
};
// clang-format on

}  // namespace

bool isForPerson(std::string_view method) {
  return method == personSeat ||
         std::ranges::find(table, method, &PersonMethod::name) != std::end(table);
}

TeamworkResponse carryOutForPerson(Board& board, const TeamworkRequest& request, Moment at) {
  const PersonMethod* method = std::ranges::find(table, request.method, &PersonMethod::name);
  if (method == std::end(table)) return refused("This board does not know that method.");
  return method->run({board, request, at});
}

}  // namespace quillpost::board
