#include "board/verbs/person.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ask.h"
#include "board/rules/debates.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/runs.h"
#include "board/rules/wakes.h"
#include "board/verbs/methods.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// What the person writes on a task: an answer to what it asks, or a comment.
enum class Speech { answer, comment };

TeamworkResponse speakOn(const Deed& deed, Task& task, Speech speech) {
  const Ask ask = splitAsk(task.blockerQuestion);
  // Everybody reads the log, the wakes and the history, so that a secret that comes too late goes
  // nowhere. One that has not been taken yet may be given anew.
  const bool isSecret = speech == Speech::answer && (task.isAnswerSecret || isForSecret(ask));
  if (isSecret && !task.blocked && !hasSecret(task)) {
    return refused(text::cat("Nobody waits for a secret on ", named(task), " any more, so nothing ",
                             "was kept. `comment` is for what all may read."));
  }
  const bool isAnswer = speech == Speech::answer && (task.blocked || isSecret);
  std::string notice;
  std::string given = isSecret ? briefText(deed.words(), "secret", notice)
                               : cutWithNotice(deed.words(), commentLimit, "text", notice);
  std::string words = "a secret was given";
  if (isSecret && seatOf(deed.board, task.blockedBy) == nullptr) {
    given.clear();
    notice = "Whoever asked has left, so the secret was not kept.";
  } else if (!isSecret) {
    const std::optional<std::string> option = isAnswer ? spellOut(ask, given) : given;
    if (!option) {
      return refused(text::cat("There is no such option on ", named(task), ": ",
                               numbered(*ask.payload->o), "."));
    }
    words = given = *option;
  }
  addLine(deed.board, task,
          {"", LogKind::comment, std::string(human), std::string(human), words, deed.at.nowMs});
  std::erase(task.mentions, human);
  if (isAnswer) {
    task.blocked = false;
    task.blockerAnswer = given;
    task.isAnswerSecret = isSecret;
  }
  const WakeKind kind = isAnswer ? WakeKind::blockerAnswered : WakeKind::humanReplied;
  const std::string summary = text::cat("The human answered on ", named(task), ": ", words);
  std::vector<Notice> notices;
  for (const std::string& party : {task.blockedBy, task.owner, task.filedBy}) {
    const bool isConcerned = !isAnswer || party != task.filedBy || party == task.blockedBy;
    if (!party.empty() && isConcerned) notices.push_back({party, kind, summary});
  }
  announce(deed.board,
           deed.move(isAnswer ? MoveKind::taskUnblocked : MoveKind::taskCommented, task.id,
                     cutWithMark(words, noteLimit)),
           notices);
  return written(text::cat(isAnswer ? "Answered " : "Commented on ", named(task), "."), notice);
}

TeamworkResponse comment(const Deed& deed) {
  if (deed.words().empty()) return refused("Say something.");
  if (Task* task = deed.board.tasks.touch(deed.subject())) {
    return speakOn(deed, *task, Speech::comment);
  }
  return refused(text::cat("No task is called ", deed.subject(), "."));
}

TeamworkResponse reply(const Deed& deed) {
  if (deed.words().empty()) return refused("Say something.");
  TeamworkDiscussion* discussion = deed.board.discussions.touch(deed.subject());
  if (discussion == nullptr) {
    return refused(text::cat("No discussion is called ", deed.subject(), "."));
  }
  if (!isOpen(*discussion)) {
    return refused(text::cat(discussion->id, " is resolved: ", discussion->resolution.value_or(""),
                             ". A comment reaches the agents."));
  }
  std::string notice;
  std::string body = cutWithNotice(deed.words(), volleyLimit, "text", notice);
  addVolley(deed.board, *discussion, {std::string(human), std::move(body), deed.at.nowMs});
  return written(text::cat("Spoke in ", discussion->id, "."), notice);
}

/// Whether the task asks the question that the person has before them; true when it is not said
/// which one that is.
bool stillAsks(const Task& task, const std::optional<std::string>& question) {
  return !question || (task.blocked && splitAsk(task.blockerQuestion).question == *question);
}

TeamworkResponse answer(const Deed& deed) {
  if (deed.board.discussions.find(deed.subject()) != nullptr) return reply(deed);
  if (deed.words().empty()) return refused("Say something.");
  if (Task* task = deed.board.tasks.touch(deed.subject())) {
    if (!stillAsks(*task, deed.request.blockerQuestion)) {
      return refused(text::cat("That question of ", named(*task),
                               " is not asked any more: it was answered first, or taken back."));
    }
    return speakOn(deed, *task, Speech::answer);
  }
  return refused(text::cat("No task and no discussion is called ", deed.subject(), "."));
}

/// Wakes every agent, those too whose lease has lapsed. How many there are.
int64_t wakeEverybody(Board& board, const Reason& reason) {
  int64_t count = 0;
  for (const auto& [id, seat] : board.seats) {
    if (!seat.registered) continue;
    wake(board, seat, reason);
    ++count;
  }
  return count;
}

TeamworkResponse changeGoal(const Deed& deed) {
  std::string notice;
  const std::string goal = briefText(deed.words(), "goal", notice);
  if (goal.empty()) return refused("Say what the goal is.");
  if (deed.board.thread().goalComplete) {
    return refused("The goal is complete: `reopen-goal` comes before another one.");
  }
  Thread& thread = deed.board.editThread();
  thread.goal = goal;
  thread.goalProposedBy.clear();
  record(deed.board, deed.move(MoveKind::goalSet, "", cutWithMark(goal, noteLimit)));
  return written("The goal is set.", notice);
}

TeamworkResponse changeCharter(const Deed& deed) {
  std::string notice;
  const std::string charter = lineOf(deed.words(), "charter", notice);
  if (charter.empty()) return refused("Say what the charter is.");
  deed.board.editThread().charter = charter;
  record(deed.board, deed.move(MoveKind::charterSet, "", charter));
  return written("The charter is set.", notice);
}

/// Why a goal is not simply confirmed; empty when nothing stands against it.
std::string whyNotConfirmed(const Deed& deed) {
  std::string why;
  if (deed.board.thread().goalProposedBy.empty())
    why = "No agent has proposed that it is complete.";
  const int64_t open = text::countOf(deed.board.tasks.with({openTasks, {}}));
  if (open > 0) {
    addSentence(
        why, text::cat(open, " task", text::s(open), open == 1 ? " is" : " are", " still open."));
  }
  return why;
}

TeamworkResponse confirmGoal(const Deed& deed) {
  if (deed.board.thread().goal.empty()) return refused("There is no goal to confirm.");
  if (deed.board.thread().goalComplete) return written("The goal is complete already.");
  std::string why = whyNotConfirmed(deed);
  if (!why.empty() && !deed.request.acknowledgeOpenTasks.value_or(false)) {
    addSentence(why, "With --anyway it is confirmed all the same.");
    return refused(why);
  }
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
  const std::string to = deed.request.to.value_or("");
  std::string notice;
  const std::string words = cutWithNotice(deed.words(), lineLimit, "text", notice);
  if (words.empty()) return refused("Say something.");
  // A wake and not a message: messages are told as another agent's words.
  const Reason reason{WakeKind::humanSaid, "", text::cat("The human says: ", words)};
  if (to == "all") {
    const int64_t count = wakeEverybody(deed.board, reason);
    if (count == 0) return refused("No agent has registered yet, so there is nobody to hear it.");
    return written(text::cat("Said to ", count, " agent", text::s(count), "."), notice);
  }
  const Seat* seat = whoIs(deed.board, to);
  if (seat == nullptr) return refused(text::cat("Nobody is home at ", to, "."));
  wake(deed.board, *seat, reason);
  return written(text::cat("Said to ", seat->handle, "."), notice);
}

TeamworkResponse unseat(const Deed& deed) {
  const std::string to = deed.request.to.value_or("");
  const Seat* found = seatAt(deed.board, to);
  if (found == nullptr) found = whoIs(deed.board, to);
  if (found == nullptr) return refused(text::cat("There is no seat ", to, "."));
  if (const HelperRun* run = deed.board.runs.find(found->id)) {
    const std::string named = run->handle;
    const std::string freed =
        stopWithHelpers(deed.board, run->id, {std::string(human), "by the human"}, deed.at);
    return written(text::cat("Stopped the helper ", named, ".", freed.empty() ? "" : " ", freed));
  }
  Seat& seat = *deed.board.seats.touch(found->id);
  const std::string handle = seat.handle;
  const int64_t returned = seat.registered ? leave(deed.board, seat, deed.at) : 0;
  stopHelpersOf(deed.board, seat.id, {"", text::cat("the seat ", handle, " was freed")}, deed.at);
  emptySeat(deed.board, seat);
  deed.board.seats.remove(std::string(seat.id));
  return written(text::cat("Took the seat ", handle, " away; ", returned, " claim",
                           text::s(returned), " went back to the pool."));
}

TeamworkResponse switchSquad(const Deed& deed) {
  deed.board.editThread().squadOn = deed.request.approve.value_or(false);
  record(deed.board,
         deed.move(MoveKind::squadSwitched, "", deed.board.thread().squadOn ? "on" : "off"));
  return written(deed.board.thread().squadOn ? "The squad is on." : "The squad is off.");
}

}  // namespace

std::string Deed::words() const { return std::string(unicode::trim(request.body.value_or(""))); }

std::string Deed::subject() const { return wholeID(request.taskID.value_or("")); }

Move Deed::move(MoveKind kind, std::string taskID, std::string what) const {
  return {kind, std::move(taskID), std::string(human), at.nowMs, std::move(what)};
}

// clang-format off
std::span<const PersonMethod> personTalk() {
  static constexpr PersonMethod rows[] = {
      {personAnswer,      answer},
      {personComment,     comment},
      {personReply,       reply},
      {personSay,         say},
      {personUnseat,      unseat},
      {personGoal,        changeGoal},
      {personCharter,     changeCharter},
      {personConfirmGoal, confirmGoal},
      {personReopenGoal,  reopenGoal},
      {personSquad,       switchSquad},
  };
  return rows;
}
// clang-format on

bool isForPerson(std::string_view method) { return method.starts_with("person_"); }

TeamworkResponse carryOutForPerson(Board& board, const TeamworkRequest& request, Moment at) {
  for (const std::span<const PersonMethod> rows : {personTalk(), personTasks(), personHelping()}) {
    const auto method = std::ranges::find(rows, request.method, &PersonMethod::name);
    if (method != rows.end()) return method->run({board, request, at});
  }
  return refused("This board does not know that method.");
}

}  // namespace quillpost::board
