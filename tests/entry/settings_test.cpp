#include "entry/settings.h"

#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using testing::ScriptedApp;
using testing::TempDir;

/// Finds what it was given, and writes down what it was asked for.
struct FakeDiscovery final : Discovery {
  std::optional<std::string> seatSocketPath() override {
    asked += "seat ";
    return seat;
  }
  std::optional<std::string> liveSocketPath() override {
    asked += "scan ";
    return live;
  }

  std::optional<std::string> seat, live;
  std::string asked;
};

TEST(Settings, ComeFromTheEnvironmentAndElseFromDisk) {
  struct Row {
    const char* name;
    std::map<std::string, std::string> environment;
    std::optional<std::string> seat, live;
    Settings settings;
    std::string asked;
  };
  const Row rows[] = {
      {"all set",
       {{"QUILLPOST_SESSION_ID", "S1"},
        {"QUILLPOST_COLLAB_TOKEN", "t0k"},
        {"QUILLPOST_COLLAB_SOCKET", "/tmp/a.sock"},
        {"QUILLPOST_COLLAB_TOKEN_FILE", "/tmp/t"}},
       "/d/mcp-K7.sock",
       "/d/teamwork-L.sock",
       {"S1", "t0k", "/tmp/a.sock", "/tmp/t"},
       ""},
      {"nothing at all", {}, {}, {}, {}, "seat scan "},
      {"token file beside the socket",
       {{"QUILLPOST_COLLAB_SOCKET", "/tmp/a.sock"}},
       {},
       {},
       {"", "", "/tmp/a.sock", "/tmp/a.token"},
       ""},
      {"token file beside a socket without an extension",
       {{"QUILLPOST_COLLAB_SOCKET", "/x/sock"}},
       {},
       {},
       {"", "", "/x/sock", "/x/sock.token"},
       ""},
      {"empty socket",
       {{"QUILLPOST_COLLAB_SOCKET", ""}},
       "/d/mcp-K7.sock",
       "/d/teamwork-L.sock",
       {},
       ""},
      {"empty token file",
       {{"QUILLPOST_COLLAB_SOCKET", "/tmp/a.sock"}, {"QUILLPOST_COLLAB_TOKEN_FILE", ""}},
       {},
       {},
       {"", "", "/tmp/a.sock", ""},
       ""},
      {"empty session and token",
       {{"QUILLPOST_SESSION_ID", ""}, {"QUILLPOST_COLLAB_TOKEN", ""}},
       {},
       {},
       {},
       "seat scan "},
      {"token file set and socket discovered",
       {{"QUILLPOST_COLLAB_TOKEN_FILE", "/tmp/t"}},
       "/d/mcp-K7.sock",
       {},
       {"", "", "/d/teamwork-K7.sock", "/tmp/t"},
       "seat "},
      {"seat",
       {},
       "/d/mcp-K7.sock",
       "/d/teamwork-L.sock",
       {"", "", "/d/teamwork-K7.sock", "/d/teamwork-K7.token"},
       "seat "},
      {"seat without a suffix", {}, "/d/socket.sock", "/d/teamwork-L.sock", {}, "seat "},
      {"scan",
       {},
       {},
       "/d/teamwork-L.sock",
       {"", "", "/d/teamwork-L.sock", "/d/teamwork-L.token"},
       "seat scan "},
      {"values as they stand",
       {{"QUILLPOST_SESSION_ID", " S1\n"},
        {"QUILLPOST_COLLAB_TOKEN", "\xFF "},
        {"QUILLPOST_COLLAB_SOCKET", " "}},
       {},
       {},
       {" S1\n", "\xFF ", " ", " .token"},
       ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FakeDiscovery discovery;
    discovery.seat = row.seat;
    discovery.live = row.live;
    const Settings settings = readSettings(MapEnvironment(row.environment), discovery);
    EXPECT_EQ(settings.sessionID, row.settings.sessionID);
    EXPECT_EQ(settings.token, row.settings.token);
    EXPECT_EQ(settings.socketPath, row.settings.socketPath);
    EXPECT_EQ(settings.tokenFilePath, row.settings.tokenFilePath);
    EXPECT_EQ(discovery.asked, row.asked);
  }
}

TEST(DiskDiscovery, LooksInTheSupportDirectoryOfTheEnvironment) {
  const TempDir home;
  home.makeDirectory("Library/Application Support/Quillpost");
  const MapEnvironment environment(std::map<std::string, std::string>{{"HOME", home.path()}});
  DiskDiscovery discovery(environment);
  EXPECT_EQ(discovery.seatSocketPath(), std::nullopt);
  EXPECT_EQ(discovery.liveSocketPath(), std::nullopt);

  const std::string directory = "Library/Application Support/Quillpost/";
  const ScriptedApp app(home.pathOf(directory + "teamwork-A.sock"));
  const ScriptedApp other(home.pathOf(directory + "mcp-A.sock"));
  home.write(directory + "agent-seat", "X\n/d/mcp-K7.sock\n");
  EXPECT_EQ(discovery.seatSocketPath(), "/d/mcp-K7.sock");
  EXPECT_EQ(discovery.liveSocketPath(), app.path());
}

}  // namespace
}  // namespace quillpost
