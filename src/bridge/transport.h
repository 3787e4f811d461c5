#pragma once

// One request and its reply over the app's socket: a connection of its own for each, the request as
// one line, the end of sending, and the reply up to a terminator or the end. Nothing is kept from
// one exchange to the next, and why one failed is not told.

#include "bridge/bridge.h"
#include "model/request.h"
#include "model/response.h"

#include <cstddef>
#include <optional>
#include <string>

namespace quillpost {

/// The exchange itself. No instances.
struct BridgeTransport {
  /// What bounds an exchange.
  struct Options {
    /// Of each single read, not of the whole reply: longer than the app holds a poll.
    int readTimeoutSeconds = 40;
    /// Of each single write, and of a connection that has to wait where the system bounds that.
    int writeTimeoutSeconds = 10;
    /// Ends the request and the reply.
    char terminator = '\n';
    /// The largest reply, its terminator not counted: 16 MiB, far above any board, and little
    /// enough that an app gone wild cannot exhaust the memory.
    std::size_t maxResponseBytes = 16'777'216;
    /// How large the reply will probably be; a larger one costs copies of what has come so far.
    std::size_t expectedBytes = 0;
  };

  /// The bytes of the reply without the terminator, which may be none; what follows the terminator
  /// is dropped. A reply that ends with the connection instead is taken when it has any byte.
  /// Nothing when the path is empty, the request holds text that is not UTF-8, or a step fails.
  static std::optional<std::string> exchange(const TeamworkRequest& request,
                                             const std::string& socketPath, const Options& options);

  /// One exchange with the options as they stand above but for `expectedBytes`, decoded.
  static Exchange send(const TeamworkRequest& request, const std::string& socketPath,
                       std::size_t expectedBytes = 0);
};

/// The app at a socket.
class SocketBridge final : public Bridge {
 public:
  /// Where the app is and what it lets this seat in with. Each may be empty.
  struct Access {
    std::string socketPath;
    std::string tokenFilePath;
    /// The token given at start.
    std::string startToken;
  };

  explicit SocketBridge(Access access);

  /// What the token file holds now, without white space at its ends; the start token, as it was
  /// given, when the file cannot be read or holds nothing else.
  std::string currentToken() override;
  Exchange send(const TeamworkRequest& request) override;

 private:
  Access access_;
  // One call's reply is mostly about as large as the last one's.
  std::size_t expectedBytes_ = 0;
};

}  // namespace quillpost
