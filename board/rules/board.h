#pragma once

// All there is to know about one Thread. Plain rows; the rules beside this file read and change
// them, with the time passed in.

#include "board/rules/helper.h"
#include "board/rules/line.h"
#include "board/rules/post.h"
#include "board/rules/seat.h"
#include "board/rules/table.h"
#include "board/rules/task.h"
#include "board/rules/thread.h"
#include "json/record.h"
#include "model/discussion.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <tuple>

namespace quillpost::board {

/// A helper that an agent would like the person to allow.
struct Suggestion {
  /// Its name: a second suggestion of that name replaces the first.
  std::string id;
  std::string command;
  std::string explanation;
  std::string reason;
  /// The handle of whoever suggests it.
  std::string by;

  bool operator==(const Suggestion&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",          &Suggestion::id),
        json::required( "command",     &Suggestion::command),
        json::required( "explanation", &Suggestion::explanation),
        json::defaulted("reason",      &Suggestion::reason),
        json::defaulted("by",          &Suggestion::by),
    };
    // clang-format on
  }
};

/// The state of a discussion that goes on.
inline constexpr std::string_view goingOn = "open";

// The indices of discussions: those that are open, by their task (an empty one for those of the
// whole board) and by who is party to them.
inline constexpr std::string_view openByTask = "task";
inline constexpr std::string_view openByParty = "party";

template <>
struct Keys<TeamworkDiscussion> {
  template <class Found>
  static void visit(const TeamworkDiscussion& discussion, Found&& found) {
    if (discussion.state != goingOn) return;
    found(Key{openByTask, discussion.taskID ? std::string_view(*discussion.taskID) : ""});
    found(Key{openByParty, discussion.openedBy});
    for (const std::string& party : discussion.addressedTo)
      if (party != discussion.openedBy) found(Key{openByParty, party});
  }
};

/// One Thread with all that is on it.
struct Board {
  /// Exactly one row, and so of its counters.
  Table<Thread> threads;
  Table<Counters> counters;
  Table<Seat> seats;
  Table<Task> tasks;
  /// Tasks that were deleted and can still be put back. Their briefs and logs stay where they are.
  Table<Task> trash;
  Table<Brief> briefs;
  Table<LogLine> lines;
  Table<TeamworkDiscussion> discussions;
  Table<Wake> wakes;
  Table<Message> messages;
  Table<Suggestion> suggestions;
  /// The helpers that the person allows, and those that were asked for.
  Table<Helper> helpers;
  Table<HelperRun> runs;
  /// The latest changes, oldest first; what is saved has all of them.
  Table<Change> changes;
  /// What the helpers wrote, by the sessions of their seats. Not saved.
  std::map<std::string, Output, std::less<>> outputs;

  const Thread& thread() const { return threads.begin()->second; }
  Thread& editThread() { return *threads.touch(thread().id); }
  const Counters& counted() const { return counters.begin()->second; }
  Counters& count() { return *counters.touch(counted().id); }
};

/// A board without anything on it.
Board newBoard(Thread thread);

/// The latest changes that are kept in memory; whoever has seen less is told of all of these.
inline constexpr std::size_t changesKept = 1000;

/// Calls `visit(kind, table)` for each table, the kind being a short name for its rows. The board
/// may be const.
template <class AnyBoard, class Visit>
void forEachTable(AnyBoard& board, Visit&& visit) {
  visit("thread", board.threads);
  visit("counters", board.counters);
  visit("seat", board.seats);
  visit("task", board.tasks);
  visit("trash", board.trash);
  visit("brief", board.briefs);
  visit("line", board.lines);
  visit("discussion", board.discussions);
  visit("wake", board.wakes);
  visit("message", board.messages);
  visit("suggestion", board.suggestions);
  visit("helper", board.helpers);
  visit("run", board.runs);
  visit("change", board.changes);
}

/// Whether the board is as it was last saved.
bool isSaved(const Board& board);

/// Notes that the board has been saved as it is now.
void settle(Board& board);

/// Puts the board back as it was last saved.
void revert(Board& board);

}  // namespace quillpost::board
