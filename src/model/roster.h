#pragma once

// Who is on a Thread: agents, open terminals and the person's other Macs.

#include "json/record.h"
#include "model/squad.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// One seat of the roster.
struct TeamworkAgent {
  std::string id;
  /// The seat's short public mark, such as "#a3f9".
  std::string fingerprint;
  std::string name;
  /// Free text that the agent last set.
  std::string status;
  int64_t leaseSecondsRemaining = 0;
  /// Whether this seat is the caller's.
  bool isSelf = false;
  bool idle = false;
  std::optional<std::string> role;
  /// What it may do: "contributor" unless it may do more.
  std::string authority = "contributor";
  /// Whether it may record a verdict on a review.
  bool canVerify = false;
  /// How many tasks it holds.
  int64_t activeClaims = 0;
  /// The Mac it runs on; absent for this one.
  std::optional<std::string> device;
  /// What the relay last said about a seat on another Mac.
  std::optional<std::string> seatPresence;
  std::optional<std::string> roleNote;
  /// A short address such as "KQ3"; empty while it has none.
  std::string handle;
  /// How long it has made no call of its own; absent while it is not quiet.
  std::optional<int64_t> quietForSeconds;
  /// Whether it is finished and waits to be given work.
  bool stoodDown = false;

  bool operator==(const TeamworkAgent&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkAgent;
    // clang-format off
    return std::tuple{
        json::required( "id",                    &Self::id),
        json::required( "fingerprint",           &Self::fingerprint),
        json::required( "name",                  &Self::name),
        json::required( "status",                &Self::status),
        json::required( "leaseSecondsRemaining", &Self::leaseSecondsRemaining),
        json::required( "isSelf",                &Self::isSelf),
        json::defaulted("idle",                  &Self::idle),
        json::optional( "role",                  &Self::role),
        json::defaulted("authority",             &Self::authority),
        json::required( "canVerify",             &Self::canVerify),
        json::required( "activeClaims",          &Self::activeClaims),
        json::optional( "device",                &Self::device),
        json::optional( "seatPresence",          &Self::seatPresence),
        json::optional( "roleNote",              &Self::roleNote),
        json::defaulted("handle",                &Self::handle),
        json::optional( "quietForSeconds",       &Self::quietForSeconds),
        json::defaulted("stoodDown",             &Self::stoodDown),
    };
    // clang-format on
  }
};

/// A terminal that is open and has no registered agent.
struct TeamworkPane {
  std::string handle;

  bool operator==(const TeamworkPane&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkPane;
    // clang-format off
    return std::tuple{
        json::required("handle", &Self::handle),
    };
    // clang-format on
  }
};

/// Another of the person's Macs on the same Thread.
struct TeamworkMac {
  /// Its address, without the "@".
  std::string tag;
  std::string name;
  /// Whether terminals there can be addressed by name.
  bool addressable = false;
  bool awake = false;
  /// The agent that takes work from other devices there; absent when there is none.
  std::optional<TeamworkLead> lead;

  bool operator==(const TeamworkMac&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkMac;
    // clang-format off
    return std::tuple{
        json::required("tag",         &Self::tag),
        json::required("name",        &Self::name),
        json::required("addressable", &Self::addressable),
        json::required("awake",       &Self::awake),
        json::optional("lead",        &Self::lead),
    };
    // clang-format on
  }
};

}  // namespace quillpost
