#include "harness/scripted_app.h"

#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace quillpost::testing {
namespace {

/// The reads of a client that takes as much as it can get each time.
struct Reads {
  std::vector<std::string> chunks;
  int error = 0;

  std::string whole() const {
    std::string all;
    for (const std::string& chunk : chunks) all += chunk;
    return all;
  }
};

Reads readToEnd(int fd) {
  Reads reads;
  std::array<char, 4096> chunk{};
  while (true) {
    const ssize_t count = ::read(fd, chunk.data(), chunk.size());
    if (count < 0) reads.error = errno;
    if (count <= 0) return reads;
    reads.chunks.emplace_back(chunk.data(), static_cast<std::size_t>(count));
  }
}

void send(int fd, std::string_view bytes) {
  ASSERT_EQ(::write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

Reads ask(const ScriptedApp& app, std::string_view request) {
  const UniqueFd fd = connectTo(app.path());
  send(fd.get(), request);
  ::shutdown(fd.get(), SHUT_WR);
  return readToEnd(fd.get());
}

class ScriptedAppTest : public ::testing::Test {
 protected:
  TempDir directory;
  ScriptedApp app{directory.pathOf("app.sock")};
};

TEST_F(ScriptedAppTest, SendsWhatTheScriptSays) {
  struct Row {
    std::string name;
    Behaviour behaviour;
    std::string sent;
  };
  const Row rows[] = {
      {"whole", reply("{}"), "{}\n"},
      {"byte by byte", replyByteByByte("{\"a\":1}"), "{\"a\":1}\n"},
      {"pieces", replyInPieces({"{", "}\n"}), "{}\n"},
      {"unterminated", replyUnterminated("{}"), "{}"},
      {"terminator first", terminatorFirst("{}"), "\n{}\n"},
      {"two", twoReplies("{}", "[]"), "{}\n[]\n"},
      {"filler", filler(100'000), std::string(100'000, 'x') + "\n"},
      {"unterminated filler", fillerUnterminated(3), "xxx"},
      {"nothing", closeWithoutReply(), ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    app.play(row.behaviour);
    EXPECT_TRUE(ask(app, "request\n").whole() == row.sent);
  }
  EXPECT_TRUE(app.waitUntilOver(std::size(rows)));
  EXPECT_EQ(app.connections().size(), std::size(rows));
}

#ifdef __linux__
TEST_F(ScriptedAppTest, HandsOverOnePieceAtATime) {
  app.play(replyByteByByte("abc"));
  EXPECT_EQ(ask(app, "request\n").chunks, (std::vector<std::string>{"a", "b", "c", "\n"}));
}

TEST_F(ScriptedAppTest, ResetsTheConnection) {
  app.play(reset());
  const UniqueFd fd = connectTo(app.path());
  send(fd.get(), "request\n");
  EXPECT_EQ(readToEnd(fd.get()).error, ECONNRESET);
}
#endif

TEST_F(ScriptedAppTest, WritesDownWhatItReceived) {
  struct Row {
    std::string request;
    bool isOneLine;
  };
  const Row rows[] = {{"{}\n", true}, {"{}", false},       {"", false},
                      {"\n", true},   {"{}\n{}\n", false}, {"{}\n ", false}};
  std::vector<std::string> sent;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.request);
    ask(app, row.request);
    sent.push_back(row.request);
    ASSERT_TRUE(app.waitForRequests(sent.size()));
    EXPECT_EQ(app.connections().back().isOneLine(), row.isOneLine);
  }
  EXPECT_EQ(app.requests(), sent);
}

TEST_F(ScriptedAppTest, AnswersByTheRequestWhenTheScriptIsAtItsEnd) {
  app.otherwise([](const std::string& request) { return replyUnterminated("re: " + request); });
  app.play(reply("scripted"));
  EXPECT_EQ(ask(app, "one\n").whole(), "scripted\n");
  EXPECT_EQ(ask(app, "two\n").whole(), "re: two\n");
  EXPECT_EQ(ask(app, "three\n").whole(), "re: three\n");
}

TEST_F(ScriptedAppTest, ClosesAtOnceWithoutReading) {
  app.play(closeAtOnce());
  const UniqueFd fd = connectTo(app.path());
  EXPECT_EQ(readToEnd(fd.get()).whole(), "");
  ASSERT_TRUE(app.waitUntilOver(1));
  EXPECT_FALSE(app.connections().front().sawEnd);
  EXPECT_TRUE(app.requests().empty());
}

TEST_F(ScriptedAppTest, StallsUntilItIsReleasedAndServesOthersMeanwhile) {
  app.play(stall("part"));
  app.play(reply("other"));
  const UniqueFd fd = connectTo(app.path());
  send(fd.get(), "request\n");
  ::shutdown(fd.get(), SHUT_WR);
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_EQ(ask(app, "second\n").whole(), "other\n");
  EXPECT_FALSE(app.connections().front().over);
  app.release();
  EXPECT_EQ(readToEnd(fd.get()).whole(), "part");
}

TEST(ScriptedApp, EndsWhileSomethingStalls) {
  const TempDir directory;
  UniqueFd fd;
  {
    ScriptedApp app(directory.pathOf("app.sock"));
    app.play(stall());
    fd = connectTo(app.path());
    ASSERT_TRUE(app.waitForConnections(1));
  }
  EXPECT_EQ(readToEnd(fd.get()).whole(), "");
  EXPECT_FALSE(connectTo(directory.pathOf("app.sock")));
}

TEST(FullBacklog, TakesNoFurtherConnection) {
  const TempDir directory;
  const FullBacklog full(directory.pathOf("full.sock"));
  const UniqueFd fd(::socket(AF_UNIX, SOCK_STREAM, 0));
  ::fcntl(fd.get(), F_SETFL, O_NONBLOCK);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = directory.pathOf("full.sock");
  std::memcpy(address.sun_path, path.data(), path.size());
  EXPECT_NE(::connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

}  // namespace
}  // namespace quillpost::testing
