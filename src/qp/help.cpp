#include "qp/help.h"

#include "base/text.h"
#include "base/unicode.h"
#include "qp/brief_text.h"
#include "qp/options.h"
#include "render/texts/registration.h"
#include "tools/tools.h"

namespace quillpost {
namespace {

constexpr std::size_t lineWidth = 100;

std::string padded(std::string_view word, std::size_t width) {
  std::string out(word);
  const std::size_t length = unicode::countCharacters(word);
  if (length < width) out.append(width - length, ' ');
  return out;
}

/// The text in lines of at most `lineWidth` bytes, each behind `indent` blanks.
std::string wrapped(std::string_view text, std::size_t indent) {
  const std::string margin(indent, ' ');
  std::string out;
  std::string line = margin;
  for (const std::string_view word : text::split(text, ' ')) {
    if (line.size() > indent && line.size() + 1 + word.size() > lineWidth) {
      out += line + "\n";
      line = margin;
    }
    if (line.size() > indent) line += ' ';
    line += word;
  }
  return out + line + "\n";
}

std::string optionHelp(const Property& property) {
  constexpr std::size_t indent = 6;
  std::string head = text::cat("  --", kebab(property.name));
  if (property.type == Type::integer) head += " NUMBER";
  if (property.type == Type::strings) head += " TEXT,TEXT…";
  if (property.type == Type::string) head += " TEXT";
  if (property.need == Need::required) head += "  (needed)";
  std::string about(property.description);
  if (!property.oneOf.empty())
    about += text::cat(" One of ",
                       text::join(property.oneOf, ", ",
                                  [](std::string_view one) {
                                    return one.empty() ? std::string_view("\"\"") : one;
                                  }),
                       ".");
  return text::cat(head, "\n", wrapped(about, indent));
}

std::string verbLines() {
  constexpr std::size_t headingWidth = 23;
  constexpr std::size_t nameWidth = 17;
  std::string lines;
  const auto add = [&](std::string_view heading, std::string_view name, std::string_view gist) {
    lines += text::cat(padded(heading, headingWidth), padded(name, nameWidth), gist, "\n");
  };
  for (const Subject& subject : subjects) {
    std::string_view heading = subject.heading;
    for (const Tool& tool : subject.tools) {
      add(heading, tool.commandLine.name, tool.commandLine.gist);
      heading = {};
    }
  }
  std::string_view heading = "This command";
  for (const CommandRow& row : commandRows) {
    if (row.gist.empty()) continue;
    add(heading, row.name, row.gist);
    heading = {};
  }
  return lines;
}

}  // namespace

std::string overview() {
  return text::cat(
      "qp VERB [ARGUMENTS] [then VERB [ARGUMENTS]]...   the board, from this terminal's seat\n",
      verbLines(),
      "--json before the first verb or after any; qp help VERB or qp VERB --help for its "
      "options.\n");
}

std::string verbHelp(const Tool& tool) {
  const CommandLine& line = tool.commandLine;
  std::string help = wrapped(usageLine(tool), 0);
  help += text::cat("\n", wrapped(tool.description, 0));
  if (!tool.properties.empty()) help += "\n";
  for (const Property& property : tool.properties) help += optionHelp(property);
  for (const ExtraOption& extra : extraOptions)
    if (extra.tool == tool.name) help += optionHelp(extra.property);
  help += "  --json\n      Only the JSON of the result on standard output.\n";
  std::vector<std::string_view> names(line.otherNames.begin(), line.otherNames.end());
  if (tool.name != line.name) names.push_back(tool.name);
  if (!names.empty()) help += text::cat("\nAlso: ", text::join(names, ", "), "\n");
  help += "\nExamples:\n";
  for (const std::string& example : examplesOf(tool)) help += text::cat("  ", example, "\n");
  return help;
}

std::string commandHelp(const CommandRow& row) {
  return text::cat("qp ", row.name, row.words.empty() ? "" : " ", row.words, "\n\n", row.gist,
                   "\n");
}

std::vector<std::string> examplesOf(const Tool& tool) {
  std::vector<std::string> lines;
  for (const std::string_view example : tool.commandLine.examples)
    lines.push_back(text::cat("qp ", example));
  return lines;
}

std::string brief() {
  std::string text = text::cat(texts::briefBoard, texts::boardProtocol, "\n\nTHE RULES\n");
  int64_t number = 0;
  for (const std::string_view rule : texts::rules) text += text::cat(++number, ". ", rule, "\n");
  text += text::cat("\nYOUR ACCESS, ONCE YOU HAVE REGISTERED\n", texts::access, "\n\n",
                    texts::briefLoop, "\n", texts::briefSafety, "\n", texts::briefWaiting, "\n",
                    texts::briefLine, "\nTHE VERBS\n");
  for (const Subject& subject : subjects) {
    text += text::cat(subject.heading, "\n");
    for (const Tool& tool : subject.tools)
      text += text::cat("  ", tool.commandLine.name, ": ", tool.commandLine.gist, "\n");
  }
  return text;
}

std::string shortBrief() { return std::string(texts::briefShort); }

}  // namespace quillpost
