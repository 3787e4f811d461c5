#include "board/person/open_page.h"

#include "base/files.h"
#include "base/text.h"
#include "board/person/console.h"
#include "board/person/spawn.h"

#include <csignal>

#include <unistd.h>

namespace quillpost::board {

std::vector<std::string> pageWords(const Line& line, std::string_view program) {
  constexpr std::string_view name = "quillpost-page";
  const std::size_t slash = program.rfind('/');
  std::vector<std::string> words{slash == std::string_view::npos
                                     ? std::string(name)
                                     : files::joinPath(program.substr(0, slash + 1), name),
                                 "--dir", line.directory};
  const auto add = [&](std::string_view option, const std::string& value) {
    if (value.empty()) return;
    words.emplace_back(option);
    words.push_back(value);
  };
  add("--suffix", line.suffix);
  add("--thread", line.thread);
  add("--port", line.port);
  if (line.opensBrowser) words.emplace_back("--open");
  return words;
}

PageProgram::~PageProgram() {
  if (!isRunning()) return;
  ::kill(pid_, SIGTERM);
  waitFor(pid_);
}

int PageProgram::wait() {
  passTo(pid_);
  const int status = waitFor(pid_);
  pid_ = -1;
  return status;
}

PageProgram startPage(const Line& line, const Surroundings& around, std::string& why) {
  Program program{pageWords(line, around.program), around.variables};
  program.variables.push_back(text::cat(boardProcessVariable, "=", ::getpid()));
  const std::optional<Spawned> spawned = spawn(program, why);
  if (spawned) return PageProgram(spawned->pid);
  why +=
      ". The page is a program of its own: a release has it beside quillpost-board, and a build "
      "makes it where the library cpp-httplib is installed";
  return {};
}

int openPage(const Line& line, const Surroundings& around) {
  outliveSignals();
  std::string why;
  PageProgram page = startPage(line, around, why);
  if (!page.isRunning()) return complain(why);
  return page.wait();
}

}  // namespace quillpost::board
