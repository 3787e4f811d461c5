#pragma once

// A terminal's seat on a Thread.

#include "base/text.h"
#include "board/rules/ids.h"
#include "board/rules/table.h"
#include "json/record.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>

namespace quillpost::board {

/// One terminal and the agent in it. All times are milliseconds since 1970.
struct Seat {
  /// The session id that the terminal's environment carries.
  std::string id;
  /// The terminal's short address, such as "KQ3".
  std::string handle;
  /// Whether an agent has registered here and not left.
  bool registered = false;
  /// Whether its lease has lapsed; a call of its own brings it back.
  bool away = false;
  /// The agent's public mark, such as "#a3f9"; empty until one registers.
  std::string fingerprint;
  /// What the person calls the seat; its agents are called so that do not say otherwise.
  std::string label;
  std::string name;
  std::string status;
  std::string role;
  std::string authority = "contributor";
  int64_t leaseUntilMs = 0;
  int64_t lastCallMs = 0;
  /// Whether it listens in a wait, and what that wait said of it.
  bool waiting = false;
  bool stoodDown = false;
  std::string parkReason;
  /// Whether it is known to all that this agent has fallen silent.
  bool isQuiet = false;
  /// How often in a row its stop hook has been told to go on, and the number of the last wake or
  /// message that it was told so for.
  int64_t holdBacks = 0;
  int64_t heldBackFor = 0;

  bool operator==(const Seat&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",           &Seat::id),
        json::required( "handle",       &Seat::handle),
        json::defaulted("registered",   &Seat::registered),
        json::defaulted("away",         &Seat::away),
        json::defaulted("fingerprint",  &Seat::fingerprint),
        json::defaulted("label",        &Seat::label),
        json::defaulted("name",         &Seat::name),
        json::defaulted("status",       &Seat::status),
        json::defaulted("role",         &Seat::role),
        json::defaulted("authority",    &Seat::authority),
        json::defaulted("leaseUntilMs", &Seat::leaseUntilMs),
        json::defaulted("lastCallMs",   &Seat::lastCallMs),
        json::defaulted("waiting",      &Seat::waiting),
        json::defaulted("stoodDown",    &Seat::stoodDown),
        json::defaulted("parkReason",   &Seat::parkReason),
        json::defaulted("isQuiet",      &Seat::isQuiet),
        json::defaulted("holdBacks",    &Seat::holdBacks),
        json::defaulted("heldBackFor",  &Seat::heldBackFor),
    };
    // clang-format on
  }
};

/// Whether an agent is here: registered, its lease running.
inline bool isLive(const Seat& seat) { return seat.registered && !seat.away; }

/// How long, in milliseconds, an agent may be silent before nobody should wait on it.
inline constexpr int64_t quietAfterMs = 600'000;

/// When the board next has to look after a seat with an agent: it falls silent, or its lease ends.
inline int64_t dueMs(const Seat& seat) {
  if (seat.isQuiet) return seat.leaseUntilMs;
  return std::min(seat.leaseUntilMs, text::saturatingAdd(seat.lastCallMs, quietAfterMs));
}

// The indices of seats: by the agent's mark, by the handle in small letters, and by when the agent
// is due to be looked after.
inline constexpr std::string_view byMark = "mark";
inline constexpr std::string_view byHandle = "handle";
inline constexpr std::string_view bySeatDueTime = "due";

template <>
struct Keys<Seat> {
  template <class Found>
  static void visit(const Seat& seat, Found&& found) {
    found(Key{byHandle, text::lowered(seat.handle)});
    if (!seat.registered) return;
    found(Key{byMark, seat.fingerprint});
    if (isLive(seat)) found(Key{bySeatDueTime, padded(dueMs(seat))});
  }
};

}  // namespace quillpost::board
