// quillpost-page: what `quillpost-board page` starts. Serves the page of a board that another
// process serves.

#include "base/clock.h"
#include "base/environment.h"
#include "base/files.h"
#include "base/text.h"
#include "board/page/site.h"
#include "board/person/client.h"
#include "board/person/console.h"
#include "board/person/open_page.h"
#include "board/person/options.h"
#include "board/person/spawn.h"
#include "board/person/stopping.h"
#include "board/rules/names.h"
#include "board/serving/places.h"
#include "board/verbs/person.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::board {
namespace {

/// The port that is tried first, so that an address that was kept is good again.
constexpr int usualPort = 47800;
constexpr int lastPort = 65535;

/// How long an exchange with the board may take: the longest hold and some more.
constexpr std::chrono::seconds boardPatience(feedHoldMs / 1000 + 10);

/// How often to look whether whoever started this is still there, in milliseconds.
constexpr int lookEveryMs = 500;

/// Takes the port that is asked for, or the usual one, or any; 0 when that cannot be.
int bindTo(Site& site, const std::string& asked, std::string& why) {
  if (asked.empty()) {
    const int port = site.bind(usualPort);
    return port != 0 ? port : site.bind(0);
  }
  const std::optional<int64_t> wanted = text::parseInteger(asked);
  if (!wanted || *wanted < 1 || *wanted > lastPort) {
    why = text::cat(asked, " is no port: it is a number from 1 to ", lastPort);
    return 0;
  }
  const int port = site.bind(static_cast<int>(*wanted));
  if (port == 0) why = text::cat("port ", *wanted, " is taken by another program");
  return port;
}

/// A file that leads a browser to the page, which is gone with this object. The address itself
/// would be seen by everybody on this machine who lists programs.
class Signpost {
 public:
  Signpost(std::string path, const std::string& address) : path_(std::move(path)) {
    std::ofstream(path_) << "<!doctype html><meta name=referrer content=no-referrer>"
                            "<script>location.replace(\""
                         << address << "\")</script>\n";
  }
  ~Signpost() { ::unlink(path_.c_str()); }
  Signpost(const Signpost&) = delete;
  Signpost& operator=(const Signpost&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

void openBrowser(const std::string& path, const Surroundings& around) {
#ifdef __APPLE__
  const std::string opener = "open";
#else
  const std::string opener = "xdg-open";
#endif
  std::string why;
  if (!spawn({{opener, path}, around.variables}, why)) complain(why);
}

/// Waits until this program is to stop, or whoever started it has gone.
void waitForEnd(const UniqueFd& stop, const Surroundings& around) {
  const std::string starter(valueOf(boardProcessVariable, around.variables));
  pollfd waiting{stop.get(), POLLIN, 0};
  while (::poll(&waiting, 1, lookEveryMs) <= 0) {
    if (!starter.empty() && starter != text::cat(::getppid())) return;
  }
}

int servePage(const Line& line, const Surroundings& around) {
  ::umask(S_IRWXG | S_IRWXO);
  const UniqueFd stop = catchSignals();
  if (!stop) return complain("no pipe to be stopped by");
  std::string why;
  const std::optional<std::string> suffix = findServed(line.directory, line.suffix, why);
  if (!suffix) return complain(why);
  const AskBoard ask = [&](TeamworkRequest request, std::string& reason) {
    return askBoard(line.directory, *suffix, std::move(request), reason, boardPatience);
  };
  TeamworkRequest first;
  first.method = personLive;
  first.name = line.thread;
  const std::optional<TeamworkResponse> response = ask(first, why);
  if (!response) return complain(why);
  if (response->kind == TeamworkResponse::Kind::error) {
    return complain(response->message.value_or("the board refuses, and does not say why"));
  }
  std::random_device device;
  const std::string key = mintSecret([&device] { return static_cast<uint32_t>(device()); });
  Site site({key, ask, line.thread, around});
  const int port = bindTo(site, line.port, why);
  if (port == 0) return complain(why.empty() ? "no port is free" : why);
  site.start();
  const std::string address = text::cat("http://127.0.0.1:", port, "/#key=", key);
  print(address);
  std::fflush(stdout);
  std::optional<Signpost> post;
  if (line.opensBrowser) {
    post.emplace(files::joinPath(line.directory, text::cat("page-", *suffix, ".html")), address);
    openBrowser(post->path(), around);
  }
  waitForEnd(stop, around);
  post.reset();
  // Nothing is kept here that an end could lose, and a client that says nothing, or a question that
  // the board holds, would be waited for for seconds.
  std::_Exit(0);
}

int run(int argc, char** argv, char** variables) {
  Surroundings around;
  around.program = argc > 0 ? argv[0] : "";
  for (char** variable = variables; *variable != nullptr; ++variable)
    around.variables.emplace_back(*variable);
  std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  words.insert(words.begin(), "page");
  Misuse misuse;
  std::optional<Line> line = readLine(words, misuse);
  if (!line || line->command->name != "page") {
    complain(line ? "`quillpost-board page --help` says how it is started" : misuse.why);
    return wrongUse;
  }
  if (line->directory.empty()) {
    line->directory = defaultDirectory(ProcessEnvironment()).value_or("");
    if (line->directory.empty()) return complain("there is no home directory: pass --dir");
  }
  return servePage(*line, around);
}

}  // namespace
}  // namespace quillpost::board

int main(int argc, char** argv, char** variables) {
  try {
    return quillpost::board::run(argc, argv, variables);
  } catch (...) {
    // What a library throws when memory runs out, or when there can be no more threads.
    std::fputs("quillpost-page: there is not enough memory\n", stderr);
    return quillpost::board::failure;
  }
}
