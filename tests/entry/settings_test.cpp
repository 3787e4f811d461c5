#include "entry/settings.h"

#include "base/text.h"
#include "harness/fake_environment.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

namespace quillpost {
namespace {

using testing::TempDir;

TEST(Settings, ComeFromTheEnvironmentAndElseFromDisk) {
  struct Row {
    const char* name;
    std::map<std::string, std::string> environment;
    std::optional<std::string> seat;  // the socket that the seat file names
    bool hasSocket;                   // whether there is one to be found by probing
    Settings settings;
    bool isProbed;
  };
  const TempDir base;
  const std::string found = base.pathOf("Quillpost/teamwork-L.sock");
  const std::string foundToken = base.pathOf("Quillpost/teamwork-L.token");
  const Row rows[] = {
      {"all set",
       {{"QUILLPOST_SESSION_ID", "S1"},
        {"QUILLPOST_COLLAB_TOKEN", "t0k"},
        {"QUILLPOST_COLLAB_SOCKET", "/tmp/a.sock"},
        {"QUILLPOST_COLLAB_TOKEN_FILE", "/tmp/t"}},
       "/d/mcp-K7.sock",
       true,
       {"S1", "t0k", "/tmp/a.sock", "/tmp/t"},
       false},
      {"nothing at all", {}, {}, false, {}, false},
      {"token file beside the socket",
       {{"QUILLPOST_COLLAB_SOCKET", "/tmp/a.sock"}},
       {},
       true,
       {"", "", "/tmp/a.sock", "/tmp/a.token"},
       false},
      {"token file beside a socket without an extension",
       {{"QUILLPOST_COLLAB_SOCKET", "/x/sock"}},
       {},
       true,
       {"", "", "/x/sock", "/x/sock.token"},
       false},
      {"empty socket", {{"QUILLPOST_COLLAB_SOCKET", ""}}, "/d/mcp-K7.sock", true, {}, false},
      {"empty token file",
       {{"QUILLPOST_COLLAB_SOCKET", "/tmp/a.sock"}, {"QUILLPOST_COLLAB_TOKEN_FILE", ""}},
       {},
       true,
       {"", "", "/tmp/a.sock", ""},
       false},
      {"empty session and token",
       {{"QUILLPOST_SESSION_ID", ""}, {"QUILLPOST_COLLAB_TOKEN", ""}},
       {},
       false,
       {},
       false},
      {"token file set and socket discovered",
       {{"QUILLPOST_COLLAB_TOKEN_FILE", "/tmp/t"}},
       "/d/mcp-K7.sock",
       false,
       {"", "", "/d/teamwork-K7.sock", "/tmp/t"},
       false},
      {"seat",
       {},
       "/d/mcp-K7.sock",
       true,
       {"", "", "/d/teamwork-K7.sock", "/d/teamwork-K7.token"},
       false},
      {"seat without a suffix", {}, "/d/socket.sock", true, {}, false},
      {"probed", {}, {}, true, {"", "", found, foundToken}, true},
      {"values as they stand",
       {{"QUILLPOST_SESSION_ID", " S1\n"},
        {"QUILLPOST_COLLAB_TOKEN", "\xFF "},
        {"QUILLPOST_COLLAB_SOCKET", " "}},
       {},
       true,
       {" S1\n", "\xFF ", " ", " .token"},
       false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    base.write("Quillpost/agent-seat", row.seat ? text::cat("X\n", *row.seat, "\n") : "");
    if (row.hasSocket) {
      base.write("Quillpost/teamwork-L.sock", "");
    } else {
      ::unlink(found.c_str());
    }
    std::vector<std::string> probed;
    const testing::FakeEnvironment environment(row.environment);
    const Settings settings =
        readSettings({environment, base.path()}, [&](const std::string& path) {
          probed.push_back(path);
          return true;
        });
    EXPECT_EQ(settings.sessionID, row.settings.sessionID);
    EXPECT_EQ(settings.token, row.settings.token);
    EXPECT_EQ(settings.socketPath, row.settings.socketPath);
    EXPECT_EQ(settings.tokenFilePath, row.settings.tokenFilePath);
    EXPECT_EQ(probed, row.isProbed ? std::vector{found} : std::vector<std::string>());
  }
}

TEST(Settings, NameNoSocketThatNobodyAnswersAt) {
  const TempDir base;
  base.write("Quillpost/teamwork-L.sock", "");
  const testing::FakeEnvironment environment;
  EXPECT_EQ(readSettings({environment, base.path()}), Settings()) << "a file is no live socket";
}

}  // namespace
}  // namespace quillpost
