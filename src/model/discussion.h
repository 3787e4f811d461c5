#pragma once

// A discussion: a structured debate about one question, in volleys.

#include "json/record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace quillpost {

/// A discussion as the app tells it.
struct TeamworkDiscussion {
  /// One contribution.
  struct Volley {
    std::string author;
    std::string body;
    /// When it was made, in milliseconds since 1970.
    int64_t atMs = 0;

    bool operator==(const Volley&) const = default;

    static constexpr auto fields() {
      using Self = Volley;
      // clang-format off
      return std::tuple{
          json::required("author", &Self::author),
          json::required("body",   &Self::body),
          json::required("atMs",   &Self::atMs),
      };
      // clang-format on
    }
  };

  /// "d" and six digits.
  std::string id;
  /// The task it hangs on; absent for one of the whole board.
  std::optional<std::string> taskID;
  std::string question;
  /// The app's word for its state.
  std::string state;
  /// Who opened it.
  std::string openedBy;
  /// Whom it was addressed to.
  std::vector<std::string> addressedTo;
  /// Oldest first.
  std::vector<Volley> volleys;
  /// What was decided; absent while it is open.
  std::optional<std::string> resolution;
  /// Who resolved it.
  std::optional<std::string> resolvedBy;
  /// Who owes the next volley.
  std::vector<std::string> owingParties;
  /// Volleys since the person last said something.
  int64_t volleysSinceHuman = 0;
  /// Whether it has been put before the person.
  bool escalated = false;
  /// Whether the caller owes the next volley.
  bool yourTurn = false;

  bool operator==(const TeamworkDiscussion&) const = default;

  static constexpr auto fields() {
    using Self = TeamworkDiscussion;
    // clang-format off
    return std::tuple{
        json::required( "id",                &Self::id),
        json::optional( "taskID",            &Self::taskID),
        json::required( "question",          &Self::question),
        json::required( "state",             &Self::state),
        json::required( "openedBy",          &Self::openedBy),
        json::required( "addressedTo",       &Self::addressedTo),
        json::required( "volleys",           &Self::volleys),
        json::optional( "resolution",        &Self::resolution),
        json::optional( "resolvedBy",        &Self::resolvedBy),
        json::required( "owingParties",      &Self::owingParties),
        json::required( "volleysSinceHuman", &Self::volleysSinceHuman),
        json::required( "escalated",         &Self::escalated),
        json::defaulted("yourTurn",          &Self::yourTurn),
    };
    // clang-format on
  }
};

}  // namespace quillpost
