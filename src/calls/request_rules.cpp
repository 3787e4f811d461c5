#include "calls/request_rules.h"

#include "model/markers.h"
#include "tools/tool_name.h"

#include <array>
#include <cstddef>
#include <string>

namespace quillpost {
namespace {

using R = TeamworkRequest;

/// Where one field comes from: the first of two arguments that is present, or other arguments for
/// the tools that say so. A tool without sources leaves the field absent.
struct Rule {
  using Fill = void (*)(R&, const Arguments&, std::string_view argument);
  using Sources = std::array<std::string_view, 2>;
  struct Override {
    std::string_view tool;
    Sources sources;
  };

  std::string_view field;
  Fill fill = nullptr;
  Sources general;
  std::array<Override, 6> overrides{};
  std::size_t overrideCount = 0;

  constexpr Rule on(ToolName tool, std::string_view first, std::string_view second = {}) const {
    Rule rule = *this;
    rule.overrides.at(rule.overrideCount++) = {tool, {first, second}};
    return rule;
  }

  constexpr const Sources& sourcesFor(std::string_view tool) const {
    for (const Override& special : overrides)
      if (special.tool == tool) return special.sources;
    return general;
  }
};

/// The field's own type decides how an argument is read: text, flag, integer or list of texts.
template <auto Field>
constexpr Rule fill(std::string_view field, std::string_view first = {},
                    std::string_view second = {}) {
  return {field,
          [](R& request, const Arguments& arguments, std::string_view argument) {
            if (!(request.*Field)) arguments.read(argument, request.*Field);
          },
          {first, second}};
}

/// A summary is cleaned before it is sent, so that a stored one never carries its marker twice.
constexpr Rule fillSummary() {
  return {"summary",
          [](R& request, const Arguments& arguments, std::string_view argument) {
            const std::optional<std::string> given = arguments.text(argument);
            if (given) request.summary = std::string(cleanSummary(*given));
          },
          {"summary", {}}};
}

// clang-format off
constexpr Rule rules[] = {
    fill<&R::name>("name",                                 "name").on("set_goal", {}),
    fill<&R::role>("role",                                 "role"),
    fill<&R::approve>("approve",                           "approve"),
    fill<&R::reviewOfFingerprint>("reviewOfFingerprint",   "ofAgent"),
    fill<&R::reviewOfRole>("reviewOfRole",                 "ofRole"),
    fill<&R::priority>("priority",                         "priority"),
    fill<&R::taskType>("taskType",                         "type"),
    fill<&R::resources>("resources",                       "resources"),
    fill<&R::assignedRole>("assignedRole",                 "assignedRole"),
    fill<&R::routedToFingerprint>("routedToFingerprint",   "routedToFingerprint"),
    fill<&R::to>("to",                                     "to").on("stop_helper", "handle", "to"),
    fill<&R::agent>("agent").on("request_hands", "agent").on("suggest_helper", "name"),
    fill<&R::command>("command").on("suggest_helper", "command"),
    fill<&R::explanation>("explanation").on("suggest_helper", "explanation"),
    fill<&R::status>("status",                             "status"),
    fill<&R::taskID>("taskID",                             "taskID"),
    fill<&R::title>("title",                               "title"),
    fill<&R::body>("body",                                 "body")
        .on("open_discussion", "question").on("reply_discussion", "text")
        .on("resolve_discussion", "resolution").on("send_message", "text")
        .on("request_hands", "brief").on("suggest_helper", "reason"),
    fill<&R::note>("note",                                 "text", "progress"),
    fill<&R::blocked>("blocked",                           "blocked"),
    fill<&R::parkReason>("parkReason",                     "parkReason"),
    fillSummary(),
    fill<&R::waitsOn>("waitsOn",                           "waitsOn"),
    fill<&R::releaseReason>("releaseReason",               "reason"),
    fill<&R::tags>("tags",                                 "addressTo", "tags"),
    fill<&R::editLast>("editLast",                         "editLast"),
    fill<&R::acknowledgeOpenTasks>("acknowledgeOpenTasks", "acknowledgeOpenTasks"),
    fill<&R::discussionID>("discussionID",                 "discussionID"),
};
// clang-format on

constexpr auto fields = [] {
  std::array<std::string_view, std::size(rules)> keys;
  for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = rules[i].field;
  return keys;
}();
static_assert(namesAreUnique(fields), "a field has one rule");

}  // namespace

void fillFromArguments(TeamworkRequest& request, std::string_view tool,
                       const Arguments& arguments) {
  for (const Rule& rule : rules)
    for (const std::string_view source : rule.sourcesFor(tool))
      if (!source.empty()) rule.fill(request, arguments, source);
}

std::span<const std::string_view> ruledFields() { return fields; }

}  // namespace quillpost
