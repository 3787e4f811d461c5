#include "bridge/transport.h"

#include "base/files.h"
#include "base/unicode.h"
#include "bridge/unix_socket.h"
#include "model/coding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <string_view>
#include <utility>

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace quillpost {

namespace {

/// Bytes asked for at a time.
constexpr std::size_t chunkSize = 4096;

/// Bounds each single call on the socket; without effect where the system refuses.
void setTimeouts(const UniqueFd& socket, const BridgeTransport::Options& options) {
  const timeval reading{options.readTimeoutSeconds, 0};
  const timeval writing{options.writeTimeoutSeconds, 0};
  ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &reading, sizeof reading);
  ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &writing, sizeof writing);
}

bool sendAll(const UniqueFd& socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = sendSome(socket, bytes);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

std::optional<std::string> readReply(const UniqueFd& socket,
                                     const BridgeTransport::Options& options) {
  std::string reply;
  // The buffer doubles from a power of two, and so meets a limit that is one without passing it.
  reply.reserve(std::bit_ceil(
      std::clamp(options.expectedBytes, chunkSize, std::max(chunkSize, options.maxResponseBytes))));
  std::array<char, chunkSize> chunk;
  for (;;) {
    const ssize_t got = ::read(socket.get(), chunk.data(), chunk.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::nullopt;
    if (got == 0 && reply.empty()) return std::nullopt;
    if (got == 0) return reply;

    const std::string_view bytes(chunk.data(), static_cast<std::size_t>(got));
    const std::size_t end = bytes.find(options.terminator);
    const std::string_view part = bytes.substr(0, end);
    if (part.size() > options.maxResponseBytes - reply.size()) return std::nullopt;
    reply += part;
    if (end != std::string_view::npos) return reply;
  }
}

}  // namespace

std::optional<std::string> BridgeTransport::exchange(const TeamworkRequest& request,
                                                     const std::string& socketPath,
                                                     const Options& options) {
  if (socketPath.empty()) return std::nullopt;
  std::optional<std::string> payload = encodeRequest(request);
  if (!payload) return std::nullopt;
  *payload += options.terminator;

  const UniqueFd socket = openUnixSocket();
  if (!socket) return std::nullopt;
  setTimeouts(socket, options);
  if (!connectUnixSocket(socket, socketPath)) return std::nullopt;
  if (!sendAll(socket, *payload)) return std::nullopt;
  // When the app has closed already this fails, and its reply can be read all the same.
  ::shutdown(socket.get(), SHUT_WR);
  return readReply(socket, options);
}

Exchange BridgeTransport::send(const TeamworkRequest& request, const std::string& socketPath,
                               std::size_t expectedBytes) {
  std::optional<std::string> reply =
      exchange(request, socketPath, {.expectedBytes = expectedBytes});
  if (!reply) return {};
  const std::size_t size = reply->size();
  return {.response = decodeResponse(std::move(*reply)), .bytes = size};
}

SocketBridge::SocketBridge(Access access) : access_(std::move(access)) {}

std::string SocketBridge::currentToken() {
  const std::optional<std::string> file = files::readSmallText(access_.tokenFilePath);
  const std::string_view token = file ? unicode::trim(*file) : std::string_view{};
  return token.empty() ? access_.startToken : std::string(token);
}

Exchange SocketBridge::send(const TeamworkRequest& request) {
  Exchange exchange = BridgeTransport::send(request, access_.socketPath, expectedBytes_);
  expectedBytes_ = exchange.bytes;
  return exchange;
}

}  // namespace quillpost
