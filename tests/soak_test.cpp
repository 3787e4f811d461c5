// One process for a long day: two hundred thousand calls and two hundred waits, each with its own
// answer in its own place, and nothing gathered on the way.

#include "base/text.h"
#include "base/unique_fd.h"
#include "bridge/unix_socket.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace quillpost {
namespace {

using testing::Process;
using testing::TempDir;
using text::cat;

constexpr int64_t calls = 200'000, waits = 200, callsPerWait = calls / waits;
constexpr int64_t callsAtOnce = 100;  // are under way before the first answer is read
constexpr int64_t warmUp = 10 * callsPerWait;
constexpr std::size_t mebibyte = std::size_t{1} << 20;

/// How much the app adds to its answer to a call: every size up to some thousand bytes comes.
std::string padding(int64_t number) {
  return std::string(static_cast<std::size_t>(number * 7919 % 5000), '.');
}

/// An app that answers each call with the number it finds in it, and each poll with news; one
/// connection after the other, as fast as it can, keeping nothing.
class TirelessApp {
 public:
  explicit TirelessApp(std::string path) : path_(std::move(path)), listener_(openUnixSocket()) {
    EXPECT_TRUE(bindUnixSocket(listener_, path_));
    EXPECT_EQ(::listen(listener_.get(), 16), 0);
    thread_ = std::thread([this] { serve(); });
  }
  ~TirelessApp() {
    stopping_ = true;
    connectUnixSocket(openUnixSocket(), path_);
    thread_.join();
  }
  TirelessApp(const TirelessApp&) = delete;
  TirelessApp& operator=(const TirelessApp&) = delete;

  const std::string& path() const { return path_; }

 private:
  void serve() {
    while (!stopping_) {
      const UniqueFd connection(::accept(listener_.get(), nullptr, nullptr));
      if (connection && !stopping_) answer(connection);
    }
  }

  void answer(const UniqueFd& connection) {
    std::string request;
    std::array<char, 4096> chunk;
    while (request.find('\n') == std::string::npos) {
      const ssize_t count = ::read(connection.get(), chunk.data(), chunk.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return;
      request.append(chunk.data(), static_cast<std::size_t>(count));
    }
    const std::string reply = replyTo(request) + "\n";
    for (std::string_view rest = reply; !rest.empty();) {
      const ssize_t count = sendSome(connection, rest);
      if (count <= 0) return;
      rest.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  std::string replyTo(std::string_view request) {
    if (request.find("\"poll_changes\"") != std::string_view::npos) {
      return cat(R"({"kind":"changes","changes":{"rev":)", ++rev_,
                 R"(,"changed":true,"goal":"g","goalComplete":false,"pendingGoalComplete":false,)",
                 R"("changeKinds":["k"],"tasks":[]}})");
    }
    constexpr std::string_view note = R"("note":")";
    const std::size_t at = request.find(note);
    if (at == std::string_view::npos) return R"({"kind":"registered"})";  // the wait's heartbeat
    const std::string_view number = request.substr(at + note.size());
    const std::string_view digits = number.substr(0, number.find('"'));
    return cat(R"({"kind":"error","message":")", digits, " ",
               padding(text::parseInteger(digits).value_or(0)), R"("})");
  }

  std::string path_;
  UniqueFd listener_;
  std::atomic<bool> stopping_ = false;
  int64_t rev_ = 0;
  std::thread thread_;
};

std::string call(int64_t number) {
  return cat(R"({"id":)", number, R"(,"method":"tools/call","params":{"name":"comment_task",)",
             R"("arguments":{"taskID":"t1","text":")", number, R"("}}})", "\n");
}

std::string answerTo(int64_t number) {
  return cat(R"({"jsonrpc":"2.0","result":{"content":[{"type":"text","text":")", number, " ",
             padding(number), R"("}],"isError":false},"id":)", number, "}");
}

/// Makes the calls from `first` on, some at once. False when an answer is not the next one.
bool makeCalls(Process& process, int64_t first) {
  for (int64_t next = first; next < first + callsPerWait; next += callsAtOnce) {
    std::string lines;
    for (int64_t number = next; number < next + callsAtOnce; ++number) lines += call(number);
    if (!process.write(lines)) return false;
    for (int64_t number = next; number < next + callsAtOnce; ++number) {
      const std::optional<std::string> line = process.readLine();
      EXPECT_EQ(line, answerTo(number));
      if (line != answerTo(number)) return false;
    }
  }
  return true;
}

/// Waits once; the app has news at once. False when the answer is another.
bool makeWait(Process& process, int64_t number) {
  process.writeLine(cat(R"({"id":"wait )", number,
                        R"(","method":"tools/call","params":{"name":"wait_for_changes"}})"));
  const std::optional<std::string> line = process.readLine();
  const bool isRight =
      line &&
      line->find(cat(R"(\"waitSeq\":)", number, R"(,\"rev\":)", number)) != std::string::npos &&
      line->ends_with(cat(R"("id":"wait )", number, R"("})"));
  EXPECT_TRUE(isRight) << line.value_or("nothing");
  return isRight;
}

TEST(Soak, ALongDayLeavesNothingBehindAndMixesNothingUp) {
  const TempDir home;
  const TirelessApp app(home.pathOf("a.sock"));
  Process process({testing::seatProgram(),
                   {},
                   {{"HOME", home.path()},
                    {"QUILLPOST_SESSION_ID", "S1"},
                    {"QUILLPOST_COLLAB_TOKEN", "t0k"},
                    {"QUILLPOST_COLLAB_SOCKET", app.path()}}});
  std::size_t bytes = 0, descriptors = 0;
  for (int64_t number = 1; number <= waits; ++number) {
    ASSERT_TRUE(makeCalls(process, (number - 1) * callsPerWait + 1));
    ASSERT_TRUE(makeWait(process, number));
    if (number * callsPerWait == warmUp) {
      bytes = process.residentBytes().value_or(0);
      descriptors = process.openDescriptors().value_or(0);
    }
  }
  EXPECT_LT(process.residentBytes().value_or(0), bytes + mebibyte);
  EXPECT_EQ(process.openDescriptors().value_or(0), descriptors);
  RecordProperty("resident kilobytes warm", static_cast<int>(bytes / 1024));
  RecordProperty("resident kilobytes at the end",
                 static_cast<int>(process.residentBytes().value_or(0) / 1024));
  process.closeInput();
  EXPECT_EQ(process.waitForExit(), 0);
  EXPECT_EQ(process.errors(), "");
}

}  // namespace
}  // namespace quillpost
