#include "qp/line.h"

#include "base/nearest.h"
#include "base/text.h"
#include "base/unicode.h"
#include "calls/arguments.h"
#include "qp/verb_reader.h"
#include "tools/tools.h"

#include <algorithm>
#include <utility>

namespace quillpost {
namespace {

using Part = std::span<const std::string>;
using Reading = std::variant<Line, Misuse>;

/// What is said before the first verb, for the line as a whole.
struct Opening {
  std::size_t count = 0;
  bool asJson = false;
  std::optional<OwnCall> own = {};
  std::string unknown = {};
};

Opening openingOf(Part words) {
  Opening opening;
  for (; opening.count < words.size() && words[opening.count].starts_with('-'); ++opening.count) {
    const std::string& word = words[opening.count];
    if (word == "--json") {
      opening.asJson = true;
    } else if (word == "--help" || word == "-h") {
      opening.own = OwnCall{Command::help};
      return opening;
    } else if (word == "--version") {
      opening.own = OwnCall{Command::version};
      return opening;
    } else {
      opening.unknown = word;
      return opening;
    }
  }
  return opening;
}

std::vector<Part> splitAtThen(Part words) {
  std::vector<Part> parts;
  for (auto end = std::ranges::find(words, separator); end != words.end();
       end = std::ranges::find(words, separator)) {
    const auto length = static_cast<std::size_t>(end - words.begin());
    parts.push_back(words.first(length));
    words = words.subspan(length + 1);
  }
  parts.push_back(words);
  return parts;
}

const CommandRow* findCommand(std::string_view name) {
  const auto* const row = std::ranges::find(commandRows, name, &CommandRow::name);
  return row == commandRows.end() ? nullptr : row;
}

std::string noSuchVerb(std::string_view word) {
  const std::vector<std::string_view> verbs = allVerbs();
  const std::string_view nearest = nearestWord(word, verbs);
  return text::cat(
      "there is no verb \"", word, "\"",
      nearest.empty() ? "; qp --help lists them" : text::cat("; did you mean ", nearest, "?"));
}

/// The texts that stand outside the line, read at last.
std::string fillPending(std::vector<VerbReader>& readers, const TextSources& sources) {
  bool hasInput = false;
  for (VerbReader& reader : readers) {
    for (const PendingText& pending : reader.pending()) {
      if (!pending.path && std::exchange(hasInput, true))
        return "standard input can be read once in a line; use --OPTION-file for another text";
      std::optional<std::string> text =
          pending.path ? sources.file(*pending.path) : sources.input();
      if (!text) {
        std::string place = pending.path.value_or("standard input");
        if (place.empty()) place = "an empty path";
        return text::cat(place, " cannot be read as a text in UTF-8 of at most 1 MiB");
      }
      if (text->ends_with('\n')) text->pop_back();
      Call& call = reader.call();
      (pending.isArgument ? call.arguments : call.options)[pending.key] = *text;
    }
  }
  return {};
}

/// A bucket of finished tasks is shown only to one who asks for all of them.
void includeFinished(Call& call) {
  const std::optional<std::string> bucket = Arguments(call.options).text("bucket");
  if (bucket == "done" || bucket == "rejected") call.arguments.emplace("include", "all");
}

/// Whether a program asks for JSON of a wait that prints lines.
bool asksLinesAsJson(const Call& call) {
  return call.asJson && json::find(call.options, "follow") != nullptr;
}

Reading readVerbs(Part words, bool asJson, const TextSources& sources) {
  std::vector<VerbReader> readers;
  for (const Part part : splitAtThen(words)) {
    if (part.empty()) return Misuse{"a verb stands before and after \"then\"", nullptr, asJson};
    const Tool* const tool = toolForVerb(part.front());
    if (tool == nullptr) {
      const bool isOwn = findCommand(part.front()) != nullptr;
      return Misuse{
          isOwn ? text::cat(part.front(), " stands alone in a line") : noSuchVerb(part.front()),
          nullptr, asJson};
    }
    VerbReader& reader = readers.emplace_back(*tool);
    const bool isRead = reader.read(part.subspan(1));
    if (asJson) reader.call().asJson = true;
    if (!isRead) return Misuse{reader.why(), tool, reader.call().asJson};
    includeFinished(reader.call());
    if (asksLinesAsJson(reader.call()))
      return Misuse{"--follow prints lines, and no JSON; leave out one of the two", tool, true};
    if (reader.wantsHelp())
      return Line(OwnCall{Command::help, {std::string(tool->commandLine.name)}});
  }
  std::string why = fillPending(readers, sources);
  if (!why.empty()) return Misuse{std::move(why), nullptr, readers.front().call().asJson};
  std::vector<Call> calls;
  calls.reserve(readers.size());
  for (VerbReader& reader : readers) calls.push_back(std::move(reader.call()));
  return Line(std::move(calls));
}

/// The words before the first "--": behind it stands data, whatever it looks like.
Part beforeData(Part words) {
  return words.first(static_cast<std::size_t>(std::ranges::find(words, "--") - words.begin()));
}

bool contains(Part words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

/// A command of the line's own that stands alone; nothing when the words are those of verbs.
std::optional<Reading> readOwn(const CommandRow& row, Part words) {
  const Part rest = words.subspan(1);
  const Part options = beforeData(rest);
  const bool takesAnything = row.command == Command::complete;
  if (!takesAnything && contains(options, separator)) return std::nullopt;
  if (!takesAnything && contains(options, "--help"))
    return Line(OwnCall{Command::help, {std::string(row.name)}});
  if (row.words.empty() && !rest.empty())
    return Misuse{
        text::cat(row.name, " stands without other words, not with \"", rest.front(), "\"")};
  return Line(OwnCall{row.command, {rest.begin(), rest.end()}});
}

Reading readWords(Part words, const TextSources& sources) {
  Opening opening = openingOf(words);
  const Part rest = words.subspan(opening.count);
  const CommandRow* const own = rest.empty() ? nullptr : findCommand(rest.front());
  // A path is whatever the file system has.
  const bool takesPaths = own != nullptr && own->command == Command::guard;
  const Part texts = takesPaths ? beforeData(words) : words;
  if (!std::ranges::all_of(texts, [](const std::string& word) { return unicode::isValid(word); }))
    return Misuse{"a word of the line is not UTF-8"};
  if (opening.own) return Line(*std::move(opening.own));
  if (!opening.unknown.empty())
    return Misuse{text::cat("there is no option ", opening.unknown,
                            " before a verb; there are --json, --help and --version"),
                  nullptr, opening.asJson};
  if (rest.empty())
    return Misuse{"a verb is missing; qp --help lists them", nullptr, opening.asJson};
  if (own != nullptr)
    if (std::optional<Reading> reading = readOwn(*own, rest)) return *std::move(reading);
  return readVerbs(rest, opening.asJson, sources);
}

}  // namespace

std::variant<Line, Misuse> readLine(std::span<const std::string> words,
                                    const TextSources& sources) {
  Reading reading = readWords(words, sources);
  // A program that asks for JSON anywhere reads JSON, however wrong the rest of its line is.
  if (Misuse* const wrong = std::get_if<Misuse>(&reading))
    wrong->asJson = wrong->asJson || contains(beforeData(words), "--json");
  return reading;
}

const Tool* toolForVerb(std::string_view verb) { return findByVerb(verb); }

std::vector<std::string_view> allVerbs() {
  std::vector<std::string_view> verbs;
  for (const Tool& tool : tools) {
    verbs.push_back(tool.commandLine.name);
    verbs.insert(verbs.end(), tool.commandLine.otherNames.begin(),
                 tool.commandLine.otherNames.end());
    if (tool.name != tool.commandLine.name) verbs.push_back(tool.name);
  }
  for (const CommandRow& row : commandRows)
    if (!row.gist.empty()) verbs.push_back(row.name);
  return verbs;
}

}  // namespace quillpost
