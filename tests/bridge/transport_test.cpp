#include "bridge/transport.h"

#include "bridge/unix_socket.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"
#include "model/coding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include <fcntl.h>

namespace quillpost {
namespace {

using namespace std::string_literals;
using testing::Behaviour;
using testing::ScriptedApp;
using testing::TempDir;

constexpr std::size_t limit = 16'777'216;

TeamworkRequest request() {
  TeamworkRequest asked;
  asked.token = "t0k";
  asked.sessionID = "S1";
  asked.method = "read_plan";
  asked.body = "two\nlines — and 日本語";
  return asked;
}

std::optional<std::string> exchangeAt(const std::string& path) {
  return BridgeTransport::exchange(request(), path, {});
}

/// How many descriptors this process has open.
int openDescriptors() {
  constexpr int highest = 1024;
  int count = 0;
  for (int fd = 0; fd < highest; ++fd) count += ::fcntl(fd, F_GETFD) >= 0;
  return count;
}

class Transport : public ::testing::Test {
 protected:
  TempDir directory;
  ScriptedApp app{directory.pathOf("teamwork-A.sock")};
};

TEST_F(Transport, HasTheLimitsThatTheAppCountsOn) {
  const BridgeTransport::Options options;
  EXPECT_EQ(options.readTimeoutSeconds, 40);
  EXPECT_EQ(options.writeTimeoutSeconds, 10);
  EXPECT_EQ(options.terminator, '\n');
  EXPECT_EQ(options.maxResponseBytes, limit);
}

TEST_F(Transport, SendsOneLineAndEndsItsSending) {
  app.play(testing::reply("{}"));
  EXPECT_EQ(exchangeAt(app.path()), "{}");
  ASSERT_TRUE(app.waitForRequests(1));
  const testing::Connection connection = app.connections().front();
  EXPECT_TRUE(connection.isOneLine()) << connection.received;
  EXPECT_EQ(decodeRequest(connection.received), request());
}

TEST_F(Transport, SendsARequestOfSeveralMebibytesWhole) {
  TeamworkRequest large = request();
  large.body = std::string(5'000'000, 'b');
  app.play(testing::reply("{}"));
  EXPECT_EQ(BridgeTransport::exchange(large, app.path(), {}), "{}");
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_TRUE(app.connections().front().isOneLine());
  EXPECT_TRUE(decodeRequest(app.requests().front()) == large);
}

TEST_F(Transport, TakesTheReplyUpToItsTerminatorOrItsEnd) {
  struct Row {
    const char* name;
    Behaviour behaviour;
    std::optional<std::string> reply;
  };
  const std::string json = R"({"kind":"written","message":"done — 日本"})";
  const std::string long1 = std::string(4095, 'a'), long2 = std::string(4096, 'b');
  Behaviour answersUnasked = testing::reset();
  answersUnasked.pieces = {json + "\n"};
  const Row rows[] = {
      {"one line", testing::reply(json), json},
      {"one byte at a time", testing::replyByteByByte(json), json},
      {"two replies at once", testing::twoReplies(json, "{}"), json},
      {"two replies one after the other", testing::replyInPieces({json + "\n", "{}\n"}), json},
      {"no terminator", testing::replyUnterminated(json), json},
      {"no terminator, in pieces", testing::replyInPieces({"{", "}"}), "{}"},
      {"terminator first", testing::terminatorFirst(json), ""},
      {"terminator alone", testing::replyInPieces({"\n"}), ""},
      {"terminator in a piece of its own", testing::replyInPieces({json, "\n"}), json},
      {"terminator last in a full chunk", testing::reply(long1), long1},
      {"terminator first in the second chunk", testing::reply(long2), long2},
      {"zero bytes", testing::replyInPieces({"a\0b\0\n"s}), "a\0b\0"s},
      {"bytes that are not UTF-8", testing::reply("\xFF\xFE"), "\xFF\xFE"},
      {"a carriage return", testing::reply("{}\r"), "{}\r"},
      {"a reply before the request was read", answersUnasked, json},
      {"closed at once", testing::closeAtOnce(), std::nullopt},
      {"closed after reading", testing::closeWithoutReply(), std::nullopt},
      {"reset", testing::reset(), std::nullopt},
  };
  for (const Row& row : rows) {
    app.play(row.behaviour);
    EXPECT_EQ(exchangeAt(app.path()), row.reply) << row.name;
  }
}

TEST_F(Transport, DoesNotWaitForTheEndAfterTheTerminator) {
  app.play(testing::stall("{}\n"));
  EXPECT_EQ(exchangeAt(app.path()), "{}");
}

TEST_F(Transport, EndsTheReplyAtWhateverByteTheOptionsSay) {
  BridgeTransport::Options options;
  options.terminator = ';';
  app.play(testing::replyInPieces({"a\nb;c"}));
  EXPECT_EQ(BridgeTransport::exchange(request(), app.path(), options), "a\nb");
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_EQ(app.requests().front().find(';'), app.requests().front().size() - 1);
}

TEST_F(Transport, TakesAReplyOfExactlyTheLimitAndNoMore) {
  struct Row {
    const char* name;
    Behaviour behaviour;
    std::optional<std::size_t> size;
  };
  const Row rows[] = {
      {"the limit and a terminator", testing::filler(limit), limit},
      {"the limit and the end", testing::fillerUnterminated(limit), limit},
      {"one byte more and a terminator", testing::filler(limit + 1), std::nullopt},
      {"one byte more and the end", testing::fillerUnterminated(limit + 1), std::nullopt},
      {"much more", testing::fillerUnterminated(limit + 3'000'000), std::nullopt},
  };
  for (const Row& row : rows) {
    app.play(row.behaviour);
    const std::optional<std::string> reply = exchangeAt(app.path());
    ASSERT_EQ(reply.has_value(), row.size.has_value()) << row.name;
    if (!reply) continue;
    EXPECT_EQ(reply->size(), *row.size) << row.name;
    EXPECT_EQ(reply->find_first_not_of('x'), std::string::npos) << row.name;
    // Growing must not pass the limit by much: a machine with many agents has many of these.
    EXPECT_LT(reply->capacity(), limit + limit / 64) << row.name;
  }
}

TEST_F(Transport, MeetsASmallLimitInTheMiddleOfAChunk) {
  BridgeTransport::Options options;
  options.maxResponseBytes = 5;
  struct Row {
    const char* name;
    Behaviour behaviour;
    std::optional<std::string> reply;
  };
  const Row rows[] = {
      {"exactly", testing::reply("12345"), "12345"},
      {"one more", testing::reply("123456"), std::nullopt},
      {"exactly, byte by byte", testing::replyByteByByte("12345"), "12345"},
      {"one more, byte by byte", testing::replyByteByByte("123456"), std::nullopt},
      {"more after the terminator", testing::twoReplies("12345", "6789"), "12345"},
  };
  for (const Row& row : rows) {
    app.play(row.behaviour);
    EXPECT_EQ(BridgeTransport::exchange(request(), app.path(), options), row.reply) << row.name;
  }
}

TEST_F(Transport, TakesAnyReplyWhateverWasExpected) {
  for (const std::size_t expected : {std::size_t{0}, std::size_t{1}, std::size_t{4097}, limit,
                                     limit + 1, std::numeric_limits<std::size_t>::max()}) {
    BridgeTransport::Options options;
    options.expectedBytes = expected;
    app.play(testing::reply("{}"));
    std::optional<std::string> reply = BridgeTransport::exchange(request(), app.path(), options);
    ASSERT_EQ(reply, "{}") << expected;
    EXPECT_GE(reply->capacity(), std::min(expected, limit)) << expected;
    EXPECT_LT(reply->capacity(), limit + limit / 64) << expected;
    app.play(testing::filler(limit));
    reply = BridgeTransport::exchange(request(), app.path(), options);
    EXPECT_EQ(reply.value_or("").size(), limit) << expected;
    app.play(testing::filler(limit + 1));
    EXPECT_FALSE(BridgeTransport::exchange(request(), app.path(), options)) << expected;
    // A limit below what is expected is still the limit.
    options.maxResponseBytes = 5;
    app.play(testing::reply("123456"));
    EXPECT_FALSE(BridgeTransport::exchange(request(), app.path(), options)) << expected;
  }
}

TEST_F(Transport, GivesNothingWhereNobodyListens) {
  const std::string deserted = directory.pathOf("deserted.sock");
  ASSERT_TRUE(bindUnixSocket(openUnixSocket(), deserted));
  std::string tooLong = directory.pathOf("s");
  tooLong.resize(104, 's');
  for (const std::string& path :
       {""s, directory.pathOf("missing.sock"), deserted, directory.write("plain.sock", ""),
        directory.path(), tooLong, app.path() + "\0"s}) {
    EXPECT_EQ(exchangeAt(path), std::nullopt) << path;
  }
  EXPECT_TRUE(app.connections().empty());
}

TEST_F(Transport, ReachesAPathOfOneHundredAndThreeBytes) {
  std::string longest = directory.pathOf("s");
  longest.resize(103, 's');
  ScriptedApp far(longest);
  far.play(testing::reply("{}"));
  EXPECT_EQ(exchangeAt(longest), "{}");
}

#if defined(__linux__)
TEST_F(Transport, DoesNotReachAPathOfOneHundredAndFourBytesEvenWhereTheSystemWould) {
  std::string tooLong = directory.pathOf("s");
  tooLong.resize(104, 's');
  ScriptedApp far(tooLong);
  EXPECT_EQ(exchangeAt(tooLong), std::nullopt);
  EXPECT_TRUE(far.connections().empty());
}
#endif

TEST_F(Transport, DoesNotEvenConnectForARequestThatIsNotUtf8) {
  TeamworkRequest notUtf8 = request();
  notUtf8.token = "t0k\xFF";
  EXPECT_EQ(BridgeTransport::exchange(notUtf8, app.path(), {}), std::nullopt);
  EXPECT_FALSE(BridgeTransport::send(notUtf8, app.path()).response);
  EXPECT_TRUE(app.connections().empty());
}

TEST_F(Transport, LeavesNoDescriptorOpen) {
  const int before = openDescriptors();
  std::size_t connections = 0;
  for (const Behaviour& behaviour :
       {testing::reply("{}"), testing::replyUnterminated("{}"), testing::closeAtOnce(),
        testing::closeWithoutReply(), testing::reset(), testing::filler(limit + 1)}) {
    app.play(behaviour);
    exchangeAt(app.path());
    ASSERT_TRUE(app.waitUntilOver(++connections));
    EXPECT_EQ(openDescriptors(), before) << "after exchange " << connections;
  }
  exchangeAt(directory.pathOf("missing.sock"));
  exchangeAt(std::string(104, 's'));
  EXPECT_EQ(openDescriptors(), before);
}

// Decoded

TEST_F(Transport, DecodesTheReply) {
  struct Row {
    const char* name;
    Behaviour behaviour;
    std::optional<std::string> message;
    std::size_t bytes;
  };
  const std::string good = R"({"kind":"written","message":"done"})";
  const Row rows[] = {
      {"a response", testing::reply(good), "done", good.size()},
      {"only the first of two", testing::twoReplies(good, "{}"), "done", good.size()},
      {"closed instead of terminated", testing::replyUnterminated(good), "done", good.size()},
      {"an error of the app", testing::reply(R"({"kind":"error","message":"no"})"), "no", 31},
      {"an empty reply", testing::terminatorFirst(good), std::nullopt, 0},
      {"not JSON", testing::reply("done"), std::nullopt, 4},
      {"cut short", testing::replyUnterminated(R"({"kind":"written")"), std::nullopt, 17},
      {"no kind", testing::reply("{}"), std::nullopt, 2},
      {"an unknown kind", testing::reply(R"({"kind":"odd"})"), std::nullopt, 14},
      {"no reply", testing::closeWithoutReply(), std::nullopt, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    app.play(row.behaviour);
    const Exchange answer = BridgeTransport::send(request(), app.path());
    ASSERT_EQ(answer.response.has_value(), row.message.has_value());
    if (row.message) {
      EXPECT_EQ(answer.response->message, row.message);
    }
    EXPECT_EQ(answer.bytes, row.bytes);
  }
}

// The bridge of a seat

TEST_F(Transport, SendsOverTheSocketOfTheBridge) {
  SocketBridge bridge({app.path(), "", ""});
  app.play(testing::reply(R"({"kind":"empty"})"));
  const Exchange answered = bridge.send(request());
  ASSERT_TRUE(answered.response);
  EXPECT_EQ(answered.response->kind, TeamworkResponse::Kind::empty);
  EXPECT_EQ(answered.bytes, 16u);
  const Exchange failed = bridge.send(request());
  EXPECT_FALSE(failed.response);
  EXPECT_EQ(failed.bytes, 0u);
  // One try each: trying again is for the caller to decide.
  EXPECT_EQ(app.connections().size(), 2u);
}

TEST(SocketBridgeToken, IsTheFilesOrElseTheOneGivenAtStart) {
  struct Row {
    const char* name;
    std::optional<std::string> file;
    std::string token;
  };
  const Row rows[] = {
      {"plain", "t0k", "t0k"},
      {"blanks and a newline", "  abc123\n", "abc123"},
      {"a blank before and a newline after", " t0k\n", "t0k"},
      {"a carriage return", "t0k\r\n", "t0k"},
      {"white space beyond ASCII", "\u00A0\u2028t0k\u3000\u0085", "t0k"},
      {"white space inside stays", "\nt0 k\nx\n", "t0 k\nx"},
      {"empty", "", " start "},
      {"blank", " \t\r\n\u00A0", " start "},
      {"not UTF-8", "t0k\xFF", " start "},
      {"missing", std::nullopt, " start "},
  };
  for (const Row& row : rows) {
    const TempDir directory;
    if (row.file) directory.write("a.token", *row.file);
    SocketBridge bridge({"", directory.pathOf("a.token"), " start "});
    EXPECT_EQ(bridge.currentToken(), row.token) << row.name;
  }
}

TEST(SocketBridgeToken, IsTheStartTokenWhenThereIsNoPathToAFile) {
  const TempDir directory;
  EXPECT_EQ(SocketBridge({"", "", "start"}).currentToken(), "start");
  EXPECT_EQ(SocketBridge({"", "", ""}).currentToken(), "");
  EXPECT_EQ(SocketBridge({"", directory.path(), "start"}).currentToken(), "start");
}

TEST(SocketBridgeToken, IsReadAfreshEachTime) {
  const TempDir directory;
  SocketBridge bridge({"", directory.pathOf("a.token"), "start"});
  EXPECT_EQ(bridge.currentToken(), "start");
  directory.write("a.token", "one\n");
  EXPECT_EQ(bridge.currentToken(), "one");
  directory.write("a.token", "two\n");
  EXPECT_EQ(bridge.currentToken(), "two");
  directory.write("a.token", "\n");
  EXPECT_EQ(bridge.currentToken(), "start");
}

}  // namespace
}  // namespace quillpost
