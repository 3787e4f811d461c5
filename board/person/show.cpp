#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ask.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/verbs/person.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// The widest that a column is, in characters; what is longer is shortened.
constexpr std::size_t widestColumn = 48;

using Cells = std::vector<std::string>;

/// The rows in columns, two blanks between them, the last column as wide as it is.
std::string inColumns(const std::vector<Cells>& rows) {
  std::vector<std::size_t> widths;
  for (const Cells& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], unicode::countCharacters(row[i]));
  }
  std::string out;
  for (const Cells& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line += text::cat("  ", row[i]);
      line.append(widths[i] - unicode::countCharacters(row[i]), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out += line + "\n";
  }
  return out;
}

std::string section(std::string_view title, const std::vector<Cells>& rows) {
  if (rows.empty()) return {};
  return text::cat("\n", title, "\n", inColumns(rows));
}

std::string stateOf(const Board& board, const Task& task) {
  if (task.blocked) return "BLOCKED";
  if (task.state == TaskState::open) return isReady(board, task) ? "READY" : "waiting";
  return std::string(json::wordFor(task.state));
}

/// What the person is asked, the options numbered as `answer` takes them.
std::string questionOf(const Task& task) {
  const Ask ask = splitAsk(task.blockerQuestion);
  std::string question = text::cat("asks: ", ask.question);
  if (!ask.payload) return question;
  if (ask.payload->s) question += text::cat(" [secret ", *ask.payload->s, "]");
  if (ask.payload->a) question += text::cat(" [look at ", *ask.payload->a, "]");
  int64_t number = 0;
  for (const std::string& option : ask.payload->o.value_or(std::vector<std::string>{}))
    question += text::cat(" (", ++number, ") ", option);
  return question;
}

/// The last line of the log that is no hand-off note; empty when there is none.
std::string latestOf(const Board& board, const Task& task) {
  std::string latest;
  for (const LogLine* line : linesOf(board, task.id))
    if (line->kind != LogKind::handOff) latest = line->text;
  return latest;
}

std::string remarkOn(const Board& board, const Task& task) {
  if (task.blocked) return questionOf(task);
  if (task.state == TaskState::open && !isReady(board, task)) {
    return text::cat("after ", text::join(task.waitsOn, ", "));
  }
  return cutWithMark(latestOf(board, task), widestColumn);
}

std::vector<Cells> taskRows(const Board& board) {
  std::vector<Cells> rows;
  for (const auto& [id, task] : board.tasks) {
    rows.push_back({id, stateOf(board, task), task.owner.empty() ? "-" : calling(board, task.owner),
                    cutWithMark(task.title, widestColumn), remarkOn(board, task)});
  }
  return rows;
}

std::vector<Cells> agentRows(const Board& board, Moment at) {
  std::vector<Cells> rows;
  for (const auto& [id, seat] : board.seats) {
    if (!isLive(seat)) {
      rows.push_back({seat.handle, "-", "nobody home"});
      continue;
    }
    const int64_t seconds = std::max<int64_t>(0, (seat.leaseUntilMs - at.nowMs) / 1000);
    rows.push_back({seat.handle, seat.fingerprint, seat.waiting ? "listening" : "working",
                    text::cat("lease ", seconds, " s"), cutWithMark(seat.name, widestColumn),
                    cutWithMark(seat.status, widestColumn)});
  }
  return rows;
}

std::vector<Cells> discussionRows(const Board& board) {
  std::vector<Cells> rows;
  for (const auto& [id, discussion] : board.discussions) {
    const std::string state =
        discussion.escalated ? "FOR YOU" : text::cat(discussion.volleysSinceHuman, "/", volleyCap);
    rows.push_back({id, isOpen(discussion) ? state : "resolved",
                    discussion.taskID.value_or("board"),
                    cutWithMark(discussion.question, widestColumn),
                    discussion.resolution.value_or(
                        text::cat("waits for ", counterpart(board, discussion, "")))});
  }
  return rows;
}

}  // namespace

std::string showBoard(const Board& board, Moment at) {
  const Thread& thread = board.thread();
  const std::string_view goal =
      thread.goal.empty() ? std::string_view("none yet") : std::string_view(thread.goal);
  std::string out = text::cat("Thread ", thread.name, " (", thread.id, "), revision ",
                              board.counted().rev, ", squad ", thread.squadOn ? "on" : "off", "\n");
  if (!thread.charter.empty()) out += text::cat("Charter: ", thread.charter, "\n");
  out += text::cat("Goal: ", goal, "\n");
  if (thread.goalComplete) out += "The goal is complete.\n";
  if (!thread.goalProposedBy.empty()) {
    out += text::cat("PROPOSED as complete by ", calling(board, thread.goalProposedBy),
                     ": confirm-goal or reopen-goal.\n");
  }
  out += section("TASKS", taskRows(board));
  out += section("AGENTS", agentRows(board, at));
  out += section("DISCUSSIONS", discussionRows(board));
  std::vector<Cells> suggestions;
  std::vector<Cells> deleted;
  for (const auto& [name, suggestion] : board.suggestions)
    suggestions.push_back({name, suggestion.command, suggestion.explanation, suggestion.by});
  for (const auto& [id, task] : board.trash)
    deleted.push_back({id, cutWithMark(task.title, widestColumn), task.deleteReason});
  out += section("SUGGESTED HELPERS", suggestions);
  out += section("DELETED (restore puts one back)", deleted);
  return out;
}

}  // namespace quillpost::board
