#pragma once

// The board's socket: many connections at once on one thread. Each brings one request and takes one
// answer; one that is slow or broken keeps nobody else waiting.

#include "base/clock.h"
#include "base/unique_fd.h"
#include "board/serving/service.h"
#include "model/request.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct pollfd;

namespace quillpost::board {

/// The longest request that is read, in bytes: a brief of any sense fits many times.
inline constexpr std::size_t requestLimit = std::size_t{8} << 20;

/// How long a connection may take to bring its request, and how long to take its answer. Clients
/// give up on a write after the same time.
inline constexpr Duration patience = std::chrono::seconds(10);

/// How much of requests that have not come whole yet is kept in sum, in bytes. Beyond it the one
/// that has brought most is refused.
inline constexpr std::size_t unreadLimit = std::size_t{64} << 20;

/// The same for answers that have not been taken yet; beyond it the largest is given up.
inline constexpr std::size_t unsentLimit = std::size_t{256} << 20;

/// The longest request that is held, in bytes, since many may be held for long.
inline constexpr std::size_t heldLimit = std::size_t{64} << 10;

/// How many connections can be served at once with the descriptors that this process may have, of
/// which some are left for files. Asks the system for more first.
std::size_t roomForConnections();

/// Serves a listening socket.
class Listener {
 public:
  /// `socket` is bound and listens; it is made non-blocking. The service and the clock must outlive
  /// this object. `room` connections are served at once, and one more for as long as it takes to
  /// answer it: the person is always heard. Whoever comes then takes the place of the connection
  /// that has taken longest to bring its request.
  Listener(UniqueFd socket, Service& service, Clock& clock,
           std::size_t room = roomForConnections());
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /// Waits until something can be done, but no longer than `atMost`, and does it. `stop` is a
  /// descriptor that ends the waiting when it can be read, or -1.
  void step(Duration atMost, int stop = -1);

  /// Accepts from this socket from now on, which listens; connections that are open go on.
  void listenOn(UniqueFd socket);

  /// Steps until `stop` can be read or the service is over.
  void run(int stop);

  /// How many connections there are, and how many of them are polls that are held.
  std::size_t connections() const { return connections_.size(); }
  std::size_t held() const;
  /// How many bytes are kept of requests that have not come whole yet.
  std::size_t unread() const { return unread_; }

 private:
  /// One connection: reading its request, then perhaps held, then writing its answer.
  struct Connection {
    enum class Stage { reading, held, writing, over };

    UniqueFd fd;
    Stage stage = Stage::reading;
    /// When it is given up, or the held poll answered.
    Instant deadline;
    std::string bytes;
    /// Why all that still comes of the request is thrown away; empty while it is kept.
    std::string_view refusal;
    std::size_t sent = 0;
    TeamworkRequest poll;
    std::optional<Receipt> receipt;
  };

  using Stage = Connection::Stage;

  bool mayAccept() const;
  void acceptAll();
  void makeRoom();
  void advance(Connection& connection, short events);
  void read(Connection& connection);
  void keep(Connection& connection, std::string_view piece);
  std::string takeRequest(Connection& connection);
  void refuse(Connection& connection, std::string_view why);
  Connection& largest(Stage stage);
  void serve(Connection& connection);
  void hold(Connection& connection, TeamworkRequest request, int64_t holdMs);
  void reply(Connection& connection, Answer answer);
  void write(Connection& connection);
  void answerHeld();
  void expire(Connection& connection);
  void end(Connection& connection);
  void forgetEnded();
  int timeoutMs(Duration atMost);

  UniqueFd socket_;
  Service& service_;
  Clock& clock_;
  std::size_t room_;
  std::list<Connection> connections_;
  /// The bytes that connections have brought of their requests, and those of answers that are being
  /// sent, in sum.
  std::size_t unread_ = 0;
  std::size_t unsent_ = 0;
  /// Until when nobody is accepted, because the system had no descriptor.
  Instant restUntil_;
  uint64_t stirredBefore_ = 0;
};

}  // namespace quillpost::board
