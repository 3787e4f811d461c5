#include "qp/run.h"

#include "base/display.h"
#include "base/nearest.h"
#include "base/text.h"
#include "base/unicode.h"
#include "base/version.h"
#include "calls/tool_call.h"
#include "qp/completion.h"
#include "qp/doctor.h"
#include "qp/follow.h"
#include "qp/guard.h"
#include "qp/help.h"
#include "qp/manual.h"
#include "qp/options.h"
#include "qp/show.h"
#include "tools/tool_name.h"

#include <optional>
#include <utility>

namespace quillpost {
namespace {

using Calls = std::vector<Call>;

/// Remembers that something could not be written. A reader that has gone is no reason to complain;
/// a disk that is full is one.
class CheckedOutput final : public Output {
 public:
  explicit CheckedOutput(Output& output) : output_(output) {}

  bool write(std::string_view text) override {
    const bool isWritten = output_.write(text);
    hasFailed_ = hasFailed_ || !isWritten;
    return isWritten;
  }

  bool hasFailed() const { return hasFailed_; }

 private:
  Output& output_;
  bool hasFailed_ = false;
};

Status misuse(const Misuse& wrong, const Console& console) {
  if (wrong.asJson) {
    console.errors.write(errorLine(displayedInLine(wrong.why), Status::misuse));
    return Status::misuse;
  }
  std::string text = text::cat("qp: ", wrong.why, "\n");
  if (wrong.tool != nullptr) text += text::cat("usage: ", usageLine(*wrong.tool), "\n");
  console.errors.write(displayed(text));
  return Status::misuse;
}

Status say(const Console& console, std::string_view text) {
  return console.output.write(text) ? Status::done : Status::hungUp;
}

/// "[1/3] claim_task t000012": which of several verbs it is, and about what.
std::string headingOf(const Calls& calls, std::size_t index) {
  constexpr std::size_t longestSubject = 60;
  const Call& call = calls[index];
  std::string heading =
      text::cat("[", index + 1, "/", calls.size(), "] ", std::string_view(call.tool->name));
  for (const std::string_view name : call.tool->commandLine.positionals) {
    const std::optional<std::string_view> subject = json::findText(call.arguments, name);
    if (subject)
      text::append(heading, text::cat(" ", unicode::firstCharacters(displayedInLine(*subject),
                                                                    longestSubject)));
    break;
  }
  return heading;
}

std::string headingLine(const Calls& calls, std::size_t index, const Console& console) {
  if (calls.size() == 1 || calls[index].asJson) return {};
  const std::string heading = headingOf(calls, index);
  const std::string_view space = index == 0 ? "" : "\n";
  return console.hasColour ? text::cat(space, "\x1b[1m", heading, "\x1b[0m\n")
                           : text::cat(space, heading, "\n");
}

/// The verbs from there on.
std::string namesOf(const Calls& calls, std::size_t from) {
  return text::join(std::span(calls).subspan(from), ", ",
                    [](const Call& call) { return std::string_view(call.tool->name); });
}

/// Which verb ended the line, and what was not tried because of it.
std::string stoppedLine(const Calls& calls, std::size_t index, CallEnd end) {
  if (calls.size() == 1) return {};
  std::string line = text::cat("qp: ", headingOf(calls, index), " ", rowOf(end).word);
  if (index + 1 < calls.size()) line += text::cat("; not tried: ", namesOf(calls, index + 1));
  return line + "\n";
}

/// Whether the app's token is another one than it was when this was last asked. A request that was
/// under way while the app started anew carries the old one and is refused for that alone.
class RenewedToken {
 public:
  explicit RenewedToken(Bridge& bridge) : bridge_(bridge), known_(bridge.currentToken()) {}

  bool isThere() {
    std::string now = bridge_.currentToken();
    return std::exchange(known_, now) != now;
  }

 private:
  Bridge& bridge_;
  std::string known_;
};

/// The listener that a wait has here: without a deadline, until its terminal is gone.
Listener listenerFor(const Surroundings& around, Desk& desk, RenewedToken& token) {
  around.lifetime.begin();
  return {.isThere =
              [&around, &desk] {
                desk.giveBackMemory();
                return !around.lifetime.isOver();
              },
          .goesOn =
              [&token](CallEnd end, const TeamworkChangeFeed* /*feed*/) {
                return end == CallEnd::refused && token.isThere();
              }};
}

ToolReply follow(const Call& call, Desk& desk, const Surroundings& around) {
  FollowLines lines;
  bool isRead = true;
  RenewedToken token(around.doors.bridge);
  Listener listener = listenerFor(around, desk, token);
  listener.isThere = [&isRead, isThere = listener.isThere] { return isRead && isThere(); };
  listener.goesOn = [&](CallEnd end, const TeamworkChangeFeed* feed) {
    if (end == CallEnd::refused) return token.isThere();
    if (end != CallEnd::moved || feed == nullptr) return false;
    // Remembered before it is told: a follower that is ended here tells no move twice.
    desk.remember();
    const std::string told = lines.linesFor(*feed);
    if (!told.empty()) isRead = around.console.output.write(told);
    return !isOver(*feed, desk.seat().state);
  };
  return desk.wait(call.arguments, listener);
}

ToolReply replyTo(const Call& call, Desk& desk, const Surroundings& around) {
  if (call.tool->name != waitForChanges) return desk.call(*call.tool, call.arguments);
  if (Arguments(call.options).flag("follow").value_or(false)) return follow(call, desk, around);
  RenewedToken token(around.doors.bridge);
  return desk.wait(call.arguments, listenerFor(around, desk, token));
}

/// Whether the reply was printed as it came.
bool wasFollowed(const Call& call, const ToolReply& reply) {
  const bool follows = Arguments(call.options).flag("follow").value_or(false);
  return follows && (reply.end == CallEnd::moved || reply.end == CallEnd::timedOut);
}

/// The first verb that would be refused before it is sent, and the words for it.
std::optional<Status> refusedBefore(const Calls& calls, const Console& console) {
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const std::optional<ToolReply> refusal =
        refusalOf(calls[i].tool->name, Arguments(calls[i].arguments));
    if (!refusal) continue;
    print(console, printed({calls[i], *refusal}));
    console.errors.write(calls.size() == 1 ? "" : "qp: nothing of the line was sent\n");
    return statusOf(refusal->end);
  }
  return std::nullopt;
}

/// A board refuses a terminal without a seat, as it would refuse a verb; but there is none here.
ToolReply seatless(ToolReply reply, const Surroundings& around) {
  if (around.sessionID.empty() && reply.end == CallEnd::refused) reply.end = CallEnd::outsideThread;
  return reply;
}

/// Ends a wait whose caller has gone, in words when somebody is left to read them.
Status endUnheard(const Surroundings& around) {
  if (around.lifetime.isOver() && !around.lifetime.isUnread())
    around.console.errors.write("qp: whoever started this wait has gone, and it ends with them\n");
  return Status::hungUp;
}

Status runCalls(const Calls& calls, const Surroundings& around) {
  const Console& console = around.console;
  if (const std::optional<Status> refused = refusedBefore(calls, console)) return *refused;
  Desk desk(around);
  Status status = Status::done;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const Call& call = calls[i];
    const ToolReply reply = seatless(replyTo(call, desk, around), around);
    if (reply.end == CallEnd::callerGone) return endUnheard(around);
    const Status end = statusOf(reply.end);
    const bool stops = end == Status::refused || end == Status::noBoard;
    const std::string stopped = stops ? stoppedLine(calls, i, reply.end) : std::string();
    if (!stopped.empty()) console.errors.write(displayed(stopped));
    if (!wasFollowed(call, reply)) {
      Printed result = printed({call, reply});
      if (!console.output.write(headingLine(calls, i, console)) || !print(console, result)) {
        if (!around.lifetime.isUnread() && i + 1 < calls.size())
          console.errors.write(
              displayed(text::cat("qp: not tried: ", namesOf(calls, i + 1), "\n")));
        return Status::hungUp;
      }
    }
    if (end != Status::done) status = end;
    if (stops) break;
  }
  return status;
}

Status helpOn(const std::vector<std::string>& words, const Console& console) {
  if (words.empty()) return say(console, overview());
  if (const Tool* tool = toolForVerb(words.front())) return say(console, verbHelp(*tool));
  for (const CommandRow& row : commandRows)
    if (row.name == words.front() && !row.gist.empty()) return say(console, commandHelp(row));
  const std::vector<std::string_view> verbs = allVerbs();
  const std::string_view nearest = nearestWord(words.front(), verbs);
  return misuse({text::cat("there is no verb \"", words.front(), "\"",
                           nearest.empty() ? "" : text::cat("; did you mean ", nearest, "?"))},
                console);
}

Status briefOn(const std::vector<std::string>& words, const Console& console) {
  if (words.empty()) return say(console, brief());
  if (words.size() == 1 && words.front() == "--short") return say(console, shortBrief());
  return misuse({text::cat("brief takes --short and nothing else, not \"", words.front(), "\"")},
                console);
}

Status completionOn(const std::vector<std::string>& words, const Console& console) {
  const std::optional<std::string_view> script =
      words.size() == 1 ? completionScript(words.front()) : std::nullopt;
  if (script) return say(console, *script);
  return misuse({"write: qp completion bash|zsh|fish"}, console);
}

/// What fits first, at once; then what only the board knows, which may be late.
Status complete(const std::vector<std::string>& words, const Surroundings& around) {
  const Candidates candidates = candidatesFor(words);
  const auto write = [&](const std::vector<std::string>& found) {
    std::string lines;
    for (const std::string& word : found) lines += text::cat(displayedInLine(word), "\n");
    if (!lines.empty()) around.console.output.write(lines);
  };
  write(candidates.words);
  if (candidates.fromBoard == BoardWords::none) return Status::done;
  const bool wantsTasks = candidates.fromBoard == BoardWords::tasks;
  Desk desk(around);
  const ToolReply reply = wantsTasks ? desk.call("list_tasks", {}) : desk.call("list_agents", {});
  write(boardWordsIn(reply.text.json(), candidates));
  return Status::done;
}

Status runOwn(const OwnCall& own, const Surroundings& around) {
  const Console& console = around.console;
  switch (own.command) {
    case Command::help:
      return helpOn(own.words, console);
    case Command::version:
      return say(console, text::cat("qp ", programVersion(), "\n"));
    case Command::brief:
      return briefOn(own.words, console);
    case Command::completion:
      return completionOn(own.words, console);
    case Command::manual:
      return say(console, manualPage());
    case Command::complete:
      return complete(own.words, around);
    case Command::doctor:
      return doctor(around);
    case Command::guard:
      return guard(own.words, around);
  }
  return Status::misuse;
}

}  // namespace

Status runLine(std::span<const std::string> words, const Surroundings& around) {
  const std::variant<Line, Misuse> reading = readLine(words, around.texts);
  if (const Misuse* wrong = std::get_if<Misuse>(&reading)) return misuse(*wrong, around.console);
  CheckedOutput output(around.console.output);
  const Surroundings checked{.doors = around.doors,
                             .sessionID = around.sessionID,
                             .memory = around.memory,
                             .lifetime = around.lifetime,
                             .console = {.output = output,
                                         .errors = around.console.errors,
                                         .isTerminal = around.console.isTerminal,
                                         .hasColour = around.console.hasColour},
                             .texts = around.texts,
                             .places = around.places};
  const Line& line = std::get<Line>(reading);
  const OwnCall* const own = std::get_if<OwnCall>(&line);
  const Status status =
      own != nullptr ? runOwn(*own, checked) : runCalls(std::get<Calls>(line), checked);
  if (!output.hasFailed() || around.lifetime.isUnread()) return status;
  around.console.errors.write("qp: standard output cannot be written\n");
  return Status::refused;
}

}  // namespace quillpost
