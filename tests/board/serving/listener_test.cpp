#include "board/serving/listener.h"

#include "board/desk.h"
#include "board/rules/limits.h"
#include "bridge/unix_socket.h"
#include "harness/fake_clock.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillpost::board {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::FakeClock;
using testing::TempDir;
using Kind = TeamworkResponse::Kind;

/// A listener on a real socket whose clock stands still; nothing happens but in `step`, so that a
/// test needs neither threads nor patience.
class ListenerDesk {
 public:
  FakeClock clock;
  std::string first, second;

  explicit ListenerDesk(std::size_t room = roomForConnections()) : room_(room) {
    for (std::string* session : {&first, &second}) {
      *session = makeSeat();
      service_.answer(requestOf(*session, "register", "", "agents"));
    }
  }

  /// A client that has sent these bytes and perhaps ended its sending.
  UniqueFd send(std::string_view bytes, bool ends = true) {
    UniqueFd client = testing::connectTo(path_);
    EXPECT_TRUE(client);
    EXPECT_EQ(sendSome(client, bytes), static_cast<ssize_t>(bytes.size()));
    if (ends) ::shutdown(client.get(), SHUT_WR);
    return client;
  }
  UniqueFd ask(const std::string& session, std::string_view method, std::string_view members = "") {
    return send(encodeRequest(requestOf(session, method, members, "agents")).value() + "\n");
  }
  UniqueFd poll(const std::string& session, int64_t holdMs) {
    const auto rev = service_.answer(requestOf(session, "list_tasks", "", "agents")).response.rev;
    UniqueFd client =
        ask(session, "poll_changes", text::cat(R"("sinceRev":)", *rev, R"(,"holdMs":)", holdMs));
    step();
    EXPECT_EQ(listener.held(), 1u);
    return client;
  }

  /// Lets the listener do whatever can be done now.
  void step() {
    for (int i = 0; i < 4; ++i) listener.step(Duration::zero());
  }

  /// What has come back on a connection so far; nothing when the board has not ended it.
  static std::optional<std::string> received(const UniqueFd& client) {
    ::fcntl(client.get(), F_SETFL, O_NONBLOCK);
    std::string bytes;
    std::array<char, 65536> chunk;
    for (;;) {
      const ssize_t count = ::read(client.get(), chunk.data(), chunk.size());
      if (count < 0) return std::nullopt;
      if (count == 0) return bytes;
      bytes.append(chunk.data(), static_cast<std::size_t>(count));
    }
  }
  static std::optional<TeamworkResponse> answer(const UniqueFd& client) {
    const std::optional<std::string> bytes = received(client);
    if (!bytes || !bytes->ends_with('\n')) return std::nullopt;
    return decodeResponse(*bytes);
  }

  /// What a command of the person's sends.
  UniqueFd askAsPerson() {
    return send(encodeRequest(requestOf("", personShow, "", "persons")).value() + "\n");
  }

 private:
  std::string makeSeat() {
    const auto made = service_.answer(requestOf("", personSeat, "", "persons"));
    const std::string lines = made.response.message.value_or("");
    return lines.substr(lines.find('\'') + 1, 32);
  }
  UniqueFd listening() const {
    UniqueFd socket = openUnixSocket();
    EXPECT_TRUE(bindUnixSocket(socket, path_));
    EXPECT_EQ(::listen(socket.get(), 64), 0);
    return socket;
  }

  std::size_t room_;
  TempDir dir_;
  std::string path_ = dir_.pathOf("teamwork-t.sock");
  std::string why_;
  Store store_ = *Store::open(":memory:", why_);
  Service service_{store_,
                   {},
                   {"agents", "persons", 900'000, path_, ""},
                   [this] { return 1'000'000'000 + clock.elapsed() / milliseconds(1); },
                   countingRandom()};

 public:
  Listener listener{listening(), service_, clock, room_};
};

TEST(Listener, AnswersOneRequestAndCloses) {
  ListenerDesk desk;
  const UniqueFd client = desk.ask(desk.first, "list_tasks");
  desk.step();
  const auto answer = ListenerDesk::answer(client);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->kind, Kind::tasks);
  EXPECT_EQ(desk.listener.connections(), 0u);
}

TEST(Listener, TakesARequestThatEndsWithTheSendingOrComesInPieces) {
  ListenerDesk desk;
  const std::string line = *encodeRequest(requestOf(desk.first, "list_tasks", "", "agents"));
  const UniqueFd unterminated = desk.send(line);
  const UniqueFd open = desk.send(line + "\n", false);
  const UniqueFd slow = desk.send("", false);
  for (const char letter : line + "\n") {
    sendSome(slow, std::string(1, letter));
    desk.listener.step(Duration::zero());
  }
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(unterminated));
  EXPECT_TRUE(ListenerDesk::answer(open));
  EXPECT_TRUE(ListenerDesk::answer(slow));
}

TEST(Listener, WhatIsNoRequestIsToldSo) {
  ListenerDesk desk;
  for (const char* bytes : {"nonsense\n", "{}\n", "[1]\n", "{\"method\":\"x\"}\n"}) {
    const UniqueFd client = desk.send(bytes);
    desk.step();
    const auto answer = ListenerDesk::answer(client);
    ASSERT_TRUE(answer) << bytes;
    EXPECT_EQ(answer->kind, Kind::error) << bytes;
  }
}

TEST(Listener, AProbeThatSaysNothingIsLetGo) {
  ListenerDesk desk;
  const UniqueFd probe = desk.send("");
  desk.step();
  EXPECT_EQ(ListenerDesk::received(probe), "");
  EXPECT_EQ(desk.listener.connections(), 0u);
}

TEST(Listener, APollIsHeldUntilSomethingMoves) {
  ListenerDesk desk;
  const UniqueFd poll = desk.poll(desk.first, 20'000);
  desk.clock.advance(seconds(19));
  desk.step();
  EXPECT_EQ(ListenerDesk::received(poll), std::nullopt);
  const UniqueFd writer = desk.ask(desk.second, "add_task", R"("title":"x")");
  desk.step();
  const auto answer = ListenerDesk::answer(poll);
  ASSERT_TRUE(answer);
  EXPECT_TRUE(answer->changes->changed);
  EXPECT_EQ(desk.listener.held(), 0u);
}

TEST(Listener, APollIsAnsweredWhenItsTimeIsOver) {
  ListenerDesk desk;
  const UniqueFd poll = desk.poll(desk.first, 20'000);
  desk.clock.advance(seconds(20));
  desk.step();
  const auto answer = ListenerDesk::answer(poll);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->kind, Kind::changes);
  EXPECT_FALSE(answer->changes->changed);
}

TEST(Listener, AHeldPollIsWokenByALeaseThatIsAboutToLapse) {
  ListenerDesk desk;
  const UniqueFd filed = desk.ask(desk.first, "add_task", R"("title":"x")");
  desk.step();
  const UniqueFd claimed = desk.ask(desk.first, "claim_task", R"("taskID":"t000001")");
  desk.step();
  desk.clock.advance(seconds(775));
  const UniqueFd poll = desk.poll(desk.first, 20'000);
  desk.clock.advance(seconds(5));
  desk.step();
  const auto answer = ListenerDesk::answer(poll);
  ASSERT_TRUE(answer);
  ASSERT_EQ(answer->changes->wakeReasons.size(), 1u);
  EXPECT_EQ(answer->changes->wakeReasons.front().kind, "claimExpiring");
}

TEST(Listener, AWakeIsNotLostOnAClientThatHasGone) {
  ListenerDesk desk;
  const UniqueFd filed = desk.ask(desk.first, "add_task", R"("title":"x")");
  desk.step();
  const UniqueFd watching = desk.ask(desk.second, "watch_task", R"("taskID":"t000001")");
  desk.step();
  UniqueFd gone = desk.poll(desk.second, 20'000);
  gone = UniqueFd();
  const UniqueFd comment = desk.ask(desk.first, "comment_task", R"("taskID":"t000001","note":"x")");
  desk.step();
  EXPECT_EQ(desk.listener.held(), 0u);
  const UniqueFd query = desk.ask(desk.second, "wake_query");
  desk.step();
  EXPECT_EQ(ListenerDesk::answer(query)->wakePending, true);
  const UniqueFd again = desk.ask(desk.second, "poll_changes");
  desk.step();
  EXPECT_EQ(ListenerDesk::answer(again)->changes->wakeReasons.size(), 1u);
  const UniqueFd after = desk.ask(desk.second, "wake_query");
  desk.step();
  EXPECT_EQ(ListenerDesk::answer(after)->wakePending, false);
}

TEST(Listener, ASlowClientKeepsNobodyWaitingAndIsGivenUp) {
  ListenerDesk desk;
  const UniqueFd slow = desk.send("{\"protocol", false);
  desk.step();
  const UniqueFd quick = desk.ask(desk.first, "list_tasks");
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(quick));
  EXPECT_EQ(ListenerDesk::received(slow), std::nullopt);
  desk.clock.advance(patience);
  desk.step();
  EXPECT_EQ(ListenerDesk::received(slow), "");
  EXPECT_EQ(desk.listener.connections(), 0u);
}

TEST(Listener, ALargeAnswerIsSentAsTheClientTakesIt) {
  ListenerDesk desk;
  // Larger than any socket's buffer.
  const std::string body(std::size_t{4} << 20, 'x');
  UniqueFd writer = desk.send("", false);
  const std::string line = *encodeRequest(requestOf(
      desk.first, "add_task", text::cat(R"("title":"x","body":")", body, "\""), "agents"));
  ::fcntl(writer.get(), F_SETFL, O_NONBLOCK);
  for (std::string_view rest = line; !rest.empty(); desk.listener.step(Duration::zero())) {
    const ssize_t count = sendSome(writer, rest);
    if (count > 0) rest.remove_prefix(static_cast<std::size_t>(count));
  }
  ::shutdown(writer.get(), SHUT_WR);
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(writer));

  const UniqueFd reader = desk.ask(desk.first, "read_task", R"("taskID":"t000001")");
  desk.step();
  EXPECT_EQ(desk.listener.connections(), 1u) << "it waits for the reader";
  const UniqueFd other = desk.ask(desk.second, "heartbeat");
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(other));
  std::string bytes;
  std::array<char, 65536> chunk;
  ::fcntl(reader.get(), F_SETFL, O_NONBLOCK);
  for (;;) {
    const ssize_t count = ::read(reader.get(), chunk.data(), chunk.size());
    if (count == 0) break;
    if (count > 0) bytes.append(chunk.data(), static_cast<std::size_t>(count));
    desk.listener.step(Duration::zero());
  }
  const auto answer = decodeResponse(bytes);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->task->body.size(), briefLimit);
}

TEST(Listener, ARequestBeyondTheLimitIsAnsweredInWords) {
  ListenerDesk desk;
  UniqueFd client = desk.send("", false);
  ::fcntl(client.get(), F_SETFL, O_NONBLOCK);
  const std::string piece(std::size_t{64} << 10, 'x');
  for (std::size_t sent = 0; sent <= 2 * requestLimit;) {
    const ssize_t count = sendSome(client, piece);
    ASSERT_TRUE(count > 0 || errno == EAGAIN);
    if (count > 0) sent += static_cast<std::size_t>(count);
    desk.listener.step(Duration::zero());
  }
  ::shutdown(client.get(), SHUT_WR);
  desk.step();
  const auto answer = ListenerDesk::answer(client);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->kind, Kind::error);
  EXPECT_THAT(answer->message.value_or(""), ::testing::HasSubstr("8 MB"));
  EXPECT_EQ(desk.listener.connections(), 0u);
}

TEST(Listener, ListensOnAnotherSocketWhenItIsGivenOne) {
  ListenerDesk desk;
  const TempDir dir;
  UniqueFd socket = openUnixSocket();
  ASSERT_TRUE(bindUnixSocket(socket, dir.pathOf("again.sock")));
  ASSERT_EQ(::listen(socket.get(), 1), 0);
  desk.listener.listenOn(std::move(socket));
  const UniqueFd client = testing::connectTo(dir.pathOf("again.sock"));
  ASSERT_TRUE(client);
  desk.step();
  EXPECT_EQ(desk.listener.connections(), 1u);
}

TEST(Listener, ServesManyAtOnceAndEndsWhenItIsToldTo) {
  ListenerDesk desk;
  std::vector<UniqueFd> clients;
  for (int i = 0; i < 60; ++i) clients.push_back(desk.ask(desk.first, "heartbeat"));
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const UniqueFd reader(ends[0]), writer(ends[1]);
  desk.step();
  for (const UniqueFd& client : clients) EXPECT_TRUE(ListenerDesk::answer(client));
  ASSERT_EQ(::write(writer.get(), "", 1), 1);
  desk.listener.run(reader.get());  // comes back
}

TEST(Listener, WhoeverComesWhenThereIsNoRoomTakesThePlaceOfTheSlowest) {
  ListenerDesk desk(3);
  std::vector<UniqueFd> idle;
  for (int i = 0; i < 3; ++i) idle.push_back(desk.send("", false));
  desk.step();
  EXPECT_EQ(desk.listener.connections(), 3u);
  const UniqueFd slow = desk.send("{", false);
  desk.step();
  EXPECT_EQ(ListenerDesk::received(idle[0]), "") << "it gave way";
  EXPECT_EQ(ListenerDesk::received(idle[1]), std::nullopt);
  for (int i = 0; i < 5; ++i) {
    const UniqueFd quick = desk.ask(desk.first, "list_tasks");
    desk.step();
    EXPECT_TRUE(ListenerDesk::answer(quick));
  }
  EXPECT_EQ(desk.listener.connections(), 3u) << "who is answered at once takes nobody's place";
}

TEST(Listener, WhenListenersTakeAllRoomThePersonIsHeardAndNoMoreWaitsAreHeld) {
  ListenerDesk desk(2);
  const std::string members = R"("sinceRev":2,"holdMs":20000)";
  const UniqueFd held[] = {desk.ask(desk.first, "poll_changes", members),
                           desk.ask(desk.second, "poll_changes", members)};
  desk.step();
  EXPECT_EQ(desk.listener.held(), 2u);
  const UniqueFd person = desk.askAsPerson();
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(person));
  const UniqueFd more = desk.ask(desk.second, "poll_changes", members);
  desk.step();
  const auto answer = ListenerDesk::answer(more);
  ASSERT_TRUE(answer);
  EXPECT_THAT(answer->message.value_or(""), ::testing::HasSubstr("as many listeners"));
  EXPECT_EQ(desk.listener.held(), 2u);
  EXPECT_EQ(desk.listener.connections(), 2u);
}

TEST(Listener, AHeldPollWhoseClientHasGoneIsLetGo) {
  ListenerDesk desk;
  UniqueFd poll = desk.poll(desk.first, 20'000);
  desk.step();
  EXPECT_EQ(desk.listener.held(), 1u) << "it has only ended its sending";
  poll = UniqueFd();
  desk.step();
  EXPECT_EQ(desk.listener.held(), 0u);
}

TEST(Listener, WhatIsReadBeforeLinesAreWholeIsBoundedInSum) {
  ListenerDesk desk;
  std::vector<UniqueFd> clients;
  const std::string piece(std::size_t{64} << 10, 'x');
  for (int i = 0; i < 10; ++i) {
    clients.push_back(desk.send("", false));
    ::fcntl(clients.back().get(), F_SETFL, O_NONBLOCK);
    for (std::size_t sent = 0; sent < 7 * requestLimit / 8;) {
      const ssize_t count = sendSome(clients.back(), piece);
      if (count > 0) sent += static_cast<std::size_t>(count);
      desk.listener.step(Duration::zero());
      ASSERT_LE(desk.listener.unread(), unreadLimit);
    }
  }
  const UniqueFd quick = desk.ask(desk.first, "list_tasks");
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(quick)) << "a small request is not what is refused";
  std::size_t refused = 0;
  for (UniqueFd& client : clients) {
    ::shutdown(client.get(), SHUT_WR);
    desk.step();
    const auto answer = ListenerDesk::answer(client);
    ASSERT_TRUE(answer);
    refused += answer->message.value_or("").find("more than it takes") != std::string::npos;
  }
  EXPECT_EQ(refused, 1u);
  EXPECT_EQ(desk.listener.unread(), 0u);
}

TEST(Listener, WithoutADescriptorItRestsRatherThanSpins) {
  ListenerDesk desk;
  const UniqueFd client = desk.ask(desk.first, "list_tasks");
  rlimit usual{};
  ::getrlimit(RLIMIT_NOFILE, &usual);
  rlimit tight = usual;
  tight.rlim_cur = static_cast<rlim_t>(UniqueFd(::dup(0)).get());
  ::setrlimit(RLIMIT_NOFILE, &tight);
  desk.step();
  // The clock itself, since a sanitizer looks through a pipe at what is called through a table.
  const auto start = std::chrono::steady_clock::now();
  desk.listener.step(milliseconds(20));
  const auto rested = std::chrono::steady_clock::now() - start;
  ::setrlimit(RLIMIT_NOFILE, &usual);
  EXPECT_EQ(desk.listener.connections(), 0u);
  EXPECT_GE(rested, milliseconds(15));
  desk.clock.advance(seconds(1));
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(client));
}

TEST(Listener, OneThatNeverStopsSendingKeepsNobodyWaiting) {
  ListenerDesk desk;
  const UniqueFd endless = desk.send("", false);
  std::atomic<bool> isOver = false;
  std::thread writer([&] {
    const std::string piece(std::size_t{64} << 10, 'x');
    while (!isOver && sendSome(endless, piece) > 0) continue;
  });
  for (int i = 0; i < 20; ++i) desk.listener.step(milliseconds(1));
  const UniqueFd quick = desk.ask(desk.first, "list_tasks");
  desk.step();
  EXPECT_TRUE(ListenerDesk::answer(quick));
  isOver = true;
  ::shutdown(endless.get(), SHUT_RDWR);
  writer.join();
}

}  // namespace
}  // namespace quillpost::board
