#pragma once

// What the program is told at start, by its environment or by what lies on disk. Never an error:
// what is missing is the empty text.

#include "bridge/discovery.h"

#include <string>

namespace quillpost {

/// The four settings, each set once and kept for the life of the process.
struct Settings {
  /// This agent's session on the app.
  std::string sessionID;
  /// The token to use when the token file yields none.
  std::string token;
  /// The app's socket.
  std::string socketPath;
  /// The file that the token is read from before each request.
  std::string tokenFilePath;

  bool operator==(const Settings&) const = default;
};

/// The settings, by the environment and the directory of `where`. A variable that is set counts
/// even when it is empty. The disk is looked at only when the one for the socket is not set, and
/// sockets are probed only when there is no seat file: that takes up to a probe's time for each of
/// them.
Settings readSettings(const BridgeDiscovery::Where& where,
                      const BridgeDiscovery::Probe& probe = BridgeDiscovery::acceptsConnection);

}  // namespace quillpost
