#include "board/person/live.h"

#include "base/text.h"
#include "board/person/show.h"
#include "board/rules/debates.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/log.h"
#include "board/rules/people.h"
#include "board/rules/readiness.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

/// How much of a title or a line is told, in characters; a task's own sheet has all of it.
constexpr std::size_t toldLength = 240;

std::string timeOr(int64_t ms) { return ms > 0 ? text::cat(ms) : std::string(); }

/// Whether all that moved since a revision is still in memory.
bool knowsSince(const Board& board, int64_t rev) {
  if (rev < 0 || rev > board.counted().rev) return false;
  if (rev == board.counted().rev) return true;
  return !board.changes.empty() && board.changes.begin()->second.rev <= rev + 1;
}

Section threadRow(const Board& board, std::optional<int64_t> sinceRev, Moment at) {
  Section section{"thread",
                  {"thread", "tag", "since", "lease", "squad", "state", "proposedBy", "goal",
                   "charter", "open", "finished"},
                  {}};
  const Thread& thread = board.thread();
  const int64_t open = text::countOf(board.tasks.with({openTasks, {}}));
  const bool isProposed = !thread.goalProposedBy.empty();
  section.add(thread.name, thread.id, sinceRev ? text::cat(*sinceRev) : std::string(), at.leaseMs,
              thread.squadOn ? "on" : "off",
              thread.goalComplete ? "complete"
              : isProposed        ? "proposed"
                                  : "open",
              isProposed ? calledBy(board, thread.goalProposedBy) : std::string(), thread.goal,
              thread.charter, open, text::countOf(board.tasks) - open);
  return section;
}

/// When each agent last did something that moved the board, as far as it is remembered.
std::map<std::string, int64_t> lastDeeds(const Board& board) {
  std::map<std::string, int64_t> last;
  for (const auto& [id, change] : board.changes) {
    const bool isDeed = change.kind != MoveKind::agentJoined && change.kind != MoveKind::agentLeft;
    if (isDeed && !change.by.empty()) last[change.by] = change.atMs;
  }
  // Older work stands in the logs of what they still hold.
  for (const auto& [id, seat] : board.seats) {
    if (!seat.registered || last.contains(seat.fingerprint)) continue;
    for (const Task* task : board.tasks.with({byOwner, seat.fingerprint})) {
      const LogLine* line = lastLine(board, *task);
      const bool isOwn = line != nullptr && line->author == seat.fingerprint;
      int64_t& deed = last[seat.fingerprint];
      deed = std::max({deed, task->claimedAtMs, isOwn ? line->atMs : 0});
    }
  }
  return last;
}

Section agentRows(const Board& board, Moment at) {
  Section agents{"agents",
                 {"handle", "name", "role", "mark", "state", "leaseUntil", "lastCall", "lastDeed",
                  "holds", "status", "parked"},
                 {}};
  const std::map<std::string, int64_t> deeds = lastDeeds(board);
  for (const auto& [id, seat] : board.seats) {
    if (!isLive(seat)) continue;
    const auto deed = deeds.find(seat.fingerprint);
    agents.add(seat.handle, seat.name, seat.role, seat.fingerprint, stateOf(seat, at),
               seat.leaseUntilMs, seat.lastCallMs,
               deed == deeds.end() ? std::string() : text::cat(deed->second), claimsOf(board, seat),
               seat.status, seat.parkReason);
  }
  return agents;
}

/// How many open discussions hang on a task, and whether one of them waits for the person.
std::string debatesOn(const Board& board, const Task& task) {
  const std::vector<const TeamworkDiscussion*> open = openOn(board, task.id);
  if (open.empty()) return {};
  const bool isMine = std::ranges::any_of(
      open, [](const TeamworkDiscussion* debate) { return owes(*debate, human); });
  return text::cat(open.size(), isMine ? "!" : "");
}

Section taskRows() {
  return {"tasks",
          {"id",       "state",  "title",  "holder",   "claimed", "leaseUntil", "attempts",
           "priority", "type",   "role",   "meantFor", "filedBy", "resources",  "waitsOn",
           "note",     "noteAt", "parked", "review",   "debates", "tagged"},
          {}};
}

void addTaskRow(Section& section, const Board& board, const Task& task) {
  const LogLine* line = lastWords(board, task);
  const bool isHeld = task.state == TaskState::claimed;
  const auto called = [&](const std::string& party) {
    return party.empty() ? std::string() : party == human ? "you" : calling(board, party);
  };
  section.add(task.id, stateOf(board, task), cut(task.title, toldLength), called(task.owner),
              timeOr(task.claimedAtMs), isHeld ? text::cat(task.leaseUntilMs) : std::string(),
              task.claimAttempts, task.priority, task.type, task.assignedRole, task.routedTo,
              called(task.filedBy), text::join(task.resources, "\n"),
              text::join(task.waitsOn, "\n"),
              line == nullptr ? std::string() : cut(oneLine(line->text), toldLength),
              line == nullptr ? std::string() : text::cat(line->atMs), task.parkedReason,
              task.reviewState, debatesOn(board, task), text::join(task.mentions, "\n", called));
}

Section allTaskRows(const Board& board) {
  Section section = taskRows();
  std::size_t finished = 0;
  for (auto at = board.tasks.end(); at != board.tasks.begin();) {
    const Task& task = (--at)->second;
    if (isOpen(task) || ++finished <= finishedTold) addTaskRow(section, board, task);
  }
  return section;
}

Section trashRows() { return {"deleted", {"id", "since", "title", "reason"}, {}}; }

void addTrashRow(Section& section, const Task& task) {
  section.add(task.id, task.deletedAtMs, cut(task.title, toldLength), task.deleteReason);
}

/// The ids of the tasks that look different than at a revision: those that moved, and those that
/// wait on one of these.
std::set<std::string> movedTasks(const Board& board, const std::vector<Change>& changes) {
  std::set<std::string> moved;
  for (const Change& change : changes) {
    if (change.taskID.empty() || !moved.insert(change.taskID).second) continue;
    for (const Task* task : dependentsOf(board, change.taskID)) moved.insert(task->id);
  }
  return moved;
}

void addMovedTasks(Sheet& sheet, const Board& board, const std::set<std::string>& moved) {
  Section tasks = taskRows();
  Section gone{"gone", {"id"}, {}};
  Section deleted = trashRows();
  for (const std::string& id : moved) {
    if (const Task* task = board.tasks.find(id)) {
      addTaskRow(tasks, board, *task);
      continue;
    }
    gone.add(id);
    if (const Task* task = board.trash.find(id)) addTrashRow(deleted, *task);
  }
  sheet.sections.push_back(std::move(tasks));
  sheet.sections.push_back(std::move(gone));
  sheet.sections.push_back(std::move(deleted));
}

/// The claims and their leases, which are renewed without a move.
Section leaseRows(const Board& board) {
  Section leases{"leases", {"id", "leaseUntil"}, {}};
  for (const auto& [id, seat] : board.seats) {
    if (!seat.registered) continue;
    for (const Task* task : board.tasks.with({byOwner, seat.fingerprint}))
      leases.add(task->id, task->leaseUntilMs);
  }
  return leases;
}

Section debateRows(const Board& board) {
  Section debates{
      "debates",
      {"id", "task", "state", "question", "waitsFor", "volleys", "lastBy", "lastAt", "last"},
      {}};
  for (const auto& [id, debate] : board.discussions) {
    if (!isOpen(debate)) continue;
    const bool hasVolleys = !debate.volleys.empty();
    const TeamworkDiscussion::Volley last =
        hasVolleys ? debate.volleys.back() : TeamworkDiscussion::Volley{};
    debates.add(id, debate.taskID.value_or(""),
                owes(debate, human) ? std::string_view("yours")
                : debate.escalated  ? std::string_view("escalated")
                                    : std::string_view("open"),
                debate.question, debtorsOf(board, debate), debate.volleys.size(),
                hasVolleys ? calledBy(board, last.author) : std::string(), timeOr(last.atMs),
                cut(last.body, toldLength));
  }
  return debates;
}

Section helperRows(const Board& board) {
  Section helpers{"helpers", {"name", "command", "text", "reason", "by"}, {}};
  for (const auto& [name, helper] : board.suggestions)
    helpers.add(name, helper.command, helper.explanation, helper.reason, helper.by);
  return helpers;
}

}  // namespace

Sheet liveSheet(std::span<const Board* const> boards, std::optional<int64_t> sinceRev, Moment at) {
  Sheet sheet{at.nowMs, 0, {}};
  if (boards.empty()) return sheet;
  const Board& board = *boards.front();
  sheet.rev = board.counted().rev;
  if (sinceRev && !knowsSince(board, *sinceRev)) sinceRev.reset();
  sheet.sections = {threadRow(board, sinceRev, at), needRows(boards), agentRows(board, at),
                    debateRows(board), helperRows(board)};
  if (boards.size() > 1) sheet.sections.push_back(threadRows(boards));
  if (!sinceRev) {
    Section deleted = trashRows();
    for (const auto& [id, task] : board.trash) addTrashRow(deleted, task);
    sheet.sections.push_back(allTaskRows(board));
    sheet.sections.push_back(std::move(deleted));
    return sheet;
  }
  std::vector<Change> changes;
  for (auto change = board.changes.from(padded(*sinceRev + 1)); change != board.changes.end();
       ++change) {
    changes.push_back(change->second);
  }
  addMovedTasks(sheet, board, movedTasks(board, changes));
  sheet.sections.push_back(leaseRows(board));
  sheet.sections.push_back(moveRows(changes));
  return sheet;
}

}  // namespace quillpost::board
