#include "board/serving/listener.h"

#include "base/text.h"
#include "bridge/unix_socket.h"
#include "model/coding.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

namespace quillpost::board {

namespace {

using std::chrono::milliseconds;

/// The same as a client's: one system call for all but the largest requests.
constexpr std::size_t chunkSize = 65536;

void makeNonBlocking(int fd) {
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
  ::fcntl(fd, F_SETFD, FD_CLOEXEC);
#if defined(SO_NOSIGPIPE)
  const int yes = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes);
#endif
}

bool wouldBlock() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

}  // namespace

Listener::Listener(UniqueFd socket, Service& service, Clock& clock)
    : socket_(std::move(socket)), service_(service), clock_(clock) {
  makeNonBlocking(socket_.get());
}

Listener::~Listener() = default;

void Listener::listenOn(UniqueFd socket) {
  makeNonBlocking(socket.get());
  socket_ = std::move(socket);
}

std::size_t Listener::held() const {
  return static_cast<std::size_t>(std::ranges::count_if(connections_, [](const auto& connection) {
    return connection.stage == Connection::Stage::held;
  }));
}

void Listener::run(int stop) {
  pollfd wanted{stop, POLLIN, 0};
  while (!service_.isOver() && ::poll(&wanted, 1, 0) <= 0) step(std::chrono::hours(1), stop);
}

void Listener::step(Duration atMost, int stop) {
  std::vector<pollfd> wanted;
  wanted.push_back({stop, POLLIN, 0});
  const bool isFull = connections_.size() >= connectionLimit;
  wanted.push_back({isFull ? -1 : socket_.get(), POLLIN, 0});
  for (const Connection& connection : connections_) {
    // A held poll is left alone: its client has ended its sending, which the system would report
    // for ever. Whether the client is still there is seen when the answer is written.
    const bool isHeld = connection.stage == Connection::Stage::held;
    const bool isReading = connection.stage == Connection::Stage::reading;
    wanted.push_back(
        {isHeld ? -1 : connection.fd.get(), static_cast<short>(isReading ? POLLIN : POLLOUT), 0});
  }
  ::poll(wanted.data(), static_cast<nfds_t>(wanted.size()), timeoutMs(atMost));

  std::size_t next = 2;
  for (Connection& connection : connections_) {
    if (wanted[next++].revents != 0) advance(connection);
    if (clock_.now() >= connection.deadline) expire(connection);
  }
  if (wanted[1].revents != 0) acceptAll();
  service_.tick();
  answerHeld();
  std::erase_if(connections_, [](const Connection& connection) {
    return connection.stage == Connection::Stage::over;
  });
}

int Listener::timeoutMs(Duration atMost) {
  const Instant now = clock_.now();
  Duration wait = atMost;
  for (const Connection& connection : connections_)
    wait = std::min(wait, connection.deadline - now);
  if (const std::optional<int64_t> due = service_.tick()) {
    wait = std::min<Duration>(wait, milliseconds(*due));
  }
  // Rounded up, so that what is waited for is due when the wait ends.
  const auto wholeMs = std::chrono::ceil<milliseconds>(std::max(wait, Duration::zero()));
  return static_cast<int>(std::min(wholeMs, milliseconds(std::chrono::hours(1))).count());
}

void Listener::acceptAll() {
  while (connections_.size() < connectionLimit) {
    UniqueFd fd(::accept(socket_.get(), nullptr, nullptr));
    if (!fd) return;
    makeNonBlocking(fd.get());
    Connection& connection = connections_.emplace_back();
    connection.fd = std::move(fd);
    connection.deadline = clock_.now() + patience;
    read(connection);
  }
}

void Listener::advance(Connection& connection) {
  if (connection.stage == Connection::Stage::reading) {
    read(connection);
  } else {
    write(connection);
  }
}

void Listener::read(Connection& connection) {
  std::array<char, chunkSize> chunk;
  for (;;) {
    const ssize_t count = ::read(connection.fd.get(), chunk.data(), chunk.size());
    if (count < 0 && wouldBlock()) return;
    if (count < 0) break;
    const std::string_view piece(chunk.data(), static_cast<std::size_t>(count));
    const std::size_t end = piece.find('\n');
    keep(connection, piece.substr(0, end));
    if (end == std::string_view::npos && count > 0) continue;
    // Whoever connects only to see whether somebody listens has nothing to say.
    if (connection.bytes.empty() && !connection.isTooLong) break;
    serve(connection);
    return;
  }
  connection.stage = Connection::Stage::over;
}

void Listener::keep(Connection& connection, std::string_view piece) {
  if (connection.isTooLong) return;
  connection.bytes += piece;
  if (connection.bytes.size() <= requestLimit) return;
  // Read to its end all the same: who still writes when the other side closes reads no answer.
  connection.isTooLong = true;
  connection.bytes = {};
}

void Listener::serve(Connection& connection) {
  if (connection.isTooLong) {
    reply(connection, {refused(text::cat("A request may have ", requestLimit >> 20,
                                         " MB, and this one has more, so nothing was done. Put "
                                         "long material into a file and name it."))});
    return;
  }
  std::optional<TeamworkRequest> request = decodeRequest(connection.bytes);
  if (!request) {
    reply(connection, {refused("That is not a request this board can read.")});
    return;
  }
  Answer answer = service_.answer(*request);
  if (answer.holdMs > 0) {
    hold(connection, *std::move(request), answer.holdMs);
  } else {
    reply(connection, std::move(answer));
  }
}

void Listener::hold(Connection& connection, TeamworkRequest request, int64_t holdMs) {
  connection.stage = Connection::Stage::held;
  connection.deadline = clock_.now() + milliseconds(holdMs);
  connection.poll = std::move(request);
}

void Listener::reply(Connection& connection, Answer answer) {
  connection.stage = Connection::Stage::writing;
  connection.deadline = clock_.now() + patience;
  connection.bytes = replyLine(answer);
  connection.receipt = std::move(answer.receipt);
  write(connection);
}

void Listener::write(Connection& connection) {
  while (connection.sent < connection.bytes.size()) {
    const ssize_t count =
        sendSome(connection.fd, std::string_view(connection.bytes).substr(connection.sent));
    if (count < 0 && wouldBlock()) return;
    if (count <= 0) {
      connection.stage = Connection::Stage::over;
      return;
    }
    connection.sent += static_cast<std::size_t>(count);
  }
  connection.stage = Connection::Stage::over;
  connection.fd = UniqueFd();
  if (connection.receipt) service_.confirm(*connection.receipt);
}

void Listener::answerHeld() {
  // Answering one may stir the board for another.
  while (stirredBefore_ != service_.stirred()) {
    stirredBefore_ = service_.stirred();
    for (Connection& connection : connections_) {
      if (connection.stage != Connection::Stage::held) continue;
      Answer answer = service_.answer(connection.poll);
      if (answer.holdMs == 0) reply(connection, std::move(answer));
    }
  }
}

void Listener::expire(Connection& connection) {
  if (connection.stage != Connection::Stage::held) {
    connection.stage = Connection::Stage::over;
    return;
  }
  connection.poll.holdMs.reset();
  reply(connection, service_.answer(connection.poll));
}

}  // namespace quillpost::board
