#include "entry/settings.h"

#include "bridge/discovery.h"

namespace quillpost {

namespace {

using Kind = BridgeDiscovery::Kind;

/// A seat that names a socket without a suffix has no teamwork socket, and the scan is not asked
/// for another: it could only find somebody else's.
std::string discoveredSocketPath(Discovery& discovery) {
  if (const std::optional<std::string> seat = discovery.seatSocketPath())
    return BridgeDiscovery::siblingSocketPath(*seat, Kind::teamwork);
  return discovery.liveSocketPath().value_or("");
}

std::string derivedTokenFilePath(const std::string& socketPath) {
  return socketPath.empty() ? std::string() : BridgeDiscovery::tokenPathFor(socketPath);
}

}  // namespace

std::optional<std::string> DiskDiscovery::seatSocketPath() {
  return BridgeDiscovery::seatSocketPath({environment_});
}

std::optional<std::string> DiskDiscovery::liveSocketPath() {
  return BridgeDiscovery::liveSocketPath(Kind::teamwork, {environment_});
}

Settings readSettings(const Environment& environment, Discovery& discovery) {
  Settings settings;
  settings.sessionID = environment.get("QUILLPOST_SESSION_ID").value_or("");
  settings.token = environment.get("QUILLPOST_COLLAB_TOKEN").value_or("");

  const std::optional<std::string> socketPath = environment.get("QUILLPOST_COLLAB_SOCKET");
  settings.socketPath = socketPath ? *socketPath : discoveredSocketPath(discovery);

  const std::optional<std::string> tokenFile = environment.get("QUILLPOST_COLLAB_TOKEN_FILE");
  settings.tokenFilePath = tokenFile ? *tokenFile : derivedTokenFilePath(settings.socketPath);
  return settings;
}

}  // namespace quillpost
