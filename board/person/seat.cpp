#include "board/person/seat.h"

#include "board/person/client.h"
#include "board/serving/publication.h"
#include "board/verbs/person.h"

namespace quillpost::board {

namespace {

/// The session that the lines for a shell's environment name: a number, and so never with a quote
/// in it.
std::string sessionIn(std::string_view lines) {
  constexpr std::string_view before = "QUILLPOST_SESSION_ID='";
  const std::size_t at = lines.find(before);
  if (at == std::string_view::npos) return {};
  lines.remove_prefix(at + before.size());
  return std::string(lines.substr(0, lines.find('\'')));
}

}  // namespace

std::optional<NewSeat> askForSeat(const Line& line, std::string& why) {
  const std::optional<std::string> suffix = findServed(line.directory, line.suffix, why);
  if (!suffix) return std::nullopt;
  const std::optional<TeamworkResponse> response = askServed(line, line.request, why);
  if (!response) return std::nullopt;
  const BoardFiles files = filesIn(line.directory, *suffix);
  NewSeat seat;
  seat.lines = response->message.value_or("");
  seat.session = sessionIn(seat.lines);
  if (seat.session.empty() || !response->panes || response->panes->empty()) {
    why = "the board is of another version than this command";
    return std::nullopt;
  }
  seat.handle = response->panes->front().handle;
  seat.thread = response->threadTag.value_or("");
  seat.tokenFile = files.token;
  seat.socket = files.socket;
  seat.sentence = response->notice.value_or("");
  return seat;
}

bool giveBack(const Line& line, const NewSeat& seat, std::string& why) {
  TeamworkRequest request;
  request.method = personUnseat;
  request.name = seat.thread;
  request.to = seat.handle;
  return askServed(line, request, why).has_value();
}

}  // namespace quillpost::board
