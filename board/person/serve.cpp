// The board's own process.

#include "base/clock.h"
#include "base/files.h"
#include "base/text.h"
#include "board/person/commands.h"
#include "board/person/console.h"
#include "board/person/open_page.h"
#include "board/person/stopping.h"
#include "board/person/views.h"
#include "board/serving/listener.h"
#include "board/serving/publication.h"
#include "board/serving/service.h"
#include "board/serving/spawned_processes.h"
#include "board/serving/store.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace quillpost::board {

namespace {

void report(const std::string& sentence) { complain(sentence); }

int64_t epochMs() {
  const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(since1970).count();
}

/// One line about a request, for `--log`: who asked what, and what came of it.
void logRequest(const TeamworkRequest& request, const TeamworkResponse& response) {
  // Of a session only so much as tells it from another: the rest of it is a secret.
  constexpr std::size_t told = 4;
  const std::string about = request.taskID.value_or(request.discussionID.value_or(""));
  const bool isError = response.kind == TeamworkResponse::Kind::error;
  report(text::cat(request.sessionID.empty() ? "person" : request.sessionID.substr(0, told), " ",
                   request.method, about.empty() ? "" : " ", about, ": ",
                   json::wordFor(response.kind), isError ? ": " : "",
                   isError ? response.message.value_or("") : ""));
}

}  // namespace

int serve(const Line& line, const Surroundings& around) {
  ::umask(S_IRWXG | S_IRWXO);
  const UniqueFd stop = catchSignals();
  if (!stop) return complain("no pipe to be stopped by");
  std::error_code failed;
  std::filesystem::create_directories(line.directory, failed);
  if (failed) return complain(text::cat("cannot make ", line.directory, ": ", failed.message()));

  std::string why;
  std::optional<Store> store = Store::open(line.database, why);
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
  const std::string suffix = line.suffix.empty() ? "board" : line.suffix;
  std::optional<Publication> publication = Publication::open(line.directory, suffix, random, why);
  if (!publication) return complain(why);
  const BoardFiles& files = publication->files();
  Listener* listening = nullptr;
  const auto care = [&] {
    if (UniqueFd socket = publication->restore(); socket && listening != nullptr) {
      listening->listenOn(std::move(socket));
      complain(text::cat(files.socket, " was deleted, and is published again"));
    }
  };
  SpawnedProcesses processes;
  Settings settings{.token = publication->token(),
                    .personToken = publication->personToken(),
                    .leaseMs = line.leaseMs,
                    .socketPath = files.socket,
                    .tokenPath = files.token,
                    .say = report,
                    .care = care,
                    .processes = &processes,
                    .news = processes.news(),
                    .viewing = viewing};
  if (line.isLogged) settings.log = logRequest;
  Service service(*store, std::move(loaded->boards), std::move(settings), now, random);
  Listener listener(publication->takeSocket(), service, clock);
  listening = &listener;
  std::fputs(text::cat("quillpost-board: listening on ", files.socket, ", board in ", line.database,
                       ", lease ", line.leaseMs / 1000, " s\n")
                 .c_str(),
             stderr);
  Line served = line;
  served.suffix = suffix;
  const PageProgram page = line.withPage ? startPage(served, around, why) : PageProgram();
  if (line.withPage && !page.isRunning()) complain(why);
  listener.run(stop.get());
  service.finish();
  return service.isOver() ? failure : 0;
}

}  // namespace quillpost::board
