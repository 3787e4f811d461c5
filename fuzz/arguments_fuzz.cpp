// The arguments of a call: read for every tool into a request that can be sent and read back.

#include "base/unicode.h"
#include "calls/blocker.h"
#include "calls/goal.h"
#include "calls/request_rules.h"
#include "fuzz/input.h"
#include "json/value.h"
#include "model/coding.h"
#include "tools/tool_name.h"

#include <string>
#include <string_view>

namespace quillpost::fuzz {
namespace {

void checkBlocker(const Arguments& arguments, TeamworkRequest& request) {
  BlockerQuestion question = composeBlockerQuestion(arguments);
  if (question.refusedLength) {
    require(*question.refusedLength > static_cast<int64_t>(blockerQuestionLimit),
            "a short question is refused");
    require(!question.text, "a question both refused and sent");
    return;
  }
  const std::string_view marker = "[[ask:";
  if (question.text && !question.text->starts_with(marker)) {
    require(unicode::countCharacters(*question.text) <= blockerQuestionLimit,
            "a question beyond its limit");
  }
  request.blockerQuestion = std::move(question.text);
}

void tryArguments(std::string_view text) {
  const std::optional<json::Tree> tree = json::parse(text);
  const json::TreeObject* object = tree ? tree->if_object() : nullptr;
  if (object == nullptr) return;
  const Arguments arguments(*object);
  for (const std::string_view tool : boardMethods) {
    TeamworkRequest request;
    request.method = tool;
    fillFromArguments(request, tool, arguments);
    if (tool == "set_goal") request.name = composeGoal(arguments);
    if (tool == "update_task") checkBlocker(arguments, request);
    const std::optional<std::string> line = encodeRequest(request);
    require(line.has_value(), "a request that cannot be sent");
    require(line->find('\n') == std::string::npos, "a request of several lines");
    require(decodeRequest(*line) == request, "a request that does not come back");
  }
}

}  // namespace
}  // namespace quillpost::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  quillpost::fuzz::tryArguments({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
