#pragma once

// Which harness is calling, and what the program does differently for it. A harness is told apart
// by its row below alone: nothing else compares profiles.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace quillpost {

/// The harnesses that the program tells apart.
struct TeamworkClientProfile {
  /// In the order in which a client's name is tested; the last is every other client.
  enum class Profile { claude, codex, antigravity, cursor, unknown };

  /// The profile for the name that a client gives itself, whatever its case.
  static Profile fromName(std::string_view clientName);
};

/// One client: how it is known, and what it can and cannot do.
struct ClientTraits {
  using Profile = TeamworkClientProfile::Profile;

  Profile profile = Profile::unknown;
  /// Stands somewhere in its name, in lower case; empty for the row of every other client.
  std::string_view word = {};
  /// Another name of it, in lower case, which counts only as the whole name; empty for none.
  std::string_view whole = {};
  /// Its harness starts a turn when a background command ends. Waiting by a command is so much
  /// cheaper there than holding a call that it is told why, at length and after each quiet wait.
  bool turnsExitIntoTurn = false;
  /// It cancels a tool call that takes longer than every client stands, whatever a person sets.
  bool cancelsLongCalls = false;
  /// Its own time-out for calls is short until a person raises it, which the budget for waiting
  /// tells: without that budget it cannot hold long.
  bool holdsLongByBudgetOnly = false;
  /// A person may raise its hold by the variable for the longest wait.
  bool heedsLongestWait = false;
};

// clang-format off
/// Every client, each in the place of its profile.
inline constexpr std::array clients = {
    ClientTraits{.profile = ClientTraits::Profile::claude, .word = "claude",
                 .turnsExitIntoTurn = true, .heedsLongestWait = true},
    ClientTraits{.profile = ClientTraits::Profile::codex, .word = "codex",
                 .holdsLongByBudgetOnly = true},
    ClientTraits{.profile = ClientTraits::Profile::antigravity, .word = "antigravity",
                 .whole = "agy"},
    ClientTraits{.profile = ClientTraits::Profile::cursor, .word = "cursor",
                 .cancelsLongCalls = true},
    ClientTraits{.profile = ClientTraits::Profile::unknown, .cancelsLongCalls = true},
};
// clang-format on

static_assert(
    [] {
      for (std::size_t i = 0; i < clients.size(); ++i)
        if (static_cast<std::size_t>(clients.at(i).profile) != i) return false;
      return true;
    }(),
    "each profile has its row, in its place");
static_assert(clients.back().profile == ClientTraits::Profile::unknown, "no profile lacks a row");
static_assert(std::ranges::all_of(clients,
                                  [](const ClientTraits& client) {
                                    return client.word.empty() == (&client == &clients.back());
                                  }),
              "each client is known by a word, and every other one by none");

/// The traits of a client.
constexpr const ClientTraits& traitsOf(TeamworkClientProfile::Profile profile) {
  return clients.at(static_cast<std::size_t>(profile));
}

}  // namespace quillpost
