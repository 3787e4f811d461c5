#include "bridge/unix_socket.h"

#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quillpost {
namespace {

using namespace std::string_literals;
using testing::FullBacklog;
using testing::ScriptedApp;
using testing::TempDir;

/// A path in the directory that has exactly so many bytes.
std::string pathOfLength(const TempDir& directory, std::size_t length) {
  std::string path = directory.pathOf("s");
  path.resize(length, 's');
  return path;
}

int optionOf(const UniqueFd& socket, int name) {
  int value = -1;
  socklen_t size = sizeof value;
  return ::getsockopt(socket.get(), SOL_SOCKET, name, &value, &size) == 0 ? value : -1;
}

TEST(UnixSocketPath, FitsUpToOneHundredAndThreeBytes) {
  struct Row {
    const char* name;
    std::string path;
    bool fits;
  };
  for (const Row& row : {
           Row{"empty", "", false},
           Row{"one byte", "s", true},
           Row{"103 bytes", std::string(103, 's'), true},
           Row{"104 bytes", std::string(104, 's'), false},
           Row{"107 bytes, which Linux would take", std::string(107, 's'), false},
           Row{"very long", std::string(5000, 's'), false},
           Row{"102 characters in 103 bytes", std::string(101, 's') + "é", true},
           Row{"103 characters in 104 bytes", std::string(102, 's') + "é", false},
           Row{"a zero byte inside", "/a\0b"s, false},
           Row{"a zero byte first", "\0a"s, false},
           Row{"a zero byte last", "/a\0"s, false},
       }) {
    EXPECT_EQ(fitsSocketAddress(row.path), row.fits) << row.name;
  }
}

TEST(UnixSocket, IsALocalStreamThatNoChildInherits) {
  const UniqueFd socket = openUnixSocket();
  ASSERT_TRUE(socket);
  EXPECT_EQ(optionOf(socket, SO_TYPE), SOCK_STREAM);
  EXPECT_NE(::fcntl(socket.get(), F_GETFD) & FD_CLOEXEC, 0);
  sockaddr_un name{};
  socklen_t size = sizeof name;
  ASSERT_EQ(::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&name), &size), 0);
  EXPECT_EQ(name.sun_family, AF_UNIX);
}

TEST(UnixSocket, HasThePathAsItsWholeName) {
  const TempDir directory;
  for (const std::size_t length : {std::size_t{30}, socketPathLimit - 1}) {
    const std::string path = pathOfLength(directory, length);
    const UniqueFd socket = openUnixSocket();
    ASSERT_TRUE(bindUnixSocket(socket, path)) << length;
    sockaddr_un name{};
    socklen_t size = sizeof name;
    ASSERT_EQ(::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&name), &size), 0);
    EXPECT_EQ(std::string(name.sun_path), path);
    EXPECT_EQ(std::strlen(name.sun_path), length);
  }
}

TEST(UnixSocket, IsBoundOnlyToAPathThatFitsAndIsFree) {
  const TempDir directory;
  const std::string taken = directory.write("taken.sock", "");
  for (const std::string& path :
       {""s, taken, directory.pathOf("missing/a.sock"), pathOfLength(directory, socketPathLimit),
        directory.pathOf("a\0.sock"s)}) {
    EXPECT_FALSE(bindUnixSocket(openUnixSocket(), path)) << path;
  }
}

TEST(UnixSocket, ConnectsWhereSomebodyListens) {
  const TempDir directory;
  ScriptedApp app(pathOfLength(directory, socketPathLimit - 1));
  EXPECT_TRUE(connectUnixSocket(openUnixSocket(), app.path()));
  EXPECT_TRUE(app.waitForConnections(1));
}

TEST(UnixSocket, ConnectsNowhereElse) {
  const TempDir directory;
  const std::string deserted = directory.pathOf("deserted.sock");
  ASSERT_TRUE(bindUnixSocket(openUnixSocket(), deserted));
  for (const std::string& path :
       {""s, directory.pathOf("missing.sock"), deserted, directory.write("plain.sock", ""),
        directory.path(), pathOfLength(directory, socketPathLimit)}) {
    EXPECT_FALSE(connectUnixSocket(openUnixSocket(), path)) << path;
  }
  EXPECT_FALSE(connectUnixSocket(UniqueFd(), deserted));
}

TEST(UnixSocket, IsListenedAtWhereAConnectionIsMade) {
  const TempDir directory;
  ScriptedApp app(directory.pathOf("a.sock"));
  EXPECT_TRUE(listensAt(app.path(), std::chrono::seconds(2)));
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_EQ(app.requests().front(), "");
}

TEST(UnixSocket, IsListenedAtNowhereElse) {
  const TempDir directory;
  const std::string deserted = directory.pathOf("deserted.sock");
  ASSERT_TRUE(bindUnixSocket(openUnixSocket(), deserted));
  for (const std::string& path :
       {""s, directory.pathOf("missing.sock"), deserted, directory.write("plain.sock", ""),
        directory.path(), pathOfLength(directory, socketPathLimit)}) {
    EXPECT_FALSE(listensAt(path, std::chrono::seconds(2))) << path;
  }
}

TEST(UnixSocket, DoesNotTakeAPathThatIsCutForTheWhole) {
  const TempDir directory;
  ScriptedApp app(directory.pathOf("a.sock"));
  EXPECT_FALSE(connectUnixSocket(openUnixSocket(), app.path() + "\0.other"s));
  EXPECT_TRUE(app.connections().empty());
}

#if defined(__linux__)
TEST(UnixSocket, RefusesAPathThatOnlyThisSystemWouldTake) {
  const TempDir directory;
  ScriptedApp app(pathOfLength(directory, socketPathLimit));
  EXPECT_TRUE(testing::connectTo(app.path()));
  EXPECT_FALSE(connectUnixSocket(openUnixSocket(), app.path()));
}
#endif

TEST(UnixSocket, DoesNotWaitForAFullQueueWhenItIsNonBlocking) {
  const TempDir directory;
  const std::string path = directory.pathOf("full.sock");
  const FullBacklog backlog(path);
  const UniqueFd socket = openUnixSocket();
  ASSERT_EQ(::fcntl(socket.get(), F_SETFL, O_NONBLOCK), 0);
  EXPECT_FALSE(connectUnixSocket(socket, path));
}

TEST(SendSome, FailsWithoutASignalWhenTheOtherEndHasClosed) {
  const TempDir directory;
  const UniqueFd listener = openUnixSocket();
  const std::string path = directory.pathOf("a.sock");
  ASSERT_TRUE(bindUnixSocket(listener, path));
  ASSERT_EQ(::listen(listener.get(), 1), 0);
  const UniqueFd socket = openUnixSocket();
  ASSERT_TRUE(connectUnixSocket(socket, path));
  { const UniqueFd accepted(::accept(listener.get(), nullptr, nullptr)); }

  // The signal would end the test, and does so unless it is left to do what it does by itself.
  const auto before = std::signal(SIGPIPE, SIG_DFL);
  EXPECT_EQ(sendSome(socket, "x"), -1);
  EXPECT_EQ(errno, EPIPE);
  std::signal(SIGPIPE, before);
}

TEST(SendSome, SendsNoMoreThanTheSocketTakes) {
  const TempDir directory;
  const UniqueFd listener = openUnixSocket();
  const std::string path = directory.pathOf("a.sock");
  ASSERT_TRUE(bindUnixSocket(listener, path));
  ASSERT_EQ(::listen(listener.get(), 1), 0);
  const UniqueFd socket = openUnixSocket();
  ASSERT_TRUE(connectUnixSocket(socket, path));
  EXPECT_EQ(sendSome(socket, "four"), 4);

  ASSERT_EQ(::fcntl(socket.get(), F_SETFL, O_NONBLOCK), 0);
  const std::string big(std::size_t{64} << 20, 'x');
  const ssize_t sent = sendSome(socket, big);
  EXPECT_GT(sent, 0);
  EXPECT_LT(static_cast<std::size_t>(sent), big.size());
}

}  // namespace
}  // namespace quillpost
