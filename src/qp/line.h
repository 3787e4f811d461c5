#pragma once

// A line of verbs as the calls that it asks for. The whole line is read before anything is sent.

#include "json/value.h"
#include "tools/tool.h"

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillpost {

/// Stands alone between two verbs of a line.
inline constexpr std::string_view separator = "then";

/// One verb, ready to be carried out.
struct Call {
  const Tool* tool = nullptr;
  /// What a client would have given the tool.
  json::TreeObject arguments = {};
  /// What the command line does with the result: its own options (qp/options.h).
  json::TreeObject options = {};
  bool asJson = false;
};

/// What the command line does besides the board's verbs.
enum class Command { help, version, brief, completion, doctor, guard, complete, manual };

/// One of these: its word, what may follow, what it is for.
struct CommandRow {
  Command command;
  std::string_view name;
  std::string_view words;
  /// Empty for one that only programs call.
  std::string_view gist;
};

// clang-format off

/// All of them. The order is that of a list of verbs.
inline constexpr std::array commandRows = {
    CommandRow{Command::brief,      "brief",      "[--short]",      "the protocol in full, for an agent with only a shell"},
    CommandRow{Command::help,       "help",       "[VERB]",         "these verbs, or one with its arguments and examples"},
    CommandRow{Command::doctor,     "doctor",     "",               "whether a verb would work here, and what to do"},
    CommandRow{Command::guard,      "guard",      "PATH...",        "status 1 when a peer's claim names one of the paths"},
    CommandRow{Command::completion, "completion", "bash|zsh|fish",  "what the shell needs to complete a line"},
    CommandRow{Command::version,    "version",    "",               ""},
    CommandRow{Command::manual,     "__manual",   "",               ""},
    CommandRow{Command::complete,   "__complete", "WORD...",        ""},
};

// clang-format on

/// One of these commands, as it was asked for.
struct OwnCall {
  Command command = Command::help;
  /// The words after it.
  std::vector<std::string> words = {};
};

/// A line that makes sense: one of the commands, or one or more verbs.
using Line = std::variant<OwnCall, std::vector<Call>>;

/// A line that makes none.
struct Misuse {
  /// What is wrong, and what was probably meant.
  std::string why;
  /// The verb in which it is wrong; null for the line as a whole.
  const Tool* tool = nullptr;
  bool asJson = false;
};

/// Where texts come from that do not stand in the line itself. Each gives nothing when there is no
/// such text, or none that is UTF-8.
struct TextSources {
  std::function<std::optional<std::string>()> input;
  std::function<std::optional<std::string>(const std::string& path)> file;
};

/// Reads the words after the program's name. The sources are asked only when all else is right.
std::variant<Line, Misuse> readLine(std::span<const std::string> words, const TextSources& sources);

/// The tool that a word of the command line means; null for a word that is no verb.
const Tool* toolForVerb(std::string_view verb);

/// Every word that a line may begin with, those that only programs call left out.
std::vector<std::string_view> allVerbs();

}  // namespace quillpost
