#include "bridge/unix_socket.h"

#include <cerrno>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

namespace quillpost {

namespace {

// One of the two exists everywhere. The option comes first because a system may have learnt the
// flag only after the oldest version that the program runs on.
#if defined(SO_NOSIGPIPE)
constexpr int sendFlags = 0;
#else
constexpr int sendFlags = MSG_NOSIGNAL;
#endif

/// A new socket that a program started from this one does not inherit; -1 when there is none.
int openClosedOnExec() {
#if defined(SOCK_CLOEXEC)
  return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
#else
  const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  // No child can be started between the two calls: the program has one thread.
  if (fd >= 0) ::fcntl(fd, F_SETFD, FD_CLOEXEC);
  return fd;
#endif
}

void failOnBrokenPipe([[maybe_unused]] const UniqueFd& socket) {
#if defined(SO_NOSIGPIPE)
  const int yes = 1;
  ::setsockopt(socket.get(), SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes);
#endif
}

/// The length byte, where there is one, stays 0: the system takes the length that is passed along.
std::optional<sockaddr_un> addressOf(const std::string& path) {
  static_assert(socketPathLimit <= sizeof(sockaddr_un::sun_path));
  if (!fitsSocketAddress(path)) return std::nullopt;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

const sockaddr* general(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

/// What came of asking for a connection.
enum class Connection { made, stillQueued, refused };

/// Waits for a connection that is being made; whether it was.
bool isMadeInTheEnd(const UniqueFd& socket) {
  pollfd wanted{socket.get(), POLLOUT, 0};
  while (::poll(&wanted, 1, -1) < 0)
    if (errno != EINTR) return false;
  int error = 0;
  socklen_t size = sizeof error;
  return ::getsockopt(socket.get(), SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

Connection connectionTo(const std::string& path, const UniqueFd& socket) {
  const std::optional<sockaddr_un> address = addressOf(path);
  if (!address) return Connection::refused;
  for (;;) {
    if (::connect(socket.get(), general(*address), sizeof *address) == 0) return Connection::made;
    switch (errno) {
      case EINTR:
        // Asked again rather than polled: Linux has given the attempt up by then, and a poll would
        // take the idle socket for a connected one. Where it goes on instead, the next two say so.
        continue;
      case EISCONN:
        return Connection::made;
      case EALREADY:
      case EINPROGRESS:
        return isMadeInTheEnd(socket) ? Connection::made : Connection::refused;
      case EAGAIN:
        return Connection::stillQueued;
      default:
        return Connection::refused;
    }
  }
}

}  // namespace

bool fitsSocketAddress(std::string_view path) {
  return !path.empty() && path.size() < socketPathLimit &&
         path.find('\0') == std::string_view::npos;
}

UniqueFd openUnixSocket() {
  UniqueFd socket(openClosedOnExec());
  if (socket) failOnBrokenPipe(socket);
  return socket;
}

bool connectUnixSocket(const UniqueFd& socket, const std::string& path) {
  return connectionTo(path, socket) == Connection::made;
}

bool listensAt(const std::string& path, std::chrono::seconds patience) {
  const UniqueFd socket = openUnixSocket();
  const timeval limit{static_cast<time_t>(patience.count()), 0};
  if (!socket || ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) != 0)
    return false;
  return connectionTo(path, socket) != Connection::refused;
}
bool bindUnixSocket(const UniqueFd& socket, const std::string& path) {
  const std::optional<sockaddr_un> address = addressOf(path);
  return address && ::bind(socket.get(), general(*address), sizeof *address) == 0;
}

ssize_t sendSome(const UniqueFd& socket, std::string_view bytes) {
  return ::send(socket.get(), bytes.data(), bytes.size(), sendFlags);
}

}  // namespace quillpost
