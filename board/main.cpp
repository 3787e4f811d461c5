// quillpost-board: serves a board, or does what the person asks of one that is served.

#include "base/environment.h"
#include "base/files.h"
#include "base/text.h"
#include "board/person/commands.h"
#include "board/person/console.h"
#include "board/person/options.h"
#include "board/serving/places.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace quillpost::board {
namespace {

int misused(const Misuse& misuse) {
  complain(misuse.why);
  const std::string usage = misuse.command != nullptr
                                ? usageOf(*misuse.command)
                                : std::string("quillpost-board COMMAND (--help lists them)");
  std::fputs(text::cat("usage: ", usage, "\n").c_str(), stderr);
  return wrongUse;
}

int run(const std::vector<std::string>& arguments, const Surroundings& around) {
  Misuse misuse;
  std::optional<Line> line = readLine(arguments, misuse);
  if (!line) return misused(misuse);
  const auto readInput = [] { return std::string(std::istreambuf_iterator<char>(std::cin), {}); };
  if (!fillFromInput(*line, readInput)) {
    return misused({"only one text can be read from standard input", line->command});
  }
  if (line->directory.empty() && line->command->run != help) {
    const std::optional<std::string> usual = defaultDirectory(ProcessEnvironment());
    if (!usual) return complain("there is no home directory: pass --dir");
    line->directory = *usual;
  }
  if (line->database.empty()) line->database = usualDatabase(*line);
  return line->command->run(*line, around);
}

}  // namespace
}  // namespace quillpost::board

int main(int argc, char** argv, char** variables) {
  try {
    quillpost::board::Surroundings around;
    around.program = argc > 0 ? argv[0] : "";
    for (char** variable = variables; *variable != nullptr; ++variable)
      around.variables.emplace_back(*variable);
    return quillpost::board::run({argv + std::min(argc, 1), argv + argc}, around);
  } catch (...) {
    // What a library throws when memory runs out.
    std::fputs("quillpost-board: there is not enough memory\n", stderr);
    return quillpost::board::failure;
  }
}
