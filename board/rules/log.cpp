#include "board/rules/log.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/limits.h"
#include "model/markers.h"

#include <utility>

namespace quillpost::board {

const LogLine& addLine(Board& board, Task& task, LogLine line) {
  line.id = lineID(task.id, ++task.lastLine);
  if (line.kind == LogKind::gist) task.linesBehind = 0;
  task.linesBehind += line.kind == LogKind::progress;
  return board.lines.put(std::move(line));
}

const LogLine* lastLine(const Board& board, const Task& task) {
  return board.lines.find(lineID(task.id, task.lastLine));
}

std::vector<const LogLine*> linesOf(const Board& board, std::string_view taskID) {
  return board.lines.under(text::cat(taskID, "/"));
}

std::string lineText(const LogLine& line) {
  switch (line.kind) {
    case LogKind::progress:
      return line.text;
    case LogKind::comment:
      return text::cat(line.name, ": ", line.text);
    case LogKind::gist:
      return text::cat(gistMarker, line.text);
    case LogKind::handOff:
      return text::cat(forMarker, line.text);
  }
  return line.text;
}

void refreshSummary(Board& board, Task& task, const Seat& author, std::string_view summary,
                    int64_t nowMs) {
  const std::string gist = cut(unicode::trim(summary), summaryLimit);
  if (gist.empty()) return;
  addLine(board, task, {"", LogKind::gist, author.fingerprint, author.handle, gist, nowMs});
}

std::string_view briefOf(const Board& board, std::string_view taskID) {
  const Brief* brief = board.briefs.find(taskID);
  return brief != nullptr ? std::string_view(brief->body) : std::string_view();
}

void setBrief(Board& board, const std::string& taskID, std::string body) {
  if (body == briefOf(board, taskID)) return;
  if (body.empty()) {
    board.briefs.remove(taskID);
  } else {
    board.briefs.put({taskID, std::move(body)});
  }
}

void forgetWritings(Board& board, const std::string& taskID) {
  board.briefs.remove(taskID);
  for (const LogLine* line : linesOf(board, taskID)) board.lines.remove(std::string(line->id));
}

}  // namespace quillpost::board
