#include "entry/stop_hook.h"

#include "entry/stop_hook_text.h"
#include "tools/tool_name.h"

#include <array>
#include <optional>

namespace quillpost {

namespace {

/// Bytes read at a time: above any ordinary event, and one page, because each page of a buffer on
/// the stack is touched when it is made and faulted in, which costs more than reading the event.
constexpr std::size_t readSize = 4096;

/// The statuses that the harness of an agent understands.
constexpr int letStop = 0;
constexpr int keepGoing = 2;

bool isWake(const std::optional<TeamworkResponse>& response) {
  return response && response->kind == TeamworkResponse::Kind::wake &&
         response->wakePending.value_or(false);
}

}  // namespace

void drain(Input& input) {
  std::array<char, readSize> ignored;
  while (input.read(ignored) > 0) {
  }
}

HookResult runStopHook(Seat& seat) {
  if (seat.sessionID.empty()) return {letStop, {}};
  const TeamworkRequest request = requestFrom(seat, wakeQuery);
  if (request.token.empty()) return {letStop, {}};
  if (!isWake(send(request, seat))) return {letStop, {}};
  return {keepGoing, texts::stopHookLine};
}

}  // namespace quillpost
