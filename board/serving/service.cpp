#include "board/serving/service.h"

#include "base/text.h"
#include "board/rules/feed.h"
#include "board/rules/people.h"
#include "board/rules/views.h"
#include "board/serving/names.h"
#include "board/verbs/person.h"
#include "tools/tool_name.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

/// The thread that the first seat of a new file is on.
constexpr std::string_view firstThread = "main";

bool isPoll(const TeamworkRequest& request) { return request.method == pollChanges; }

/// How long a request may be held: a poll that has nothing to tell, on a board where something can
/// happen. 0 for everything else.
int64_t holdOf(const Board& board, const Seat& seat, const TeamworkRequest& request) {
  if (!isPoll(request) || isDeserted(board)) return 0;
  if (hasNews(board, seat, listeningOf(request))) return 0;
  return std::clamp<int64_t>(request.holdMs.value_or(0), 0, holdLimitMs);
}

bool isFor(const Board& board, std::string_view name) {
  return name.empty() || board.thread().name == name || board.thread().id == name;
}

}  // namespace

Service::Service(Store& store, Boards boards, Settings settings, Now now, Random random)
    : store_(store),
      boards_(std::move(boards)),
      settings_(std::move(settings)),
      now_(std::move(now)),
      random_(std::move(random)) {
  for (Board& board : boards_) {
    forgiveAbsence(board, moment());
    save(board);
  }
}

Answer Service::answer(const TeamworkRequest& request) {
  if (request.protocolVersion != protocolVersion) {
    return {refused(text::cat("This board speaks version ", protocolVersion,
                              " of the protocol, and the request is of version ",
                              request.protocolVersion, ".")),
            {}};
  }
  if (isForPerson(request.method)) {
    if (request.token != settings_.personToken) {
      return {refused("Only the person may do that, and this is not the person's token."), {}};
    }
    return {answerPerson(request), {}};
  }
  if (request.token != settings_.token) {
    return {refused("The collaboration token is not this board's. Read it anew from the "
                    "token file."),
            {}};
  }
  Board* board = boardOf(request.sessionID);
  if (board == nullptr) {
    return {refused("This board knows no seat of that session id. A new terminal's environment "
                    "comes from `quillpost-board seat`."),
            {}};
  }
  return answerSeat(*board, *board->seats.touch(request.sessionID), request);
}

Answer Service::answerSeat(Board& board, Seat& seat, const TeamworkRequest& request) {
  const Moment at = moment();
  const std::string tag = board.thread().id;
  lapse(board, at);
  Answer answer;
  answer.holdMs = holdOf(board, seat, request);
  if (answer.holdMs > 0) {
    renewPresence(board, seat, at);
  } else {
    answer.response = carryOut({board, request, seat, at, random_});
  }
  if (!save(board)) {
    return {refused("The board could not write this down, so nothing was changed. Is its disk "
                    "full?"),
            {}};
  }
  answer.response.obligations = obligationsOf(board, seat, at);
  answer.response.audience = audienceFor(board, seat);
  answer.response.threadTag = tag;
  if (isPoll(request)) {
    answer.delivery = deliveryOf(board, seat);
  } else if (answer.response.messages) {
    answer.delivery = deliveryOf(board, seat);
    answer.delivery->wakesUpTo.clear();
  }
  return answer;
}

void Service::confirm(const Delivery& delivery) {
  if (delivery.wakesUpTo.empty() && delivery.messagesUpTo.empty()) return;
  Board* board = boardOf(delivery.session);
  if (board == nullptr) return;
  forgetDelivered(*board, delivery);
  // When this cannot be saved the same is delivered once more, which is better than not at all.
  save(*board);
}

std::optional<int64_t> Service::tick() {
  std::optional<int64_t> next;
  for (Board& board : boards_) {
    lapse(board, moment());
    save(board);
    const std::optional<int64_t> due = nextLapse(board);
    if (due && (!next || *due < *next)) next = due;
  }
  if (next) next = std::max<int64_t>(0, *next - now_());
  return next;
}

Board* Service::boardOf(std::string_view sessionID) {
  for (Board& board : boards_)
    if (board.seats.find(sessionID) != nullptr) return &board;
  return nullptr;
}

bool Service::save(Board& board) {
  stirred_ += !isSaved(board);
  return store_.save(board);
}

TeamworkResponse Service::answerPerson(const TeamworkRequest& request) {
  if (request.method == personSeat) return newSeat(request);
  const std::string name = request.name.value_or("");
  for (Board& board : boards_) {
    if (!isFor(board, name)) continue;
    lapse(board, moment());
    TeamworkResponse response = carryOutForPerson(board, request, moment());
    if (!save(board)) return refused("The board could not write this down.");
    return response;
  }
  if (name.empty()) return refused("There is no thread yet: `seat` makes the first one.");
  return refused(text::cat("There is no thread called \"", name, "\"."));
}

TeamworkResponse Service::newSeat(const TeamworkRequest& request) {
  const std::string name = request.name.value_or("");
  const auto found =
      std::ranges::find_if(boards_, [&](const Board& board) { return isFor(board, name); });
  const bool isNew = found == boards_.end();
  if (isNew) {
    Thread thread;
    thread.id = mintTag(random_);
    thread.name = name.empty() ? firstThread : name;
    thread.place = boards_.empty() ? 1 : boards_.back().thread().place + 1;
    boards_.push_back(newBoard(std::move(thread)));
  }
  Board& board = isNew ? boards_.back() : *found;
  Seat seat;
  seat.id = mintSecret(random_);
  do {
    seat.handle = mintHandle(random_);
  } while (seatAt(board, seat.handle) != nullptr);
  const Seat& added = board.seats.put(std::move(seat));
  TeamworkResponse response =
      written(environmentLines({added.id, settings_.tokenPath, settings_.socketPath}),
              text::cat("This seat answers to ", added.handle, " on the thread \"",
                        board.thread().name, "\" (", board.thread().id, ")."));
  if (save(board)) return response;
  if (isNew) boards_.pop_back();
  return refused("The board could not write this down.");
}

}  // namespace quillpost::board
