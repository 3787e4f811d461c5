// One thing of a board, whole; and the plain lists.

#include "base/text.h"
#include "base/unicode.h"
#include "board/person/show.h"
#include "board/rules/command_words.h"
#include "board/rules/debates.h"
#include "board/rules/ids.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"
#include "board/rules/runs.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

/// Of a log, as much is shown, in bytes, the latest first: what an answer has room for.
constexpr std::size_t logBytes = std::size_t{4} << 20;

std::string namesOf(const Board& board, const std::vector<std::string>& parties) {
  return text::join(parties, "\n",
                    [&](const std::string& party) { return calledBy(board, party); });
}

std::string reviewOf(const Board& board, const Task& task) {
  if (task.reviewState.empty()) return {};
  std::string words = task.reviewState;
  if (!task.reviewRequestedBy.empty()) {
    words += text::cat(", asked for by ", calledBy(board, task.reviewRequestedBy));
  }
  if (!task.reviewBy.empty()) words += text::cat(", judged by ", calledBy(board, task.reviewBy));
  return task.reviewNote.empty() ? words : text::cat(words, ": ", task.reviewNote);
}

Section taskRow(const Board& board, const Task& task, Moment at) {
  Section section{"task",
                  {"id",        "state",  "holder",   "lease",    "priority",    "type",
                   "attempts",  "title",  "question", "options",  "consequence", "artifact",
                   "secret",    "answer", "parked",   "waitsOn",  "role",        "meantFor",
                   "resources", "review", "tagged",   "watchers", "wantedBy"},
                  {}};
  const std::vector<std::string> question =
      task.blocked ? questionCells(task) : std::vector<std::string>(5);
  const bool isHeld = task.state == TaskState::claimed;
  section.add(
      task.id, stateOf(board, task), task.owner.empty() ? "" : calledBy(board, task.owner),
      isHeld ? text::cat(std::max<int64_t>(0, task.leaseUntilMs - at.nowMs)) : std::string(),
      task.priority != 0 ? text::cat(task.priority) : std::string(), task.type,
      task.claimAttempts > 1 ? text::cat(task.claimAttempts) : std::string(), task.title,
      question[0], question[1], question[2], question[3], question[4],
      hasSecret(task) ? "(a secret)" : task.blockerAnswer,
      task.parkedReason.empty() ? waitsForEver(board, task) : task.parkedReason,
      text::join(task.waitsOn, "\n"), task.assignedRole, task.routedTo,
      text::join(task.resources, "\n"), reviewOf(board, task), namesOf(board, task.mentions),
      text::join(task.watches, "\n",
                 [&](const Watch& watch) { return calledBy(board, watch.fingerprint); }),
      text::join(task.releaseAsks, "\n", [&](const ReleaseAsk& ask) {
        return text::cat(calledBy(board, ask.requester), " (", ask.reason, ")");
      }));
  return section;
}

Section logOf(const Board& board, const Task& task) {
  Section log{"log", {"at", "by", "kind", "text"}, {}};
  const std::vector<const LogLine*> lines = linesOf(board, task.id);
  std::size_t first = lines.size();
  for (std::size_t bytes = 0; first > 0; --first) {
    bytes += lines[first - 1]->text.size();
    if (bytes > logBytes) break;
  }
  if (first > 0) {
    const auto count = static_cast<int64_t>(first);
    log.add("", "", "",
            text::cat("(", first, " earlier line", text::s(count), count == 1 ? " is" : " are",
                      " left out; `export` has ", count == 1 ? "it)" : "them)"));
  }
  for (std::size_t i = first; i < lines.size(); ++i) {
    const LogLine& line = *lines[i];
    log.add(line.atMs, line.author == human ? "you" : line.name, json::wordFor(line.kind),
            line.text);
  }
  return log;
}

Sheet taskSheet(const Board& board, const Task& task, Moment at) {
  Sheet sheet{at.nowMs, board.counted().rev, {taskRow(board, task, at)}};
  Section brief{"brief", {"text"}, {}};
  const std::string_view body = briefOf(board, task.id);
  if (!body.empty()) brief.add(body);
  Section debates = debateSection();
  for (const auto& [id, discussion] : board.discussions)
    if (discussion.taskID == task.id) addDebate(debates, board, discussion);
  sheet.sections.push_back(std::move(brief));
  sheet.sections.push_back(std::move(debates));
  sheet.sections.push_back(logOf(board, task));
  return sheet;
}

Sheet debateSheet(const Board& board, const TeamworkDiscussion& discussion, Moment at) {
  Section debate{
      "debate", {"id", "state", "task", "parties", "question", "waitsFor", "resolution"}, {}};
  std::vector<std::string> parties = {discussion.openedBy};
  for (const std::string& party : discussion.addressedTo)
    if (party != discussion.openedBy) parties.push_back(party);
  debate.add(discussion.id, discussion.state, discussion.taskID.value_or(""),
             namesOf(board, parties), discussion.question, debtorsOf(board, discussion),
             discussion.resolution.value_or(""));
  Section volleys{"volleys", {"at", "by", "text"}, {}};
  for (const TeamworkDiscussion::Volley& volley : discussion.volleys)
    volleys.add(volley.atMs, calledBy(board, volley.author), volley.body);
  return {at.nowMs, board.counted().rev, {std::move(debate), std::move(volleys)}};
}

Sheet agentSheet(const Board& board, const Seat& seat, Moment at) {
  Section agent{"agent",
                {"handle", "mark", "state", "lease", "silent", "name", "role", "status", "parked"},
                {}};
  const bool isHere = isLive(seat);
  agent.add(seat.handle, seat.fingerprint, stateOf(seat, at),
            isHere ? text::cat(std::max<int64_t>(0, seat.leaseUntilMs - at.nowMs)) : std::string(),
            isHere ? text::cat(at.nowMs - seat.lastCallMs) : std::string(), seat.name, seat.role,
            seat.status, seat.parkReason);
  Section held = taskSection("working");
  if (seat.registered)
    for (const Task* task : board.tasks.with({byOwner, seat.fingerprint}))
      addTask(held, board, *task);
  std::vector<Change> moves;
  for (auto change = board.changes.end();
       change != board.changes.begin() && moves.size() < movesShown;) {
    --change;
    if (seat.registered && change->second.by == seat.fingerprint) moves.push_back(change->second);
  }
  std::ranges::reverse(moves);
  return {at.nowMs, board.counted().rev, {std::move(agent), std::move(held), moveRows(moves)}};
}

/// What a helper is, and what it wrote.
void addHelper(Sheet& sheet, const Board& board, const HelperRun& run) {
  Section helper = runSection();
  addRun(helper, run);
  Section output{"output", {"text"}, {}};
  const auto written = board.outputs.find(run.id);
  if (written != board.outputs.end()) output.add(outputText(written->second));
  sheet.sections.push_back(std::move(helper));
  sheet.sections.push_back(std::move(output));
}

}  // namespace

Section runSection() {
  return {"hands", {"handle", "state", "task", "from", "since", "name", "remark"}, {}};
}

void addRun(Section& section, const HelperRun& run) {
  section.add(run.handle, json::wordFor(run.state), run.taskID, run.askerHandle, run.askedAtMs,
              run.helper, run.detail);
}

Sheet helperSheet(const Board& board, Moment at) {
  Section allowed{"allowed", {"helper", "arguments", "directory", "text", "marks"}, {}};
  for (const auto& [name, helper] : board.helpers) {
    std::string marks = helper.hasTools ? "has the board's tools" : "has qp alone";
    if (helper.runsWithoutApprovals) marks += ", runs without asking for approval";
    allowed.add(name, shownWords(helper.words), helper.directory, helper.explanation, marks);
  }
  Section suggested{"suggested", {"helper", "by", "arguments", "text", "reason", "do"}, {}};
  for (const auto& [name, suggestion] : board.suggestions) {
    std::string why;
    const std::optional<std::vector<std::string>> words = commandWords(suggestion.command, why);
    suggested.add(name, suggestion.by, words ? shownWords(*words) : why, suggestion.explanation,
                  suggestion.reason,
                  text::cat("quillpost-board helper approve ", shownWords({name}), ", or refuse"));
  }
  Section runs = runSection();
  for (const auto& [id, run] : board.runs) addRun(runs, run);
  return {
      at.nowMs, board.counted().rev, {std::move(allowed), std::move(suggested), std::move(runs)}};
}

std::optional<Sheet> wholeSheet(const Board& board, std::string_view what, Moment at) {
  const std::string id = wholeID(what);
  if (const Task* task = board.tasks.find(id)) return taskSheet(board, *task, at);
  if (const Task* task = board.trash.find(id)) return taskSheet(board, *task, at);
  if (const TeamworkDiscussion* discussion = board.discussions.find(id)) {
    return debateSheet(board, *discussion, at);
  }
  const Seat* seat = seatAt(board, what);
  const HelperRun* run = runAt(board, what);
  if (seat == nullptr && run == nullptr) seat = whoIs(board, what);
  if (seat == nullptr && run == nullptr) return std::nullopt;
  Sheet sheet{at.nowMs, board.counted().rev, {}};
  if (seat != nullptr) sheet = agentSheet(board, *seat, at);
  if (run == nullptr && seat != nullptr) run = board.runs.find(seat->id);
  if (run != nullptr) addHelper(sheet, board, *run);
  return sheet;
}

Section seatRows(std::span<const Board* const> boards, Moment at) {
  Section rows{"seats", {"thread", "handle", "state", "mark", "label", "name", "role"}, {}};
  for (const Board* board : boards)
    for (const auto& [id, seat] : board->seats)
      rows.add(board->thread().name, seat.handle, stateOf(seat, at), seat.fingerprint, seat.label,
               seat.name, seat.role);
  return rows;
}

Section moveRows(std::span<const Change> changes) {
  Section moves{"moves", {"at", "by", "move", "task", "what"}, {}};
  for (const Change& change : changes) {
    const std::string_view by = change.by == human  ? "you"
                                : change.by.empty() ? "board"
                                                    : std::string_view(change.byName);
    moves.add(change.atMs, by, json::wordFor(change.kind), change.taskID, change.what);
  }
  return moves;
}

}  // namespace quillpost::board
