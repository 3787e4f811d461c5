#pragma once

// The seat from which a command makes its calls, with its memory, and where its words go.

#include "base/output.h"
#include "calls/seat.h"
#include "calls/tool_reply.h"
#include "calls/wait.h"
#include "qp/lifetime.h"
#include "qp/line.h"
#include "qp/seat_file.h"
#include "qp/status.h"
#include "tools/tool.h"
#include "tools/tool_name.h"

#include <functional>
#include <string>

namespace quillpost {

/// Where a command's words go.
struct Console {
  Output& output;
  Output& errors;
  /// Whether a person's terminal shows the output, which then must not be steered by what peers
  /// wrote.
  bool isTerminal = false;
  /// Whether colour may be used there.
  bool hasColour = false;
};

/// Where the program was told to look, for the command that says what is wrong.
struct Places {
  std::string socketPath;
  std::string tokenFilePath;
  bool hasStartToken = false;
};

/// What a command has around it.
struct Surroundings {
  SeatDoors doors;
  std::string sessionID;
  /// Where the seat's memory may lie.
  MemoryPlaces memory;
  Lifetime& lifetime;
  Console console;
  TextSources texts;
  /// Asked by the one command that needs them: finding a socket may take a look around.
  std::function<Places()> places;
};

/// One seat for the length of a command. What it learns is written as soon as it is learnt; when
/// that cannot be, nothing is said: the command goes on with it to its end, and the next one begins
/// with what was written last. `doctor` says where the memory is, and when there is no place for
/// it.
class Desk {
 public:
  /// Takes up what the seat remembers.
  explicit Desk(const Surroundings& around);

  /// Makes one call as a client would, and remembers what it told. Of any tool but the one that
  /// waits.
  ToolReply call(ToolName tool, const json::TreeObject& arguments);

  /// The same for a tool that a line of words named.
  ToolReply call(const Tool& tool, const json::TreeObject& arguments);

  /// Waits for a listener, and remembers what it told.
  ToolReply wait(const json::TreeObject& arguments, const Listener& listener);

  /// Remembers what has been told so far, for a wait that goes on.
  void remember();

  /// Gives back what a large answer took, for a wait that will rest.
  void giveBackMemory() { seat_.memory.giveBack(); }

  const Seat& seat() const { return seat_; }
  const SeatFile& file() const { return file_; }

 private:
  ToolReply learnt(ToolReply reply);

  const Surroundings& around_;
  SeatFile file_;
  SeatMemory before_;
  std::string threadTag_;
  Seat seat_;
};

}  // namespace quillpost
