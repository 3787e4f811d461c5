// What lands where: an installation into an empty root, and the packages that are made of it. The
// build that runs the tests is the one that is installed and packed.

#include "base/text.h"
#include "base/unicode.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>

#ifdef __linux__
#include "harness/elf_file.h"
#endif

namespace quillpost {
namespace {

using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using testing::Process;
using testing::readFile;
using ::testing::StartsWith;
using testing::TempDir;

/// Packing waits for the disk and for the tools of the system.
constexpr Duration packingPatience = std::chrono::seconds(110);

std::string buildDirectory() {
  return std::filesystem::path(testing::seatProgram()).parent_path().string();
}

/// A tool as the build system found it; its plain name when it did not say.
std::string toolOf(std::string_view variable, std::string_view plain) {
  const std::string mark = text::cat("\n", variable, ":INTERNAL=");
  const std::string cache = readFile(buildDirectory() + "/CMakeCache.txt");
  const std::size_t at = cache.find(mark);
  if (at == std::string::npos) return std::string(plain);
  const std::size_t start = at + mark.size();
  return cache.substr(start, cache.find('\n', start) - start);
}

constexpr const char* toolPath = "/usr/local/bin:/opt/homebrew/bin:/usr/sbin:/usr/bin:/sbin:/bin";

/// How a tool ended and what it said.
struct Ending {
  std::optional<int> status;
  std::string said;
};

/// Runs a tool, found on the path, to its end.
Ending ended(const std::string& program, std::vector<std::string> arguments, const TempDir& home,
             std::map<std::string, std::string> more = {}) {
  more["PATH"] = toolPath;
  more["HOME"] = home.path();
  arguments.insert(arguments.begin(), program);
  Process process({"/usr/bin/env", std::move(arguments), std::move(more)});
  process.closeInput();
  const std::optional<int> status = process.waitForExit(packingPatience);
  return {status, process.restOfOutput() + process.errors()};
}

/// The same for one that must succeed.
void run(const std::string& program, std::vector<std::string> arguments, const TempDir& home,
         std::map<std::string, std::string> more = {}) {
  const Ending ending = ended(program, std::move(arguments), home, std::move(more));
  ASSERT_EQ(ending.status, 0) << program << ": " << ending.said;
}

/// Every file below a directory, by its path from there.
std::set<std::string> filesIn(const std::string& directory) {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory))
    if (entry.is_regular_file())
      files.insert(std::filesystem::relative(entry.path(), directory).string());
  return files;
}

bool isExecutable(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && (status.st_mode & S_IXOTH) != 0;
}

/// What an installation has below its prefix: the papers first that a Debian package has otherwise.
std::vector<std::string> expectedFiles(bool isDebian) {
  const std::string doc = "share/doc/quillpost-teamwork/", own = "share/quillpost-teamwork/";
  std::vector<std::string> files;
  if (isDebian) {
    files = {"share/man/man1/qp.1.gz",
             "share/man/man1/quillpost-teamwork.1.gz",
             "share/man/man1/quillpost-board.1.gz",
             "share/man/man1/quillpost-page.1.gz",
             "share/zsh/vendor-completions/_qp",
             doc + "copyright",
             doc + "changelog.gz"};
  } else {
    files = {"share/man/man1/qp.1", "share/man/man1/quillpost-teamwork.1",
             "share/man/man1/quillpost-board.1", "share/zsh/site-functions/_qp",
             doc + "licences/utf8proc"};
#ifndef __APPLE__
    files.push_back(doc + "licences/boost");
    files.push_back(doc + "licences/libstdc++");
    if (testing::isSeatStatic()) files.push_back(doc + "licences/libc");
#endif
  }
  for (const char* program : {"quillpost-teamwork", "qp", "quillpost-board", "quillpost-page"})
    files.push_back(text::cat("bin/", program));
  for (const char* completion :
       {"bash-completion/completions/qp", "fish/vendor_completions.d/qp.fish"})
    files.push_back(text::cat("share/", completion));
  for (const char* page :
       {"README.md", "ARCHITECTURE.md", "CONTRIBUTING.md", "CHANGELOG.md", "docs/protocol.md",
        "docs/tools.md", "docs/qp.md", "docs/board.md", "docs/porting.md", "docs/harnesses.md",
        "docs/demo.svg", "docs/setup-claude.md", "docs/setup-codex.md", "docs/setup-antigravity.md",
        "docs/setup-copilot.md", "docs/setup-cursor.md", "docs/setup-gemini.md",
        "docs/setup-opencode.md"})
    files.push_back(doc + page);
  for (const char* file : {".claude-plugin/marketplace.json",
                           "claude/mcp.json",
                           "claude/settings.json",
                           "claude-plugin/.claude-plugin/plugin.json",
                           "claude-plugin/.mcp.json",
                           "claude-plugin/hooks/hooks.json",
                           "claude-plugin/skills/board/SKILL.md",
                           "codex/config.toml",
                           "codex/hooks.json",
                           "copilot/mcp-config.json",
                           "copilot/vscode-mcp.json",
                           "copilot/hooks.json",
                           "copilot/stop-hook",
                           "cursor/mcp.json",
                           "cursor/hooks.json",
                           "cursor/stop-hook",
                           "gemini/settings.json",
                           "gemini-extension/gemini-extension.json",
                           "gemini-extension/hooks/hooks.json",
                           "gemini-extension/skills/board/SKILL.md",
                           "opencode/opencode.json",
                           "opencode/quillpost-teamwork.js",
                           "antigravity/mcp_config.json",
                           "antigravity/hooks.json",
                           "antigravity/stop-hook",
                           "systemd/quillpost-board.service",
                           "launchd/quillpost.board.plist",
                           "git/pre-commit"})
    files.push_back(own + file);
  return files;
}

/// Where the ready files of an installation say that the program is.
std::string namedProgram(const std::string& prefix) {
  const std::string file = readFile(prefix + "/share/quillpost-teamwork/cursor/mcp.json");
  const std::string_view mark = R"("command": ")";
  const std::size_t at = file.find(mark) + mark.size();
  return file.substr(at, file.find('"', at) - at);
}

/// Holds an installation to what it must and must not have.
void expectInstallation(const std::string& prefix, bool isDebian = false) {
  const std::set<std::string> files = filesIn(prefix);
  EXPECT_THAT(files, IsSupersetOf(expectedFiles(isDebian)));
  for (const char* script :
       {"copilot/stop-hook", "cursor/stop-hook", "antigravity/stop-hook", "git/pre-commit",
        "../../bin/quillpost-teamwork", "../../bin/qp", "../../bin/quillpost-board"})
    EXPECT_TRUE(isExecutable(prefix + "/share/quillpost-teamwork/" + script)) << script;
  for (const char* words : {"Unicode", "Boost Software License"}) {
    std::string licences;
    for (const std::string& file : files)
      if (file.find("licences/") != std::string::npos || file.ends_with("/copyright"))
        licences += readFile(prefix + "/" + file);
    EXPECT_THAT(licences, HasSubstr(words));
    EXPECT_LT(licences.size(), 200'000u) << "only what applies to what is linked in";
  }

  Process program({prefix + "/bin/quillpost-teamwork", {}, {}});
  program.writeLine(R"({"jsonrpc":"2.0","id":1,"method":"ping"})");
  program.closeInput();
  EXPECT_EQ(program.readLine(), R"({"jsonrpc":"2.0","result":{},"id":1})");
  EXPECT_EQ(program.waitForExit(), 0);
}

/// Holds an unpacked archive's own script to installing all of it where it is told, and to taking
/// away that and nothing else.
void expectToInstallItself(const std::string& unpacked, const TempDir& home) {
  const std::string other = home.write("opt/share/man/of-another", "kept");
  const std::string prefix = home.pathOf("opt");
  run(unpacked + "/install.sh", {"--prefix", prefix}, home);
  expectInstallation(prefix);
  EXPECT_EQ(namedProgram(prefix), prefix + "/bin/quillpost-teamwork");
  const std::set<std::string> once = filesIn(prefix);
  run(unpacked + "/install.sh", {"--prefix", prefix}, home);
  EXPECT_EQ(filesIn(prefix), once) << "a second time";
  run(unpacked + "/install.sh", {"--prefix", prefix, "--uninstall"}, home);
  EXPECT_EQ(filesIn(home.pathOf("opt")), std::set<std::string>{"share/man/of-another"});
  EXPECT_FALSE(std::filesystem::exists(prefix + "/bin"));
  EXPECT_TRUE(std::filesystem::exists(other));
  EXPECT_EQ(ended(unpacked + "/install.sh", {"--prefix", prefix, "--uninstall"}, home).status, 1);
  EXPECT_EQ(ended(unpacked + "/install.sh", {"--prefix", "relative"}, home).status, 2);
}

/// The one package in a directory whose name ends so; empty when there is none.
std::string packageIn(const std::string& directory, std::string_view ending) {
  for (const auto& entry : std::filesystem::directory_iterator(directory))
    if (entry.path().string().ends_with(ending)) return entry.path().string();
  return {};
}

TEST(Install, PutsTheProgramAndItsPapersIntoAnEmptyRoot) {
  const TempDir root;
  run(toolOf("CMAKE_COMMAND", "cmake"),
      {"--install", buildDirectory(), "--prefix", "/opt/quillpost"}, root,
      {{"DESTDIR", root.path()}});
  expectInstallation(root.pathOf("opt/quillpost"));
}

#ifdef __linux__
/// What runs a program in another root, where this user may.
std::vector<std::string> rootChanger(const TempDir& home) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"chroot"}, {"unshare", "--map-root-user", "chroot"}}) {
    std::vector<std::string> trial(words.begin() + 1, words.end());
    trial.insert(trial.end(), {"/", "true"});
    if (ended(words.front(), trial, home).status == 0) return words;
  }
  return {};
}

/// Holds the program to running in a root that has nothing but its own archive, and to nothing but
/// its file's word for it where no root can be changed.
void expectToRunAlone(const std::string& root, const std::string& program, const TempDir& home) {
  const testing::ElfFile file(root + program);
  EXPECT_EQ(file.needsOthers(), !testing::isSeatStatic());
  std::vector<std::string> words = rootChanger(home);
  if (words.empty() || !testing::isSeatStatic()) return;
  words.insert(words.end(), {root, program});
  testing::ScriptedApp app(root + "/app.sock");
  app.play(testing::reply(R"({"kind":"written","message":"Hello from outside."})"));
  Process seat({"/usr/bin/env",
                std::move(words),
                {{"PATH", toolPath},
                 {"QUILLPOST_SESSION_ID", "S1"},
                 {"QUILLPOST_COLLAB_TOKEN", "t0k"},
                 {"QUILLPOST_COLLAB_SOCKET", "/app.sock"}}});
  seat.writeLine(R"({"id":1,"method":"ping"})");
  seat.writeLine(R"({"id":2,"method":"tools/call","params":{"name":"stop_helper"}})");
  seat.closeInput();
  EXPECT_EQ(seat.readLine(), R"({"jsonrpc":"2.0","result":{},"id":1})");
  EXPECT_THAT(seat.readLine().value_or(""), HasSubstr("Hello from outside."));
  EXPECT_EQ(seat.waitForExit(), 0) << seat.errors();
}

/// What a package says of itself under this name; empty when it says nothing.
std::string fieldOf(const std::string& package, const std::string& name, const TempDir& home) {
  const Ending ending = ended("dpkg-deb", {"--field", package, name}, home);
  EXPECT_EQ(ending.status, 0) << ending.said;
  return std::string(unicode::trim(ending.said));
}
#endif

TEST(Install, PacksWhatItInstalls) {
  const TempDir root;
  const std::string packages = root.makeDirectory("packages");
  run(toolOf("CMAKE_CPACK_COMMAND", "cpack"),
      {"--config", buildDirectory() + "/CPackConfig.cmake", "-B", packages}, root);

  const std::string archive = packageIn(packages, ".tar.gz");
  run("tar", {"xzf", archive, "-C", root.makeDirectory("archive")}, root);
  const std::string top = std::filesystem::path(archive).stem().stem().string();
  EXPECT_THAT(top, StartsWith("quillpost-teamwork-1.0.0-"));
  expectInstallation(root.pathOf("archive/" + top));
  expectToInstallItself(root.pathOf("archive/" + top), root);

#ifdef __linux__
  expectToRunAlone(root.pathOf("archive"), "/" + top + "/bin/quillpost-teamwork", root);
  const std::string package = packageIn(packages, ".deb");
  run("dpkg-deb", {"--extract", package, root.makeDirectory("deb")}, root);
  expectInstallation(root.pathOf("deb/usr"), true);
  EXPECT_EQ(namedProgram(root.pathOf("deb/usr")), "/usr/bin/quillpost-teamwork");
  EXPECT_THAT(fieldOf(package, "Depends", root), HasSubstr("libsqlite3"));
#endif
}

}  // namespace
}  // namespace quillpost
