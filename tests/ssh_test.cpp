// `quillpost-board run --host` through a real sshd, which listens on the loopback address for the
// length of a test.

#include "base/clock.h"
#include "base/text.h"
#include "base/unique_fd.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillpost {
namespace {

using testing::Command;
using ::testing::HasSubstr;
using testing::Process;
using ::testing::StartsWith;
using testing::TempDir;

constexpr Duration patience = std::chrono::seconds(60);

bool isBefore(Instant deadline) { return SteadyClock().now() < deadline; }

/// A port of the loopback address that nobody listens on.
int freePort() {
  const UniqueFd socket(::socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* const any = reinterpret_cast<sockaddr*>(&address);
  EXPECT_EQ(::bind(socket.get(), any, length), 0);
  EXPECT_EQ(::getsockname(socket.get(), any, &length), 0);
  return ntohs(address.sin_port);
}

int statusOf(const std::string& program, std::vector<std::string> arguments) {
  Process process({program, std::move(arguments), {{"PATH", "/usr/sbin:/usr/bin:/bin"}}});
  process.closeInput();
  return process.waitForExit(patience).value_or(-1);
}

/// An sshd with keys of its own, a board, and an ssh that knows both ends.
class Machines {
 public:
  Machines() {
    for (const char* name : {"host", "user"})
      EXPECT_EQ(statusOf("/usr/bin/ssh-keygen",
                         {"-q", "-t", "ed25519", "-N", "", "-f", dir_.pathOf(name)}),
                0);
    dir_.write("authorized", testing::readFile(dir_.pathOf("user.pub")));
    const std::string port = text::cat(freePort());
    dir_.write("sshd_config",
               text::cat("ListenAddress 127.0.0.1:", port, "\nHostKey ", dir_.pathOf("host"),
                         "\nAuthorizedKeysFile ", dir_.pathOf("authorized"),
                         "\nPidFile none\nStrictModes no\nUsePAM no\nPasswordAuthentication no\n",
                         "PermitRootLogin yes\nSetEnv PATH=", programs(), ":/usr/bin:/bin\n"));
    dir_.write("ssh_config", text::cat("Host there\n HostName 127.0.0.1\n Port ", port,
                                       "\n IdentityFile ", dir_.pathOf("user"),
                                       "\n IdentitiesOnly yes\n UserKnownHostsFile /dev/null\n"
                                       " StrictHostKeyChecking no\n LogLevel ERROR\n"));
    std::filesystem::permissions(
        dir_.write("bin/ssh", text::cat("#!/bin/sh\nexec /usr/bin/ssh -F ",
                                        dir_.pathOf("ssh_config"), " \"$@\"\n")),
        std::filesystem::perms::owner_all);
    // sshd wants this folder where it is started by hand.
    if (::geteuid() == 0) std::filesystem::create_directories("/run/sshd");
    sshd_ = std::make_unique<Process>(
        Command{QUILLPOST_SSHD, {"-D", "-e", "-f", dir_.pathOf("sshd_config")}, {}});
    board_ = std::make_unique<Process>(
        Command{testing::boardProgram(), {"serve", "--dir", dir_.pathOf("b")}, {}});
    const Instant deadline = SteadyClock().now() + patience;
    while (type({"thread", "main"}) != "Made the thread" && isBefore(deadline)) continue;
    while (statusOf(dir_.pathOf("bin/ssh"), {"there", "true"}) != 0 && isBefore(deadline)) continue;
  }

  static std::string programs() {
    return std::filesystem::path(testing::boardProgram()).parent_path().string();
  }

  Command run(std::vector<std::string> command) const {
    std::vector<std::string> words = {"--dir", dir_.pathOf("b"), "run", "--host", "there"};
    words.insert(words.end(), command.begin(), command.end());
    return {testing::boardProgram(), words, {{"PATH", dir_.pathOf("bin") + ":/usr/bin:/bin"}}};
  }

  /// The first words of what a command of the person's prints.
  std::string type(std::vector<std::string> words) const {
    words.insert(words.begin(), {"--dir", dir_.pathOf("b")});
    Process process({testing::boardProgram(), words, {}});
    return process.restOfOutput().substr(0, 15);
  }

  /// Kills every ssh of this side.
  void breakConnections() const {
    statusOf("/bin/sh", {"-c", "pkill -KILL -f \"ssh -F " + dir_.pathOf("ssh_config") + "\""});
  }

 private:
  TempDir dir_;
  std::unique_ptr<Process> sshd_, board_;
};

bool isGone(const std::string& path) {
  const Instant deadline = SteadyClock().now() + patience;
  while (std::filesystem::exists(path) && isBefore(deadline)) continue;
  return !std::filesystem::exists(path);
}

constexpr const char* noSeats = "There is nothin";

TEST(Ssh, AHarnessOnAnotherMachineSitsAtTheBoard) {
  const Machines machines;
  Process process(machines.run(
      {"sh", "-c",
       "qp register then add 'From there' | grep -c Added; dirname $QUILLPOST_COLLAB_SOCKET; "
       "stat -c %a $(dirname $QUILLPOST_COLLAB_SOCKET) $QUILLPOST_COLLAB_TOKEN_FILE; exit 5"}));
  EXPECT_EQ(process.readLine(patience), "1");
  const std::string folder = process.readLine(patience).value_or("");
  EXPECT_THAT(folder, StartsWith("/tmp/quillpost."));
  EXPECT_EQ(process.readLine(patience), "700");
  EXPECT_EQ(process.readLine(patience), "600");
  EXPECT_EQ(process.waitForExit(patience), 5) << process.errors();
  EXPECT_TRUE(isGone(folder));
  EXPECT_EQ(machines.type({"seats"}), noSeats);
}

TEST(Ssh, ABrokenConnectionLeavesNothingThere) {
  const Machines machines;
  Process process(machines.run({"sh", "-c", "echo $QUILLPOST_COLLAB_TOKEN_FILE; exec sleep 50"}));
  const std::string token = process.readLine(patience).value_or("");
  EXPECT_TRUE(std::filesystem::exists(token)) << token;
  machines.breakConnections();
  EXPECT_TRUE(process.waitForExit(patience));
  EXPECT_TRUE(isGone(token.substr(0, token.rfind('/'))));
  EXPECT_EQ(machines.type({"seats"}), noSeats);
}

TEST(Ssh, ThisSideKilledLeavesNothingThereEither) {
  const Machines machines;
  Process process(machines.run({"sh", "-c", "echo $QUILLPOST_COLLAB_TOKEN_FILE; exec sleep 5"}));
  const std::string token = process.readLine(patience).value_or("");
  process.signal(SIGKILL);
  EXPECT_TRUE(isGone(token.substr(0, token.rfind('/'))));
}

}  // namespace
}  // namespace quillpost
