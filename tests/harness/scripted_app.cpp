#include "harness/scripted_app.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/sockios.h>
#include <sys/ioctl.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace quillpost::testing {
namespace {

/// Long enough for the slowest machine; only a failing test ever waits for it.
constexpr std::chrono::seconds patience{10};

/// More than one connection may wait while the acceptor is busy.
constexpr int queueLength = 64;

#ifdef MSG_NOSIGNAL
constexpr int sendFlags = MSG_NOSIGNAL;
#else
constexpr int sendFlags = 0;
#endif

UniqueFd openSocket() {
  UniqueFd fd(::socket(AF_UNIX, SOCK_STREAM, 0));
  ::fcntl(fd.get(), F_SETFD, FD_CLOEXEC);
  return fd;
}

void surviveBrokenPipes([[maybe_unused]] int fd) {
#ifdef SO_NOSIGPIPE
  const int yes = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes);
#endif
}

sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) ADD_FAILURE() << "too long for a socket: " << path;
  std::memcpy(address.sun_path, path.data(), std::min(path.size(), sizeof address.sun_path - 1));
  return address;
}

UniqueFd listenAt(const std::string& path, int backlog) {
  UniqueFd fd = openSocket();
  const sockaddr_un address = addressOf(path);
  ::unlink(path.c_str());
  if (::bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(fd.get(), backlog) != 0) {
    ADD_FAILURE() << "could not listen at " << path << ": " << std::strerror(errno);
  }
  return fd;
}

bool waitReadable(int fd) {
  pollfd wanted = {.fd = fd, .events = POLLIN, .revents = 0};
  while (true) {
    const int count = ::poll(&wanted, 1, -1);
    if (count > 0) return true;
    if (errno != EINTR) return false;
  }
}

/// Whether bytes that were sent still wait for the other side to read them; no where the system
/// cannot tell.
bool hasUnreadBytes([[maybe_unused]] int fd) {
#ifdef __linux__
  int count = 0;
  return ::ioctl(fd, SIOCOUTQ, &count) == 0 && count > 0;
#else
  return false;
#endif
}

}  // namespace

Behaviour reply(std::string_view text) { return replyInPieces({std::string(text) + "\n"}); }

Behaviour replyByteByByte(std::string_view text) {
  Behaviour behaviour;
  for (const char byte : text) behaviour.pieces.emplace_back(1, byte);
  behaviour.pieces.emplace_back("\n");
  return behaviour;
}

Behaviour replyInPieces(std::vector<std::string> pieces) {
  Behaviour behaviour;
  behaviour.pieces = std::move(pieces);
  return behaviour;
}

Behaviour replyUnterminated(std::string_view text) { return replyInPieces({std::string(text)}); }

Behaviour terminatorFirst(std::string_view text) {
  return replyInPieces({"\n" + std::string(text) + "\n"});
}

Behaviour twoReplies(std::string_view first, std::string_view second) {
  return replyInPieces({std::string(first) + "\n" + std::string(second) + "\n"});
}

Behaviour filler(std::size_t bytes) { return replyInPieces({std::string(bytes, 'x') + "\n"}); }

Behaviour fillerUnterminated(std::size_t bytes) { return replyInPieces({std::string(bytes, 'x')}); }

Behaviour closeAtOnce() {
  Behaviour behaviour;
  behaviour.readsRequest = false;
  return behaviour;
}

Behaviour closeWithoutReply() { return {}; }

Behaviour reset() {
  Behaviour behaviour = closeAtOnce();
  behaviour.awaitsBytes = true;
  return behaviour;
}

Behaviour stall(std::string_view sentBefore) {
  Behaviour behaviour;
  if (!sentBefore.empty()) behaviour.pieces.emplace_back(sentBefore);
  behaviour.ending = Behaviour::Ending::stall;
  return behaviour;
}

ScriptedApp::ScriptedApp(std::string socketPath)
    : path_(std::move(socketPath)),
      listener_(listenAt(path_, queueLength)),
      otherwise_([](const std::string&) { return closeWithoutReply(); }) {
  std::array<int, 2> ends{-1, -1};
  if (::pipe(ends.data()) != 0) ADD_FAILURE() << "no pipe could be made";
  wakeReader_ = UniqueFd(ends[0]);
  wakeWriter_ = UniqueFd(ends[1]);
  for (const int fd : ends) ::fcntl(fd, F_SETFD, FD_CLOEXEC);
  acceptor_ = std::thread([this] { acceptConnections(); });
}

ScriptedApp::~ScriptedApp() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    released_ = true;
    // Ends whatever read or write a worker is in.
    for (const auto& [index, fd] : open_) ::shutdown(fd.get(), SHUT_RDWR);
  }
  changed_.notify_all();
  wakeWriter_ = UniqueFd();
  acceptor_.join();
  for (std::thread& worker : workers_) worker.join();
  ::unlink(path_.c_str());
}

void ScriptedApp::play(Behaviour behaviour) {
  const std::lock_guard lock(mutex_);
  script_.push_back(std::move(behaviour));
}

void ScriptedApp::otherwise(Answer answer) {
  const std::lock_guard lock(mutex_);
  otherwise_ = std::move(answer);
}

void ScriptedApp::release() {
  const std::lock_guard lock(mutex_);
  released_ = true;
  changed_.notify_all();
}

std::vector<Connection> ScriptedApp::connections() const {
  const std::lock_guard lock(mutex_);
  return connections_;
}

std::vector<std::string> ScriptedApp::requests() const {
  std::vector<std::string> whole;
  for (const Connection& connection : connections()) {
    if (connection.sawEnd) whole.push_back(connection.received);
  }
  return whole;
}

bool ScriptedApp::waitForConnections(std::size_t count) {
  return waitFor([&] { return connections_.size(); }, count);
}

bool ScriptedApp::waitForRequests(std::size_t count) {
  const auto ended = [](const Connection& connection) { return connection.sawEnd; };
  return waitFor([&] { return std::ranges::count_if(connections_, ended); }, count);
}

bool ScriptedApp::waitUntilOver(std::size_t count) {
  const auto over = [](const Connection& connection) { return connection.over; };
  return waitFor([&] { return std::ranges::count_if(connections_, over); }, count);
}

bool ScriptedApp::waitFor(const std::function<std::size_t()>& have, std::size_t count) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, patience, [&] { return have() >= count; });
}

bool ScriptedApp::stopping() const {
  const std::lock_guard lock(mutex_);
  return stopping_;
}

void ScriptedApp::acceptConnections() {
  while (true) {
    std::array<pollfd, 2> wanted = {{{.fd = listener_.get(), .events = POLLIN, .revents = 0},
                                     {.fd = wakeReader_.get(), .events = POLLIN, .revents = 0}}};
    if (::poll(wanted.data(), wanted.size(), -1) < 0 && errno != EINTR) return;
    if (wanted[1].revents != 0) return;
    if (wanted[0].revents == 0) continue;
    UniqueFd fd(::accept(listener_.get(), nullptr, nullptr));
    if (!fd) continue;
    ::fcntl(fd.get(), F_SETFD, FD_CLOEXEC);
    surviveBrokenPipes(fd.get());
    const std::lock_guard lock(mutex_);
    const std::size_t index = connections_.size();
    const int number = fd.get();
    connections_.emplace_back();
    open_.emplace(index, std::move(fd));
    if (stopping_) return;
    workers_.emplace_back([this, index, number] { serve(index, number); });
    changed_.notify_all();
  }
}

void ScriptedApp::serve(std::size_t index, int fd) {
  const Behaviour behaviour = behaviourFor(index, fd);
  if (behaviour.awaitsBytes) waitReadable(fd);
  for (const std::string& piece : behaviour.pieces) {
    if (!sendPiece(fd, piece)) break;
  }
  std::unique_lock lock(mutex_);
  if (behaviour.ending == Behaviour::Ending::stall) {
    changed_.wait(lock, [&] { return released_; });
  }
  open_.erase(index);
  connections_[index].over = true;
  changed_.notify_all();
}

Behaviour ScriptedApp::behaviourFor(std::size_t index, int fd) {
  std::unique_lock lock(mutex_);
  const bool scripted = !script_.empty();
  Behaviour behaviour;
  if (scripted) {
    behaviour = std::move(script_.front());
    script_.pop_front();
  }
  const Answer answer = otherwise_;
  lock.unlock();
  if (!scripted || behaviour.readsRequest) readRequest(index, fd);
  if (scripted) return behaviour;
  lock.lock();
  const std::string request = connections_[index].received;
  lock.unlock();
  return answer(request);
}

void ScriptedApp::readRequest(std::size_t index, int fd) {
  std::array<char, 65536> chunk{};
  while (true) {
    const ssize_t count = ::read(fd, chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    const std::lock_guard lock(mutex_);
    Connection& connection = connections_[index];
    if (count > 0) {
      connection.received.append(chunk.data(), static_cast<std::size_t>(count));
      continue;
    }
    connection.sawEnd = count == 0 && !stopping_;
    changed_.notify_all();
    return;
  }
}

bool ScriptedApp::sendPiece(int fd, std::string_view piece) {
  while (!piece.empty()) {
    const ssize_t count = ::send(fd, piece.data(), piece.size(), sendFlags);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    piece.remove_prefix(static_cast<std::size_t>(count));
  }
  while (hasUnreadBytes(fd)) {
    if (stopping()) return false;
    std::this_thread::yield();
  }
  return true;
}

FullBacklog::FullBacklog(std::string socketPath)
    : path_(std::move(socketPath)), listener_(listenAt(path_, 0)) {
  const sockaddr_un address = addressOf(path_);
  // Far more than a queue of length nought ever takes.
  constexpr int mostQueued = 32;
  while (static_cast<int>(queued_.size()) < mostQueued) {
    UniqueFd fd = openSocket();
    ::fcntl(fd.get(), F_SETFL, O_NONBLOCK);
    const auto* general = reinterpret_cast<const sockaddr*>(&address);
    if (::connect(fd.get(), general, sizeof address) != 0) return;
    queued_.push_back(std::move(fd));
  }
  ADD_FAILURE() << "the queue of " << path_ << " never filled";
}

FullBacklog::~FullBacklog() { ::unlink(path_.c_str()); }

bool FullBacklog::accept(std::size_t count) const {
  constexpr int patienceMs = 10'000;
  for (; count > 0; --count) {
    pollfd waiting{listener_.get(), POLLIN, 0};
    if (::poll(&waiting, 1, patienceMs) != 1) return false;
    const UniqueFd accepted(::accept(listener_.get(), nullptr, nullptr));
    if (!accepted) return false;
  }
  return true;
}

UniqueFd connectTo(const std::string& socketPath) {
  UniqueFd fd = openSocket();
  surviveBrokenPipes(fd.get());
  const sockaddr_un address = addressOf(socketPath);
  const auto* general = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(fd.get(), general, sizeof address) != 0) return UniqueFd();
  return fd;
}

}  // namespace quillpost::testing
