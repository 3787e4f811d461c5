#include "board/person/console.h"

#include "base/display.h"
#include "base/text.h"
#include "board/person/commands.h"

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

winsize sizeOfTerminal() {
  winsize size{};
  if (::isatty(STDOUT_FILENO) == 0) return size;
  // One that does not know its size, as on a serial line, is taken for the usual one.
  constexpr unsigned short usualLines = 24;
  constexpr unsigned short usualColumns = 80;
  const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  if (!isKnown) size.ws_col = usualColumns;
  if (!isKnown || size.ws_row == 0) size.ws_row = usualLines;
  return size;
}

}  // namespace

void print(std::string_view words) {
  std::string text = displayed(words);
  if (!text.ends_with('\n')) text += '\n';
  printLaidOut(text);
}

void printLaidOut(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

int complain(std::string_view why) {
  std::fputs(text::cat("quillpost-board: ", displayed(why), "\n").c_str(), stderr);
  return failure;
}

Page pageOf(const Environment& environment) {
  Page page;
  page.width = sizeOfTerminal().ws_col;
  const bool isUnwanted = !environment.get("NO_COLOR").value_or("").empty();
  page.hasColour = page.width > 0 && !isUnwanted && environment.get("TERM") != "dumb";
  return page;
}

std::size_t terminalLines() { return sizeOfTerminal().ws_row; }

std::string_view valueOf(std::string_view name, const std::vector<std::string>& variables) {
  for (const std::string& variable : variables) {
    const std::string_view entry = variable;
    if (entry.starts_with(name) && entry.substr(name.size()).starts_with('='))
      return entry.substr(name.size() + 1);
  }
  return {};
}

}  // namespace quillpost::board
