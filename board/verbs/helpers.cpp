#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/command_words.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/moves.h"
#include "board/rules/names.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/runs.h"
#include "board/verbs/methods.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

constexpr std::string_view noneAllowed =
    "No helper is allowed here, so none was started. suggest_helper asks for one.";

std::string allowedNames(const Board& board) {
  return text::join(board.helpers, ", ",
                    [](const auto& entry) { return text::cat("\"", entry.first, "\""); });
}

/// Why no helper can be asked for at all, or not by this request; nothing when one can.
std::optional<std::string> whyNoHelper(const Call& call) {
  const TeamworkRequest& request = call.request;
  if (!call.board.thread().squadOn) {
    return "The squad is off for this thread, so no helper can be asked for. The switch is the "
           "person's; work filed with add_task is claimable by every peer.";
  }
  if (request.to && request.agent) {
    return "`agent` names a helper here and `to` another device: never both.";
  }
  if (request.to) {
    return text::cat("This board has one device and no other is on this thread, so ", *request.to,
                     " takes no work.");
  }
  const std::string name = request.agent.value_or("");
  if (!name.empty() && call.board.helpers.find(name) == nullptr) {
    const std::string others = allowedNames(call.board);
    return text::cat("No helper named \"", name, "\" is allowed here",
                     others.empty() ? "" : ", only ", others,
                     ". suggest_helper asks the person for one.");
  }
  if (name.empty() && call.board.helpers.size() > 1) {
    return text::cat("More than one helper is allowed here, so name one with `agent`: ",
                     allowedNames(call.board), ".");
  }
  if (!call.board.helpers.empty() && call.board.thread().goalComplete) {
    return "The goal is complete, so nothing is to be started.";
  }
  if (!call.board.helpers.empty() && helpersCounted(call.board) >= helperLimit) {
    return limitSentence(call.board);
  }
  return std::nullopt;
}

/// Why a task cannot be handed to a new helper; nothing when it can.
std::optional<std::string> whyNotHanded(const Call& call, const Task& task) {
  if (!isOpen(task)) return text::cat(named(task), " is closed.");
  if (isHeldBy(task, call.self())) {
    return text::cat("You hold ", named(task), ": release_task first, or ask for other work.");
  }
  if (task.state == TaskState::claimed) {
    return text::cat(named(task), " is held by ", calling(call.board, task.owner),
                     ". Only a task that nobody holds can be handed over.");
  }
  if (const HelperRun* run = runFor(call.board, task)) {
    return text::cat(named(task), " is with the helper ", run->handle, " already.");
  }
  if (!isReady(call.board, task)) {
    return text::cat(named(task), " is not READY, so a helper could not claim it: it waits on ",
                     text::join(task.waitsOn, ", "), ".");
  }
  if (task.blocked) {
    return text::cat(named(task), " is blocked on a question to the person.");
  }
  return std::nullopt;
}

/// Makes the new helper's seat; what is wanted of it stands in its row.
const HelperRun& seatHelper(const Call& call, const Helper& helper) {
  Seat seat;
  seat.label = helper.id;
  seat.id = mintSecret(call.random);
  do {
    seat.handle = mintHandle(call.random);
  } while (seatAt(call.board, seat.handle) != nullptr || runAt(call.board, seat.handle) != nullptr);
  HelperRun run;
  run.id = seat.id;
  run.handle = seat.handle;
  run.helper = helper.id;
  run.askedBy = call.seat.id;
  run.askerHandle = call.seat.handle;
  run.askedAtMs = call.at.nowMs;
  call.board.seats.put(std::move(seat));
  return call.board.runs.put(std::move(run));
}

/// Hands a task to a new helper, and says what was done with it before.
TeamworkResponse startHelper(const Call& call, Task& task, const HelperRun& seated,
                             std::string_view filed, std::string notice) {
  HelperRun& run = *call.board.runs.touch(seated.id);
  run.taskID = task.id;
  task.routedTo = run.handle;
  task.reportsTo = call.seat.handle;
  addLine(call.board, task,
          {"", LogKind::handOff, call.self(), call.seat.handle,
           text::cat("handed to ", run.handle, ", a new helper, by ", call.seat.handle),
           call.at.nowMs});
  announce(call.board, call.move(MoveKind::helperStarted, task.id,
                                 text::cat(run.handle, " (\"", run.helper, "\")")));
  return written(
      text::cat(filed, named(task), " is handed to ", run.handle, ", a new helper (\"", run.helper,
                "\") that is being started for it. You are woken when it completes "
                "the task, asks, or ends. ",
                limitSentence(call.board)),
      std::move(notice));
}

TeamworkResponse requestHands(const Call& call) {
  const TeamworkRequest& request = call.request;
  std::string notice;
  const std::string title = lineOf(request.title.value_or(""), "title", notice);
  if (request.taskID.has_value() != title.empty()) {
    return refused("Give `taskID` for work on the board or `title` to file it, never both.");
  }
  if (const std::optional<std::string> reason = whyNoHelper(call)) return refused(*reason);
  const Helper* helper = call.board.helpers.empty() ? nullptr : &call.board.helpers.begin()->second;
  if (request.agent && !request.agent->empty()) helper = call.board.helpers.find(*request.agent);
  if (request.taskID) {
    Task* task = call.board.tasks.touch(*request.taskID);
    if (task == nullptr) return refused(text::cat("There is no task ", *request.taskID, "."));
    if (helper == nullptr) {
      return written(text::cat(named(*task), " is on the board for every peer to claim."),
                     std::string(noneAllowed));
    }
    if (const std::optional<std::string> reason = whyNotHanded(call, *task))
      return refused(*reason);
    return startHelper(call, *task, seatHelper(call, *helper), "", std::move(notice));
  }
  Task task;
  task.title = title;
  task.filedBy = call.self();
  // Before anybody is told of the task it is the helper's.
  const HelperRun* run = helper != nullptr ? &seatHelper(call, *helper) : nullptr;
  if (run != nullptr) task.routedTo = run->handle;
  Task& filed =
      fileTask(call.board, std::move(task), briefText(request.body.value_or(""), "brief", notice));
  announce(call.board, call.move(MoveKind::taskAdded, filed.id, filed.title));
  if (run != nullptr) return startHelper(call, filed, *run, "Filed. ", std::move(notice));
  addSentence(notice, noneAllowed);
  return written(text::cat("Filed ", named(filed), " for every peer to claim."), std::move(notice));
}

TeamworkResponse suggestHelper(const Call& call) {
  const TeamworkRequest& request = call.request;
  const std::string command(unicode::trim(request.command.value_or("")));
  if (unicode::countCharacters(command) > lineLimit) {
    return refused(text::cat("The `command` may have ", lineLimit, " characters."));
  }
  std::string why;
  const std::optional<std::vector<std::string>> words = commandWords(command, why);
  if (!words) return refused(why);
  const std::string explanation = oneLine(request.explanation.value_or(""));
  if (explanation.empty()) return refused("A helper needs an `explanation` for other agents.");
  if (unicode::countCharacters(explanation) > explanationLimit) {
    return refused(text::cat("The `explanation` may have ", explanationLimit, " characters."));
  }
  // Without a name the program's own stands for it.
  const std::string name = oneLine(request.agent.value_or(words->front()));
  if (name.empty() || unicode::countCharacters(name) > helperNameLimit) {
    return refused(text::cat("The `name` may have 1 to ", helperNameLimit, " characters."));
  }
  std::string notice;
  call.board.suggestions.put({name, command, explanation,
                              lineOf(request.body.value_or(""), "reason", notice),
                              call.seat.handle});
  record(call.board, call.move(MoveKind::helperSuggested, "", name));
  return written(text::cat("Suggested \"", name, "\" to the person, who decides."),
                 std::move(notice));
}

TeamworkResponse stopHelper(const Call& call) {
  const std::string handle = call.request.to.value_or("");
  const HelperRun* run = runAt(call.board, handle);
  if (run == nullptr) {
    return refused(text::cat("No helper runs here under the handle \"", handle,
                             "\". list_agents shows those that do."));
  }
  if (isEnding(*run)) return written(text::cat(run->handle, " is stopped already."));
  const std::vector<std::string> own = runsUnder(call.board, call.seat.id);
  if (std::ranges::find(own, run->id) == own.end()) {
    return refused(text::cat("You may stop the helpers that you asked for and theirs, and ",
                             run->handle, " was asked for by ", run->askerHandle, "."));
  }
  const std::string session = run->id;
  const std::string named = run->handle;
  const int64_t under = text::countOf(runsUnder(call.board, session));
  std::string words = text::cat("Stopped ", named);
  if (under > 0) {
    words += text::cat(" and ", under, " helper", text::s(under), " that it had asked for");
  }
  words += ".";
  const std::string freed = stopWithHelpers(
      call.board, session, {call.self(), text::cat("by ", call.seat.handle)}, call.at);
  addSentence(words, freed.empty() ? "It held nothing." : freed);
  addSentence(words, limitSentence(call.board));
  return written(std::move(words));
}

}  // namespace

// clang-format off
std::span<const Method> helperMethods() {
  static constexpr Method rows[] = {
      {"request_hands",  Entry::member, requestHands},
      {"suggest_helper", Entry::member, suggestHelper},
      {"stop_helper",    Entry::member, stopHelper},
  };
  return rows;
}
// clang-format on

}  // namespace quillpost::board
