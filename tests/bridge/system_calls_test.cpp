// The calls on the socket, one by one: in which order they are made, with what, and what becomes of
// an exchange when one of them fails, does only a part or is interrupted.
//
// The functions below are found before the C library's of the same names, and pass on to them
// whatever a test has not asked to go wrong in its own thread.

#include "base/text.h"
#include "bridge/discovery.h"
#include "bridge/transport.h"
#include "harness/fake_environment.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace quillpost {
namespace {

/// What happens at one call instead of the call, or around it.
struct Fault {
  /// The error to fail with.
  int error = 0;
  /// Do the call before failing.
  bool isDoneFirst = false;
  /// Pass on at most so many bytes.
  std::optional<std::size_t> most = std::nullopt;
  /// Return 0 and do nothing.
  bool isNought = false;
};

/// What one test has asked for and what it saw; of its thread alone, so that the app's is spared.
struct Stage {
  bool isWatching = false;
  bool hasShortTimeouts = false;
  std::map<std::string, std::deque<Fault>> faults;
  std::vector<std::string> calls;
  sockaddr_un address{};

  std::optional<Fault> enter(const std::string& name, const std::string& detail = "") {
    if (!isWatching) return std::nullopt;
    calls.push_back(detail.empty() ? name : name + " " + detail);
    std::deque<Fault>& waiting = faults[name];
    if (waiting.empty()) return std::nullopt;
    const Fault fault = waiting.front();
    waiting.pop_front();
    return fault;
  }
};
thread_local Stage stage;

template <class Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Fails the call as the fault says; `call` does it.
template <class Call>
auto failing(const Fault& fault, const Call& call) -> decltype(call()) {
  if (fault.isNought) return 0;
  if (fault.isDoneFirst) call();
  errno = fault.error;
  return -1;
}

// Where the system can close a socket on exec from its first moment on, it is asked to.
#if defined(SOCK_CLOEXEC)
constexpr int streamType = SOCK_STREAM | SOCK_CLOEXEC;
#else
constexpr int streamType = SOCK_STREAM;
#endif

std::string nameOfOption(int option) {
  if (option == SO_RCVTIMEO) return "read";
  if (option == SO_SNDTIMEO) return "write";
  return "other";
}

}  // namespace
}  // namespace quillpost

using quillpost::Fault;
using quillpost::next;
using quillpost::stage;
using quillpost::text::cat;

extern "C" int socket(int domain, int type, int protocol) noexcept(noexcept(::socket(0, 0, 0))) {
  const auto call = [&] { return next<int(int, int, int)>("socket")(domain, type, protocol); };
  const bool isStream = domain == AF_UNIX && type == quillpost::streamType;
  const std::string_view detail = isStream ? "stream " : "other ";
  const std::optional<Fault> fault = stage.enter("socket", cat(detail, protocol));
  return fault ? failing(*fault, call) : call();
}

extern "C" int setsockopt(int fd, int level, int option, const void* value,
                          socklen_t size) noexcept(noexcept(::setsockopt(0, 0, 0, nullptr, 0))) {
  const auto real = next<int(int, int, int, const void*, socklen_t)>("setsockopt");
  timeval time{};
  const std::string name = quillpost::nameOfOption(option);
  if (level != SOL_SOCKET || name == "other" || size != sizeof time)
    return real(fd, level, option, value, size);
  std::memcpy(&time, value, sizeof time);
  const std::optional<Fault> fault =
      stage.enter("setsockopt", cat(name, " ", time.tv_sec, " ", time.tv_usec));
  if (stage.hasShortTimeouts) time = {.tv_sec = 0, .tv_usec = 10'000};
  const auto call = [&] { return real(fd, level, option, &time, sizeof time); };
  return fault ? failing(*fault, call) : call();
}

extern "C" int connect(int fd, const sockaddr* address, socklen_t size) {
  const auto call = [&] {
    return next<int(int, const sockaddr*, socklen_t)>("connect")(fd, address, size);
  };
  if (stage.isWatching) std::memcpy(&stage.address, address, sizeof stage.address);
  const std::optional<Fault> fault =
      stage.enter("connect", size == sizeof(sockaddr_un) ? "whole" : "cut");
  return fault ? failing(*fault, call) : call();
}

extern "C" ssize_t send(int fd, const void* bytes, size_t count, int flags) {
  const auto call = [&](std::size_t most) {
    return next<ssize_t(int, const void*, size_t, int)>("send")(fd, bytes, most, flags);
  };
  const std::optional<Fault> fault = stage.enter("send");
  if (!fault) return call(count);
  if (fault->most) return call(std::min(count, *fault->most));
  return failing(*fault, [&] { return call(count); });
}

extern "C" int shutdown(int fd, int how) noexcept(noexcept(::shutdown(0, 0))) {
  const auto call = [&] { return next<int(int, int)>("shutdown")(fd, how); };
  const std::optional<Fault> fault = stage.enter("shutdown", how == SHUT_WR ? "sending" : "other");
  return fault ? failing(*fault, call) : call();
}

extern "C" ssize_t read(int fd, void* bytes, size_t count) {
  const auto call = [&](std::size_t most) {
    return next<ssize_t(int, void*, size_t)>("read")(fd, bytes, most);
  };
  const std::optional<Fault> fault = stage.enter("read", cat(count));
  if (!fault) return call(count);
  if (fault->most) return call(std::min(count, *fault->most));
  return failing(*fault, [&] { return call(count); });
}

extern "C" int fstatat(int fd, const char* path, struct stat* status,
                       int flags) noexcept(noexcept(::fstatat(0, "", std::declval<struct stat*>(),
                                                              0))) {
  const auto call = [&] {
    return next<int(int, const char*, struct stat*, int)>("fstatat")(fd, path, status, flags);
  };
  const std::optional<Fault> fault = stage.enter("stat", path);
  return fault ? failing(*fault, call) : call();
}

extern "C" int close(int fd) {
  const auto call = [&] { return next<int(int)>("close")(fd); };
  stage.enter("close");
  return call();
}

namespace quillpost {
namespace {

using testing::Behaviour;
using testing::FullBacklog;
using testing::ScriptedApp;
using testing::TempDir;

constexpr Fault interrupted{.error = EINTR};

TeamworkRequest readPlan() {
  TeamworkRequest asked;
  asked.token = "t0k";
  asked.sessionID = "S1";
  asked.method = "read_plan";
  return asked;
}

class SystemCalls : public ::testing::Test {
 protected:
  ~SystemCalls() override { stage = Stage(); }

  /// One exchange with these faults, each list in the order of the calls of that name.
  std::optional<std::string> exchange(std::map<std::string, std::deque<Fault>> faults) {
    stage.faults = std::move(faults);
    stage.calls.clear();
    stage.isWatching = true;
    std::optional<std::string> reply = BridgeTransport::exchange(readPlan(), app.path(), {});
    stage.isWatching = false;
    return reply;
  }

  static std::ptrdiff_t countOfCalls(std::string_view name) {
    return std::ranges::count_if(stage.calls,
                                 [&](const std::string& call) { return call.starts_with(name); });
  }

  TempDir directory;
  ScriptedApp app{directory.pathOf("a.sock")};
};

TEST_F(SystemCalls, AreMadeInOrderEachWithItsLimits) {
  app.play(testing::reply("{}"));
  EXPECT_EQ(exchange({}), "{}");
  const std::vector<std::string> expected{
      "socket stream 0",
      "setsockopt read 40 0",
      "setsockopt write 10 0",
      "connect whole",
      "send",
      "shutdown sending",
      "read 4096",
      "close",
  };
  EXPECT_EQ(stage.calls, expected);
}

TEST_F(SystemCalls, AreGivenAnAddressThatIsNoughtButForFamilyAndPath) {
  app.play(testing::reply("{}"));
  EXPECT_EQ(exchange({}), "{}");
  sockaddr_un expected;
  std::memset(&expected, 0, sizeof expected);
  expected.sun_family = AF_UNIX;
  std::memcpy(expected.sun_path, app.path().data(), app.path().size());
  EXPECT_EQ(std::memcmp(&stage.address, &expected, sizeof expected), 0);
}

TEST_F(SystemCalls, AreRepeatedWhenInterrupted) {
  for (const char* call : {"connect", "send", "read"}) {
    app.play(testing::reply("{}"));
    EXPECT_EQ(exchange({{call, {interrupted, interrupted}}}), "{}") << call;
    EXPECT_EQ(countOfCalls(call), 3) << call;
  }
}

TEST_F(SystemCalls, MayConnectThoughInterrupted) {
  app.play(testing::reply("{}"));
  EXPECT_EQ(exchange({{"connect", {{.error = EINTR, .isDoneFirst = true}}}}), "{}");
  app.play(testing::reply("{}"));
  EXPECT_EQ(exchange({{"connect", {interrupted, {.error = EALREADY, .isDoneFirst = true}}}}), "{}");
  EXPECT_EQ(countOfCalls("connect"), 2);
}

TEST_F(SystemCalls, MaySendAndReadInPieces) {
  std::deque<Fault> small(1000, Fault{.most = 1});
  app.play(testing::reply(R"({"kind":"empty"})"));
  EXPECT_EQ(exchange({{"send", small}, {"read", small}}), R"({"kind":"empty"})");
  EXPECT_EQ(countOfCalls("read"), 17);
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_TRUE(app.connections().front().isOneLine());
  EXPECT_EQ(countOfCalls("send"), static_cast<std::ptrdiff_t>(app.requests().front().size()));
}

TEST_F(SystemCalls, EndTheExchangeWhenTheyFail) {
  struct Row {
    const char* name;
    std::map<std::string, std::deque<Fault>> faults;
    const char* last;
  };
  const Row rows[] = {
      {"no socket to be had", {{"socket", {{.error = EMFILE}}}}, "socket"},
      {"permission denied", {{"connect", {{.error = EACCES}}}}, "close"},
      {"queue full for too long", {{"connect", {{.error = EAGAIN}}}}, "close"},
      {"broken pipe", {{"send", {{.error = EPIPE}}}}, "close"},
      {"write time-out", {{"send", {{.error = EAGAIN}}}}, "close"},
      {"write time-out half way", {{"send", {{.most = 5}, {.error = EAGAIN}}}}, "close"},
      {"nothing written", {{"send", {{.isNought = true}}}}, "close"},
      {"connection reset", {{"read", {{.error = ECONNRESET}}}}, "close"},
      {"read time-out", {{"read", {{.error = EAGAIN}}}}, "close"},
      {"read time-out half way", {{"read", {{.most = 1}, {.error = EAGAIN}}}}, "close"},
      {"end at once", {{"read", {{.isNought = true}}}}, "close"},
  };
  for (const Row& row : rows) {
    app.play(testing::reply("{}"));
    EXPECT_EQ(exchange(row.faults), std::nullopt) << row.name;
    ASSERT_FALSE(stage.calls.empty()) << row.name;
    EXPECT_TRUE(stage.calls.back().starts_with(row.last)) << row.name;
    EXPECT_LE(countOfCalls("close"), 1) << row.name;
    // A row that never got as far as the app leaves its behaviour to the next.
  }
}

TEST_F(SystemCalls, MayFailWithoutHarmWhereNothingDependsOnThem) {
  struct Row {
    const char* name;
    std::map<std::string, std::deque<Fault>> faults;
  };
  const Row rows[] = {
      {"time-outs refused", {{"setsockopt", {{.error = EINVAL}, {.error = EINVAL}}}}},
      {"sending ended by the app", {{"shutdown", {{.error = ENOTCONN, .isDoneFirst = true}}}}},
  };
  for (const Row& row : rows) {
    app.play(testing::reply("{}"));
    EXPECT_EQ(exchange(row.faults), "{}") << row.name;
  }
}

TEST_F(SystemCalls, GiveUpOnAnAppThatStallsAndDropWhatItSaid) {
  stage.hasShortTimeouts = true;
  for (const std::string_view before : {"", "{\"kind\":"}) {
    app.play(testing::stall(before));
    EXPECT_EQ(exchange({}), std::nullopt) << before;
  }
}

TEST_F(SystemCalls, GiveUpOnAnAppThatDoesNotRead) {
  stage.hasShortTimeouts = true;
  Behaviour deaf = testing::stall();
  deaf.readsRequest = false;
  app.play(deaf);
  TeamworkRequest large = readPlan();
  large.body = std::string(8'000'000, 'b');
  stage.isWatching = true;
  EXPECT_EQ(BridgeTransport::exchange(large, app.path(), {}), std::nullopt);
  stage.isWatching = false;
  EXPECT_EQ(countOfCalls("shutdown"), 0);
}

TEST_F(SystemCalls, ReadATokenFileOnceUnlessItsEndIsInDoubt) {
  const std::string full(4096, 't');
  const std::string token = directory.write("token", "t0k");
  struct Row {
    const char* name;
    std::string path;
    std::deque<Fault> faults;
    std::string token;
    std::ptrdiff_t reads;
  };
  const Row rows[] = {
    {"a short file", token, {}, "t0k", 1},
    {"an empty file", directory.write("empty", ""), {}, "", 1},
    {"a file that fills a read", directory.write("full", full), {}, full, 2},
    {"a file that needs two reads", directory.write("more", full + "t"), {}, full + "t", 2},
    {"interrupted", token, {interrupted, interrupted}, "t0k", 3},
    {"in pieces", token, {{.most = 1}, {.most = 1}}, "t0k", 3},
    {"emptied since its size was told", token, {{.isNought = true}}, "", 1},
    {"a failure half way", token, {{.most = 1}, {.error = EIO}}, "", 2},
#if defined(__linux__)
    {"no size told", "/proc/self/comm", {{.most = 1}, {.most = 2}}, "bridge_test", 4},
#endif
  };
  for (const Row& row : rows) {
    SocketBridge bridge({.socketPath = {}, .tokenFilePath = row.path, .startToken = {}});
    stage.faults = {{"read", row.faults}};
    stage.calls.clear();
    stage.isWatching = true;
    EXPECT_EQ(bridge.currentToken(), row.token) << row.name;
    stage.isWatching = false;
    EXPECT_EQ(countOfCalls("read 4096"), row.reads) << row.name;
    EXPECT_EQ(countOfCalls("close"), 1) << row.name;
  }
}

TEST_F(SystemCalls, OfTheProbeConnectForTwoSecondsAtMostAndClose) {
  stage.isWatching = true;
  EXPECT_TRUE(BridgeDiscovery::acceptsConnection(app.path()));
  stage.isWatching = false;
  EXPECT_EQ(stage.calls, (std::vector<std::string>{"socket stream 0", "setsockopt write 2 0",
                                                   "connect whole", "close"}));
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_EQ(app.requests().front(), "");
}

TEST_F(SystemCalls, OfTheProbeMayFailOrBeInterrupted) {
  struct Row {
    const char* name;
    std::map<std::string, std::deque<Fault>> faults;
    bool isLive;
  };
  const Row rows[] = {
      {"interrupted", {{"connect", {interrupted}}}, true},
      {"queue full for two seconds", {{"connect", {{.error = EAGAIN}}}}, true},
      {"interrupted, then queue full", {{"connect", {interrupted, {.error = EAGAIN}}}}, true},
      {"no socket to be had", {{"socket", {{.error = EMFILE}}}}, false},
      {"no bound to the wait", {{"setsockopt", {{.error = EINVAL}}}}, false},
      {"permission denied", {{"connect", {{.error = EACCES}}}}, false},
      {"refused", {{"connect", {{.error = ECONNREFUSED}}}}, false},
      {"interrupted, then refused", {{"connect", {interrupted, {.error = ECONNREFUSED}}}}, false},
  };
  for (const Row& row : rows) {
    stage.faults = row.faults;
    stage.isWatching = true;
    EXPECT_EQ(BridgeDiscovery::acceptsConnection(app.path()), row.isLive) << row.name;
    stage.isWatching = false;
  }
}

#if defined(__linux__)
TEST_F(SystemCalls, OfTheProbeEndWhenAnAppHasStoppedAccepting) {
  const FullBacklog stuck(directory.pathOf("stuck.sock"));
  stage.hasShortTimeouts = true;
  EXPECT_TRUE(BridgeDiscovery::acceptsConnection(directory.pathOf("stuck.sock")));
}
#endif

TEST_F(SystemCalls, OfTheScanLookAtNothingThatIsNamedOtherwise) {
  for (const char* name : {"Quillpost/teamwork-A.sock", "Quillpost/teamwork-A.token",
                           "Quillpost/mcp-A.sock", "Quillpost/agent-seat", "Quillpost/mounted/file",
                           "QuillpostX/teamwork-B.sock", "Mounted/teamwork-C.sock", "file"})
    directory.write(name, "");
  const testing::FakeEnvironment environment;
  stage.isWatching = true;
  BridgeDiscovery::candidates(BridgeDiscovery::Kind::teamwork, {environment, directory.path()});
  stage.isWatching = false;
  std::erase_if(stage.calls, [](const std::string& call) { return !call.starts_with("stat"); });
  EXPECT_EQ(stage.calls, (std::vector<std::string>{"stat Quillpost", "stat teamwork-A.sock"}));
}

}  // namespace
}  // namespace quillpost
