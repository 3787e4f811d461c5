// quillpost-board: serves a board, or does what the person asks of one that is served. The only
// file that reads the process's surroundings and that decides its exit status.

#include "base/clock.h"
#include "base/environment.h"
#include "base/files.h"
#include "base/text.h"
#include "board/person/client.h"
#include "board/person/command_path.h"
#include "board/person/options.h"
#include "board/serving/listener.h"
#include "board/serving/places.h"
#include "board/serving/publication.h"
#include "board/serving/service.h"
#include "board/serving/store.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpost::board {
namespace {

constexpr int wrongUse = 2;
constexpr int failure = 1;

/// Where the signal handler writes, since a handler can be given nothing.
int& stopWriter() {
  static int descriptor = -1;
  return descriptor;
}

extern "C" void stopServing(int) {
  const ssize_t ignored = ::write(stopWriter(), "", 1);
  static_cast<void>(ignored);
}

int complain(const std::string& why) {
  std::fputs(text::cat("quillpost-board: ", why, "\n").c_str(), stderr);
  return failure;
}

int64_t epochMs() {
  const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(since1970).count();
}

/// The reading end of a pipe that can be read once the program is to stop; none when that fails.
UniqueFd catchSignals() {
  int ends[2];
  if (::pipe(ends) != 0) return {};
  UniqueFd reading(ends[0]);
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
  stopWriter() = ends[1];
  struct sigaction action {};
  action.sa_handler = stopServing;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &action, nullptr);
  return reading;
}

int serve(const Options& options) {
  ::umask(S_IRWXG | S_IRWXO);
  const UniqueFd stop = catchSignals();
  if (!stop) return complain("no pipe to be stopped by");
  std::error_code failed;
  std::filesystem::create_directories(options.directory, failed);
  if (failed) return complain(text::cat("cannot make ", options.directory, ": ", failed.message()));

  std::string why;
  std::optional<Store> store = Store::open(options.database, why);
  if (!store) return complain(why);
  std::optional<Loaded> loaded = store->load(why);
  if (!loaded) return complain(why);
  for (const std::string& damage : loaded->damages) complain(damage);

  std::random_device device;
  const Random random = [&device] { return static_cast<uint32_t>(device()); };
  SteadyClock clock;
  // From here on by the steady clock, so that no lease ends because somebody sets the time.
  const Now now = [&clock, startMs = epochMs(), start = clock.now()] {
    return startMs +
           std::chrono::duration_cast<std::chrono::milliseconds>(clock.now() - start).count();
  };
  auto publication =
      Publication::open(options.directory, options.suffix.value_or("board"), random, why);
  if (!publication) return complain(why);
  const BoardFiles& files = publication->files();
  Listener* listening = nullptr;
  const auto care = [&] {
    if (UniqueFd socket = publication->restore(); socket && listening != nullptr) {
      listening->listenOn(std::move(socket));
      complain(text::cat(files.socket, " was deleted, and is published again"));
    }
  };
  Service service(*store, std::move(loaded->boards),
                  {publication->token(), publication->personToken(), options.leaseMs, files.socket,
                   files.token, complain, care},
                  now, random);
  Listener listener(publication->takeSocket(), service, clock);
  listening = &listener;
  std::fputs(text::cat("quillpost-board: listening on ", files.socket, ", board in ",
                       options.database, ", lease ", options.leaseMs / 1000, " s\n")
                 .c_str(),
             stderr);
  listener.run(stop.get());
  return service.isOver() ? failure : 0;
}

int ask(const Options& options, std::string_view program) {
  std::string why;
  const std::optional<std::string> suffix = findServed(options.directory, options.suffix, why);
  if (!suffix) return complain(why);
  const auto response = askBoard(options.directory, *suffix, options.request, why);
  if (!response) return complain(why);
  const std::string message = response->message.value_or("");
  if (response->kind == TeamworkResponse::Kind::error) return complain(message);
  std::fputs(message.ends_with('\n') ? message.c_str() : (message + "\n").c_str(), stdout);
  if (options.command == "seat")
    std::fputs(commandPathLine(program, ProcessEnvironment()).c_str(), stdout);
  if (response->notice) complain(*response->notice);
  return 0;
}

int run(const std::vector<std::string>& arguments, std::string_view program) {
  std::string why;
  std::optional<Options> options = readOptions(arguments, why);
  if (!options) {
    complain(why);
    std::fputs(usage().data(), stderr);
    return wrongUse;
  }
  if (options->command == "help") {
    std::fputs(usage().data(), stdout);
    return 0;
  }
  if (options->directory.empty()) {
    const std::optional<std::string> usual = defaultDirectory(ProcessEnvironment());
    if (!usual) return complain("there is no home directory: pass --dir");
    options->directory = *usual;
  }
  if (options->database.empty()) {
    options->database = files::joinPath(options->directory, "board.db");
  }
  return options->command == "serve" ? serve(*options) : ask(*options, program);
}

}  // namespace
}  // namespace quillpost::board

int main(int argc, char** argv) {
  return quillpost::board::run({argv + std::min(argc, 1), argv + argc}, argc > 0 ? *argv : "");
}
