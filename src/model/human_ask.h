#pragma once

// The typed question to the person that rides in a blocker question as a marker.

#include "json/record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// A namespace of its own for the marker's one record.
struct TeamworkHumanAsk {
  /// What the marker carries, under one-letter keys to keep it short.
  struct Payload {
    /// The kind: "decision", "approval", "secret", "review" or "respond".
    std::string k;
    /// The options offered, the recommended one first.
    std::optional<std::vector<std::string>> o;
    /// The exact name of the secret to be filled in.
    std::optional<std::string> s;
    /// The artifact to be looked at.
    std::optional<std::string> a;
    /// The consequence of the answer.
    std::optional<std::string> c;

    bool operator==(const Payload&) const = default;

    static constexpr auto fields() {
      using Self = Payload;
      // In the order of the sorted keys, which is how a marker is written.
      // clang-format off
      return std::tuple{
          json::optional("a", &Self::a),
          json::optional("c", &Self::c),
          json::required("k", &Self::k),
          json::optional("o", &Self::o),
          json::optional("s", &Self::s),
      };
      // clang-format on
    }
  };
};

}  // namespace quillpost
