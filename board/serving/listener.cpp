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
#include <sys/resource.h>
#include <sys/socket.h>

namespace quillpost::board {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// The same as a client's: one system call for all but the largest requests.
constexpr std::size_t chunkSize = 65536;

/// The pieces that are read of one connection before others have their turn.
constexpr int chunksAtOnce = 16;

/// Descriptors that are left for the file of the board and for everything else.
constexpr std::size_t spareDescriptors = 32;

/// More connections than this are never served at once: each step looks at all of them.
constexpr std::size_t mostConnections = 4096;

/// How long a connection beyond the room may take, and how long nobody is accepted when the system
/// has no descriptor.
constexpr Duration shortPatience = seconds(1);

constexpr std::string_view tooLong =
    "A request may have 8 MB, and this one has more, so nothing was done. Put long material into a "
    "file and name it.";
static_assert(requestLimit == std::size_t{8} << 20);

constexpr std::string_view tooMuch =
    "The board is being sent more than it takes at once, and this request had brought most of it, "
    "so nothing was done. Try again in a moment.";

constexpr std::string_view tooLongToHold =
    "A wait may have 64 KB, and this one has more, so nothing was done.";
static_assert(heldLimit == std::size_t{64} << 10);

constexpr std::string_view noRoom =
    "The board has as many listeners as it can have, so this wait was not held. Try again in a "
    "moment.";

// Elsewhere a client that has only ended its sending looks like one that has gone.
#if defined(__linux__)
constexpr bool tellsWhoHasGone = true;
#else
constexpr bool tellsWhoHasGone = false;
#endif

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

std::size_t roomForConnections() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return 2 * spareDescriptors;
  const rlim_t wanted = mostConnections + spareDescriptors;
  if (limit.rlim_cur < wanted) {
    limit.rlim_cur = std::min(limit.rlim_max, wanted);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    ::getrlimit(RLIMIT_NOFILE, &limit);
  }
  const auto all = static_cast<std::size_t>(std::min(limit.rlim_cur, wanted));
  return all > 2 * spareDescriptors ? all - spareDescriptors : all / 2;
}

Listener::Listener(UniqueFd socket, Service& service, Clock& clock, std::size_t room)
    : socket_(std::move(socket)),
      service_(service),
      clock_(clock),
      room_(room),
      restUntil_(clock.now()) {
  makeNonBlocking(socket_.get());
}

Listener::~Listener() = default;

void Listener::listenOn(UniqueFd socket) {
  makeNonBlocking(socket.get());
  socket_ = std::move(socket);
}

std::size_t Listener::held() const {
  return static_cast<std::size_t>(
      std::ranges::count(connections_, Stage::held, &Connection::stage));
}

void Listener::run(int stop) {
  pollfd wanted{stop, POLLIN, 0};
  while (!service_.isOver() && ::poll(&wanted, 1, 0) <= 0) step(std::chrono::hours(1), stop);
}

void Listener::step(Duration atMost, int stop) {
  std::vector<pollfd> wanted;
  wanted.push_back({stop, POLLIN, 0});
  wanted.push_back({mayAccept() ? socket_.get() : -1, POLLIN, 0});
  for (const Connection& connection : connections_) {
    // Of a held poll only its client's going is of interest: it has ended its sending, which the
    // system would report for ever.
    const bool isHeld = connection.stage == Stage::held;
    const short events = connection.stage == Stage::reading ? POLLIN : POLLOUT;
    wanted.push_back(
        {isHeld && !tellsWhoHasGone ? -1 : connection.fd.get(), isHeld ? short{0} : events, 0});
  }
  const std::vector<int> helpers = service_.helperDescriptors();
  for (const int helper : helpers) wanted.push_back({helper, POLLIN, 0});
  ::poll(wanted.data(), static_cast<nfds_t>(wanted.size()), timeoutMs(atMost));

  std::size_t next = 2;
  for (Connection& connection : connections_) {
    const short events = wanted[next++].revents;
    if (events != 0) advance(connection, events);
    if (clock_.now() >= connection.deadline) expire(connection);
  }
  for (const int helper : helpers)
    if (wanted[next++].revents != 0) service_.hear(helper);
  forgetEnded();
  if (wanted[1].revents != 0) acceptAll();
  service_.tick();
  answerHeld();
  forgetEnded();
}

int Listener::timeoutMs(Duration atMost) {
  const Instant now = clock_.now();
  Duration wait = atMost;
  if (restUntil_ > now) wait = std::min(wait, restUntil_ - now);
  for (const Connection& connection : connections_)
    wait = std::min(wait, connection.deadline - now);
  if (const std::optional<int64_t> due = service_.tick()) {
    wait = std::min<Duration>(wait, milliseconds(*due));
  }
  // Rounded up, so that what is waited for is due when the wait ends.
  const milliseconds wholeMs = std::chrono::ceil<milliseconds>(std::max(wait, Duration::zero()));
  return static_cast<int>(std::min(wholeMs, milliseconds(std::chrono::hours(1))).count());
}

bool Listener::mayAccept() const {
  return connections_.size() <= room_ && clock_.now() >= restUntil_;
}

void Listener::acceptAll() {
  while (mayAccept()) {
    UniqueFd fd(::accept(socket_.get(), nullptr, nullptr));
    if (!fd) {
      // Asking again at once would be told the same.
      if (!wouldBlock() && errno != ECONNABORTED) restUntil_ = clock_.now() + shortPatience;
      return;
    }
    makeNonBlocking(fd.get());
    const bool isLast = connections_.size() == room_;
    Connection& connection = connections_.emplace_back();
    connection.fd = std::move(fd);
    connection.deadline = clock_.now() + (isLast ? shortPatience : patience);
    read(connection);
    if (isLast) makeRoom();
    forgetEnded();
  }
}

/// When the last connection has come to stay, ends the one that has waited longest without bringing
/// its request.
void Listener::makeRoom() {
  if (connections_.back().stage == Stage::over) return;
  const auto idle = std::ranges::find(connections_, Stage::reading, &Connection::stage);
  if (idle != connections_.end() && &*idle != &connections_.back()) end(*idle);
}

void Listener::advance(Connection& connection, short events) {
  switch (connection.stage) {
    case Stage::reading:
      return read(connection);
    case Stage::writing:
      return write(connection);
    case Stage::held:
      if ((events & (POLLHUP | POLLERR)) != 0) end(connection);
      return;
    case Stage::over:
      return;
  }
}

void Listener::read(Connection& connection) {
  std::array<char, chunkSize> chunk;
  for (int i = 0; i < chunksAtOnce; ++i) {
    const ssize_t count = ::read(connection.fd.get(), chunk.data(), chunk.size());
    if (count < 0 && wouldBlock()) return;
    if (count < 0) return end(connection);
    const std::string_view piece(chunk.data(), static_cast<std::size_t>(count));
    const std::size_t feed = piece.find('\n');
    keep(connection, piece.substr(0, feed));
    if (feed == std::string_view::npos && count > 0) continue;
    // Whoever connects only to see whether somebody listens has nothing to say.
    if (connection.bytes.empty() && connection.refusal.empty()) return end(connection);
    return serve(connection);
  }
}

void Listener::keep(Connection& connection, std::string_view piece) {
  if (!connection.refusal.empty()) return;
  connection.bytes += piece;
  unread_ += piece.size();
  if (connection.bytes.size() > requestLimit) refuse(connection, tooLong);
  while (unread_ > unreadLimit) refuse(largest(Stage::reading), tooMuch);
}

/// What has come of the request, which the connection keeps no longer.
std::string Listener::takeRequest(Connection& connection) {
  unread_ -= connection.bytes.size();
  return std::exchange(connection.bytes, {});
}

/// Keeps nothing of the request. It is read to its end all the same: who still writes when the
/// other side closes reads no answer.
void Listener::refuse(Connection& connection, std::string_view why) {
  takeRequest(connection);
  connection.refusal = why;
}

/// The connection of that stage with most bytes; there must be one.
Listener::Connection& Listener::largest(Stage stage) {
  return *std::ranges::max_element(connections_, {}, [stage](const Connection& connection) {
    return connection.stage == stage ? connection.bytes.size() : 0;
  });
}

void Listener::serve(Connection& connection) {
  if (!connection.refusal.empty()) {
    reply(connection, {refused(std::string(connection.refusal))});
    return;
  }
  std::string line = takeRequest(connection);
  const std::size_t size = line.size();
  std::optional<TeamworkRequest> request = decodeRequest(std::move(line));
  if (!request) {
    reply(connection, {refused("That is not a request this board can read.")});
    return;
  }
  Answer answer = service_.answer(*request);
  if (answer.holdMs == 0) {
    reply(connection, std::move(answer));
  } else if (connections_.size() > room_ || size > heldLimit) {
    reply(connection, {refused(std::string(size > heldLimit ? tooLongToHold : noRoom))});
  } else {
    hold(connection, *std::move(request), answer.holdMs);
  }
}

void Listener::hold(Connection& connection, TeamworkRequest request, int64_t holdMs) {
  connection.stage = Stage::held;
  connection.deadline = clock_.now() + milliseconds(holdMs);
  connection.poll = std::move(request);
  service_.beginListening(connection.poll.sessionID);
}

void Listener::reply(Connection& connection, Answer answer) {
  if (connection.stage == Stage::held) service_.endListening(connection.poll.sessionID);
  connection.stage = Stage::writing;
  connection.deadline = clock_.now() + (connections_.size() > room_ ? shortPatience : patience);
  connection.bytes = replyLine(answer);
  connection.receipt = std::move(answer.receipt);
  unsent_ += connection.bytes.size();
  write(connection);
  while (unsent_ > unsentLimit) end(largest(Stage::writing));
}

void Listener::write(Connection& connection) {
  while (connection.sent < connection.bytes.size()) {
    const ssize_t count =
        sendSome(connection.fd, std::string_view(connection.bytes).substr(connection.sent));
    if (count < 0 && wouldBlock()) return;
    if (count <= 0) return end(connection);
    connection.sent += static_cast<std::size_t>(count);
  }
  end(connection);
  if (connection.receipt) service_.confirm(*connection.receipt);
}

void Listener::answerHeld() {
  // Answering one may stir the board for another.
  while (stirredBefore_ != service_.stirred()) {
    stirredBefore_ = service_.stirred();
    for (Connection& connection : connections_) {
      if (connection.stage != Stage::held) continue;
      Answer answer = service_.answer(connection.poll);
      if (answer.holdMs == 0) reply(connection, std::move(answer));
    }
  }
}

void Listener::expire(Connection& connection) {
  if (connection.stage != Stage::held) return end(connection);
  connection.poll.holdMs.reset();
  reply(connection, service_.answer(connection.poll));
}

/// Closes the connection; it is forgotten with the next ones.
void Listener::end(Connection& connection) {
  if (connection.stage == Stage::held) service_.endListening(connection.poll.sessionID);
  if (connection.stage == Stage::writing) unsent_ -= connection.bytes.size();
  if (connection.stage == Stage::reading) takeRequest(connection);
  connection.stage = Stage::over;
  connection.bytes = {};
  connection.fd = UniqueFd();
}

void Listener::forgetEnded() {
  std::erase_if(connections_,
                [](const Connection& connection) { return connection.stage == Stage::over; });
}

}  // namespace quillpost::board
