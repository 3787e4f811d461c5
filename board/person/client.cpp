#include "board/person/client.h"

#include "base/files.h"
#include "base/text.h"
#include "base/unicode.h"
#include "base/unique_fd.h"
#include "board/serving/publication.h"
#include "bridge/unix_socket.h"
#include "json/decoder.h"
#include "model/coding.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

constexpr std::string_view prefix = "teamwork-";
constexpr std::string_view extension = ".sock";

bool sendWhole(const UniqueFd& socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = sendSome(socket, bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

/// Lets no call on the socket wait for longer.
void limitWaits(const UniqueFd& socket, std::chrono::seconds patience) {
  const timeval limit{static_cast<time_t>(patience.count()), 0};
  ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

std::string readToEnd(const UniqueFd& socket) {
  std::string bytes;
  std::array<char, 4096> chunk;
  for (;;) {
    const ssize_t count = ::read(socket.get(), chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return bytes;
    bytes.append(chunk.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace

std::optional<std::string> findServed(const std::string& directory, const std::string& suffix,
                                      std::string& why) {
  std::vector<std::string> served;
  const auto isSocket = [](std::string_view name) {
    return name.size() >= prefix.size() + extension.size() && name.starts_with(prefix) &&
           name.ends_with(extension);
  };
  for (const files::Entry& entry : files::list(directory, isSocket)) {
    const std::string_view name = entry.name;
    const std::string found(
        name.substr(prefix.size(), name.size() - prefix.size() - extension.size()));
    if (!suffix.empty() && found != suffix) continue;
    if (isServed(filesIn(directory, found).socket)) served.push_back(found);
  }
  if (served.size() == 1) return served.front();
  if (served.empty()) {
    why =
        text::cat("no board is served in ", directory, ": start one with `quillpost-board serve`");
  } else {
    why = text::cat("several boards are served in ", directory, " (", text::join(served, ", "),
                    "): say which with --suffix");
  }
  return std::nullopt;
}

std::optional<TeamworkResponse> askBoard(const std::string& directory, const std::string& suffix,
                                         TeamworkRequest request, std::string& why,
                                         std::chrono::seconds patience) {
  const BoardFiles files = filesIn(directory, suffix);
  request.token = unicode::trim(files::readSmallText(files.personToken).value_or(""));
  const std::optional<std::string> line = encodeRequest(request);
  if (!line) {
    why = "that is not UTF-8";
    return std::nullopt;
  }
  const UniqueFd socket = openUnixSocket();
  if (socket && patience.count() > 0) limitWaits(socket, patience);
  if (!socket || !connectUnixSocket(socket, files.socket) || !sendWhole(socket, *line + "\n")) {
    why = text::cat("cannot reach the board at ", files.socket);
    return std::nullopt;
  }
  ::shutdown(socket.get(), SHUT_WR);
  std::optional<TeamworkResponse> response = decodeResponse(readToEnd(socket));
  if (!response) why = text::cat("the board at ", files.socket, " did not answer");
  return response;
}

std::optional<TeamworkResponse> askServed(const Line& line, const TeamworkRequest& request,
                                          std::string& why) {
  const std::optional<std::string> suffix = findServed(line.directory, line.suffix, why);
  if (!suffix) return std::nullopt;
  std::optional<TeamworkResponse> response = askBoard(line.directory, *suffix, request, why);
  if (response && response->kind == TeamworkResponse::Kind::error) {
    why = response->message.value_or("the board refuses, and does not say why");
    response.reset();
  }
  return response;
}

std::optional<Sheet> askForSheet(const Line& line, const TeamworkRequest& request,
                                 std::string& why) {
  std::optional<TeamworkResponse> response = askServed(line, request, why);
  if (!response) return std::nullopt;
  std::optional<Sheet> sheet = json::decode<Sheet>(std::move(response->message).value_or(""));
  if (!sheet) why = "the board is of another version than this command";
  return sheet;
}

TeamworkRequest viewOf(const Line& line) {
  TeamworkRequest request = line.request;
  if (line.all) request.status = "all";
  if (line.openOnly) request.status = "open";
  if (line.mineOnly) request.status = "mine";
  if (line.sinceMs > 0) request.holdMs = line.sinceMs;
  return request;
}

}  // namespace quillpost::board
