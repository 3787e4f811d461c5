// Looking after the board's file: by the board while it is served, else here.

#include "base/text.h"
#include "board/person/client.h"
#include "board/person/commands.h"
#include "board/person/console.h"
#include "board/serving/keeping.h"
#include "board/serving/store.h"
#include "board/verbs/person.h"

#include <filesystem>
#include <system_error>

#include <sys/stat.h>

namespace quillpost::board {

namespace {

int told(const TeamworkResponse& response) {
  const std::string message = response.message.value_or("");
  if (response.kind == TeamworkResponse::Kind::error) return complain(message);
  print(message);
  return 0;
}

/// Whether the file is the one that a board in the directory has, however it is written.
bool isUsual(const Line& line) {
  const std::string usual = usualDatabase(line);
  std::error_code failed;
  return line.database == usual || std::filesystem::equivalent(line.database, usual, failed);
}

/// What comes of it without a board's help; nothing when the file cannot be opened.
std::optional<TeamworkResponse> keepHere(const Line& line, const TeamworkRequest& request,
                                         std::string& why) {
  ::umask(S_IRWXG | S_IRWXO);
  std::error_code failed;
  const bool isThere = std::filesystem::exists(line.database, failed);
  if (!isThere && request.method != personImport) {
    why = text::cat("there is no board in ", line.database);
    return std::nullopt;
  }
  if (isUsual(line)) std::filesystem::create_directories(line.directory, failed);
  std::optional<Store> store = Store::open(line.database, why);
  if (!store) return std::nullopt;
  TeamworkResponse response = keepFile(*store, request);
  store.reset();
  const bool isRefused = response.kind == TeamworkResponse::Kind::error;
  if (isRefused && !isThere) std::filesystem::remove(line.database, failed);
  return response;
}

}  // namespace

int keep(const Line& line, const Surroundings&) {
  std::error_code failed;
  TeamworkRequest request = line.request;
  request.body = std::filesystem::absolute(line.file, failed).string();
  std::string why;
  // A file that is named is that file, and not the one of whichever board is served.
  const std::optional<std::string> served =
      isUsual(line) ? findServed(line.directory, line.suffix, why) : std::nullopt;
  if (served && request.method == personImport) {
    return complain(
        "the board is served: stop it first, since lines are taken into a file that "
        "nobody has open");
  }
  const std::optional<TeamworkResponse> response =
      served ? askBoard(line.directory, *served, request, why) : keepHere(line, request, why);
  return response ? told(*response) : complain(why);
}

}  // namespace quillpost::board
