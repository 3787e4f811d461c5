// The program against the world at its worst: clients that flood it, that read slowly or not at
// all, and apps that answer nonsense. It answers what can be answered, and keeps nothing.

#include "base/text.h"
#include "base/unique_fd.h"
#include "harness/golden.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/sanitized.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <future>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace quillpost::testing {
namespace {

constexpr std::size_t oneMiB = std::size_t{1} << 20;
constexpr std::size_t longestReply = 16 * oneMiB;

constexpr std::string_view ping = R"({"id":"still there","method":"ping"})";
constexpr std::string_view pong = R"({"jsonrpc":"2.0","result":{},"id":"still there"})";
constexpr std::string_view call =
    R"({"id":1,"method":"tools/call","params":{"name":"read_messages"}})";
constexpr std::string_view nothingNew = R"({"kind":"empty","message":"Nothing new."})";

std::string textAnswer(std::string_view escapedText) {
  return text::cat(R"({"jsonrpc":"2.0","result":{"content":[{"type":"text","text":")", escapedText,
                   R"("}],"isError":false},"id":1})");
}

const std::string unreachable = textAnswer(
    "Couldn't reach the Quillpost app just now — a transient local connection hiccup, NOT a sign "
    "your Thread ended or that you left it. Your Thread is still active. Wait a moment and retry "
    "this call.");

class Faults : public ::testing::Test {
 protected:
  std::map<std::string, std::string> seat() const {
    return {{"HOME", home.path()},
            {"PATH", "/usr/bin:/bin"},
            {"QUILLPOST_SESSION_ID", "S-7"},
            {"QUILLPOST_COLLAB_TOKEN", "start"},
            {"QUILLPOST_COLLAB_SOCKET", app.path()}};
  }

  Command server() const { return {testing::seatProgram(), {}, seat()}; }

  /// A shell that becomes, or starts, the program it gets as "$0".
  Command shell(const std::string& script, const std::string& argument = "") const {
    return {"/bin/sh", {"-c", script, testing::seatProgram(), argument}, seat()};
  }

  TempDir home;
  ScriptedApp app{home.pathOf("a.sock")};
};

void expectAlive(Process& process) {
  EXPECT_TRUE(process.writeLine(ping));
  EXPECT_EQ(process.readLine(), pong);
}

void expectQuietEnd(Process& process) {
  process.closeInput();
  EXPECT_EQ(process.waitForExit(), 0);
  EXPECT_EQ(process.restOfOutput(), "");
  EXPECT_EQ(process.errors(), "");
}

std::string nested(std::size_t depth, std::string_view open, std::string_view close) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += open;
  for (std::size_t i = 0; i < depth; ++i) text += close;
  return text;
}

// Clients

TEST_F(Faults, ALineOf64MegabytesIsReadLikeAnyOther) {
  Process process(server());
  const std::string filling(64 * oneMiB, 'x');
  EXPECT_TRUE(process.writeLine(filling));
  EXPECT_TRUE(process.writeLine(R"({"id":"long","method":"ping","params":")" + filling + "\"}"));
  EXPECT_EQ(process.readLine(), R"({"jsonrpc":"2.0","result":{},"id":"long"})");
  expectAlive(process);
  expectQuietEnd(process);
}

TEST_F(Faults, AFloodOfPingsInOneWriteIsAnsweredInOrder) {
  constexpr int count = 100'000;
  std::string flood, answers;
  for (int i = 0; i < count; ++i) {
    flood += text::cat(R"({"jsonrpc":"2.0","id":)", i, R"(,"method":"ping"})", "\n");
    answers += text::cat(R"({"jsonrpc":"2.0","result":{},"id":)", i, "}\n");
  }
  Process process(server());
  EXPECT_TRUE(process.write(flood));
  process.closeInput();
  EXPECT_EQ(process.waitForExit(), 0);
  EXPECT_TRUE(sameText(answers, process.restOfOutput()));
}

TEST_F(Faults, NoDepthOfBracketsCrashesIt) {
  constexpr std::size_t million = 1'000'000, accepted = 499;
  Process process(server());
  EXPECT_TRUE(process.writeLine(std::string(million, '[')));
  EXPECT_TRUE(process.writeLine(std::string(million, '{')));
  EXPECT_TRUE(process.writeLine(nested(million, "[", "]")));
  EXPECT_TRUE(process.writeLine(nested(million, R"({"id":)", "}")));
  expectAlive(process);
  const std::string id = nested(accepted, "[", "]");
  EXPECT_TRUE(process.writeLine(R"({"id":)" + id + R"(,"method":"ping"})"));
  EXPECT_EQ(process.readLine(), R"({"jsonrpc":"2.0","result":{},"id":)" + id + "}");

  app.play(reply(R"({"kind":"empty","message":"m","later":)" + nested(accepted, "[", "]") + "}"));
  EXPECT_TRUE(process.writeLine(call));
  EXPECT_EQ(process.readLine(), textAnswer("m"));
  app.otherwise([&](const std::string&) {
    return reply(R"({"kind":"empty","later":)" + nested(million, R"([{"a":)", "}]") + "}");
  });
  EXPECT_TRUE(process.writeLine(call));
  EXPECT_TRUE(process.readLine());
  expectAlive(process);
  expectQuietEnd(process);
}

TEST_F(Faults, AClientThatReadsSlowlyLosesNothing) {
  // The reader waits at a gate, and the answers are far more than a pipe holds.
  const std::string gate = home.pathOf("gate");
  ASSERT_EQ(::mkfifo(gate.c_str(), S_IRUSR | S_IWUSR), 0);
  app.otherwise([](const std::string&) { return reply(nothingNew); });
  Process slow(shell(R"("$0" | { read go <"$1"; cat; })", gate));
  std::string requests = text::cat(call, "\n");
  for (int i = 0; i < 20; ++i)
    requests += R"({"id":2,"method":"tools/list"})"
                "\n";
  requests += text::cat(ping, "\n");
  EXPECT_TRUE(slow.write(requests));
  slow.closeInput();
  EXPECT_TRUE(app.waitForRequests(1));
  const UniqueFd opened(::open(gate.c_str(), O_WRONLY));
  EXPECT_EQ(::write(opened.get(), "\n", 1), 1);

  EXPECT_EQ(slow.readLine(), textAnswer("Nothing new."));
  const std::optional<std::string> list = slow.readLine();
  ASSERT_TRUE(list);
  EXPECT_GT(list->size(), oneMiB / 64);
  for (int i = 1; i < 20; ++i) EXPECT_EQ(slow.readLine(), list);
  EXPECT_EQ(slow.readLine(), pong);
  EXPECT_EQ(slow.waitForExit(), 0);
}

TEST_F(Faults, AClientThatIsGoneEndsItAsTheSystemHasIt) {
  Process process(server());
  expectAlive(process);
  process.closeOutput();
  process.writeLine(ping);
  EXPECT_EQ(process.waitForExit(), 128 + SIGPIPE);
  EXPECT_EQ(process.errors(), "");
}

TEST_F(Faults, AClientThatIsGoneEndsItQuietlyWhereThatSignalIsIgnored) {
  Process process(shell(R"(trap '' PIPE; exec "$0")"));
  expectAlive(process);
  process.closeOutput();
  process.writeLine(ping);
  // Its input is still open: the client that no longer reads is what ends it.
  EXPECT_EQ(process.waitForExit(), 0);
  EXPECT_EQ(process.errors(), "");
}

// Apps

TEST_F(Faults, AnAppThatAnswersNonsenseIsUnreachableAndCostsNoDescriptor) {
  struct Fault {
    const char* name;
    Behaviour behaviour;
  };
  const Fault faults[] = {
      {"closes without a reply", closeWithoutReply()},
      {"closes with the request unread", reset()},
      {"closes at once", closeAtOnce()},
      {"a reply that is cut", replyUnterminated(R"({"kind":"empty","mess)")},
      {"an empty reply", reply("")},
      {"a terminator first", terminatorFirst(nothingNew)},
      {"too long a reply", filler(longestReply + 1)},
      {"too long a reply without an end", fillerUnterminated(longestReply + oneMiB)},
      {"not JSON", reply("empty")},
      {"not an object", reply(R"(["empty"])")},
      {"not text", reply("{\"kind\":\"empty\",\"message\":\"\xFF\"}")},
      {"more than one object", reply(R"({"kind":"empty"}{})")},
      {"no kind", reply(R"({"message":"m"})")},
      {"an unknown kind", reply(R"({"kind":"register"})")},
      {"a kind of the wrong type", reply(R"({"kind":["empty"]})")},
      {"a required key is missing", reply(R"({"kind":"plan","plan":{"threadName":"T"}})")},
      {"a required key is null", reply(R"({"kind":"task","task":{"id":null}})")},
      {"a key of the wrong type", reply(R"({"kind":"empty","message":5})")},
      {"a number that is too large", reply(R"({"kind":"empty","rev":9223372036854775808})")},
  };
  constexpr std::size_t tries = 3;
  Process process(server());
  expectAlive(process);
  const std::optional<std::size_t> descriptors = process.openDescriptors();
  std::size_t connections = 0;
  for (const Fault& fault : faults) {
    SCOPED_TRACE(fault.name);
    for (std::size_t i = 0; i < tries; ++i) app.play(fault.behaviour);
    EXPECT_TRUE(process.writeLine(call));
    EXPECT_EQ(process.readLine(), unreachable);
    EXPECT_EQ(app.connections().size(), connections += tries);
  }
  EXPECT_GE(connections, 50u);

  app.play(reply(nothingNew));
  EXPECT_TRUE(process.writeLine(call));
  EXPECT_EQ(process.readLine(), textAnswer("Nothing new."));
  EXPECT_EQ(process.openDescriptors(), descriptors);
  expectQuietEnd(process);
}

TEST_F(Faults, AnAppThatHangsUpAfterALongSilenceIsTriedAgain) {
  app.play(stall(R"({"kind":"empty",)"));
  app.otherwise([](const std::string&) { return reply(nothingNew); });
  Process process(server());
  EXPECT_TRUE(process.writeLine(call));
  EXPECT_TRUE(app.waitForRequests(1));
  app.release();
  EXPECT_EQ(process.readLine(), textAnswer("Nothing new."));
  EXPECT_EQ(app.connections().size(), 2u);
}

TEST_F(Faults, BeingStoppedAndContinuedDoesNotLoseAReply) {
  std::promise<void> enough;
  const std::shared_future<void> wait = enough.get_future().share();
  app.otherwise([wait](const std::string&) {
    wait.wait();
    return reply(nothingNew);
  });
  Process process(server());
  EXPECT_TRUE(process.writeLine(call));
  EXPECT_TRUE(app.waitForRequests(1));
  for (int i = 0; i < 100; ++i) {
    process.signal(SIGSTOP);
    process.residentBytes();
    process.signal(SIGCONT);
  }
  enough.set_value();
  EXPECT_EQ(process.readLine(), textAnswer("Nothing new."));
  EXPECT_EQ(app.connections().size(), 1u);
}

// Memory, where the system tells how much there is, and no sanitizer adds its own

#if defined(__linux__) && !QUILLPOST_SANITIZED
TEST_F(Faults, ItIsSmallWhenIdleAndAfterTheLongestReplyAgain) {
  constexpr std::size_t smallest = 6 * oneMiB, growth = 4 * oneMiB;
  Process process(server());
  expectAlive(process);
  const std::size_t idle = process.residentBytes().value_or(smallest);
  EXPECT_LT(idle, smallest);

  const std::string frame = R"({"kind":"empty","message":""})";
  const std::string words(longestReply - frame.size(), 'm');
  app.play(reply(R"({"kind":"empty","message":")" + words + R"("})"));
  EXPECT_TRUE(process.writeLine(call));
  EXPECT_EQ(process.readLine(), textAnswer(words));
  expectAlive(process);
  EXPECT_LT(process.residentBytes().value_or(idle + growth), idle + growth);
}
#endif

}  // namespace
}  // namespace quillpost::testing
