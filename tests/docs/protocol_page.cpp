#include "docs/protocol_page.h"

#include "base/text.h"
#include "harness/paths.h"
#include "harness/temp_dir.h"
#include "json/record.h"
#include "model/human_ask.h"
#include "model/request.h"
#include "model/response.h"
#include "tools/tool_name.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

namespace quillpost::docs {
namespace {

/// What a record is called on the page, and where it is written down.
struct Place {
  std::string_view name;
  std::string_view structName;
  std::string_view header;
};

/// Has a value for every record; one that is new does not compile until it has its place.
template <class T>
constexpr Place placeOf = T::thisRecordHasNoPlaceYet;

// clang-format off
template <> constexpr Place placeOf<TeamworkRequest> = {"TeamworkRequest", "TeamworkRequest", "request.h"};
template <> constexpr Place placeOf<TeamworkResponse> = {"TeamworkResponse", "TeamworkResponse", "response.h"};
template <> constexpr Place placeOf<TeamworkTask> = {"TeamworkTask", "TeamworkTask", "task.h"};
template <> constexpr Place placeOf<TeamworkTaskWatcher> = {"TeamworkTaskWatcher", "TeamworkTaskWatcher", "task.h"};
template <> constexpr Place placeOf<TeamworkAgent> = {"TeamworkAgent", "TeamworkAgent", "roster.h"};
template <> constexpr Place placeOf<TeamworkPane> = {"TeamworkPane", "TeamworkPane", "roster.h"};
template <> constexpr Place placeOf<TeamworkMac> = {"TeamworkMac", "TeamworkMac", "roster.h"};
template <> constexpr Place placeOf<TeamworkDiscussion> = {"TeamworkDiscussion", "TeamworkDiscussion", "discussion.h"};
template <> constexpr Place placeOf<TeamworkDiscussion::Volley> = {"TeamworkDiscussion.Volley", "Volley", "discussion.h"};
template <> constexpr Place placeOf<TeamworkPlan> = {"TeamworkPlan", "TeamworkPlan", "plan.h"};
template <> constexpr Place placeOf<TeamworkChangeFeed> = {"TeamworkChangeFeed", "TeamworkChangeFeed", "changes.h"};
template <> constexpr Place placeOf<TeamworkChange> = {"TeamworkChange", "TeamworkChange", "changes.h"};
template <> constexpr Place placeOf<TeamworkWakeReason> = {"TeamworkWakeReason", "TeamworkWakeReason", "changes.h"};
template <> constexpr Place placeOf<TeamworkSquadMessage> = {"TeamworkSquadMessage", "TeamworkSquadMessage", "squad.h"};
template <> constexpr Place placeOf<TeamworkSquadState> = {"TeamworkSquadState", "TeamworkSquadState", "squad.h"};
template <> constexpr Place placeOf<TeamworkLead> = {"TeamworkLead", "TeamworkLead", "squad.h"};
template <> constexpr Place placeOf<TeamworkHelper> = {"TeamworkHelper", "TeamworkHelper", "squad.h"};
template <> constexpr Place placeOf<TeamworkHelperRun> = {"TeamworkHelperRun", "TeamworkHelperRun", "squad.h"};
template <> constexpr Place placeOf<TeamworkObligations> = {"TeamworkObligations", "TeamworkObligations", "obligations.h"};
template <> constexpr Place placeOf<TeamworkObligations::DebateRef> = {"TeamworkObligations.DebateRef", "DebateRef", "obligations.h"};
template <> constexpr Place placeOf<TeamworkObligations::HeldRef> = {"TeamworkObligations.HeldRef", "HeldRef", "obligations.h"};
template <> constexpr Place placeOf<TeamworkObligations::ReleaseAskRef> = {"TeamworkObligations.ReleaseAskRef", "ReleaseAskRef", "obligations.h"};
template <> constexpr Place placeOf<TeamworkObligations::UndeliveredRef> = {"TeamworkObligations.UndeliveredRef", "UndeliveredRef", "obligations.h"};
template <> constexpr Place placeOf<TeamworkAudience> = {"TeamworkAudience", "TeamworkAudience", "obligations.h"};
template <> constexpr Place placeOf<TeamworkHumanAsk::Payload> = {"TeamworkHumanAsk.Payload", "Payload", "human_ask.h"};
// clang-format on

/// A heading's name as a link within the page.
std::string linkTo(std::string_view name) {
  std::string anchor;
  for (const char byte : text::lowered(name))
    if (byte != '.') anchor += byte;
  return text::cat("[", name, "](#", anchor, ")");
}

template <class T>
struct ListOf : std::false_type {};
template <class T>
struct ListOf<std::vector<T>> : std::true_type {
  using Element = T;
};
template <class T>
struct Optional : std::false_type {};
template <class T>
struct Optional<std::optional<T>> : std::true_type {
  using Element = T;
};

template <class T>
std::string typeText() {
  if constexpr (Optional<T>::value) {
    return typeText<typename Optional<T>::Element>();
  } else if constexpr (ListOf<T>::value) {
    return "list of " + typeText<typename ListOf<T>::Element>();
  } else if constexpr (std::is_same_v<T, std::string>) {
    return "string";
  } else if constexpr (std::is_same_v<T, bool>) {
    return "boolean";
  } else if constexpr (std::is_same_v<T, int64_t>) {
    return "integer";
  } else if constexpr (json::Named<T>) {
    return "string, one of its words";
  } else {
    return linkTo(placeOf<T>.name);
  }
}

/// The value that a missing key has, as JSON.
template <class Value>
std::string valueText(const Value& value) {
  std::string object;
  {
    json::Object out(object);
    json::detail::encodeMember<json::Unsaid::written>(out, "k", value);
  }
  constexpr std::size_t around = std::string_view(R"({"k":)").size();
  return object.substr(around, object.size() - around - 1);
}

template <class T, class Field>
std::string presenceText(const Field& field) {
  switch (field.presence) {
    case json::Presence::required:
      return "required";
    case json::Presence::optional:
      return "optional";
    case json::Presence::defaulted:
      return text::cat("default ", code(valueText(T().*field.member)));
  }
  return {};
}

template <class T>
std::string recordTable() {
  const std::string source =
      testing::readFile(testing::inSources(text::cat("src/model/", placeOf<T>.header)));
  std::string out = "| Key | Type | Presence | Meaning |\n|---|---|---|---|\n";
  json::forEachField<T>([&](const auto& field) {
    using Value = std::remove_cvref_t<decltype(T().*field.member)>;
    std::string meaning = memberComment(source, placeOf<T>.structName, field.key);
    // A key that is a word of the language has a member of another name.
    if (field.key == "auto") meaning = memberComment(source, placeOf<T>.structName, "isAuto");
    out += text::cat("| ", code(field.key), " | ", typeText<Value>(), " | ", presenceText<T>(field),
                     " | ", cell(meaning), " |\n");
  });
  return out;
}

template <class T>
std::string section() {
  return text::cat("\n### ", placeOf<T>.name, "\n\n", recordTable<T>());
}

template <class... Records>
std::string sections() {
  std::string out = (section<Records>() + ...);
  return out.substr(1);
}

std::string methods() {
  std::string out = "| Method | Sent by |\n|---|---|\n";
  for (const std::string_view method : boardMethods) {
    out += text::cat("| ", code(method), " | the tool of the same name");
    if (method == heartbeat) out += ", and `wait_for_changes` while it waits";
    out += " |\n";
  }
  out += text::cat("| ", code(pollChanges), " | `wait_for_changes` |\n");
  return out + text::cat("| ", code(wakeQuery), " | the stop hook |\n");
}

/// The person's methods as the board's own header lists them, each with what its request carries.
std::string personMethods() {
  const std::string source = testing::readFile(testing::inSources("board/verbs/person.h"));
  constexpr std::string_view before = "inline constexpr std::string_view person";
  std::string out = "| Method | What it is about |\n|---|---|\n";
  for (const std::string_view line : text::split(source, '\n')) {
    const std::size_t begin = line.find("\"person_");
    if (!line.starts_with(before) || begin == std::string_view::npos) continue;
    const std::size_t end = line.find('"', begin + 1);
    const std::size_t comment = line.find("// ", end);
    out +=
        text::cat("| ", code(line.substr(begin + 1, end - begin - 1)), " | ",
                  comment == std::string_view::npos ? "" : cell(line.substr(comment + 3)), " |\n");
  }
  return out;
}

std::string kinds() {
  std::string out;
  for (const auto& row : json::Names<TeamworkResponseKind>::rows)
    out += text::cat("- ", code(row.word), "\n");
  return out;
}

}  // namespace

Blocks protocolBlocks() {
  using Obligations = TeamworkObligations;
  return {
      {"methods", methods()},
      {"person", personMethods()},
      {"kinds", kinds()},
      {"TeamworkRequest", recordTable<TeamworkRequest>()},
      {"TeamworkResponse", recordTable<TeamworkResponse>()},
      {"records",
       sections<TeamworkTask, TeamworkTaskWatcher, TeamworkAgent, TeamworkDiscussion,
                TeamworkDiscussion::Volley, TeamworkPlan, TeamworkChangeFeed, TeamworkChange,
                TeamworkWakeReason, TeamworkSquadMessage, TeamworkSquadState, TeamworkLead,
                TeamworkHelper, TeamworkHelperRun, TeamworkPane, TeamworkMac, Obligations,
                Obligations::DebateRef, Obligations::HeldRef, Obligations::ReleaseAskRef,
                Obligations::UndeliveredRef, TeamworkAudience, TeamworkHumanAsk::Payload>()},
  };
}

}  // namespace quillpost::docs
