// A harness on another machine, which is this one. With a real sshd the same is tried in
// ssh_test.cpp.

#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct There {
  CommandedBoard board;
  testing::TempDir bin;
  std::string programs = std::string(std::filesystem::path(testing::boardProgram()).parent_path());

  There() {
    std::filesystem::permissions(bin.write("ssh", sshToHere), std::filesystem::perms::owner_all);
  }

  std::map<std::string, std::string> variables() const {
    return {{"PATH", bin.path() + ":/usr/bin:/bin"},
            {"THERE", programs + ":/usr/bin:/bin"},
            {"HERE", "kept here"}};
  }
  Said run(const std::string& host, std::vector<std::string> command,
           std::string_view there = {}) const {
    std::vector<std::string> words = {"run", "--host", host};
    words.insert(words.end(), command.begin(), command.end());
    auto with = variables();
    if (!there.empty()) with["THERE"] = there;
    return board.type(words, with);
  }
  std::string seats() const { return board.type({"seats"}).output; }
};

constexpr const char* noSeats = "There is nothing to show.\n";

bool isGone(const std::string& path) {
  const Instant deadline = SteadyClock().now() + realPatience;
  while (std::filesystem::exists(path) && isBefore(deadline)) continue;
  return !std::filesystem::exists(path);
}

TEST(RemoteRun, ReachesTheBoardFromThereAndLeavesNothingBehind) {
  const There there;
  const Said said =
      there.run("bo@there",
                {"sh", "-c",
                 "qp register >/dev/null && qp agents >/dev/null && "
                 "dirname \"$QUILLPOST_COLLAB_SOCKET\"; ls -ld $(dirname "
                 "\"$QUILLPOST_COLLAB_SOCKET\"); ls -l \"$QUILLPOST_COLLAB_TOKEN_FILE\"; exit 9"});
  EXPECT_EQ(said.status, 9) << said.errors;
  const std::string folder = said.output.substr(0, said.output.find('\n'));
  EXPECT_THAT(folder, StartsWith("/tmp/quillpost."));
  EXPECT_THAT(said.output, HasSubstr("\ndrwx------"));
  EXPECT_THAT(said.output, HasSubstr("\n-rw-------"));
  EXPECT_TRUE(isGone(folder));
  EXPECT_EQ(there.seats(), noSeats);
}

TEST(RemoteRun, WordsArriveAsTheyWere) {
  const There there;
  EXPECT_EQ(there.run("there", {"printf", "<%s>", "a b", "it's", "$HOME `id`", "", "\"*\""}).output,
            "<a b><it's><$HOME `id`><><\"*\">");
}

TEST(RemoteRun, AMissingProgramIsNamedInWords) {
  const There there;
  const Said said = there.run("there", {"true"}, "/usr/bin:/bin");
  EXPECT_EQ(said.status, 1);
  EXPECT_THAT(said.errors, HasSubstr("on there there is no quillpost-teamwork on the PATH"));
  EXPECT_EQ(there.seats(), noSeats);
}

TEST(RemoteRun, AMachineThatIsNotReachedOrCarriesNoSocketIsToldOf) {
  const There there;
  Said said = there.run("nowhere", {"true"});
  EXPECT_EQ(said.status, 1);
  EXPECT_THAT(said.errors, HasSubstr("cannot reach nowhere by ssh"));
  said = there.run("walled", {"true"});
  EXPECT_EQ(said.status, 1);
  EXPECT_THAT(said.errors, HasSubstr("AllowStreamLocalForwarding"));
  EXPECT_EQ(there.run("-oProxyCommand=x", {"true"}).status, 1) << "never an option of ssh";
  EXPECT_EQ(there.seats(), noSeats);
}

TEST(RemoteRun, TheFolderIsGoneWhenThisSideIsKilled) {
  const There there;
  testing::Process process({testing::boardProgram(),
                            {"--dir", there.board.directory().path(), "run", "--host", "there",
                             "sh", "-c", "echo \"$QUILLPOST_COLLAB_TOKEN_FILE\"; exec sleep 1"},
                            there.variables()});
  const std::string token = process.readLine().value_or("");
  EXPECT_TRUE(std::filesystem::exists(token)) << token;
  process.signal(SIGKILL);
  EXPECT_TRUE(isGone(token.substr(0, token.rfind('/'))));
}

}  // namespace
}  // namespace quillpost::board
