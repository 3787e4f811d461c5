#include "qp/show.h"

#include "base/display.h"
#include "base/text.h"
#include "json/writer.h"
#include "qp/task_view.h"
#include "tools/tool_name.h"

#include <utility>

namespace quillpost {
namespace {

constexpr ToolName listTasks = "list_tasks";

std::string lineOf(std::string text) {
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

/// What stands around the JSON, without the blank line before it; empty when nothing does.
std::string sentencesAround(const ToolReply& reply) {
  const std::string around = text::cat(reply.text.sentences(), threadEnding(reply));
  const std::size_t begin = around.find_first_not_of('\n');
  return begin == std::string::npos ? std::string() : lineOf(around.substr(begin));
}

std::string textObject(std::string_view text) {
  std::string out;
  json::appendObject(out, [&](json::Object& object) { object.add("text", text); });
  return lineOf(out);
}

ViewedTasks viewedTasks(const Result& result, std::string_view json) {
  if (result.call.tool->name != listTasks || json.empty()) return {};
  return viewed(json, taskViewFrom(Arguments(result.call.options), result.call.asJson));
}

Printed printedJson(const Result& result) {
  const ToolReply& reply = result.reply;
  const Status status = statusOf(reply.end);
  const bool hasResult = status == Status::done || status == Status::noNews;
  if (!hasResult) return {.output = {}, .errors = errorLine(reply.text.sentences(), status)};
  const std::string json = reply.text.json();
  if (json.empty()) {
    const std::string tag = threadEnding(reply);
    return {.output = textObject(reply.text.sentences()),
            .errors = tag.empty() ? tag : lineOf(tag.substr(tag.find_first_not_of('\n')))};
  }
  const ViewedTasks tasks = viewedTasks(result, json);
  return {.output = lineOf(tasks.json ? *tasks.json : json),
          .errors = tasks.leftOut + sentencesAround(reply)};
}

}  // namespace

Printed printed(const Result& result) {
  if (result.call.asJson) return printedJson(result);
  const ToolReply& reply = result.reply;
  const std::string json = reply.text.json();
  const ViewedTasks tasks = viewedTasks(result, json);
  std::string text = text::cat(tasks.json ? *tasks.json : json, reply.text.sentences(),
                               threadEnding(reply), "\n", tasks.leftOut);
  return {.output = std::move(text), .errors = {}};
}

std::string errorLine(std::string_view error, Status status) {
  std::string out;
  json::appendObject(out, [&](json::Object& object) {
    object.add("error", error).add("status", static_cast<int>(status));
  });
  return lineOf(out);
}

bool print(const Console& console, const Printed& printed) {
  if (!printed.errors.empty()) console.errors.write(displayed(printed.errors));
  if (printed.output.empty()) return true;
  return console.output.write(console.isTerminal ? displayed(printed.output) : printed.output);
}

}  // namespace quillpost
