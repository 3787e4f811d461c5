#include "board/serving/publication.h"

#include "base/files.h"
#include "base/text.h"
#include "base/unicode.h"
#include "board/rules/names.h"
#include "board/serving/system.h"
#include "bridge/unix_socket.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

/// The connections that wait to be accepted: more than any number of agents asks for at once.
constexpr int queueLength = 1024;

/// Only this user reads and writes.
constexpr mode_t privately = S_IRUSR | S_IWUSR;

bool writeWhole(const UniqueFd& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

/// Puts the text into the file in one step, so that nobody ever reads half of it.
bool replaceFile(const std::string& path, std::string_view bytes) {
  const std::string fresh = path + ".new";
  ::unlink(fresh.c_str());
  const UniqueFd file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privately));
  return file && writeWhole(file, bytes) && std::rename(fresh.c_str(), path.c_str()) == 0;
}

/// A socket bound to that path for this user alone; none when that fails.
UniqueFd bindPrivately(const std::string& path) {
  UniqueFd socket = openUnixSocket();
  if (!socket || !bindUnixSocket(socket, path) || ::chmod(path.c_str(), privately) != 0) return {};
  return socket;
}

/// The secret in a file that only this user can have written; nothing when there is none.
std::optional<std::string> leftSecret(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  if (status.st_uid != ::geteuid() || (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    return std::nullopt;
  }
  const std::string text(unicode::trim(files::readSmallText(path).value_or("")));
  return isSecret(text) ? std::optional(text) : std::nullopt;
}

}  // namespace

BoardFiles filesIn(std::string_view directory, std::string_view suffix) {
  return {files::joinPath(directory, text::cat("teamwork-", suffix, ".sock")),
          files::joinPath(directory, text::cat("teamwork-", suffix, ".token")),
          files::joinPath(directory, text::cat("person-", suffix, ".token"))};
}

bool isServed(const std::string& path) {
  const UniqueFd probe = openUnixSocket();
  return probe && connectUnixSocket(probe, path);
}

std::optional<Publication> Publication::open(const std::string& directory,
                                             const std::string& suffix, const Random& random,
                                             std::string& why) {
  BoardFiles files = filesIn(directory, suffix);
  if (!fitsSocketAddress(files.socket)) {
    why = text::cat("the path ", files.socket, " is too long for a socket: it may have ",
                    socketPathLimit - 1, " bytes");
    return std::nullopt;
  }
  // Of two boards that start at once the second looks when the first is listening.
  const UniqueFd lock(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (lock) ::flock(lock.get(), LOCK_EX);
  if (isServed(files.socket)) {
    why = text::cat("another board is served at ", files.socket);
    return std::nullopt;
  }
  ::unlink(files.socket.c_str());
  UniqueFd socket = bindPrivately(files.socket);
  if (!socket) {
    why = text::cat("cannot make ", files.socket, ": ", reason());
    return std::nullopt;
  }
  std::optional<Publication> publication(Publication(std::move(socket), std::move(files), random));
  // The tokens stand before anybody can connect.
  const BoardFiles& made = publication->files_;
  if (!replaceFile(made.token, publication->token_ + "\n") ||
      !replaceFile(made.personToken, publication->personToken_ + "\n") ||
      ::listen(publication->socket_.get(), queueLength) != 0) {
    why = text::cat("cannot publish the board in ", directory, ": ", reason());
    return std::nullopt;
  }
  return publication;
}

UniqueFd Publication::restore() {
  if (!exists(files_.token)) replaceFile(files_.token, token_ + "\n");
  if (!exists(files_.personToken)) replaceFile(files_.personToken, personToken_ + "\n");
  if (exists(files_.socket)) return {};
  UniqueFd socket = bindPrivately(files_.socket);
  if (!socket || ::listen(socket.get(), queueLength) != 0) return {};
  return socket;
}

Publication::Publication(UniqueFd socket, BoardFiles files, const Random& random)
    : socket_(std::move(socket)),
      files_(std::move(files)),
      token_(leftSecret(files_.token).value_or(mintSecret(random))),
      personToken_(leftSecret(files_.personToken).value_or(mintSecret(random))) {}

Publication::Publication(Publication&& other) noexcept
    : socket_(std::move(other.socket_)),
      files_(std::exchange(other.files_, {})),
      token_(std::move(other.token_)),
      personToken_(std::move(other.personToken_)) {}

Publication::~Publication() {
  if (files_.socket.empty()) return;
  ::unlink(files_.socket.c_str());
  ::unlink(files_.token.c_str());
  ::unlink(files_.personToken.c_str());
}

}  // namespace quillpost::board
