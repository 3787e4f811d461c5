#include "entry/settings.h"

#include <optional>

namespace quillpost {

namespace {

using Kind = BridgeDiscovery::Kind;

/// A seat that names a socket without a suffix has no teamwork socket, and the scan is not asked
/// for another: it could only find somebody else's.
std::string discoveredSocketPath(const BridgeDiscovery::Where& where,
                                 const BridgeDiscovery::Probe& probe) {
  if (const std::optional<std::string> seat = BridgeDiscovery::seatSocketPath(where))
    return BridgeDiscovery::siblingSocketPath(*seat, Kind::teamwork);
  return BridgeDiscovery::liveSocketPath(Kind::teamwork, where, probe).value_or("");
}

std::string derivedTokenFilePath(const std::string& socketPath) {
  return socketPath.empty() ? std::string() : BridgeDiscovery::tokenPathFor(socketPath);
}

}  // namespace

Settings readSettings(const BridgeDiscovery::Where& where, const BridgeDiscovery::Probe& probe) {
  const Environment& environment = where.environment;
  Settings settings;
  settings.sessionID = environment.get("QUILLPOST_SESSION_ID").value_or("");
  settings.token = environment.get("QUILLPOST_COLLAB_TOKEN").value_or("");

  const std::optional<std::string> socketPath = environment.get("QUILLPOST_COLLAB_SOCKET");
  settings.socketPath = socketPath ? *socketPath : discoveredSocketPath(where, probe);

  const std::optional<std::string> tokenFile = environment.get("QUILLPOST_COLLAB_TOKEN_FILE");
  settings.tokenFilePath = tokenFile ? *tokenFile : derivedTokenFilePath(settings.socketPath);
  return settings;
}

}  // namespace quillpost
