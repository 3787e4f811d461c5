#include "qp/doctor.h"

#include "base/display.h"
#include "base/text.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>

namespace quillpost {
namespace {

constexpr mode_t othersMayRead = 0077;

/// What was looked at: how it is, and what to do when that will not do.
struct Finding {
  bool isGood = true;
  std::string what;
  std::string remedy = {};
};

/// Whether a file of that kind is there.
struct FileFacts {
  bool exists = false;
  bool isSocket = false;
  mode_t mode = 0;
};

FileFacts factsOf(const std::string& path) {
  struct stat status {};
  if (path.empty() || ::stat(path.c_str(), &status) != 0) return {};
  return {.exists = true,
          .isSocket = S_ISSOCK(status.st_mode),
          .mode = status.st_mode & static_cast<mode_t>(07777)};
}

std::string octal(mode_t mode) {
  constexpr unsigned base = 8;
  std::string digits;
  for (unsigned rest = mode; rest > 0; rest /= base)
    digits.insert(digits.begin(), static_cast<char>('0' + rest % base));
  return digits;
}

Finding sessionFinding(const Surroundings& around) {
  if (!around.sessionID.empty())
    return {.what = "QUILLPOST_SESSION_ID is set: this terminal has a seat"};
  return {.isGood = false,
          .what = "QUILLPOST_SESSION_ID is not set: this terminal has no seat",
          .remedy =
              "open a terminal in a Thread, or take a seat with quillpost-board seat; a "
              "harness may pass only the variables that it is told to"};
}

Finding tokenFileFinding(const Places& places) {
  const FileFacts file = factsOf(places.tokenFilePath);
  if (!file.exists && places.hasStartToken)
    return {.what = "QUILLPOST_COLLAB_TOKEN is set, and there is no token file"};
  if (!file.exists)
    return {.isGood = false,
            .what = text::cat("there is no token file at ",
                              places.tokenFilePath.empty() ? "any place" : places.tokenFilePath),
            .remedy = "start the app or quillpost-board, which writes it"};
  std::string what =
      text::cat("the token file is ", places.tokenFilePath, ", mode ", octal(file.mode));
  if ((file.mode & othersMayRead) == 0) return {.what = std::move(what)};
  return {.what = text::cat(what, "; others may read it: chmod 600 ", places.tokenFilePath)};
}

Finding tokenFinding(const Surroundings& around) {
  if (!around.doors.bridge.currentToken().empty()) return {.what = "there is a token"};
  return {.isGood = false,
          .what = "there is no token",
          .remedy = "start the app or quillpost-board, or see that its file can be read"};
}

Finding socketFinding(const Places& places) {
  if (places.socketPath.empty())
    return {.isGood = false,
            .what = "no socket is named, and not exactly one live one was found",
            .remedy = "set QUILLPOST_COLLAB_SOCKET, or start one app or board"};
  const FileFacts file = factsOf(places.socketPath);
  if (file.isSocket) return {.what = text::cat("the socket is ", places.socketPath)};
  return {.isGood = false,
          .what = text::cat("there is no socket at ", places.socketPath),
          .remedy = "start the app or quillpost-board; a new one may have another path"};
}

/// The row of the caller in a roster; null when it has not registered.
const json::TreeObject* ownRowIn(const json::Tree& roster) {
  const boost::json::array* const agents = roster.if_array();
  if (agents == nullptr) return nullptr;
  for (const json::Tree& element : *agents) {
    const json::TreeObject* const agent = element.if_object();
    const json::Tree* const isSelf = agent != nullptr ? json::find(*agent, "isSelf") : nullptr;
    if (isSelf != nullptr && isSelf->is_bool() && isSelf->get_bool()) return agent;
  }
  return nullptr;
}

/// What the board answers, and what it says of this seat.
std::vector<Finding> boardFindings(const Surroundings& around) {
  Desk desk(around);
  ToolReply reply = desk.call("list_agents", {});
  // A board may show its roster only to those on it, and its backlog to everybody with a seat.
  if (reply.end == CallEnd::refused) {
    ToolReply backlog = desk.call("list_tasks", {});
    if (backlog.end == CallEnd::answered) reply = std::move(backlog);
  }
  if (statusOf(reply.end) != Status::done)
    return {{.isGood = false,
             .what = "the board does not answer as it should",
             .remedy = reply.text.sentences()}};
  std::vector<Finding> findings;
  findings.push_back(
      {.what = text::cat("the board answers", reply.threadTag.empty() ? "" : ", thread ",
                         reply.threadTag)});
  const std::optional<json::Tree> roster = json::parse(reply.text.json());
  const json::TreeObject* const self = roster ? ownRowIn(*roster) : nullptr;
  const std::string_view handle =
      self != nullptr ? json::findText(*self, "handle").value_or("") : "";
  findings.push_back(
      {.what = self != nullptr
                   ? text::cat("this seat is registered", handle.empty() ? "" : " as ", handle)
                   : std::string("this seat is not registered yet: qp register")});
  const SeatState& state = desk.seat().state;
  const std::string path = desk.file().path();
  findings.push_back(
      {.what = path.empty()
                   ? std::string("nothing is remembered between two commands: no folder for it")
                   : text::cat("revision ", state.lastSeenRev, " is remembered in ", path)});
  return findings;
}

Finding variablesFinding(const Environment& environment) {
  constexpr auto names = std::to_array<const char*>(
      {"QUILLPOST_COLLAB_SOCKET", "QUILLPOST_COLLAB_TOKEN_FILE", "QUILLPOST_COLLAB_TOKEN",
       "QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS", "QUILLPOST_COLLAB_WAIT_MAX_SECONDS"});
  std::vector<std::string_view> set;
  std::vector<std::string_view> unset;
  for (const char* name : names) (environment.get(name) ? set : unset).emplace_back(name);
  return {.what = text::cat("set: ", set.empty() ? "none" : text::join(set, ", "),
                            "; not set: ", unset.empty() ? "none" : text::join(unset, ", "))};
}

std::string lineFor(const Finding& finding, bool hasColour) {
  std::string mark(finding.isGood ? "ok" : "no");
  if (hasColour) mark = text::cat(finding.isGood ? "\x1b[32m" : "\x1b[31m", mark, "\x1b[0m");
  const std::string remedy = finding.remedy.empty() ? "" : text::cat(": ", finding.remedy);
  return text::cat(mark, "  ", displayedInLine(finding.what + remedy), "\n");
}

}  // namespace

Status doctor(const Surroundings& around) {
  const Places places = around.places();
  std::vector<Finding> findings = {sessionFinding(around), tokenFileFinding(places),
                                   tokenFinding(around), socketFinding(places)};
  const bool canAsk = !places.socketPath.empty() && findings[2].isGood;
  if (canAsk)
    for (Finding& finding : boardFindings(around)) findings.push_back(std::move(finding));
  findings.push_back(variablesFinding(around.doors.environment));
  bool works = canAsk;
  std::string lines;
  for (const Finding& finding : findings) {
    lines += lineFor(finding, around.console.hasColour);
    works = works && finding.isGood;
  }
  around.console.output.write(lines);
  return works ? Status::done : Status::noBoard;
}

}  // namespace quillpost
