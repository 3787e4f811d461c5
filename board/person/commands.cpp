#include "board/person/commands.h"

#include "base/files.h"
#include "base/text.h"
#include "board/verbs/person.h"

#include <algorithm>

namespace quillpost::board {

namespace {

// clang-format off
constexpr std::string_view keeping = "Keeping a board", agents = "Agents", looking = "Looking",
                           yours = "Your word on tasks and discussions", goals = "Goal and team",
                           hands = "Helpers that agents may have started";

constexpr Command commandRows[] = {
    {keeping, "serve",   "",                 serve,      "",            "serve the board until it is interrupted",
     "Without a command at all, this is what is done."},
    {keeping, "export",  "FILE",             keep,       personExport,  "write everything into a new file, a line of JSON for each row"},
    {keeping, "import",  "FILE",             keep,       personImport,  "take such lines into a file that has no board yet",
     "The board must not be served meanwhile. What was exported and is imported is the same board."},
    {keeping, "backup",  "FILE",             keep,       personBackup,  "copy the board's file into a new one, while it is served or not"},
    {keeping, "check",   "",                 keep,       personCheck,   "say what is wrong with the board's file; status 1 when something is"},

    {agents,  "run",     "COMMAND...",       runInSeat,  personSeat,    "run a harness in a seat of its own, which is freed when it ends",
     "qp is put on its PATH, and its status is the status. With --host it runs on another machine, "
     "which needs quillpost-teamwork and qp: ssh carries the board's socket there and nothing listens on a network. "
     "Write -- before a command that begins with a dash."},
    {agents,  "seat",    "",                 makeSeat,   personSeat,    "print the lines that put a new seat into a shell's environment"},
    {agents,  "seats",   "",                 show,       personSeats,   "list all seats and who sits there"},
    {agents,  "unseat",  "HANDLE",           ask,        personUnseat,  "take a seat away; what its agent holds goes back to the pool"},

    {looking, "show",    "[WHAT]",           show,       personShow,    "show the board, or one task, discussion or agent whole",
     "What needs you stands first. An id may be written without its zeros: t12, d3, or 12 for a task."},
    {looking, "watch",   "",                 watchBoard, personShow,    "show the board and draw it anew whenever it moves",
     "The bell rings when something new needs you. The command of --exec is then run by sh for each such thing, "
     "which it finds in QUILLPOST_NEED_ID, QUILLPOST_NEED_KIND and QUILLPOST_NEED."},
    {looking, "page",    "",                 openPage,   "",            "show the board in a browser on this machine, live, until it is interrupted",
     "It prints the page's address, which has the key of this run in it: who has the address can do what you can. "
     "There whatever these commands do is done by a click. Another machine cannot reach it."},
    {looking, "history", "[TASK]",           show,       personHistory, "list what moved: when, who and what"},
    {looking, "threads", "",                 show,       personThreads, "list all threads with their counts"},
    {looking, "thread",  "NAME",             ask,        personThread,  "make a thread"},

    {looking, "help",    "[COMMAND...]",     help,       "",            "say more about a command"},

    {yours,   "answer",  "WHAT TEXT...",     ask,        personAnswer,  "answer a task's question (an option by its number); comment or reply when it asks nothing"},
    {yours,   "comment", "TASK TEXT...",     ask,        personComment, "write on a task; a question of it stays open"},
    {yours,   "reply",   "DISCUSSION TEXT...", ask,      personReply,   "speak in a discussion"},
    {yours,   "add",     "TITLE...",         ask,        personAdd,     "file a task"},
    {yours,   "edit",    "TASK",             ask,        personEdit,    "change what is said of a task"},
    {yours,   "assign",  "TASK HANDLE",      ask,        personAssign,  "hand a task that nobody holds to an agent"},
    {yours,   "release", "TASK [REASON...]", ask,        personRelease, "take a task from its holder, back to the pool"},
    {yours,   "reopen",  "TASK [REASON...]", ask,        personReopen,  "put a task that is done or declined back into the pool"},
    {yours,   "done",    "TASK [OUTCOME...]", ask,       personDone,    "say that a task is done, whoever holds it"},
    {yours,   "reject",  "TASK [REASON...]", ask,        personReject,  "decline a task that nobody is to do"},
    {yours,   "delete",  "TASK [REASON...]", ask,        personDelete,  "delete a task; for seven days it can be put back"},
    {yours,   "restore", "TASK",             ask,        personRestore, "put a deleted task back as it was"},

    {goals,   "goal",    "TEXT...",          ask,        personGoal,    "set the goal"},
    {goals,   "charter", "TEXT...",          ask,        personCharter, "set the charter: one short line"},
    {goals,   "confirm-goal", "",            ask,        personConfirmGoal, "confirm that the goal is complete"},
    {goals,   "reopen-goal",  "",            ask,        personReopenGoal,  "take a proposal or a confirmation back"},
    {goals,   "say",     "HANDLE|all TEXT...", ask,      personSay,     "say something to an agent, or to all"},
    {goals,   "squad",   "on|off",           ask,        personSquad,   "let agents address each other and have helpers started, or not"},

    {hands,   "helper allow",   "HELPER COMMAND...", allowHelper, personHelperAllow, "allow agents to have this command run in the background, as a helper",
     "It is run without a shell, in the directory in which this is said, with PATH, HOME, USER, SHELL, LANG, LC_* and TERM as they are here. "
     "A line that says which task to do stands where {prompt} does, or at the end, as one argument. "
     "Its options stand before the command; write -- between them. The squad is on from then on."},
    {hands,   "helper list",    "",         show,          personHelpers,       "list the helpers that are allowed, those that are suggested, and those that were asked for"},
    {hands,   "helper forget",  "HELPER",   ask,           personHelperForget,  "allow a helper no longer; those that run go on",
     "unseat HANDLE stops one that runs."},
    {hands,   "helper approve", "HELPER",   approveHelper, personHelperApprove, "allow a helper that an agent suggests, after its list of arguments was shown"},
    {hands,   "helper refuse",  "HELPER",   ask,           personHelperRefuse,  "say no to a helper that an agent suggests"},
};

constexpr std::string_view showing = "show history threads seats helper-list";
constexpr std::string_view allowing = "helper-allow helper-approve";
constexpr std::string_view writing = "add edit";
constexpr std::string_view fileUsers = "serve export import backup check";

constexpr Option optionRows[] = {
    {"--dir",       "DIR",     &Line::directory, "", "where the board is published and looked for (default: Quillpost-board in the application-support directory)"},
    {"--suffix",    "NAME",    &Line::suffix,    "", "which board of that directory, when there are several (serving: board)"},
    {"--thread",    "NAME",    &Line::thread,    "", "which thread of that board, when there are several"},
    {"--db",        "FILE",    &Line::database,  fileUsers, "where the board is kept (default: board.db in DIR; \":memory:\" keeps nothing)"},
    {"--lease",     "TIME",    Span{&Line::leaseMs}, "serve", "how long a claim is held without a sign of life: 900, 15m or 1h (default: 15m)"},
    {"--log",       "",        &Line::isLogged,  "serve", "write a line for each request to standard error"},
    {"--page",      "",        &Line::withPage,  "serve", "show the board in a browser as well, as `page` does"},
    {"--port",      "NUMBER",  &Line::port,      "page serve", "the port of the page (default: 47800, or a free one)"},
    {"--name",      "NAME",    &TeamworkRequest::agent, "run seat", "what the seat is called until its agent says otherwise"},
    {"--host",      "USER@HOST", &Line::host,    "run", "run it on that machine, by ssh"},
    {"--json",      "",        &Line::asJson,    showing, "print JSON"},
    {"--mine",      "",        &Line::mineOnly,  "show watch", "only what needs you; of show the status is then 1 when there is something"},
    {"--open",      "",        &Line::opensBrowser, "page serve", "open the page in the browser"},
    {"--open",      "",        &Line::openOnly,  "show watch", "no task that is done, declined or deleted"},
    {"--all",       "",        &Line::all,       "show watch", "every task, those that are done too"},
    {"--exec",      "COMMAND", &Line::exec,      "watch", "what to run when something new needs you"},
    {"--agent",     "HANDLE",  &TeamworkRequest::to, "history", "only what this agent did; \"human\" is you"},
    {"--since",     "TIME",    Span{&Line::sinceMs}, "history", "only so far back: 90s, 30m, 2h, 3d"},
    {"--title",     "TEXT",    &TeamworkRequest::title, "edit", "the title"},
    {"--body",      "TEXT",    &TeamworkRequest::body, writing, "the brief; - reads standard input"},
    {"--priority",  "NUMBER",  &TeamworkRequest::priority, writing, "higher comes first; 0 is normal"},
    {"--type",      "TEXT",    &TeamworkRequest::taskType, writing, "what kind of work it is"},
    {"--resources", "LIST",    &TeamworkRequest::resources, writing, "what it touches, with commas between"},
    {"--waits-on",  "LIST",    &TeamworkRequest::waitsOn, writing, "the tasks it waits on, with commas between; \"\" for none"},
    {"--role",      "TEXT",    &TeamworkRequest::assignedRole, writing, "the role it is meant for"},
    {"--to",        "HANDLE",  &TeamworkRequest::routedToFingerprint, writing, "the agent it is meant for; \"\" for nobody"},
    {"--anyway",    "",        &TeamworkRequest::acknowledgeOpenTasks, "confirm-goal delete", "though something stands against it"},
    {"--explanation", "TEXT", &TeamworkRequest::explanation, allowing, "what other agents are told of it"},
    {"--in",        "DIR",     &Line::startIn,   allowing, "where it is started (default: here)"},
    {"--env",       "LIST",    &TeamworkRequest::tags, allowing, "further variables that it gets as they are here: their names, with commas between"},
    {"--without-approvals", "", &Line::runsWithoutApprovals, allowing, "agents are told that it asks nobody for approval of what it does"},
    {"--with-tools", "",       &Line::hasTools,  allowing, "agents are told that it has the board's tools; otherwise that it has qp alone"},
    {"--yes",       "",        &Line::isSure,    "helper-approve", "do not ask"},
    {"--help",      "",        Target(),         "", "say how a command is written"},
};
// clang-format on

// What is read before the command is known must be read alike for every command.
static_assert(std::ranges::all_of(optionRows, [](const Option& one) {
  return std::ranges::all_of(optionRows, [&one](const Option& other) {
    return one.name != other.name || one.value.empty() == other.value.empty();
  });
}));

}  // namespace

std::span<const Command> commands() { return commandRows; }

std::span<const Option> options() { return optionRows; }

const Command* commandNamed(std::string_view name) {
  const Command* const found = std::ranges::find(commandRows, name, &Command::name);
  return found == std::end(commandRows) ? nullptr : found;
}

bool takes(const Command& command, const Option& option) {
  if (option.commands.empty()) return true;
  // A name of two words is written there as one.
  std::string name(command.name);
  std::ranges::replace(name, ' ', '-');
  const std::vector<std::string_view> names = text::split(option.commands, ' ');
  return std::ranges::find(names, name) != names.end();
}

const Option* optionOf(const Command& command, std::string_view name) {
  for (const Option& option : optionRows)
    if (option.name == name && takes(command, option)) return &option;
  return nullptr;
}

std::string usualDatabase(const Line& line) { return files::joinPath(line.directory, "board.db"); }

std::string usageOf(const Command& command) {
  std::string line =
      text::cat("quillpost-board ", command.name, command.words.empty() ? "" : " ", command.words);
  for (const Option& option : options()) {
    if (option.commands.empty() || !takes(command, option)) continue;
    line += text::cat(" [", option.name, option.value.empty() ? "" : " ", option.value, "]");
  }
  return line;
}

}  // namespace quillpost::board
