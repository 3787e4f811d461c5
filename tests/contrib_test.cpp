// The ready configuration files in contrib/, each read as its harness reads it and the command in
// it started as its harness starts it.

#include "base/clock.h"
#include "base/text.h"
#include "contrib/ready_files.h"
#include "contrib/toml.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"
#include "json/value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillpost::contrib {
namespace {

using testing::Command;
using ::testing::HasSubstr;
using testing::Process;
using testing::ScriptedApp;
using testing::TempDir;

/// What a harness starts, and the environment it hands on of the terminal's.
struct Start {
  std::string command;
  Variables environment;
};

Path below(Path path, std::string_view step) {
  path.push_back(step);
  return path;
}

/// The command of a server's table, be it a text or the first of a list.
std::string commandOf(const std::string& source, const Path& server) {
  const std::string command = textAt(source, below(server, "command"));
  return command.empty() ? textAt(source, below(below(server, "command"), "0")) : command;
}

/// The whole environment is inherited, with nothing of the file's own.
Start inheriting(const std::string& source, const Path& server, const Variables& environment) {
  const std::optional<json::Tree> tree = json::parse(source);
  EXPECT_TRUE(tree && at(*tree, below(server, "env")) == nullptr);
  return {commandOf(source, server), environment};
}

/// Adds the variables that the file lists, each under its own name: before and after a name stands
/// what tells the harness that it is one.
Start adding(const std::string& source, const Path& server, const Variables& environment,
             Variables inherited, std::string_view before, std::string_view after) {
  const std::optional<json::Tree> tree = json::parse(source);
  const json::Tree* env = tree ? at(*tree, below(server, "env")) : nullptr;
  Start start = {commandOf(source, server), std::move(inherited)};
  if (env == nullptr || !env->is_object()) return start;
  for (const auto& member : env->get_object()) {
    const std::string name(member.key());
    EXPECT_EQ(member.value(), json::Tree(text::cat(before, name, after)));
    const auto value = environment.find(name);
    if (value != environment.end()) start.environment.insert(*value);
  }
  return start;
}

/// Only the variables that the file lists are handed on.
Start listedForCursor(const std::string& source, const Path& server, const Variables& environment) {
  return adding(source, server, environment, {}, "${env:", "}");
}

/// What looks like a secret is taken out of what is inherited, unless the file lists it.
Start redacted(const std::string& source, const Path& server, const Variables& environment) {
  Variables inherited = environment;
  std::erase_if(inherited, [](const auto& variable) {
    return variable.first.find("TOKEN") != std::string::npos;
  });
  return adding(source, server, environment, std::move(inherited), "$", "");
}

Start fromToml(const std::string& source, const Path& /*server*/, const Variables& environment) {
  const std::optional<Toml> toml = parseToml(source);
  if (!toml) return {};
  Start start = {std::get<std::string>(toml->at("mcp_servers.teamwork.command")), {}};
  for (const std::string& name :
       std::get<std::vector<std::string>>(toml->at("mcp_servers.teamwork.env_vars"))) {
    const auto value = environment.find(name);
    if (value != environment.end()) start.environment.insert(*value);
  }
  return start;
}

/// One harness and its file.
struct ServerFile {
  std::string name;
  std::string_view file;
  Path server;
  std::string_view clientName;
  Start (*read)(const std::string& source, const Path& server, const Variables& environment);
};

void PrintTo(const ServerFile& file, std::ostream* out) { *out << file.name; }

class ServerConfiguration : public ::testing::TestWithParam<ServerFile> {};

TEST_P(ServerConfiguration, StartsAServerThatKnowsItsSeat) {
  const TempDir home;
  const Start start = GetParam().read(contribFile(GetParam().file), GetParam().server,
                                      terminal(home.pathOf("nobody.sock")));
  ASSERT_EQ(start.command, program);

  Process server({here(start.command), {}, start.environment});
  server.writeLine(
      text::cat(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"clientInfo":{"name":")",
                GetParam().clientName, R"("}}})"));
  EXPECT_THAT(server.readLine().value_or(""), HasSubstr(R"("name":"quillpost-teamwork")"));

  // With a session and a token it asks the app, and only then finds nobody there.
  server.writeLine(
      R"({"jsonrpc":"2.0","id":2,"method":"tools/call","params":{"name":"list_tasks"}})");
  EXPECT_THAT(server.readLine().value_or(""), HasSubstr("Couldn't reach the Quillpost app"));
  server.closeInput();
  EXPECT_EQ(server.waitForExit(), 0);
}

std::string nameOf(const ::testing::TestParamInfo<ServerFile>& info) { return info.param.name; }

const Path usual = {"mcpServers", "teamwork"};

// clang-format off
INSTANTIATE_TEST_SUITE_P(Contrib, ServerConfiguration, ::testing::Values(
    ServerFile{"claude",          "claude/mcp.json",                        usual,                   "claude-code",           inheriting},
    ServerFile{"claudePlugin",    "claude-plugin/.mcp.json",                usual,                   "claude-code",           inheriting},
    ServerFile{"codex",           "codex/config.toml",                      {},                      "codex-mcp-client",      fromToml},
    ServerFile{"cursor",          "cursor/mcp.json",                        usual,                   "cursor-vscode",         listedForCursor},
    ServerFile{"antigravity",     "antigravity/mcp_config.json",            usual,                   "antigravity-client",    inheriting},
    ServerFile{"copilot",         "copilot/mcp-config.json",                usual,                   "copilot-cli",           inheriting},
    ServerFile{"vscode",          "copilot/vscode-mcp.json",                {"servers", "teamwork"}, "Visual Studio Code",    inheriting},
    ServerFile{"opencode",        "opencode/opencode.json",                 {"mcp", "teamwork"},     "opencode",              inheriting},
    ServerFile{"gemini",          "gemini/settings.json",                   usual,                   "gemini-cli-mcp-client", redacted},
    ServerFile{"geminiExtension", "gemini-extension/gemini-extension.json", usual,                   "gemini-cli-mcp-client", redacted}),
    nameOf);
// clang-format on

TEST(ServerConfigurations, ThatListVariablesListEveryOneOfThem) {
  for (const std::string_view file : {"codex/config.toml", "cursor/mcp.json"}) {
    for (const std::string_view name :
         {"QUILLPOST_SESSION_ID", "QUILLPOST_COLLAB_TOKEN", "QUILLPOST_COLLAB_SOCKET",
          "QUILLPOST_COLLAB_TOKEN_FILE", "QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS",
          "QUILLPOST_COLLAB_WAIT_MAX_SECONDS"})
      EXPECT_THAT(contribFile(file), HasSubstr(text::cat("\"", name, "\""))) << file;
  }
}

TEST(ServerConfigurations, LeaveCodexItsOwnTimeOutsAndSpareItsQuestions) {
  const std::optional<Toml> toml = parseToml(contribFile("codex/config.toml"));
  ASSERT_TRUE(toml);
  EXPECT_FALSE(toml->contains("mcp_servers.teamwork.tool_timeout_sec"));
  EXPECT_EQ(toml->at("mcp_servers.teamwork.default_tools_approval_mode"), TomlValue("approve"));
}

/// One harness's stop hook, and what it says to the harness.
struct HookFile {
  std::string name;
  std::string_view file;
  Path path;
  int wakeStatus;
  std::string wakeOutput, wakeErrors;
  std::string quietOutput;
};

void PrintTo(const HookFile& file, std::ostream* out) { *out << file.name; }

class HookConfiguration : public ::testing::TestWithParam<HookFile> {
 protected:
  /// Runs the file's command as a shell does.
  void expectHook(const Variables& environment, int status, const std::string& output,
                  const std::string& errors) const {
    const std::string command = textAt(contribFile(GetParam().file), GetParam().path);
    ASSERT_THAT(command, HasSubstr(program));
    Variables variables = environment;
    variables["PATH"] = "/usr/bin:/bin";
    Process hook({"/bin/sh", {"-c", here(command)}, variables});
    hook.write(R"({"hook_event_name":"Stop"})");
    hook.closeInput();
    EXPECT_EQ(hook.waitForExit(), status);
    EXPECT_EQ(hook.restOfOutput(), output);
    EXPECT_EQ(hook.errors(), errors);
  }
};

TEST_P(HookConfiguration, KeepsTheAgentGoingWhenTheBoardHasSomething) {
  const TempDir home;
  ScriptedApp app(home.pathOf("a.sock"));
  app.play(testing::reply(R"({"kind":"wake","wakePending":true})"));
  expectHook(terminal(app.path()), GetParam().wakeStatus, GetParam().wakeOutput,
             GetParam().wakeErrors);
}

TEST_P(HookConfiguration, LetsTheAgentStopWhenTheBoardIsQuiet) {
  const TempDir home;
  ScriptedApp app(home.pathOf("a.sock"));
  app.play(testing::reply(R"({"kind":"wake","wakePending":false})"));
  expectHook(terminal(app.path()), 0, GetParam().quietOutput, "");
}

TEST_P(HookConfiguration, LetsTheAgentStopOutsideAThread) {
  expectHook({}, 0, GetParam().quietOutput, "");
}

std::string hookName(const ::testing::TestParamInfo<HookFile>& info) { return info.param.name; }

const Path nested = {"hooks", "Stop", "0", "hooks", "0", "command"};
const Path afterAgent = {"hooks", "AfterAgent", "0", "hooks", "0", "command"};
const std::string loud = text::cat(hookLine, "\n");
const std::string decision = text::cat(R"("decision":"block","reason":")", hookLine, "\"");

INSTANTIATE_TEST_SUITE_P(
    Contrib, HookConfiguration,
    ::testing::Values(
        HookFile{"claude", "claude/settings.json", nested, 2, "", loud, ""},
        HookFile{"claudePlugin", "claude-plugin/hooks/hooks.json", nested, 2, "", loud, ""},
        HookFile{"codex", "codex/hooks.json", nested, 2, "", loud, ""},
        HookFile{"gemini", "gemini/settings.json", afterAgent, 2, "", loud, ""},
        HookFile{"geminiExtension", "gemini-extension/hooks/hooks.json", afterAgent, 2, "", loud,
                 ""},
        HookFile{"copilot",
                 "copilot/hooks.json",
                 {"hooks", "Stop", "0", "command"},
                 0,
                 text::cat("{", decision, R"(,"hookSpecificOutput":{"hookEventName":"Stop",)",
                           decision, "}}\n"),
                 "",
                 "{}\n"},
        HookFile{"cursor",
                 "cursor/hooks.json",
                 {"hooks", "stop", "0", "command"},
                 0,
                 text::cat(R"({"followup_message":")", hookLine, "\"}\n"),
                 "",
                 "{}\n"},
        HookFile{"antigravity",
                 "antigravity/hooks.json",
                 {"quillpost-teamwork", "Stop", "0", "command"},
                 0,
                 text::cat(R"({"decision":"continue","reason":")", hookLine, "\"}\n"),
                 "",
                 "{\"decision\":\"stop\"}\n"}),
    hookName);

/// Holds a command of a unit to serving a board in the place where agents look, until it is told to
/// end.
void expectToServe(const std::vector<std::string>& words) {
  ASSERT_EQ(words.size(), 2u);
  EXPECT_THAT(words[0], ::testing::EndsWith("/bin/quillpost-board"));
  EXPECT_EQ(words[1], "serve");
  const TempDir home;
  const std::map<std::string, std::string> variables = {{"HOME", home.path()},
                                                        {"XDG_DATA_HOME", home.path()}};
  Process board({testing::boardProgram(), {words[1]}, variables});
  const auto status = [&] {
    return Process({testing::boardProgram(), {"threads"}, variables}).waitForExit();
  };
  const Instant deadline = SteadyClock().now() + std::chrono::seconds(60);
  while (status() != 0 && SteadyClock().now() < deadline) continue;
  EXPECT_EQ(status(), 0);
  board.signal(SIGTERM);
  EXPECT_EQ(board.waitForExit(), 0) << "so that nothing starts it again";
}

/// What stands between two texts after a third one; empty when they are not there.
std::string between(const std::string& whole, std::string_view after, std::string_view begin,
                    std::string_view end) {
  const std::size_t at = whole.find(begin, whole.find(after)) + begin.size();
  return whole.substr(at, whole.find(end, at) - at);
}

TEST(Units, TheSystemdUnitServesTheBoard) {
  const std::string unit = contribFile("systemd/quillpost-board.service");
  const std::string command = between(unit, "[Service]", "\nExecStart=", "\n");
  std::vector<std::string> words;
  for (const std::string_view word : text::split(command, ' ')) words.emplace_back(word);
  expectToServe(words);
}

TEST(Units, TheLaunchdPropertyListServesTheBoard) {
  const std::string list = contribFile("launchd/quillpost.board.plist");
  const std::string array = between(list, "<key>ProgramArguments</key>", "<array>", "</array>");
  const std::string first = between(array, "", "<string>", "</string>");
  expectToServe({first, between(array, first, "<string>", "</string>")});
}

TEST(Toml, IsReadAsFarAsAConfigurationNeedsIt) {
  const std::optional<Toml> toml =
      parseToml("# note\n[a.b]\ntext = \"x\"\nnumber = 90\nlist = [\n  \"p\",\n  \"q\",\n]\n");
  ASSERT_TRUE(toml);
  EXPECT_EQ(toml->at("a.b.text"), TomlValue("x"));
  EXPECT_EQ(toml->at("a.b.number"), TomlValue(90));
  EXPECT_EQ(toml->at("a.b.list"), TomlValue(std::vector<std::string>{"p", "q"}));
  for (const std::string_view wrong :
       {"word\n", "a = b\n", "a = \"x\n", "a = [\"x\"\n", "a = [x]\n", "a = \"\\n\"\n"})
    EXPECT_FALSE(parseToml(wrong)) << wrong;
}

}  // namespace
}  // namespace quillpost::contrib
