#pragma once

// What the program is told at start, by its environment or by what lies on disk. Never an error:
// what is missing is the empty text.

#include "base/environment.h"

#include <optional>
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

/// Finds the app's socket when the environment does not name it.
struct Discovery {
  virtual ~Discovery() = default;
  /// The socket that the seat file names, of whatever service; nothing when there is none.
  virtual std::optional<std::string> seatSocketPath() = 0;
  /// The one teamwork socket that is live; nothing when none is, or several are.
  virtual std::optional<std::string> liveSocketPath() = 0;
};

/// Looks in the user's support directory.
class DiskDiscovery final : public Discovery {
 public:
  /// The environment must outlive this.
  explicit DiskDiscovery(const Environment& environment) : environment_(environment) {}

  std::optional<std::string> seatSocketPath() override;
  std::optional<std::string> liveSocketPath() override;

 private:
  const Environment& environment_;
};

/// The settings. A variable that is set counts even when it is empty; discovery is asked only when
/// the one for the socket is not set, and its scan only when there is no seat.
Settings readSettings(const Environment& environment, Discovery& discovery);

}  // namespace quillpost
