#include "bridge/discovery.h"

#include "base/text.h"
#include "bridge/unix_socket.h"
#include "harness/fake_environment.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include <unistd.h>

namespace quillpost {
namespace {

using testing::FullBacklog;
using testing::ScriptedApp;
using testing::TempDir;
using Kind = BridgeDiscovery::Kind;
using Paths = std::vector<std::string>;

// Names

TEST(BridgeKind, HasOneWordInBothDirections) {
  struct Row {
    Kind kind;
    std::string_view word;
  };
  for (const Row& row :
       {Row{Kind::mcp, "mcp"}, Row{Kind::teamwork, "teamwork"}, Row{Kind::vault, "vault"}}) {
    EXPECT_EQ(json::wordFor(row.kind), row.word);
    EXPECT_EQ(json::fromWord<Kind>(row.word), row.kind);
  }
  for (const std::string_view unknown : {"", "Teamwork", "teamwork-", "team", "vaults"})
    EXPECT_EQ(json::fromWord<Kind>(unknown), std::nullopt) << unknown;
}

TEST(BridgeCandidate, IsEqualWhenBothPathsAre) {
  const BridgeDiscovery::Candidate one{"/a.sock", "/a.token"};
  EXPECT_EQ(one, (BridgeDiscovery::Candidate{"/a.sock", "/a.token"}));
  EXPECT_NE(one, (BridgeDiscovery::Candidate{"/b.sock", "/a.token"}));
  EXPECT_NE(one, (BridgeDiscovery::Candidate{"/a.sock", "/b.token"}));
}

TEST(SiblingSocketPath, ChangesWhatStandsBeforeTheFirstDash) {
  struct Row {
    const char* name;
    std::string_view path;
    Kind kind;
    std::string_view sibling;
  };
  for (const Row& row : {
           Row{"another service", "/d/mcp-K7.sock", Kind::teamwork, "/d/teamwork-K7.sock"},
           Row{"the same service", "/d/teamwork-K7.sock", Kind::teamwork, "/d/teamwork-K7.sock"},
           Row{"the vault", "/d/mcp-K7.sock", Kind::vault, "/d/vault-K7.sock"},
           Row{"several dashes", "/d/a-b-c.sock", Kind::teamwork, "/d/teamwork-b-c.sock"},
           Row{"a dash first", "/d/-x.sock", Kind::mcp, "/d/mcp-x.sock"},
           Row{"a dash last", "/d/mcp-", Kind::teamwork, "/d/teamwork-"},
           Row{"no dash", "/d/socket.sock", Kind::teamwork, ""},
           Row{"a dash in the directory alone", "/d-e/socket.sock", Kind::teamwork, ""},
           Row{"a dash in both", "/d-e/mcp-K.sock", Kind::teamwork, "/d-e/teamwork-K.sock"},
           Row{"no directory", "mcp-K.sock", Kind::teamwork, "teamwork-K.sock"},
           Row{"the root", "/mcp-K.sock", Kind::teamwork, "/teamwork-K.sock"},
           Row{"a directory written oddly", "/d/../e//mcp-K.sock", Kind::teamwork,
               "/d/../e//teamwork-K.sock"},
           Row{"a slash at the end", "/d/mcp-K.sock/", Kind::teamwork, "/d/teamwork-K.sock"},
           Row{"blanks and letters beyond ASCII", "/a b/é-ü.sock", Kind::teamwork,
               "/a b/teamwork-ü.sock"},
           Row{"empty", "", Kind::teamwork, ""},
       }) {
    EXPECT_EQ(BridgeDiscovery::siblingSocketPath(row.path, row.kind), row.sibling) << row.name;
  }
}

TEST(TokenPath, IsTheSocketsWithTheExtensionToken) {
  struct Row {
    std::string_view socket, token;
  };
  for (const Row& row : {
           Row{"/d/teamwork-K7.sock", "/d/teamwork-K7.token"},
           Row{"/d/plain", "/d/plain.token"},
           Row{"/d.e/plain", "/d.e/plain.token"},
           Row{"/d/a.b.sock", "/d/a.b.token"},
       }) {
    EXPECT_EQ(BridgeDiscovery::tokenPathFor(row.socket), row.token);
  }
}

/// A base directory, which is what a test gives to look in.
class Discovery : public ::testing::Test {
 protected:
  BridgeDiscovery::Where where() const { return {environment, base.path()}; }

  Paths candidatePaths(Kind kind = Kind::teamwork) const {
    Paths paths;
    for (const auto& candidate : BridgeDiscovery::candidates(kind, where()))
      paths.push_back(candidate.socketPath);
    return paths;
  }

  Paths sortedCandidatePaths(Kind kind = Kind::teamwork) const {
    Paths paths = candidatePaths(kind);
    std::ranges::sort(paths);
    return paths;
  }

  std::optional<std::string> live() const {
    return BridgeDiscovery::liveSocketPath(Kind::teamwork, where());
  }

  TempDir base;
  testing::FakeEnvironment environment;
};

// The seat file

TEST_F(Discovery, ReadsTheSecondLineOfTheSeatFile) {
  struct Row {
    const char* name;
    std::string file;
    std::optional<std::string> path;
  };
  for (const Row& row : {
           Row{"two lines", "X\n/d/mcp-K7.sock\n", "/d/mcp-K7.sock"},
           Row{"no line feed at the end", "X\n/d/mcp-K7.sock", "/d/mcp-K7.sock"},
           Row{"more lines", "X\n/d/a.sock\n/d/b.sock\n", "/d/a.sock"},
           Row{"an empty first line", "\n/d/a.sock\n", "/d/a.sock"},
           Row{"carriage returns", "X\r\n/d/a.sock\r\n", "/d/a.sock"},
           Row{"blanks around", "X\n \t/d/a b.sock\u00A0\n", "/d/a b.sock"},
           Row{"not a path", "X\nodd\n", "odd"},
           Row{"one line without a line feed", "/d/a.sock", std::nullopt},
           Row{"one line", "/d/a.sock\n", std::nullopt},
           Row{"an empty second line", "X\n\n/d/a.sock\n", std::nullopt},
           Row{"a blank second line", "X\n \t \n/d/a.sock\n", std::nullopt},
           Row{"carriage returns alone", "X\r/d/a.sock\r", std::nullopt},
           Row{"not UTF-8", "X\xFF\n/d/a.sock\n", std::nullopt},
           Row{"empty", "", std::nullopt},
       }) {
    base.write("Quillpost/agent-seat", row.file);
    EXPECT_EQ(BridgeDiscovery::seatSocketPath(where()), row.path) << row.name;
  }
}

TEST_F(Discovery, GivesNoSeatWithoutItsFile) {
  EXPECT_EQ(BridgeDiscovery::seatSocketPath(where()), std::nullopt);
  base.write("Quillpost-Beta/agent-seat", "X\n/d/a.sock\n");
  base.makeDirectory("Quillpost/agent-seat");
  EXPECT_EQ(BridgeDiscovery::seatSocketPath(where()), std::nullopt);
}

TEST_F(Discovery, LooksInTheSupportDirectoryWhenNoOtherIsGiven) {
  environment.variables["HOME"] = base.path();
  const std::string support = "Library/Application Support/Quillpost/";
  base.write(support + "agent-seat", "X\n/d/a.sock\n");
  const std::string socket = base.write(support + "teamwork-A.sock", "");
  EXPECT_EQ(BridgeDiscovery::seatSocketPath({environment}), "/d/a.sock");
  const auto candidates = BridgeDiscovery::candidates(Kind::teamwork, {environment});
  ASSERT_EQ(candidates.size(), 1u);
  EXPECT_EQ(candidates.front().socketPath, socket);
}

// Candidates

TEST_F(Discovery, TakesFilesByTheirNamesAlone) {
  for (const char* name :
       {"teamwork-A.sock", "teamwork-.sock", "teamwork-a-b.c.sock", "teamwork-é ü.sock",
        "teamwork.sock", "teamwork-A.socket", "teamwork-A.sock.old", "teamwork-A.token",
        "Teamwork-A.sock", "teamwork-A.SOCK", "xteamwork-A.sock", ".teamwork-A.sock", "mcp-A.sock",
        "vault-A.sock", "agent-seat"}) {
    base.write(std::string("Quillpost/") + name, "");
  }
  const auto in = [&](std::string_view name) {
    return base.pathOf("Quillpost/" + std::string(name));
  };
  EXPECT_EQ(sortedCandidatePaths(), (Paths{in("teamwork-.sock"), in("teamwork-A.sock"),
                                           in("teamwork-a-b.c.sock"), in("teamwork-é ü.sock")}));
  EXPECT_EQ(sortedCandidatePaths(Kind::mcp), Paths{in("mcp-A.sock")});
  EXPECT_EQ(sortedCandidatePaths(Kind::vault), Paths{in("vault-A.sock")});
}

TEST_F(Discovery, ScansTheAppsDirectoryAndItsSiblings) {
  for (const char* directory :
       {"Quillpost", "Quillpost-Beta", "Quillpost-", "Quillpost-a b", "QuillpostX", "quillpost",
        "quillpost-Beta", ".Quillpost-Hidden", "Other", "Quillpost/Quillpost-Below"}) {
    base.write(std::string(directory) + "/teamwork-A.sock", "");
  }
  base.write("Quillpost-File", "");
  base.write("teamwork-B.sock", "");
  EXPECT_EQ(sortedCandidatePaths(), (Paths{base.pathOf("Quillpost-/teamwork-A.sock"),
                                           base.pathOf("Quillpost-Beta/teamwork-A.sock"),
                                           base.pathOf("Quillpost-a b/teamwork-A.sock"),
                                           base.pathOf("Quillpost/teamwork-A.sock")}));
}

TEST_F(Discovery, PutsTheNewestFirst) {
  base.write("Quillpost/teamwork-middle.sock", "");
  base.write("Quillpost/teamwork-oldest.sock", "");
  base.write("Quillpost-Beta/teamwork-newest.sock", "");
  base.write("Quillpost-Beta/teamwork-older.sock", "");
  base.setModified("Quillpost/teamwork-oldest.sock", {1'000'000'000, 0});
  base.setModified("Quillpost-Beta/teamwork-older.sock", {1'500'000'000, 1'000'000});
  base.setModified("Quillpost/teamwork-middle.sock", {1'500'000'000, 2'000'000});
  base.setModified("Quillpost-Beta/teamwork-newest.sock", {1'600'000'000, 0});
  EXPECT_EQ(candidatePaths(), (Paths{base.pathOf("Quillpost-Beta/teamwork-newest.sock"),
                                     base.pathOf("Quillpost/teamwork-middle.sock"),
                                     base.pathOf("Quillpost-Beta/teamwork-older.sock"),
                                     base.pathOf("Quillpost/teamwork-oldest.sock")}));
}

TEST_F(Discovery, KeepsTheOrderOfListingAmongTheEquallyOld) {
  for (int i = 0; i < 40; ++i) {
    const std::string name = "Quillpost/teamwork-" + std::to_string(i) + ".sock";
    base.write(name, "");
    base.setModified(name, {1'000'000'000, 0});
  }
  const Paths listed = candidatePaths();
  ASSERT_EQ(listed.size(), 40u);
  // One that is newer moves to the front and leaves the others as they were.
  const std::string moved = listed[20];
  base.setModified(moved.substr(base.path().size() + 1), {1'000'000'001, 0});
  Paths expected = listed;
  std::rotate(expected.begin(), expected.begin() + 20, expected.begin() + 21);
  EXPECT_EQ(candidatePaths(), expected);
}

TEST_F(Discovery, GivesEachCandidateItsTokenPath) {
  base.write("Quillpost/teamwork-K7.sock", "");
  const auto candidates = BridgeDiscovery::candidates(Kind::teamwork, where());
  ASSERT_EQ(candidates.size(), 1u);
  EXPECT_EQ(candidates.front(),
            (BridgeDiscovery::Candidate{base.pathOf("Quillpost/teamwork-K7.sock"),
                                        base.pathOf("Quillpost/teamwork-K7.token")}));
}

TEST_F(Discovery, HasNoCandidatesWhereThereIsNothingToList) {
  EXPECT_TRUE(BridgeDiscovery::candidates(Kind::teamwork, where()).empty());
  base.makeDirectory("Quillpost");
  EXPECT_TRUE(BridgeDiscovery::candidates(Kind::teamwork, where()).empty());
  const BridgeDiscovery::Where missing{environment, base.pathOf("missing")};
  EXPECT_TRUE(BridgeDiscovery::candidates(Kind::teamwork, missing).empty());
}

// The live one

TEST_F(Discovery, ProbesEveryCandidateAndTakesTheOneThatIsLive) {
  base.write("Quillpost/teamwork-A.sock", "");
  base.write("Quillpost/teamwork-B.sock", "");
  base.write("Quillpost/teamwork-C.sock", "");
  struct Row {
    const char* name;
    std::string_view live;
    std::optional<std::string> found;
  };
  for (const Row& row : {
           Row{"none", "", std::nullopt},
           Row{"the first", "A", base.pathOf("Quillpost/teamwork-A.sock")},
           Row{"the last", "C", base.pathOf("Quillpost/teamwork-C.sock")},
           Row{"two", "AC", std::nullopt},
           Row{"all", "ABC", std::nullopt},
       }) {
    Paths probed;
    const auto probe = [&](const std::string& path) {
      probed.push_back(path);
      return row.live.find(path[path.size() - 6]) != std::string_view::npos;
    };
    EXPECT_EQ(BridgeDiscovery::liveSocketPath(Kind::teamwork, where(), probe), row.found)
        << row.name;
    EXPECT_EQ(probed, candidatePaths()) << row.name;
  }
}

TEST_F(Discovery, FindsTheOneSocketThatAcceptsConnections) {
  base.makeDirectory("Quillpost");
  const std::string deserted = base.pathOf("Quillpost/teamwork-A.sock");
  ASSERT_TRUE(bindUnixSocket(openUnixSocket(), deserted));
  base.write("Quillpost/teamwork-P.sock", "");
  EXPECT_EQ(live(), std::nullopt);

  ScriptedApp app(base.pathOf("Quillpost/teamwork-B.sock"));
  EXPECT_EQ(live(), app.path());
  ASSERT_TRUE(app.waitForRequests(1));
  EXPECT_EQ(app.connections().size(), 1u);
  EXPECT_EQ(app.requests().front(), "");
  {
    const ScriptedApp other(base.pathOf("Quillpost/teamwork-C.sock"));
    EXPECT_EQ(live(), std::nullopt);
  }
  const ScriptedApp vault(base.pathOf("Quillpost/vault-B.sock"));
  EXPECT_EQ(live(), app.path());
}

TEST_F(Discovery, CountsALiveSocketInASiblingDirectoryAndInNoOther) {
  base.makeDirectory("QuillpostX");
  base.makeDirectory("Quillpost-Beta");
  const ScriptedApp stranger(base.pathOf("QuillpostX/teamwork-A.sock"));
  EXPECT_EQ(live(), std::nullopt);
  const ScriptedApp app(base.pathOf("Quillpost-Beta/teamwork-A.sock"));
  EXPECT_EQ(live(), app.path());
}

TEST_F(Discovery, ProbesAPathOfOneHundredAndThreeBytes) {
  base.makeDirectory("Quillpost");
  const std::string path = base.pathOf("Quillpost/teamwork-");
  const ScriptedApp app(path + std::string(103 - 5 - path.size(), 'A') + ".sock");
  ASSERT_EQ(app.path().size(), 103u);
  EXPECT_EQ(live(), app.path());
}

#if defined(__linux__)
TEST_F(Discovery, SkipsAPathOfOneHundredAndFourBytes) {
  base.makeDirectory("Quillpost");
  const std::string path = base.pathOf("Quillpost/teamwork-");
  const ScriptedApp tooLong(path + std::string(104 - 5 - path.size(), 'A') + ".sock");
  ASSERT_EQ(tooLong.path().size(), 104u);
  EXPECT_EQ(live(), std::nullopt);
  const ScriptedApp app(base.pathOf("Quillpost/teamwork-B.sock"));
  EXPECT_EQ(live(), app.path());
}
#endif

#if defined(__linux__)
/// Returns once a thread of this process sleeps in the system.
void waitUntilAsleep(pid_t thread) {
  const std::string path = text::cat("/proc/self/task/", thread, "/stat");
  while (testing::readFile(path).find(") S ") == std::string::npos) std::this_thread::yield();
}

// Elsewhere a full queue refuses, as if nobody listened.
TEST_F(Discovery, FindsAnAppWhoseQueueIsFullForAMoment) {
  base.makeDirectory("Quillpost");
  const std::string path = base.pathOf("Quillpost/teamwork-A.sock");
  const FullBacklog busy(path);
  std::thread app([&busy, looking = ::gettid()] {
    waitUntilAsleep(looking);
    EXPECT_TRUE(busy.accept(busy.size() + 1)) << "the last one is the probe's";
  });
  EXPECT_EQ(live(), path);
  app.join();
}
#endif

}  // namespace
}  // namespace quillpost
