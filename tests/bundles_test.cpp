// The bundles in contrib/, which register server and stop hook in one step, and OpenCode's plugin,
// which is its stop hook. What a bundle's files start is tested with the other ready files.

#include "base/text.h"
#include "contrib/ready_files.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace quillpost::contrib {
namespace {

using ::testing::HasSubstr;
using testing::Process;
using testing::ScriptedApp;
using testing::TempDir;

TEST(Bundles, SayTheVersionOfTheProgram) {
  Process command({testing::commandProgram(), {"--version"}, {}});
  const std::string said = command.restOfOutput();
  EXPECT_EQ(command.waitForExit(), 0);
  for (const std::string_view file :
       {"claude-plugin/.claude-plugin/plugin.json", "gemini-extension/gemini-extension.json"}) {
    const std::string version = textAt(contribFile(file), {"version"});
    EXPECT_FALSE(version.empty()) << file;
    EXPECT_THAT(said, HasSubstr(version)) << file;
  }
}

TEST(Bundles, AreFoundWhereTheMarketplaceSays) {
  const std::string market = contribFile(".claude-plugin/marketplace.json");
  const std::string source = textAt(market, {"plugins", "0", "source"});
  EXPECT_EQ(textAt(contribFile(text::cat(source, "/.claude-plugin/plugin.json")), {"name"}),
            textAt(market, {"plugins", "0", "name"}));
}

/// Lets a session of OpenCode come to rest, with its plugin loaded as OpenCode loads it, and gives
/// what the plugin then said to the session.
std::string restWith(const Variables& environment, const std::string& session,
                     const TempDir& home) {
  const std::string plugin =
      home.write("plugin.mjs", here(contribFile("opencode/quillpost-teamwork.js")));
  const std::string script = text::cat(
      "import {QuillpostTeamwork as plugin} from '", plugin, "';\n",
      "const client = {session: {get: async () => ({data: ", session,
      "}),\n"
      "  promptAsync: async (what) => console.log(JSON.stringify(what))}};\n"
      "const hooks = await plugin({client});\n"
      "await hooks.event({event: {type: 'session.updated', properties: {sessionID: 's'}}});\n"
      "await hooks.event({event: {type: 'session.idle', properties: {sessionID: 's'}}});\n");
  Variables variables = environment;
  variables["PATH"] = "/usr/local/bin:/opt/homebrew/bin:/usr/bin:/bin";
  Process node({"/usr/bin/env", {"node", "--input-type=module", "--eval", script}, variables});
  node.closeInput();
  const std::string said = node.restOfOutput();
  EXPECT_EQ(node.waitForExit(), 0) << node.errors();
  return said;
}

TEST(OpenCodePlugin, SaysTheLineToASessionThatCameToRestWhileTheBoardHadSomething) {
  const TempDir home;
  ScriptedApp app(home.pathOf("a.sock"));
  app.play(testing::reply(R"({"kind":"wake","wakePending":true})"));
  EXPECT_EQ(restWith(terminal(app.path()), "{}", home),
            text::cat(R"({"path":{"id":"s"},"body":{"parts":[{"type":"text","text":")", hookLine,
                      "\"}]}}\n"));
}

TEST(OpenCodePlugin, SaysNothingToAHelpersSession) {
  const TempDir home;
  ScriptedApp app(home.pathOf("a.sock"));
  EXPECT_EQ(restWith(terminal(app.path()), "{parentID: 'p'}", home), "");
}

TEST(OpenCodePlugin, SaysNothingOutsideAThread) {
  const TempDir home;
  EXPECT_EQ(restWith({}, "{}", home), "");
}

}  // namespace
}  // namespace quillpost::contrib
