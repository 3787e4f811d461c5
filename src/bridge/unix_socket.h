#pragma once

// Local stream sockets: what has to be known about the system to open one, name one and send on it.
// Nothing here knows what is sent.

#include "base/unique_fd.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace quillpost {

/// The length in bytes from which a path is too long for a socket. An address holds 104 on macOS,
/// its NUL included, and 108 on Linux; the smaller number holds everywhere, so that a path that is
/// good on one machine is good on all.
inline constexpr std::size_t socketPathLimit = 104;

/// Whether a socket can be named by this path: not empty, shorter than socketPathLimit, and without
/// a zero byte, at which the system would cut it.
bool fitsSocketAddress(std::string_view path);

/// A new stream socket, closed on exec; none when the system gives none. Sending on it to an end
/// that has closed fails instead of raising SIGPIPE, as long as it is done with `sendSome`.
UniqueFd openUnixSocket();

/// Connects the socket with the one at `path`. False when the path does not fit, nobody listens
/// there or the system refuses; the socket is then of no more use. Waits while the listener's queue
/// is full, no longer than the socket's send time-out, and not at all when it is non-blocking.
bool connectUnixSocket(const UniqueFd& socket, const std::string& path);

/// Whether somebody listens at `path`, asked with a connection that is closed at once. Waits while
/// the listener's queue is full; one that still is after `patience` has a listener all the same.
/// False when the path does not fit, and when the system gives no socket or no bound to the wait.
bool listensAt(const std::string& path, std::chrono::seconds patience);

/// Gives the socket the name `path`, which makes a file there. False when the path does not fit or
/// the system refuses, as it does when the file exists.
bool bindUnixSocket(const UniqueFd& socket, const std::string& path);

/// Sends as much of `bytes` as the socket takes in one call. Gives how many bytes that was, or -1
/// with errno set.
ssize_t sendSome(const UniqueFd& socket, std::string_view bytes);

}  // namespace quillpost
