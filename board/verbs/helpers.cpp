#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/limits.h"
#include "board/rules/moves.h"
#include "board/verbs/methods.h"

#include <string>

namespace quillpost::board {

namespace {

/// What stands where a shell would begin to do more than run one command.
constexpr std::string_view notSimple[] = {";", "|", "&", "<", ">", "`", "$(", "\n"};

constexpr std::string_view noneAllowed =
    "No helper is allowed here, so none was started. suggest_helper asks for one.";

/// Why a command is not one simple command; nothing when it is.
std::optional<std::string> whyNotSimple(std::string_view command) {
  if (unicode::trim(command).empty()) return "A helper needs a `command`.";
  for (const std::string_view piece : notSimple) {
    if (command.find(piece) != std::string_view::npos) {
      return "The `command` is to be one simple command: no `;`, pipes, redirects or `$(`.";
    }
  }
  return std::nullopt;
}

TeamworkResponse requestHands(const Call& call) {
  const TeamworkRequest& request = call.request;
  std::string notice;
  const std::string title = lineOf(request.title.value_or(""), "title", notice);
  if (request.taskID.has_value() != title.empty()) {
    return refused("Give `taskID` for work on the board or `title` to file it, never both.");
  }
  if (!call.board.thread().squadOn) {
    return refused(
        "The squad is off for this thread, so no helper can be asked for. The switch is the "
        "person's; work filed with add_task is claimable by every peer.");
  }
  if (request.to) {
    return refused(
        text::cat("No other device is on this thread, so ", *request.to, " takes no work."));
  }
  if (request.agent) {
    return refused(text::cat("No helper named \"", *request.agent,
                             "\" is allowed here. suggest_helper asks the person for one."));
  }
  if (request.taskID) {
    const Task* task = call.board.tasks.find(*request.taskID);
    if (task == nullptr) return refused(text::cat("There is no task ", *request.taskID, "."));
    return written(text::cat(named(*task), " is on the board for every peer to claim."),
                   std::string(noneAllowed));
  }
  Task task;
  task.title = title;
  task.filedBy = call.self();
  const Task& filed =
      fileTask(call.board, std::move(task), briefText(request.body.value_or(""), "brief", notice));
  announce(call.board, call.move(MoveKind::taskAdded, filed.id, filed.title));
  addSentence(notice, noneAllowed);
  return written(text::cat("Filed ", named(filed), " for every peer to claim."), std::move(notice));
}

TeamworkResponse suggestHelper(const Call& call) {
  const TeamworkRequest& request = call.request;
  std::string notice;
  const std::string command =
      cutWithNotice(unicode::trim(request.command.value_or("")), lineLimit, "command", notice);
  if (const auto reason = whyNotSimple(command)) return refused(*reason);
  const std::string explanation = oneLine(request.explanation.value_or(""));
  if (explanation.empty()) return refused("A helper needs an `explanation` for other agents.");
  if (unicode::countCharacters(explanation) > explanationLimit) {
    return refused(text::cat("The `explanation` may have ", explanationLimit, " characters."));
  }
  // Without a name the program's own stands for it.
  const std::string name = oneLine(request.agent.value_or(command.substr(0, command.find(' '))));
  if (name.empty() || unicode::countCharacters(name) > helperNameLimit) {
    return refused(text::cat("The `name` may have 1 to ", helperNameLimit, " characters."));
  }
  call.board.suggestions.put({name, command, explanation,
                              lineOf(request.body.value_or(""), "reason", notice),
                              call.seat.handle});
  return written(text::cat("Suggested \"", name, "\" to the person, who decides."),
                 std::move(notice));
}

TeamworkResponse stopHelper(const Call& call) {
  return refused(
      text::cat("No helper runs here under the handle \"", call.request.to.value_or(""), "\"."));
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
