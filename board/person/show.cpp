#include "board/person/show.h"

#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/ask.h"
#include "board/rules/command_words.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/names.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillpost::board {

namespace {

/// How much of a title or a line is carried for a list, in characters: more than fits on one line
/// of any terminal.
constexpr std::size_t listedLength = 240;

/// How much of an agent's name stands beside its handle, in characters.
constexpr std::size_t shownName = 12;

/// A word behind every other of an index, so that all are found.
constexpr std::string_view behindAll = "\xff";

/// When something last happened on a task; 0 when nothing has.
int64_t lastMoveMs(const Board& board, const Task& task) {
  const LogLine* line = lastLine(board, task);
  return std::max(task.claimedAtMs, line != nullptr ? line->atMs : 0);
}

/// When the latest change of that kind on a task was, of those that are in memory; else when
/// something last happened on it.
int64_t momentOf(const Board& board, const Task& task, MoveKind kind) {
  for (auto at = board.changes.end(); at != board.changes.begin();) {
    const Change& change = (--at)->second;
    if (change.kind == kind && change.taskID == task.id) return change.atMs;
  }
  return lastMoveMs(board, task);
}

std::string remarkOn(const Board& board, const Task& task) {
  if (task.state == TaskState::open && !isReady(board, task)) {
    return text::cat("after ", text::join(task.waitsOn, ", ", [&](const std::string& id) {
                       return waitedOn(board, id);
                     }));
  }
  if (task.state == TaskState::open && !task.routedTo.empty()) {
    return text::cat("meant for ", task.routedTo);
  }
  if (!task.parkedReason.empty()) return text::cat("parked: ", task.parkedReason);
  if (!isOpen(task)) return {};
  const LogLine* line = lastWords(board, task);
  return line == nullptr ? std::string() : cut(oneLine(line->text), listedLength);
}

/// One thing that needs the person.
struct Need {
  std::string id;
  std::string_view kind;
  std::string from;
  int64_t sinceMs = 0;
  std::string title;
  std::vector<std::string> question;
  std::string command;
};

std::vector<std::string> justWords(std::string words) { return {std::move(words), "", "", "", ""}; }

void addQuestions(const Board& board, std::vector<Need>& needs) {
  for (const Task* task : board.tasks.upTo(byBlocker, behindAll)) {
    std::vector<std::string> question = questionCells(*task);
    const std::string_view how = question[1].empty() ? "TEXT" : "NUMBER";
    needs.push_back({task->id, "question", calledBy(board, task->blockedBy),
                     momentOf(board, *task, MoveKind::taskBlocked), task->title,
                     std::move(question), text::cat("answer ", task->id, " ", how)});
  }
}

void addTags(const Board& board, std::vector<Need>& needs) {
  for (const Task* task : board.tasks.with({byMention, human})) {
    const LogLine* line = lastWords(board, *task);
    if (task->blocked || line == nullptr) continue;
    needs.push_back({task->id, "tag", line->name, line->atMs, task->title, justWords(line->text),
                     text::cat("comment ", task->id, " TEXT")});
  }
}

void addDebates(const Board& board, std::vector<Need>& needs) {
  for (const TeamworkDiscussion* debate : board.discussions.upTo(openByTask, behindAll)) {
    if (!owes(*debate, human)) continue;
    const bool hasVolleys = !debate->volleys.empty();
    needs.push_back(
        {debate->id, debate->escalated ? "escalated" : "discussion",
         calledBy(board, debate->openedBy), hasVolleys ? debate->volleys.back().atMs : 0, "",
         justWords(debate->question),
         text::cat("show ", debate->id, "; quillpost-board reply ", debate->id, " TEXT")});
  }
}

void addSuggestions(const Board& board, std::vector<Need>& needs) {
  for (const auto& [name, suggestion] : board.suggestions) {
    needs.push_back({name, "helper", suggestion.by, 0, "",
                     justWords(text::cat("May agents have this started: ", suggestion.command)),
                     text::cat("helper approve ", shownWords({name}),
                               "; quillpost-board helper refuse ", shownWords({name}))});
  }
}

std::vector<Need> needsOf(const Board& board) {
  std::vector<Need> needs;
  const Thread& thread = board.thread();
  addQuestions(board, needs);
  if (!thread.goalProposedBy.empty() && !thread.goalComplete) {
    needs.push_back({"goal", "proposal", calledBy(board, thread.goalProposedBy), 0, "",
                     justWords("The goal is complete?"),
                     "confirm-goal, or quillpost-board reopen-goal"});
  }
  addDebates(board, needs);
  addTags(board, needs);
  addSuggestions(board, needs);
  return needs;
}

Section needSection() {
  return {"needs",
          {"id", "thread", "kind", "from", "since", "title", "question", "options", "consequence",
           "artifact", "secret", "do"},
          {}};
}

/// Adds what a Thread needs of the person; its name when there are others.
void addNeeds(Section& section, const Board& board, std::string_view thread) {
  for (const Need& need : needsOf(board)) {
    const std::string option =
        thread.empty() ? std::string() : text::cat(" --thread ", wordForShell(thread));
    section.add(need.id, thread, need.kind, need.from,
                need.sinceMs > 0 ? text::cat(need.sinceMs) : std::string(),
                cut(need.title, listedLength), need.question[0], need.question[1], need.question[2],
                need.question[3], need.question[4],
                text::cat("quillpost-board ", need.command, option));
  }
}

Section threadSection(const Board& board) {
  Section section{
      "thread",
      {"thread", "tag", "revision", "squad", "state", "open", "finished", "goal", "charter"},
      {}};
  const Thread& thread = board.thread();
  const int64_t open = text::countOf(board.tasks.with({openTasks, {}}));
  section.add(thread.name, thread.id, board.counted().rev, thread.squadOn ? "on" : "off",
              thread.goalComplete ? "GOAL COMPLETE" : "", open, text::countOf(board.tasks) - open,
              thread.goal.empty() ? "none yet: quillpost-board goal TEXT" : thread.goal,
              thread.charter);
  return section;
}

void addAgents(Sheet& sheet, const Board& board, Moment at) {
  Section section{
      "agents", {"handle", "mark", "state", "lease", "silent", "holds", "name", "status"}, {}};
  for (const auto& [id, seat] : board.seats) {
    if (!isLive(seat)) continue;
    section.add(seat.handle, seat.fingerprint, stateOf(seat, at),
                std::max<int64_t>(0, seat.leaseUntilMs - at.nowMs), at.nowMs - seat.lastCallMs,
                claimsOf(board, seat), seat.name, seat.status);
  }
  sheet.sections.push_back(std::move(section));
}

void addLeftovers(Sheet& sheet, const Board& board, Extent extent) {
  Section deleted{"deleted", {"id", "since", "title", "reason"}, {}};
  if (extent != Extent::open)
    for (const auto& [id, task] : board.trash)
      deleted.add(id, task.deletedAtMs, cut(task.title, listedLength), task.deleteReason);
  sheet.sections.push_back(std::move(deleted));
}

/// The tasks that were last done, the latest first.
void addLatestDone(Section& done, const Board& board) {
  std::vector<std::string_view> seen;
  for (auto at = board.changes.end(); at != board.changes.begin() && seen.size() < doneShown;) {
    const Change& change = (--at)->second;
    if (change.kind != MoveKind::taskCompleted) continue;
    if (std::ranges::find(seen, change.taskID) != seen.end()) continue;
    const Task* task = board.tasks.find(change.taskID);
    if (task == nullptr || task->state != TaskState::done) continue;
    seen.push_back(change.taskID);
    addTask(done, board, *task);
  }
}

void addTasks(Sheet& sheet, const Board& board, Extent extent) {
  constexpr std::array<std::string_view, 6> states = {"blocked", "working", "ready",
                                                      "waiting", "done",    "declined"};
  std::vector<Section> sections;
  sections.reserve(states.size());
  for (const std::string_view state : states) sections.push_back(taskSection(state));
  std::vector<const Task*> tasks = board.tasks.with({openTasks, {}});
  if (extent == Extent::all) {
    tasks.clear();
    for (const auto& [id, task] : board.tasks) tasks.push_back(&task);
  }
  std::ranges::stable_sort(tasks, std::ranges::greater(), &Task::priority);
  for (const Task* task : tasks) {
    const auto* const state = std::ranges::find(states, stateOf(board, *task));
    addTask(sections[static_cast<std::size_t>(state - states.begin())], board, *task);
  }
  if (extent == Extent::usual) addLatestDone(sections[4], board);
  for (Section& section : sections) sheet.sections.push_back(std::move(section));
}

}  // namespace

const LogLine* lastWords(const Board& board, const Task& task) {
  for (int64_t number = task.lastLine; number > 0; --number) {
    const LogLine* line = board.lines.find(lineID(task.id, number));
    if (line == nullptr) return nullptr;
    if (line->kind == LogKind::comment || line->kind == LogKind::progress) return line;
  }
  return nullptr;
}

std::string calledBy(const Board& board, const std::string& party) {
  if (party == human) return "you";
  const Seat* seat = seatOf(board, party);
  if (seat == nullptr || seat->name.empty()) return calling(board, party);
  return text::cat(seat->handle, " ", cutWithMark(seat->name, shownName));
}

std::string debtorsOf(const Board& board, const TeamworkDiscussion& discussion) {
  return text::join(discussion.owingParties, ", ",
                    [&](const std::string& party) { return calledBy(board, party); });
}

std::vector<std::string> questionCells(const Task& task) {
  const Ask ask = splitAsk(task.blockerQuestion);
  if (!ask.payload) return justWords(ask.question);
  return {ask.question, text::join(ask.payload->o.value_or(std::vector<std::string>{}), "\n"),
          ask.payload->c.value_or(""), ask.payload->a.value_or(""), ask.payload->s.value_or("")};
}

std::string_view stateOf(const Board& board, const Task& task) {
  if (task.deletedAtMs > 0) return "deleted";
  if (task.state == TaskState::done) return "done";
  if (task.state == TaskState::rejected) return "declined";
  if (task.blocked) return "blocked";
  if (task.state == TaskState::claimed) return "working";
  return isReady(board, task) ? "ready" : "waiting";
}

std::string stateOf(const Seat& seat, Moment at) {
  if (!seat.registered) return "-";
  if (seat.away) return "away";
  if (!isAttending(seat, at.nowMs) && !seat.waiting) return "silent";
  if (seat.stoodDown) return "stood down";
  return seat.waiting ? "listening" : "working";
}

Section taskSection(std::string_view name) {
  return {std::string(name), {"id", "holder", "since", "priority", "title", "note"}, {}};
}

void addTask(Section& section, const Board& board, const Task& task) {
  const int64_t movedMs = lastMoveMs(board, task);
  section.add(task.id, task.owner.empty() ? "" : calledBy(board, task.owner),
              movedMs > 0 ? text::cat(movedMs) : std::string(),
              task.priority != 0 ? text::cat(task.priority) : std::string(),
              cut(task.title, listedLength), remarkOn(board, task));
}

Section debateSection() { return {"debates", {"id", "task", "volleys", "question", "remark"}, {}}; }

void addDebate(Section& section, const Board& board, const TeamworkDiscussion& discussion) {
  const std::string count = text::cat(discussion.volleysSinceHuman, "/", volleyCap);
  section.add(discussion.id, discussion.taskID.value_or("board"),
              !isOpen(discussion)                               ? "resolved"
              : discussion.escalated || owes(discussion, human) ? "FOR YOU"
                                                                : count,
              cut(discussion.question, listedLength),
              isOpen(discussion) ? text::cat("waits for ", debtorsOf(board, discussion))
                                 : discussion.resolution.value_or(""));
}

Sheet boardSheet(std::span<const Board* const> boards, Extent extent, Moment at) {
  Sheet sheet{at.nowMs, 0, {}};
  const bool areSeveral = boards.size() > 1;
  Section needs = needRows(boards);
  if (extent == Extent::mine) {
    sheet.sections.push_back(std::move(needs));
    return sheet;
  }
  const Board& board = *boards.front();
  if (areSeveral) sheet.sections.push_back(threadRows(boards));
  sheet.sections.push_back(threadSection(board));
  sheet.sections.push_back(std::move(needs));
  addTasks(sheet, board, extent);
  addAgents(sheet, board, at);
  Section runs = runSection();
  for (const auto& [id, run] : board.runs)
    if (isCounted(run) || extent == Extent::all) addRun(runs, run);
  sheet.sections.push_back(std::move(runs));
  Section debates = debateSection();
  for (const auto& [id, discussion] : board.discussions)
    if (isOpen(discussion) || extent == Extent::all) addDebate(debates, board, discussion);
  sheet.sections.push_back(std::move(debates));
  addLeftovers(sheet, board, extent);
  return sheet;
}

Section needRows(std::span<const Board* const> boards) {
  Section needs = needSection();
  for (const Board* board : boards)
    addNeeds(needs, *board, boards.size() > 1 ? std::string_view(board->thread().name) : "");
  return needs;
}

Section threadRows(std::span<const Board* const> boards) {
  Section rows{"threads", {"thread", "tag", "open", "finished", "needing", "present", "goal"}, {}};
  for (const Board* board : boards) {
    const auto isHere = [](const auto& entry) { return isLive(entry.second); };
    const int64_t open = text::countOf(board->tasks.with({openTasks, {}}));
    rows.add(board->thread().name, board->thread().id, open, text::countOf(board->tasks) - open,
             text::countOf(needsOf(*board)), std::ranges::count_if(board->seats, isHere),
             cut(oneLine(board->thread().goal), listedLength));
  }
  return rows;
}

}  // namespace quillpost::board
