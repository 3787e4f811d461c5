#include "qp/desk.h"

#include "calls/arguments.h"
#include "calls/tool_call.h"

#include <utility>

namespace quillpost {

Desk::Desk(const Surroundings& around)
    : around_(around),
      file_(around.memory, around.sessionID),
      before_(file_.load()),
      threadTag_(before_.threadTag),
      seat_{.doors = around.doors, .sessionID = around.sessionID, .state = before_.state} {}

ToolReply Desk::call(ToolName tool, const json::TreeObject& arguments) {
  return learnt(callBoard(tool, Arguments(arguments), seat_));
}

ToolReply Desk::call(const Tool& tool, const json::TreeObject& arguments) {
  return learnt(callBoard(tool.name, Arguments(arguments), seat_));
}

ToolReply Desk::wait(const json::TreeObject& arguments, const Listener& listener) {
  return learnt(runWait(Arguments(arguments), seat_, listener));
}

ToolReply Desk::learnt(ToolReply reply) {
  if (!reply.threadTag.empty()) threadTag_ = reply.threadTag;
  remember();
  return reply;
}

void Desk::remember() {
  SeatMemory after{.state = seat_.state, .threadTag = threadTag_};
  if (isSame(before_, after)) return;
  file_.learn({.before = before_, .after = after}, around_.doors.clock);
  before_ = std::move(after);
}

}  // namespace quillpost
