#pragma once

// An app on a real socket that behaves as a test tells it to, well or badly, one behaviour for each
// connection.

#include "base/clock.h"
#include "base/unique_fd.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace quillpost::testing {

/// What the app does with one connection: perhaps reads the request up to its end, sends the
/// pieces, and ends.
struct Behaviour {
  /// How the connection ends: closed in order; left as it is until `release`, then closed.
  enum class Ending { close, stall };

  bool readsRequest = true;
  /// Whether some bytes of the request must have arrived first, which stay unread.
  bool awaitsBytes = false;
  /// Each is sent by itself, and the next only when the other side has taken it (where the system
  /// can tell; otherwise at once).
  std::vector<std::string> pieces;
  Ending ending = Ending::close;
};

/// The reply and its terminator in one piece.
Behaviour reply(std::string_view text);
/// The reply and its terminator, one byte at a time.
Behaviour replyByteByByte(std::string_view text);
/// These pieces and nothing else: a terminator only where a piece has one.
Behaviour replyInPieces(std::vector<std::string> pieces);
/// The reply ended by closing the connection.
Behaviour replyUnterminated(std::string_view text);
/// A terminator before the reply and one after it.
Behaviour terminatorFirst(std::string_view text);
/// Two replies, each with its terminator, in one piece.
Behaviour twoReplies(std::string_view first, std::string_view second);
/// `bytes` times the letter "x", then a terminator or none.
Behaviour filler(std::size_t bytes);
Behaviour fillerUnterminated(std::size_t bytes);
/// Closes without reading, whether or not a request has come.
Behaviour closeAtOnce();
/// Reads the request and closes.
Behaviour closeWithoutReply();
/// Closes with the request unread, which resets the connection where the system knows that.
Behaviour reset();
/// Reads the request, perhaps sends something, and then does nothing until it is released.
Behaviour stall(std::string_view sentBefore = "");

/// What the app saw of one connection.
struct Connection {
  /// The bytes read so far.
  std::string received;
  /// Whether the other side ended its sending.
  bool sawEnd = false;
  /// Whether the app is done with it.
  bool over = false;

  /// Whether this was a whole request: one line feed, at its end, then the end of sending.
  bool isOneLine() const {
    return sawEnd && !received.empty() && received.find('\n') == received.size() - 1;
  }
};

/// Listens on a socket path from its construction to its end; removes the socket then.
class ScriptedApp {
 public:
  /// Gives the behaviour for a request that no scripted one was left for.
  using Answer = std::function<Behaviour(const std::string& request)>;

  explicit ScriptedApp(std::string socketPath);
  /// Releases whatever stalls.
  ~ScriptedApp();
  ScriptedApp(const ScriptedApp&) = delete;
  ScriptedApp& operator=(const ScriptedApp&) = delete;

  /// Where it listens.
  const std::string& path() const { return path_; }

  /// The behaviour for the next connection that has none yet.
  void play(Behaviour behaviour);
  /// What to do when the script is at its end; until this is called, `closeWithoutReply`.
  void otherwise(Answer answer);
  /// Ends every stall there is and every later one.
  void release();

  /// Every connection so far, in the order in which they came.
  std::vector<Connection> connections() const;
  /// What was received on the connections that the other side has ended, in the same order.
  std::vector<std::string> requests() const;

  /// Wait until at least so many connections have come, requests have been received whole, or
  /// connections are over. False when that takes longer than ten seconds.
  bool waitForConnections(std::size_t count);
  bool waitForRequests(std::size_t count);
  bool waitUntilOver(std::size_t count);

 private:
  void acceptConnections();
  void serve(std::size_t index, int fd);
  Behaviour behaviourFor(std::size_t index, int fd);
  void readRequest(std::size_t index, int fd);
  bool sendPiece(int fd, std::string_view piece);
  bool stopping() const;
  bool waitFor(const std::function<std::size_t()>& have, std::size_t count);

  std::string path_;
  UniqueFd listener_, wakeReader_, wakeWriter_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Behaviour> script_;
  Answer otherwise_;
  std::vector<Connection> connections_;
  std::map<std::size_t, UniqueFd> open_;
  bool released_ = false;
  bool stopping_ = false;
  std::vector<std::thread> workers_;
  std::thread acceptor_;
};

/// A listening socket whose queue is full and that accepts nothing until it is told to: a further
/// connection has to wait, or is refused where the system does that.
class FullBacklog {
 public:
  explicit FullBacklog(std::string socketPath);
  ~FullBacklog();
  FullBacklog(const FullBacklog&) = delete;
  FullBacklog& operator=(const FullBacklog&) = delete;

  /// How many connections wait in the queue.
  std::size_t size() const { return queued_.size(); }
  /// Accepts and closes so many connections. False when they do not come within ten seconds.
  bool accept(std::size_t count) const;

 private:
  std::string path_;
  UniqueFd listener_;
  std::vector<UniqueFd> queued_;
};

/// A client's side of a connection to a socket path; none when it is refused.
UniqueFd connectTo(const std::string& socketPath);

}  // namespace quillpost::testing
