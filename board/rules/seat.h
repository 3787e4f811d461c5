#pragma once

// A terminal's seat on a Thread, and what waits there for its agent.

#include "json/record.h"

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost::board {

/// A reason to wake an agent, kept until an answer has carried it there.
struct Wake {
  /// Counts up over the Thread, so that what was carried can be told from what came later.
  int64_t number = 0;
  std::string kind;
  /// Empty when it is about no task.
  std::string taskID;
  std::string summary;
  /// The change behind it; empty when there is none.
  std::string cause;

  bool operator==(const Wake&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "number",  &Wake::number),
        json::required( "kind",    &Wake::kind),
        json::defaulted("taskID",  &Wake::taskID),
        json::required( "summary", &Wake::summary),
        json::defaulted("cause",   &Wake::cause),
    };
    // clang-format on
  }
};

/// A peer's note, kept until an answer has carried it to its reader.
struct Message {
  int64_t number = 0;
  /// The sender's handle.
  std::string from;
  std::string fromName;
  std::string text;
  int64_t sentMs = 0;

  bool operator==(const Message&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "number",   &Message::number),
        json::required( "from",     &Message::from),
        json::defaulted("fromName", &Message::fromName),
        json::required( "text",     &Message::text),
        json::required( "sentMs",   &Message::sentMs),
    };
    // clang-format on
  }
};

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
  std::vector<Wake> wakes;
  std::vector<Message> inbox;

  bool operator==(const Seat&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",           &Seat::id),
        json::required( "handle",       &Seat::handle),
        json::defaulted("registered",   &Seat::registered),
        json::defaulted("away",         &Seat::away),
        json::defaulted("fingerprint",  &Seat::fingerprint),
        json::defaulted("name",         &Seat::name),
        json::defaulted("status",       &Seat::status),
        json::defaulted("role",         &Seat::role),
        json::defaulted("authority",    &Seat::authority),
        json::defaulted("leaseUntilMs", &Seat::leaseUntilMs),
        json::defaulted("lastCallMs",   &Seat::lastCallMs),
        json::defaulted("waiting",      &Seat::waiting),
        json::defaulted("stoodDown",    &Seat::stoodDown),
        json::defaulted("parkReason",   &Seat::parkReason),
        json::defaulted("wakes",        &Seat::wakes),
        json::defaulted("inbox",        &Seat::inbox),
    };
    // clang-format on
  }
};

/// Whether an agent is here: registered, its lease running.
inline bool isLive(const Seat& seat) { return seat.registered && !seat.away; }

}  // namespace quillpost::board
