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

/// The connections that are served at once, well below the descriptors that a process may have on
/// any system; more wait in the system's queue.
inline constexpr std::size_t connectionLimit = 200;

/// Serves a listening socket.
class Listener {
 public:
  /// `socket` is bound and listens; it is made non-blocking. The service and the clock must outlive
  /// this object.
  Listener(UniqueFd socket, Service& service, Clock& clock);
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

 private:
  /// One connection: reading its request, then perhaps held, then writing its answer.
  struct Connection {
    enum class Stage { reading, held, writing, over };

    UniqueFd fd;
    Stage stage = Stage::reading;
    /// When it is given up, or the held poll answered.
    Instant deadline;
    std::string bytes;
    /// Whether the request is longer than is read, and all that comes of it is thrown away.
    bool isTooLong = false;
    std::size_t sent = 0;
    TeamworkRequest poll;
    std::optional<Receipt> receipt;
  };

  void acceptAll();
  void advance(Connection& connection);
  void read(Connection& connection);
  static void keep(Connection& connection, std::string_view piece);
  void serve(Connection& connection);
  void hold(Connection& connection, TeamworkRequest request, int64_t holdMs);
  void reply(Connection& connection, Answer answer);
  void write(Connection& connection);
  void answerHeld();
  void expire(Connection& connection);
  int timeoutMs(Duration atMost);

  UniqueFd socket_;
  Service& service_;
  Clock& clock_;
  std::list<Connection> connections_;
  uint64_t stirredBefore_ = 0;
};

}  // namespace quillpost::board
