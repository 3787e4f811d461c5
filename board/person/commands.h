#pragma once

// What a person can ask of quillpost-board: one row a command and one row an option. The reading of
// a command line, the help and the manual page are made of these rows.

#include "board/rules/leases.h"
#include "model/request.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillpost::board {

struct Command;

/// A command line that makes sense.
struct Line {
  const Command* command = nullptr;
  /// Where the board is published; empty for the default.
  std::string directory;
  /// The file of boards; empty for the default.
  std::string database;
  /// Which board of the directory; empty when it is not said.
  std::string suffix;
  /// The thread that is meant; empty when it is not said.
  std::string thread;
  int64_t leaseMs = defaultLeaseMs;
  bool isLogged = false;
  bool asJson = false;
  bool mineOnly = false;
  /// Of what is shown only what is open.
  bool openOnly = false;
  bool all = false;
  /// How far back a reader of the history looks; 0 for all of it.
  int64_t sinceMs = 0;
  /// What a watcher runs when something new needs the person.
  std::string exec;
  /// The other machine that a harness is to run on.
  std::string host;
  std::string file;
  /// The port of the page; empty for the usual one. Whether the board is to be served together with
  /// it.
  std::string port;
  bool withPage = false;
  /// Whether the page is to be opened in the browser.
  bool opensBrowser = false;
  /// Where a helper is started; empty for here. The two marks of its record, and whether the person
  /// has made up their mind.
  std::string startIn;
  bool runsWithoutApprovals = false;
  bool hasTools = false;
  bool isSure = false;
  /// A command to be run, with its words.
  std::vector<std::string> words;
  /// What the board is asked.
  TeamworkRequest request;
};

/// What a command has around it.
struct Surroundings {
  /// How this program was called, and every variable of its environment as NAME=VALUE.
  std::string program;
  std::vector<std::string> variables;
};

/// Carries a command out; gives the exit status.
using Run = int (*)(const Line& line, const Surroundings& around);

/// One command.
struct Command {
  std::string_view group;
  std::string_view name;
  /// What may follow: a word each, in brackets when it may be missing, with "..." when it takes all
  /// the words to the end.
  std::string_view words;
  Run run;
  /// What is asked of the board; empty when nothing is.
  std::string_view method;
  /// What it is for, in one line.
  std::string_view gist;
  /// What else there is to know.
  std::string_view more = {};
};

/// A length of time, written as a number of seconds or with s, m, h or d behind it.
struct Span {
  int64_t Line::*member;
};

/// Where the value of an option goes.
using Target =
    std::variant<bool Line::*, std::string Line::*, Span,
                 std::optional<std::string> TeamworkRequest::*,
                 std::optional<int64_t> TeamworkRequest::*, std::optional<bool> TeamworkRequest::*,
                 std::optional<std::vector<std::string>> TeamworkRequest::*>;

/// One option. Where two commands mean different things by one name, it has a row for each; either
/// all rows of a name have a value or none has.
struct Option {
  std::string_view name;
  /// What its value is called; empty for a flag.
  std::string_view value;
  Target target;
  /// The commands that take it, with a blank between; empty for all.
  std::string_view commands;
  std::string_view gist;
};

/// All commands, those of a group together.
std::span<const Command> commands();

/// All options.
std::span<const Option> options();

/// The command of that name; null when there is none.
const Command* commandNamed(std::string_view name);

/// Whether the command takes the option.
bool takes(const Command& command, const Option& option);

/// What the command means by an option of that name; null when it takes none.
const Option* optionOf(const Command& command, std::string_view name);

/// Where a board is kept when nobody says where.
std::string usualDatabase(const Line& line);

/// How the command is written, in one line.
std::string usageOf(const Command& command);

/// The status of a command that was written wrongly, and of one that was refused or failed.
inline constexpr int wrongUse = 2;
inline constexpr int failure = 1;

// The functions of the rows. Each stands in the file that is named like it.

/// Serves the board.
int serve(const Line& line, const Surroundings& around);
/// Makes a seat, and prints the lines that put it into a shell's environment.
int makeSeat(const Line& line, const Surroundings& around);
/// Runs a command in a seat of its own.
int runInSeat(const Line& line, const Surroundings& around);
/// Asks the board and prints what it says.
int ask(const Line& line, const Surroundings& around);
/// Asks the board and prints what it shows.
int show(const Line& line, const Surroundings& around);
/// Shows the board, again whenever it moves.
int watchBoard(const Line& line, const Surroundings& around);
/// Serves the page, by the program of its own that does that.
int openPage(const Line& line, const Surroundings& around);
/// Has the board's file looked after, by the board when it is served.
int keep(const Line& line, const Surroundings& around);
/// Allows a helper, as it is written.
int allowHelper(const Line& line, const Surroundings& around);
/// Allows a helper that an agent suggests, after it was shown.
int approveHelper(const Line& line, const Surroundings& around);
/// Prints the help.
int help(const Line& line, const Surroundings& around);

}  // namespace quillpost::board
