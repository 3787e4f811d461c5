#pragma once

// What waits at a seat for its agent: reasons to wake it, and messages.

#include "board/rules/kinds.h"
#include "board/rules/table.h"
#include "json/record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

namespace quillpost::board {

/// A reason to wake an agent, kept until an answer has carried it there.
struct Wake {
  /// Its number, which counts up over the Thread, so that what was carried can be told from what
  /// came later.
  std::string id;
  /// The session id of the seat.
  std::string seat;
  WakeKind kind = WakeKind::humanSaid;
  /// Empty when it is about no task.
  std::string taskID;
  std::string summary;
  /// The move behind it; nothing when there is none.
  std::optional<MoveKind> cause;
  /// For how many moves it stands that are not told one by one; 0 for a wake of its own.
  int64_t more = 0;

  bool operator==(const Wake&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",      &Wake::id),
        json::required( "seat",    &Wake::seat),
        json::required( "kind",    &Wake::kind),
        json::defaulted("taskID",  &Wake::taskID),
        json::required( "summary", &Wake::summary),
        json::optional( "cause",   &Wake::cause),
        json::defaulted("more",    &Wake::more),
    };
    // clang-format on
  }
};

/// A peer's note, kept until an answer has carried it to its reader.
struct Message {
  /// Its number, of the same row as those of wakes.
  std::string id;
  /// The session id of the reader's seat.
  std::string seat;
  /// The sender's handle.
  std::string from;
  std::string fromName;
  std::string text;
  /// When it was sent, in milliseconds since 1970.
  int64_t sentMs = 0;

  bool operator==(const Message&) const = default;

  static constexpr auto fields() {
    // clang-format off
    return std::tuple{
        json::required( "id",       &Message::id),
        json::required( "seat",     &Message::seat),
        json::required( "from",     &Message::from),
        json::defaulted("fromName", &Message::fromName),
        json::required( "text",     &Message::text),
        json::required( "sentMs",   &Message::sentMs),
    };
    // clang-format on
  }
};

/// The index of wakes and of messages: by the seat they are for.
inline constexpr std::string_view bySeat = "seat";

template <>
struct Keys<Wake> {
  template <class Found>
  static void visit(const Wake& wake, Found&& found) {
    found(Key{bySeat, wake.seat});
  }
};

template <>
struct Keys<Message> {
  template <class Found>
  static void visit(const Message& message, Found&& found) {
    found(Key{bySeat, message.seat});
  }
};

}  // namespace quillpost::board
