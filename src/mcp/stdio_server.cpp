#include "mcp/stdio_server.h"

#include "base/text.h"
#include "base/version.h"
#include "calls/tool_call.h"
#include "calls/wait.h"
#include "json/writer.h"
#include "mcp/catalogue.h"
#include "mcp/instructions.h"
#include "mcp/line_splitter.h"
#include "render/texts/waiting.h"
#include "tools/tool_name.h"

#include <boost/json/monotonic_resource.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <utility>

namespace quillpost {
namespace {

constexpr std::string_view toolsCall = "tools/call";

// As much as a pipe holds: a flood of requests then costs one read for each of its fillings.
constexpr std::size_t inputChunkBytes = std::size_t{64} << 10;

// An ordinary request's tree fits here, so that reading one allocates nothing.
constexpr std::size_t treeScratchBytes = std::size_t{8} << 10;

// A client that asks again within this time uses the same memory again: given back and fetched anew
// each time, it cost as much as all the rest of an answer of 16 MiB.
constexpr Duration quietAfter = std::chrono::milliseconds(5);

const json::TreeObject& emptyObject() {
  static const json::TreeObject empty;
  return empty;
}

const json::TreeObject& orEmpty(const json::TreeObject* object) {
  return object != nullptr ? *object : emptyObject();
}

std::string initializeResult() {
  std::string text;
  json::appendObject(text, [](json::Object& result) {
    result.add("protocolVersion", "2024-11-05");
    result.object("capabilities").object("tools").add("listChanged", false);
    result.object("serverInfo").add("name", "quillpost-teamwork").add("version", programVersion());
    result.add("instructions", texts::serverInstructions);
  });
  return text;
}

}  // namespace

const TeamworkStdioServer::Method* TeamworkStdioServer::methodNamed(std::string_view name) {
  // clang-format off
  static constexpr auto methods = std::to_array<Method>({
      {"initialize",                &TeamworkStdioServer::answerInitialize},
      {"notifications/initialized", &TeamworkStdioServer::ignoreNotification},
      {"notifications/cancelled",   &TeamworkStdioServer::ignoreNotification},
      {"ping",                      &TeamworkStdioServer::answerPing},
      {"tools/list",                &TeamworkStdioServer::answerToolsList},
      {toolsCall,                   &TeamworkStdioServer::answerToolsCall},
  });
  // clang-format on
  const Method* const found = std::ranges::find(methods, name, &Method::name);
  return found == methods.end() ? nullptr : found;
}

TeamworkStdioServer::TeamworkStdioServer(std::string sessionID, const SeatDoors& doors,
                                         Output& output)
    : seat_{.doors = doors, .sessionID = std::move(sessionID)}, writer_(output) {}

void TeamworkStdioServer::run(Input& input) {
  const auto chunk = std::make_unique_for_overwrite<char[]>(inputChunkBytes);
  LineSplitter lines;
  while (const std::size_t count = input.read({chunk.get(), inputChunkBytes})) {
    lines.feed({chunk.get(), count});
    while (const std::optional<std::string_view> line = lines.next()) {
      handle(*line);
      seat_.memory.took(line->size());
      if (!writer_.connected()) return;
    }
    if (seat_.memory.holdsMuch() && !input.comesWithin(quietAfter)) seat_.memory.giveBack();
  }
  if (const std::optional<std::string_view> last = lines.rest()) handle(*last);
}

void TeamworkStdioServer::handle(std::string_view line) {
  if (line.empty()) return;
  std::array<unsigned char, treeScratchBytes> scratch;  // NOLINT: written before it is read
  boost::json::monotonic_resource memory(scratch.data(), scratch.size());
  const std::optional<json::Tree> tree = json::parse(line, &memory);
  const json::TreeObject* object = tree ? tree->if_object() : nullptr;
  if (object == nullptr) return;

  const Message message = {.id = json::find(*object, "id"),
                           .params = json::findObject(*object, "params")};
  const std::string_view name = json::findText(*object, "method").value_or("");
  // Nothing but another call is likely to need as much again.
  if (name != toolsCall) seat_.memory.giveBack();
  if (const Method* const method = methodNamed(name)) {
    (this->*method->answer)(message);
  } else if (message.id != nullptr) {
    writer_.sendError(message.id, methodNotFound, text::cat("Method not found: ", name));
  }
}

void TeamworkStdioServer::answerInitialize(const Message& message) {
  const json::TreeObject* client = json::findObject(orEmpty(message.params), "clientInfo");
  const std::optional<std::string_view> name = json::findText(orEmpty(client), "name");
  if (name) absorbClientName(seat_.state, *name);
  writer_.sendResult(message.id, initializeResult());
}

void TeamworkStdioServer::answerPing(const Message& message) {
  writer_.sendResult(message.id, "{}");
}

void TeamworkStdioServer::answerToolsList(const Message& message) {
  const TeamworkClientProfile::Profile profile = seat_.state.clientProfile;
  std::string& list = toolLists_.at(traitsOf(profile).turnsExitIntoTurn ? 1 : 0);
  if (list.empty()) list = toolListResult(profile);
  writer_.sendResult(message.id, list);
}

void TeamworkStdioServer::answerToolsCall(const Message& message) {
  const json::TreeObject& params = orEmpty(message.params);
  const std::string_view name = json::findText(params, "name").value_or("");
  const bool waits = name == waitForChanges || name == waitForTasks;
  if (!waits && !isBoardMethod(name)) {
    writer_.sendError(message.id, invalidParams, text::cat("Unknown tool: ", name));
    return;
  }
  const ToolReply reply = callTool(name, params);
  writer_.sendText(message.id, reply.text, threadEnding(reply));
}

void TeamworkStdioServer::ignoreNotification(const Message& /*message*/) {}

ToolReply TeamworkStdioServer::callTool(std::string_view name, const json::TreeObject& params) {
  const Arguments arguments(orEmpty(json::findObject(params, "arguments")));
  if (isBoardMethod(name)) return callBoard(name, arguments, seat_);

  const json::Tree* token = json::find(orEmpty(json::findObject(params, "_meta")), "progressToken");
  ProgressReport progress;
  if (token != nullptr) {
    progress = [this, token](int64_t count) {
      return writer_.sendProgress(*token, count, texts::listening);
    };
  }
  return runWait(arguments, seat_, clientOf(seat_, std::move(progress)));
}

}  // namespace quillpost
