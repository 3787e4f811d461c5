#pragma once

// The server that the client speaks MCP to: one JSON object a line, one line after the other.

#include "base/input.h"
#include "base/output.h"
#include "calls/seat.h"
#include "calls/tool_reply.h"
#include "json/value.h"
#include "mcp/json_rpc.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost {

/// Reads lines, answers them, and keeps what the seat remembers. There is no handshake state: tools
/// may be listed and called before initialize, and initialize may be repeated.
class TeamworkStdioServer {
 public:
  TeamworkStdioServer(std::string sessionID, const SeatDoors& doors, Output& output);

  /// Handles every line of the input in order, each completely before the next; a last line without
  /// a line feed counts too. Returns at the end of input, or when nobody reads the answers any
  /// more.
  void run(Input& input);

  /// Handles one line, without its line feed. A line that is not a JSON object is ignored.
  void handle(std::string_view line);

  /// What the seat remembers.
  const SeatState& state() const { return seat_.state; }

 private:
  /// One message. The pointers are null where it has no such member.
  struct Message {
    const json::Tree* id;
    const json::TreeObject* params;
  };
  struct Method {
    std::string_view name;
    void (TeamworkStdioServer::*answer)(const Message& message);
  };
  /// Null for a name that is none of the protocol's.
  static const Method* methodNamed(std::string_view name);

  void answerInitialize(const Message& message);
  void answerPing(const Message& message);
  void answerToolsList(const Message& message);
  void answerToolsCall(const Message& message);
  void ignoreNotification(const Message& message);

  ToolReply callTool(std::string_view name, const json::TreeObject& params);

  Seat seat_;
  JsonRpcWriter writer_;
  // The two forms of the tool list, each made when it is first asked for.
  std::array<std::string, 2> toolLists_;
};

}  // namespace quillpost
