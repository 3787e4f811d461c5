#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ask.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/removal.h"
#include "board/rules/runs.h"
#include "board/verbs/methods.h"
#include "model/markers.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// The line without the markers that would make it something else in the log.
std::string plainLine(std::string_view whole) {
  std::string line = oneLine(whole);
  for (const std::string_view marker : {gistMarker, forMarker})
    while (line.starts_with(marker)) line = oneLine(std::string_view(line).substr(marker.size()));
  return line;
}

/// Why the caller may not update the task; nothing when it may: its holder, whoever did it, anybody
/// once that one is gone, and for a task that nobody holds whoever filed it or asked the person
/// about it.
std::optional<std::string> whyNotUpdatable(const Call& call, const Task& task) {
  const std::string& self = call.self();
  if (task.state == TaskState::rejected) {
    return text::cat(named(task), " is declined. File a corrected one with add_task.");
  }
  const Seat* doer = seatOf(call.board, task.owner);
  // The person is never gone.
  const bool isGone = task.owner != human && (doer == nullptr || !isLive(*doer));
  if (task.state == TaskState::done && isGone) return std::nullopt;
  const bool isOwn = task.state == TaskState::open ? task.filedBy == self || task.blockedBy == self
                                                   : task.owner == self;
  if (isOwn) return std::nullopt;
  return text::cat("You do not hold ", named(task),
                   ". Claim it first if it is READY; comment_task needs no claim.");
}

/// Why the blocker asked for cannot be raised; nothing when it can, or when none is asked for.
std::optional<std::string> whyNotBlockable(const TeamworkRequest& request, const Task& task) {
  if (!request.blocked.value_or(false)) return std::nullopt;
  const std::string question = splitAsk(request.blockerQuestion.value_or("")).question;
  if (question.empty() && task.blockerQuestion.empty()) {
    return "Say what you need from the person: pass blockerQuestion.";
  }
  if (unicode::countCharacters(question) > questionLimit) {
    return text::cat("blockerQuestion is longer than ", questionLimit,
                     " characters. Rewrite it as one sentence; nothing was changed.");
  }
  return std::nullopt;
}

/// The question that the task stands on, without its marker.
std::string questionOf(const Task& task) { return splitAsk(task.blockerQuestion).question; }

}  // namespace

bool correct(Board& board, const TeamworkRequest& request, Task& task, std::string& notice) {
  const Task before = task;
  const std::string title = lineOf(request.title.value_or(""), "title", notice);
  if (!title.empty()) task.title = title;
  task.priority = request.priority.value_or(task.priority);
  if (request.taskType) task.type = lineOf(*request.taskType, "type", notice);
  if (request.resources) task.resources = entriesOf(request.resources, "resources", notice);
  if (request.waitsOn) task.waitsOn = entriesOf(request.waitsOn, "waitsOn", notice);
  if (request.assignedRole) task.assignedRole = lineOf(*request.assignedRole, "role", notice);
  if (request.routedToFingerprint) {
    task.routedTo = routeTo(board, *request.routedToFingerprint, notice);
  }
  if (!request.body) return task != before;
  const std::string brief = briefText(*request.body, "brief", notice);
  const bool isNew = brief != briefOf(board, task.id);
  setBrief(board, task.id, brief);
  return isNew || task != before;
}

void tellOfCorrection(Board& board, const Task& before, Move move) {
  const Task& task = *board.tasks.find(before.id);
  if (task.routedTo != before.routedTo && isOpen(task)) {
    std::vector<Notice> notices;
    if (const Seat* seat = addresseeOf(board, task)) {
      notices.push_back({seat->fingerprint, WakeKind::taskAssigned,
                         text::cat(calling(board, move.by), " handed you ", named(task))});
    }
    move.kind = MoveKind::taskAssigned;
    move.what = task.routedTo.empty() ? "to nobody" : text::cat("to ", task.routedTo);
    announce(board, move, notices);
  }
  const bool wasReady = isReady(board, before);
  if (task.waitsOn == before.waitsOn || wasReady) return;
  move.kind = MoveKind::taskReady;
  move.what = "waits on less";
  tellIfReady(board, task, move, "it waits on less than before");
}

namespace {

/// Takes a finished task up again for the caller. The verdict on it was on what it was then; who
/// asked for one stays, so that the next completion is judged anew.
void reopen(const Call& call, Task& task) {
  takeClaim(call.board, task, call.seat, call.at);
  clearVerdict(task);
}

/// Raises or clears the question to the person. The kind of move that was, if any.
std::optional<MoveKind> raiseOrClear(const Call& call, Task& task, std::string& notice) {
  if (!call.request.blocked) return std::nullopt;
  if (!*call.request.blocked) {
    if (!std::exchange(task.blocked, false)) return std::nullopt;
    task.blockerQuestion.clear();
    return MoveKind::taskUnblocked;
  }
  const std::string question = call.request.blockerQuestion.value_or("");
  if (!question.empty()) task.blockerQuestion = cutAsk(question, notice);
  task.blocked = true;
  task.blockedBy = call.self();
  task.blockerAnswer.clear();
  task.isAnswerSecret = isForSecret(splitAsk(task.blockerQuestion));
  return MoveKind::taskBlocked;
}

/// Writes the progress line and gives it; empty when there is none. Work that goes on is no longer
/// parked.
std::string writeProgress(const Call& call, Task& task, std::string& notice) {
  std::string line =
      cutWithNotice(plainLine(call.request.note.value_or("")), progressLimit, "progress", notice);
  if (line.empty()) return line;
  addLine(call.board, task,
          {"", LogKind::progress, call.self(), call.seat.handle, line, call.at.nowMs});
  ++task.linesSinceClaim;
  task.parkedReason.clear();
  return line;
}

/// The parties whom tags name: fingerprints and "human". Those who are not here go into `notice`.
std::vector<std::string> taggedBy(const Call& call, std::string& notice) {
  std::vector<std::string> tagged;
  for (const std::string& tag : entriesOf(call.request.tags, "tags", notice)) {
    const std::string name = tag.starts_with('@') ? tag.substr(1) : tag;
    if (unicode::equalIgnoringCase(name, human)) {
      tagged.emplace_back(human);
    } else if (const Seat* seat = whoIs(call.board, name)) {
      tagged.push_back(seat->fingerprint);
    } else {
      addSentence(notice, text::cat("Nobody here answers to \"", tag, "\"."));
    }
  }
  return tagged;
}

/// The last line of the log but for summaries of that author; null for a log without any.
const LogLine* lastWords(const Board& board, const Task& task, const std::string& author) {
  for (int64_t number = task.lastLine; number > 0; --number) {
    const LogLine* line = board.lines.find(lineID(task.id, number));
    if (line == nullptr || line->kind != LogKind::gist || line->author != author) return line;
  }
  return nullptr;
}

/// Adds the comment, or puts it in place of the caller's own last one.
void writeComment(const Call& call, Task& task, const std::string& words, std::string& notice) {
  LogLine line{"", LogKind::comment, call.self(), call.seat.handle, words, call.at.nowMs};
  const LogLine* last = lastWords(call.board, task, call.self());
  const bool isAmendable =
      last != nullptr && last->kind == LogKind::comment && last->author == call.self();
  if (call.request.editLast.value_or(false) && isAmendable) {
    line.id = last->id;
    call.board.lines.put(std::move(line));
    return;
  }
  if (call.request.editLast.value_or(false)) {
    addSentence(notice, "Your last comment is no longer the last entry, so this one was added.");
  }
  addLine(call.board, task, std::move(line));
}

TeamworkResponse updateTask(const Call& call, Task& task) {
  const TeamworkRequest& request = call.request;
  if (const std::optional<std::string> reason = whyNotUpdatable(call, task))
    return refused(*reason);
  if (const std::optional<std::string> reason = whyNotBlockable(request, task))
    return refused(*reason);
  std::string ignored;
  if (wouldWaitOnItself(call.board, task.id, entriesOf(request.waitsOn, "waitsOn", ignored))) {
    return refused(text::cat(named(task), " would wait on itself."));
  }
  std::string notice;
  const Task before = task;
  const bool isCorrected = correct(call.board, request, task, notice);
  const std::string progress = writeProgress(call, task, notice);
  if (hasSecret(task) && task.blockedBy == call.self()) {
    forgetSecret(task);
    addSentence(notice, "The secret that you were given is on the board no longer.");
  }
  const std::optional<MoveKind> blocker = raiseOrClear(call, task, notice);
  if (request.parkReason) task.parkedReason = lineOf(*request.parkReason, "reason", notice);
  const bool isReopened = task.state == TaskState::done &&
                          (isCorrected || !progress.empty() || blocker || request.parkReason);
  refreshSummary(call.board, task, call.seat, request.summary.value_or(""), call.at.nowMs);
  if (isReopened) {
    const std::string parked = task.parkedReason;
    reopen(call, task);
    task.parkedReason = parked;
  }
  if (request.summary && !request.summary->empty()) ++task.linesSinceClaim;
  if (task.state == TaskState::claimed) renewClaim(call.board, task, call.at);

  if (isReopened) announce(call.board, call.move(MoveKind::taskReopened, task.id));
  if (isCorrected) announce(call.board, call.move(MoveKind::taskEdited, task.id));
  if (!progress.empty()) {
    announce(call.board, call.move(MoveKind::taskProgress, task.id, progress));
  }
  if (blocker) announce(call.board, call.move(*blocker, task.id, questionOf(task)));
  if (blocker == MoveKind::taskBlocked) tellAskerOfQuestion(call.board, call.seat, task);
  if (request.parkReason) {
    announce(call.board, call.move(MoveKind::taskParked, task.id, task.parkedReason));
  }
  if (isCorrected) tellOfCorrection(call.board, before, call.move(MoveKind::taskEdited, task.id));
  if (request.waitsOn) addSentence(notice, noticeOfWaits(call.board, task.waitsOn));
  if (settleReleaseAsks(call.board, task, call.self(), call.at)) {
    addSentence(notice, text::cat(calling(call.board, task.owner),
                                  " had asked for this task and holds it now."));
  }
  return written(text::cat(isReopened ? "Reopened " : "Updated ", named(task), "."),
                 std::move(notice));
}

TeamworkResponse commentTask(const Call& call, Task& task) {
  const std::string whole(unicode::trim(call.request.note.value_or("")));
  const std::string summary(unicode::trim(call.request.summary.value_or("")));
  if (whole.empty() && summary.empty()) return refused("Pass `text`, `summary` or both.");
  std::string notice;
  cutWithNotice(whole, commentLimit, "comment", notice);
  const std::string words = cutWithMark(whole, commentLimit);
  const std::vector<std::string> tagged = taggedBy(call, notice);
  const bool isAmending = call.request.editLast.value_or(false);
  if (isAmending && !words.empty()) writeComment(call, task, words, notice);
  refreshSummary(call.board, task, call.seat, summary, call.at.nowMs);
  if (!isAmending && !words.empty()) writeComment(call, task, words, notice);
  if (isHeldBy(task, call.self())) ++task.linesSinceClaim;
  std::erase(task.mentions, call.self());
  std::vector<Notice> notices;
  for (const std::string& party : tagged) {
    if (party == call.self()) continue;
    if (std::ranges::find(task.mentions, party) == task.mentions.end()) {
      task.mentions.push_back(party);
    }
    notices.push_back({party, WakeKind::mentioned,
                       text::cat(call.seat.handle, " tagged you on ", named(task), ": ",
                                 cutWithMark(words, questionLimit))});
  }
  announce(call.board,
           call.move(MoveKind::taskCommented, task.id,
                     cutWithMark(words.empty() ? summary : words, noteLimit)),
           notices);
  return written(
      text::cat(words.empty() ? "Summary refreshed on " : "Commented on ", named(task), "."),
      std::move(notice));
}

}  // namespace

// clang-format off
std::span<const Method> writingMethods() {
  static constexpr Method rows[] = {
      {"update_task",  Entry::member, updateTask},
      {"comment_task", Entry::member, commentTask},
  };
  return rows;
}
// clang-format on

}  // namespace quillpost::board
