#pragma once

// Every record that crosses the app's socket, by name, and sample values for any of them made from
// their field tables.

#include "json/record.h"
#include "model/changes.h"
#include "model/discussion.h"
#include "model/human_ask.h"
#include "model/obligations.h"
#include "model/plan.h"
#include "model/request.h"
#include "model/response.h"
#include "model/roster.h"
#include "model/squad.h"
#include "model/task.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace quillpost::samples {

/// The records, in the order of the wire table.
using AllRecords =
    ::testing::Types<TeamworkRequest, TeamworkResponse, TeamworkTask, TeamworkAgent,
                     TeamworkDiscussion, TeamworkDiscussion::Volley, TeamworkPlan,
                     TeamworkChangeFeed, TeamworkChange, TeamworkWakeReason, TeamworkTaskWatcher,
                     TeamworkSquadMessage, TeamworkSquadState, TeamworkLead, TeamworkHelper,
                     TeamworkHelperRun, TeamworkPane, TeamworkMac, TeamworkObligations,
                     TeamworkObligations::DebateRef, TeamworkObligations::HeldRef,
                     TeamworkObligations::ReleaseAskRef, TeamworkObligations::UndeliveredRef,
                     TeamworkAudience, TeamworkHumanAsk::Payload>;

/// A record's name; empty for one that is not among them.
template <class T>
inline constexpr std::string_view nameOf = "";

// clang-format off
template <> inline constexpr std::string_view nameOf<TeamworkRequest>      = "TeamworkRequest";
template <> inline constexpr std::string_view nameOf<TeamworkResponse>     = "TeamworkResponse";
template <> inline constexpr std::string_view nameOf<TeamworkTask>         = "TeamworkTask";
template <> inline constexpr std::string_view nameOf<TeamworkAgent>        = "TeamworkAgent";
template <> inline constexpr std::string_view nameOf<TeamworkDiscussion>   = "TeamworkDiscussion";
template <> inline constexpr std::string_view nameOf<TeamworkDiscussion::Volley> = "TeamworkDiscussion.Volley";
template <> inline constexpr std::string_view nameOf<TeamworkPlan>         = "TeamworkPlan";
template <> inline constexpr std::string_view nameOf<TeamworkChangeFeed>   = "TeamworkChangeFeed";
template <> inline constexpr std::string_view nameOf<TeamworkChange>       = "TeamworkChange";
template <> inline constexpr std::string_view nameOf<TeamworkWakeReason>   = "TeamworkWakeReason";
template <> inline constexpr std::string_view nameOf<TeamworkTaskWatcher>  = "TeamworkTaskWatcher";
template <> inline constexpr std::string_view nameOf<TeamworkSquadMessage> = "TeamworkSquadMessage";
template <> inline constexpr std::string_view nameOf<TeamworkSquadState>   = "TeamworkSquadState";
template <> inline constexpr std::string_view nameOf<TeamworkLead>         = "TeamworkLead";
template <> inline constexpr std::string_view nameOf<TeamworkHelper>       = "TeamworkHelper";
template <> inline constexpr std::string_view nameOf<TeamworkHelperRun>    = "TeamworkHelperRun";
template <> inline constexpr std::string_view nameOf<TeamworkPane>         = "TeamworkPane";
template <> inline constexpr std::string_view nameOf<TeamworkMac>          = "TeamworkMac";
template <> inline constexpr std::string_view nameOf<TeamworkObligations>  = "TeamworkObligations";
template <> inline constexpr std::string_view nameOf<TeamworkObligations::DebateRef>      = "TeamworkObligations.DebateRef";
template <> inline constexpr std::string_view nameOf<TeamworkObligations::HeldRef>        = "TeamworkObligations.HeldRef";
template <> inline constexpr std::string_view nameOf<TeamworkObligations::ReleaseAskRef>  = "TeamworkObligations.ReleaseAskRef";
template <> inline constexpr std::string_view nameOf<TeamworkObligations::UndeliveredRef> = "TeamworkObligations.UndeliveredRef";
template <> inline constexpr std::string_view nameOf<TeamworkAudience>     = "TeamworkAudience";
template <> inline constexpr std::string_view nameOf<TeamworkHumanAsk::Payload> = "TeamworkHumanAsk.Payload";
// clang-format on

/// Makes a value another one: a flag the opposite, a word of a vocabulary the next, a list two
/// elements longer, an optional value one that is there, a record one with every member another.
/// `count` goes up, and is in every text and number, so that no two of them are equal.
template <class Value>
void vary(Value& value, int& count) {
  if constexpr (std::is_same_v<Value, bool>) {
    value = !value;
  } else if constexpr (std::is_same_v<Value, int64_t>) {
    value = ++count;
  } else if constexpr (std::is_same_v<Value, std::string>) {
    value = "text \"" + std::to_string(++count) + "\"\n— é";
  } else if constexpr (json::Record<Value>) {
    json::forEachField<Value>([&](const auto& field) { vary(value.*field.member, count); });
  } else if constexpr (json::Named<Value>) {
    const auto& rows = json::Names<Value>::rows;
    std::size_t at = 0;
    while (rows[at].value != value) ++at;
    value = rows[(at + 1) % rows.size()].value;
  } else if constexpr (requires { value.has_value(); }) {
    if (!value) value.emplace();
    vary(*value, count);
  } else {
    vary(value.emplace_back(), count);
    vary(value.emplace_back(), count);
  }
}

/// A record with every member other than its default, and two elements in every list.
template <json::Record T>
T sample() {
  T record;
  int count = 0;
  vary(record, count);
  return record;
}

}  // namespace quillpost::samples
