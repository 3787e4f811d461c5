#pragma once

// Finds the app's socket on disk when nobody says where it is: by the seat file, or by a scan that
// counts only when exactly one socket is live. It never guesses between two.

#include "base/environment.h"
#include "json/record.h"

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// The service that a socket belongs to; its word begins the name of the socket's file.
enum class BridgeKind { mcp, teamwork, vault };

template <>
struct json::Names<BridgeKind> {
  using Kind = BridgeKind;
  // clang-format off
  static constexpr std::array rows = {
      Name<Kind>{Kind::mcp,      "mcp"},
      Name<Kind>{Kind::teamwork, "teamwork"},
      Name<Kind>{Kind::vault,    "vault"},
  };
  // clang-format on
  static_assert(allDifferent(rows));
};

/// The rules of looking for a socket. No instances.
struct BridgeDiscovery {
  using Kind = BridgeKind;

  /// A file that may be a live socket.
  struct Candidate {
    std::string socketPath;
    /// Where the token of that socket would be; not looked at.
    std::string tokenPath;

    bool operator==(const Candidate&) const = default;
  };

  /// Where to look.
  struct Where {
    const Environment& environment;
    /// The directory above the app's own; the user's support directory when there is none.
    std::optional<std::string> base = std::nullopt;

    /// The directory that this comes down to; nothing when there is no base and no support
    /// directory.
    std::optional<std::string> directory() const;
  };

  /// Says whether a socket accepts connections.
  using Probe = std::function<bool(const std::string& socketPath)>;

  /// The socket that the seat file names in its second line, trimmed; nothing when the file cannot
  /// be read, has no line feed, or a blank second line.
  static std::optional<std::string> seatSocketPath(const Where& where);

  /// The socket of `kind` beside the one at `path` and with its suffix, what follows the first "-"
  /// of its name. Empty when the name has no "-". Does not look whether it exists.
  static std::string siblingSocketPath(std::string_view path, Kind kind);

  /// The files that are named like a socket of `kind`, in the app's directory and in its siblings,
  /// the newest first; in the order of listing where they are equally old. Empty when there are
  /// none.
  static std::vector<Candidate> candidates(Kind kind, const Where& where);

  /// The path of the one candidate that the probe finds live; nothing when none is, or several are.
  /// Every candidate is probed.
  static std::optional<std::string> liveSocketPath(Kind kind, const Where& where,
                                                   const Probe& probe = acceptsConnection);

  /// The path with its last extension replaced by "token".
  static std::string tokenPathFor(std::string_view socketPath);

  /// How long an app may take to accept a connection before its full queue alone must do as a sign
  /// of life: agents that start together fill it for moments, and none of them may start slowly
  /// because an app has stopped accepting.
  static constexpr std::chrono::seconds probePatience{2};

  /// The probe itself: connects, sends nothing, and closes. False where nobody listens.
  static bool acceptsConnection(const std::string& socketPath);
};

}  // namespace quillpost
