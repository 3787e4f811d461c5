// A harness in a seat of its own, on this machine.

#include "base/text.h"
#include "board/person/command_path.h"
#include "board/person/commands.h"
#include "board/person/console.h"
#include "board/person/remote.h"
#include "board/person/seat.h"
#include "board/person/spawn.h"
#include "board/serving/spawning.h"

namespace quillpost::board {

namespace {

/// The variables of this program, and those of the seat in the place of any other seat's.
std::vector<std::string> variablesFor(const NewSeat& seat, const Surroundings& around) {
  std::vector<std::string> variables;
  for (const std::string& variable : around.variables)
    if (!variable.starts_with("QUILLPOST_") && !variable.starts_with("PATH="))
      variables.push_back(variable);
  variables.push_back(pathWith(around));
  variables.push_back(text::cat("QUILLPOST_SESSION_ID=", seat.session));
  variables.push_back(text::cat("QUILLPOST_COLLAB_TOKEN_FILE=", seat.tokenFile));
  variables.push_back(text::cat("QUILLPOST_COLLAB_SOCKET=", seat.socket));
  return variables;
}

int runHere(const Line& line, const Surroundings& around, const NewSeat& seat) {
  std::string why;
  const std::optional<Spawned> spawned =
      spawn({line.words, variablesFor(seat, around), Streams::inherited}, why);
  if (!spawned) {
    complain(why);
    return cannotRun;
  }
  passTo(spawned->pid);
  return waitFor(spawned->pid);
}

}  // namespace

int runInSeat(const Line& line, const Surroundings& around) {
  outliveSignals();
  std::string why;
  const std::optional<NewSeat> seat = askForSeat(line, why);
  if (!seat) return complain(why);
  // Of a thread that is named, so that a slip in the name is not found out much later.
  if (!line.thread.empty()) complain(seat->sentence);
  const int status =
      line.host.empty() ? runHere(line, around, *seat) : runThere(line, around, *seat);
  passTo(0);
  if (!giveBack(line, *seat, why)) {
    complain(text::cat("the seat ", seat->handle, " could not be given back: ", why));
  }
  return status;
}

}  // namespace quillpost::board
