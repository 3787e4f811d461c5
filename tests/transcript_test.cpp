// Whole conversations: the program between a client and an app, both played from a file in
// transcripts/. A file begins with prose that says what it guards. Its sections:
//   arguments       the program's arguments, one a line; none when left out
//   env             its whole environment, NAME=value a line
//   file NAME       a file that is there before the program starts
//   app [PATH]      an app and its answers (transcript/played_app.h) at a socket, app.sock if
//   unnamed client          what is written to the program, a message a line; then its input ends
//   server          what the program writes, to the byte
//   errors          what it writes as errors; nothing when left out
//   status          its exit status; 0 when left out
//   requests [PATH] what that app received
// In env and in file bodies "$DIR" is the test's own directory, and "\x" with two digits is a byte.
// A client's line may also be, once all before it is answered:
//   (file NAME) text    the file is written, with a line feed
// or at any time:
//   (bytes) text        the text with its "\x" read as bytes
//   (unended) text      the text without its line feed
// In what the program writes, {{NAME}} stands for that text of golden/texts.golden.
// With --update the last four sections are rewritten; read the difference before committing it.

#include "base/text.h"
#include "harness/golden.h"
#include "harness/golden_text.h"
#include "harness/paths.h"
#include "harness/process.h"
#include "harness/sections.h"
#include "harness/temp_dir.h"
#include "transcript/played_app.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::testing {
namespace {

constexpr std::string_view soFar = R"({"jsonrpc":"2.0","result":{},"id":"answered so far"})";
constexpr std::string_view askSoFar = R"({"id":"answered so far","method":"ping"})";

std::filesystem::path transcriptFolder() { return testing::inTests("transcripts"); }

std::vector<std::string> transcriptNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(transcriptFolder())) {
    if (entry.path().extension() == ".transcript") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The word after `first` in a section's name, as in "app PATH"; nothing when it begins otherwise.
std::optional<std::string> nameAfter(std::string_view first, std::string_view name) {
  if (!name.starts_with(first)) return std::nullopt;
  name.remove_prefix(first.size());
  if (name.empty()) return "";
  if (!name.starts_with(' ')) return std::nullopt;
  return std::string(name.substr(1));
}

/// One transcript while it is played.
class Conversation {
 public:
  explicit Conversation(const SectionFile& script) : script_(script) { prepare(); }

  /// The script with what really came in the place of what should come.
  SectionFile play();

 private:
  void prepare();
  bool has(std::string_view name) const;
  void say(Process& program, std::string_view line);
  void waitForAnswers(Process& program);
  std::string expand(std::string_view text) const;

  const SectionFile& script_;
  TempDir directory_;
  std::map<std::string, std::unique_ptr<PlayedApp>> apps_;
  std::string output_;
};

void Conversation::prepare() {
  for (const Section& section : script_.sections) {
    if (const auto file = nameAfter("file", section.name)) {
      directory_.write(*file, expand(section.body));
    } else if (const auto path = nameAfter("app", section.name)) {
      const std::string socket = path->empty() ? "app.sock" : *path;
      directory_.makeDirectory(std::filesystem::path(socket).parent_path().string());
      apps_[*path] = std::make_unique<PlayedApp>(directory_.pathOf(socket), section.body);
    }
  }
}

SectionFile Conversation::play() {
  Command command = {testing::seatProgram(), linesOf(script_.body("arguments")), {}};
  for (const std::string& line : linesOf(script_.body("env"))) {
    const std::size_t equals = std::min(line.find('='), line.size());
    command.environment[line.substr(0, equals)] = expand(line.substr(equals + 1));
  }
  Process program(command);
  for (const std::string& line : linesOf(script_.body("client"))) say(program, line);
  program.closeInput();
  const std::string status = std::to_string(program.waitForExit().value_or(-1));
  output_ += program.restOfOutput();

  SectionFile played = script_;
  for (Section& section : played.sections) {
    if (section.name == "server") section.body = output_;
    if (section.name == "errors") section.body = program.errors();
    if (section.name == "status") section.body = status + "\n";
    const auto app = nameAfter("requests", section.name);
    if (app && apps_.count(*app) == 1) section.body = apps_[*app]->requests();
  }
  if (!has("errors")) {
    EXPECT_EQ(program.errors(), "");
  }
  if (!has("status")) {
    EXPECT_EQ(status, "0");
  }
  for (const auto& [path, app] : apps_) {
    for (const std::string& line : app->unusedLines()) ADD_FAILURE() << "never asked for: " << line;
  }
  return played;
}

bool Conversation::has(std::string_view name) const {
  return std::any_of(script_.sections.begin(), script_.sections.end(),
                     [&](const Section& section) { return section.name == name; });
}

void Conversation::say(Process& program, std::string_view line) {
  constexpr std::string_view bytes = "(bytes) ", unended = "(unended) ", file = "(file ";
  if (line.starts_with(bytes)) {
    program.writeLine(expand(line.substr(bytes.size())));
  } else if (line.starts_with(unended)) {
    program.write(line.substr(unended.size()));
  } else if (line.starts_with(file)) {
    const std::size_t end = line.find(") ");
    ASSERT_NE(end, std::string_view::npos) << line;
    waitForAnswers(program);
    directory_.write(line.substr(file.size(), end - file.size()),
                     expand(line.substr(end + 2)) + "\n");
  } else {
    program.writeLine(line);
  }
}

void Conversation::waitForAnswers(Process& program) {
  program.writeLine(askSoFar);
  while (const std::optional<std::string> line = program.readLine()) {
    if (*line == soFar) return;
    output_ += *line + "\n";
  }
  ADD_FAILURE() << "the program ended, or was not heard of in time";
}

std::string Conversation::expand(std::string_view text) const {
  constexpr std::string_view directory = "$DIR", byte = "\\x";
  constexpr std::size_t digits = 2;
  constexpr int base = 16;
  std::string expanded;
  while (!text.empty()) {
    std::size_t taken = 1;
    if (text.starts_with(directory)) {
      expanded += directory_.path();
      taken = directory.size();
    } else if (text.starts_with(byte)) {
      const std::string number(text.substr(byte.size(), digits));
      expanded += static_cast<char>(std::stoi(number, nullptr, base));
      taken = byte.size() + digits;
    } else {
      expanded += text.front();
    }
    text.remove_prefix(taken);
  }
  return expanded;
}

/// The script with another spelling of what the program writes.
SectionFile withServer(SectionFile script, const std::function<std::string(std::string)>& spelled) {
  for (Section& section : script.sections)
    if (section.name == "server") section.body = spelled(std::move(section.body));
  return script;
}

class Transcript : public ::testing::TestWithParam<std::string> {};

TEST_P(Transcript, GoesAsItIsWritten) {
  const std::string path = (transcriptFolder() / (GetParam() + ".transcript")).string();
  const SectionFile script = parseSections(readFile(path));
  EXPECT_NE(script.prose, "") << "no prose says what the transcript guards";
  const SectionFile played = Conversation(script).play();
  if (goldenMode() == GoldenMode::rewrite) {
    EXPECT_TRUE(matchesGolden(path, renderSections(withServer(played, abbreviatedJson))));
  } else {
    const auto spelled = [](std::string text) { return expanded(text, Quoting::json); };
    EXPECT_TRUE(sameText(renderSections(withServer(script, spelled)), renderSections(played)));
  }
}

TEST_P(Transcript, HasOnlySectionsThatAreReadAndLeavesNoRequestUnsaid) {
  const std::vector<std::string_view> single = {"arguments", "env",    "client",
                                                "server",    "errors", "status"};
  const std::string path = (transcriptFolder() / (GetParam() + ".transcript")).string();
  std::vector<std::string> apps, requests;
  for (const Section& section : parseSections(readFile(path)).sections) {
    if (const auto app = nameAfter("app", section.name)) {
      apps.push_back(*app);
    } else if (const auto received = nameAfter("requests", section.name)) {
      requests.push_back(*received);
    } else if (!nameAfter("file", section.name)) {
      EXPECT_EQ(std::count(single.begin(), single.end(), section.name), 1) << section.name;
    }
  }
  EXPECT_EQ(apps, requests);
}

INSTANTIATE_TEST_SUITE_P(Transcripts, Transcript, ::testing::ValuesIn(transcriptNames()),
                         [](const auto& file) { return file.param; });

}  // namespace
}  // namespace quillpost::testing
