#include "board/serving/service.h"

#include "base/text.h"
#include "board/rules/feed.h"
#include "board/rules/limits.h"
#include "board/rules/names.h"
#include "board/rules/people.h"
#include "board/rules/runs.h"
#include "board/rules/views.h"
#include "board/serving/keeping.h"
#include "board/verbs/person.h"
#include "tools/tool_name.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quillpost::board {

namespace {

constexpr const char* cannotWrite =
    "The board cannot write to its file, so nothing was changed. Is its disk full? Reading goes "
    "on; try again in a moment.";

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

/// What an answer carries of that which waits for the seat.
Delivery carriedBy(const Board& board, const Seat& seat, const TeamworkRequest& request,
                   const TeamworkResponse& response) {
  Delivery delivery{board.thread().id, seat.id, {}, {}, {}};
  if (isPoll(request) || response.messages) delivery = deliveryOf(board, seat);
  if (!isPoll(request)) delivery.wakesUpTo.clear();
  return delivery;
}

std::string noSuchThread(const std::string& name) {
  if (name.empty()) return std::string(noThreadYet);
  return text::cat("There is no thread called \"", name, "\"; `threads` lists them.");
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
      random_(std::move(random)),
      hands_(settings_.processes, settings_.news, {settings_.tokenPath, settings_.socketPath}),
      lookAtMs_(now_() + storeCareMs) {
  for (Board& board : boards_) {
    forgiveAbsence(board, moment());
    hands_.adopt(board, moment());
    save(board);
  }
}

Answer Service::answer(const TeamworkRequest& request) {
  Answer answer = carryOutOne(request);
  if (settings_.log && answer.holdMs == 0) settings_.log(request, answer.response);
  return answer;
}

Answer Service::carryOutOne(const TeamworkRequest& request) {
  if (request.protocolVersion != protocolVersion) {
    return {refused(text::cat("This board speaks version ", protocolVersion,
                              " of the protocol, and the request is of version ",
                              request.protocolVersion, "."))};
  }
  if (isForPerson(request.method)) {
    if (request.token != settings_.personToken) {
      return {refused("Only the person may do that, and this is not the person's token.")};
    }
    return answerPerson(request);
  }
  if (request.token != settings_.token) {
    return {
        refused("The collaboration token is not this board's. Read it anew from the "
                "token file.")};
  }
  Board* board = boardOf(request.sessionID);
  // What has lapsed by now has lapsed before this request, and with it perhaps the seat: a
  // helper's goes with the agent that asked for it.
  if (board != nullptr && !isFailing()) lapse(*board, moment());
  Seat* seat = board != nullptr ? board->seats.touch(request.sessionID) : nullptr;
  if (seat != nullptr) return answerSeat(*board, *seat, request);
  if (board != nullptr && save(*board)) tend(*board);
  return {
      refused("This board knows no seat of that session id. A new terminal's environment comes "
              "from `quillpost-board seat`.")};
}

Answer Service::answerSeat(Board& board, Seat& seat, const TeamworkRequest& request) {
  const Moment at = moment();
  const bool isReading = onlyReads(request.method);
  Answer answer;
  answer.holdMs = holdOf(board, seat, request);
  const TeamworkResponse* before = isReading ? nullptr : answeredBefore(request);
  if (answer.holdMs > 0) {
    renewPresence(board, seat, at);
  } else if (before != nullptr) {
    answer.response = *before;
  } else {
    answer.response =
        carryOut({board, request, seat, at, random_, listening_.contains(request.sessionID)});
  }
  const bool isKept = save(board);
  if (isKept) tend(board);
  if (answer.holdMs > 0) return answer;
  if (!isKept && !isReading) answer.response = refused(cannotWrite);
  answer.response.obligations = obligationsOf(board, seat, at);
  answer.response.audience = audienceFor(board, seat);
  answer.response.threadTag = board.thread().id;
  if (before == nullptr) {
    answer.receipt = Receipt{carriedBy(board, seat, request, answer.response)};
    // Nobody reads the answer to the heartbeat of a wait; the poll that follows carries it all.
    if (seat.registered && !seat.waiting) {
      answer.receipt->delivery.saidUpTo = carrySaid(board, seat, answer.response);
    }
  }
  addReceipt(request, answer);
  addRevision(request, answer);
  return answer;
}

/// An answer that shows the whole board says of which revision; every other one repeats what the
/// seat has been shown, so that its next wait asks for what came after that.
void Service::addRevision(const TeamworkRequest& request, Answer& answer) const {
  if (answer.response.changes) {
    answer.receipt->shownRev = answer.response.changes->rev;
  } else if (answer.response.rev) {
    answer.receipt->shownRev = *answer.response.rev;
  } else if (const auto shown = shown_.find(request.sessionID); shown != shown_.end()) {
    answer.response.rev = shown->second;
  }
}

void Service::addReceipt(const TeamworkRequest& request, Answer& answer) {
  Receipt receipt = std::move(answer.receipt).value_or(Receipt{});
  std::erase_if(unanswered_,
                [&](const auto& row) { return now_() - row.second.atMs > repetitionMs; });
  if (!onlyReads(request.method) && answer.response.kind != TeamworkResponse::Kind::error) {
    receipt.write = ++lastWrite_;
    unanswered_.insert_or_assign(request.sessionID,
                                 Unanswered{request, answer.response, now_(), receipt.write});
  }
  answer.receipt = std::move(receipt);
}

const TeamworkResponse* Service::answeredBefore(const TeamworkRequest& request) const {
  const auto found = unanswered_.find(request.sessionID);
  if (found == unanswered_.end() || now_() - found->second.atMs > repetitionMs) return nullptr;
  return found->second.request == request ? &found->second.response : nullptr;
}

void Service::confirm(const Receipt& receipt) {
  const Delivery& delivery = receipt.delivery;
  std::erase_if(unanswered_, [&](const auto& row) { return row.second.number == receipt.write; });
  if (receipt.shownRev > 0) shown_[delivery.session] = receipt.shownRev;
  if (delivery.wakesUpTo.empty() && delivery.messagesUpTo.empty() && delivery.saidUpTo.empty()) {
    return;
  }
  Board* board = boardOf(delivery.session);
  if (board == nullptr) return;
  forgetDelivered(*board, delivery);
  // When this cannot be saved the same is delivered once more, which is better than not at all.
  save(*board);
}

void Service::endListening(const std::string& session) {
  const auto found = listening_.find(session);
  if (found != listening_.end()) listening_.erase(found);
}

std::optional<int64_t> Service::tick() {
  const int64_t nowMs = now_();
  if (nowMs >= lookAtMs_) {
    careForFile();
    if (settings_.care) settings_.care();
  }
  std::optional<int64_t> next;
  const auto consider = [&](int64_t dueMs) { next = std::min(next.value_or(dueMs), dueMs); };
  if (const std::optional<int64_t> due = hands_.press(nowMs)) consider(std::max(*due, retryAtMs_));
  if (store_.isFile() || settings_.care) consider(lookAtMs_);
  for (Board& board : boards_) {
    if (nowMs >= retryAtMs_) {
      // While nothing could be written nobody could renew a lease. Nothing lapses before something
      // has been written, and that may be the leases themselves.
      if (isFailing()) {
        forgiveAbsence(board, moment());
      } else {
        lapse(board, moment());
      }
      if (save(board)) tend(board);
    }
    if (const std::optional<int64_t> due = nextLapse(board)) consider(std::max(*due, retryAtMs_));
  }
  if (next) next = std::max<int64_t>(0, *next - nowMs);
  return next;
}

/// Has the helpers of a board that is saved follow its rows.
void Service::tend(Board& board) {
  if (board.runs.empty()) return;
  hands_.tend(board, moment());
  if (save(board)) hands_.letGo(board);
}

void Service::hear(int descriptor) {
  hands_.hearOfEnds(descriptor);
  for (Board& board : boards_) hands_.hearOutput(descriptor, board);
}

void Service::finish() {
  for (Board& board : boards_) {
    std::vector<std::string> all;
    for (const auto& [id, run] : board.runs) all.push_back(id);
    stopRuns(board, all, {"", "the board ended"}, moment());
    if (save(board)) tend(board);
  }
  hands_.finish();
  for (Board& board : boards_) tend(board);
}

void Service::careForFile() {
  lookAtMs_ = now_() + storeCareMs;
  std::string why;
  switch (store_.look()) {
    case FileState::kept:
      return;
    case FileState::gone:
      isOver_ = !store_.writeAnew(why);
      say(isOver_ ? text::cat("the file of the board was deleted: ", why)
                  : "the file of the board was deleted, and has been written anew");
      return;
    case FileState::replaced:
      isOver_ = true;
      say("another file was put in the place of the board's, which is left as it is");
      return;
  }
}

void Service::say(const std::string& sentence) const {
  if (settings_.say) settings_.say(sentence);
}

Board* Service::boardOf(std::string_view sessionID) {
  for (Board& board : boards_)
    if (board.seats.find(sessionID) != nullptr) return &board;
  return nullptr;
}

bool Service::save(Board& board) {
  if (isSaved(board)) return store_.save(board);
  // Nothing is acknowledged that goes to a file which nobody will open again.
  careForFile();
  const bool mayTry = !isOver_ && now_() >= retryAtMs_;
  if (!mayTry) {
    revert(board);
    return false;
  }
  if (!store_.save(board)) {
    if (!isFailing()) say("cannot write to the file of the board; until it can, nothing changes");
    retryAtMs_ = now_() + storeCareMs;
    return false;
  }
  ++stirred_;
  if (!isFailing()) return true;
  retryAtMs_ = 0;
  say("the file of the board can be written again");
  // Nobody could renew a lease meanwhile.
  for (Board& other : boards_) {
    forgiveAbsence(other, moment());
    store_.save(other);
  }
  return true;
}

Answer Service::answerPerson(const TeamworkRequest& request) {
  const std::string name = request.name.value_or("");
  if (isFileKeeping(request.method)) return {keepFile(store_, request)};
  if (name != cut(oneLine(name), entryLimit)) {
    return {refused(
        text::cat("The name of a thread is one line of up to ", entryLimit, " characters."))};
  }
  std::vector<Board*> meant;
  for (Board& board : boards_)
    if (isFor(board, name)) meant.push_back(&board);
  const Viewing& viewing = settings_.viewing;
  if (viewing.shows != nullptr && viewing.shows(request.method))
    return answerViewer(meant, request);
  if (meant.size() > 1) {
    return {refused(
        text::cat("There are several threads (",
                  text::join(meant, ", ", [](const Board* board) { return board->thread().name; }),
                  "): say which with --thread."))};
  }
  if (request.method == personSeat) return {newSeat(request)};
  if (request.method == personThread) return {newThread(request)};
  // A board that is new is begun by saying what it is for, or what is to be done.
  const bool isBeginning = request.method == personGoal || request.method == personCharter ||
                           request.method == personAdd;
  const bool isNew = boards_.empty() && name.empty() && isBeginning;
  if (isNew) meant.push_back(&addBoard(""));
  if (meant.empty()) return {refused(noSuchThread(name))};
  Board& board = *meant.front();
  if (!isFailing()) lapse(board, moment());
  TeamworkResponse response = carryOutForPerson(board, request, moment());
  if (!save(board)) {
    if (isNew) boards_.pop_back();
    return {refused(cannotWrite)};
  }
  tend(board);
  return {std::move(response)};
}

Answer Service::answerViewer(const std::vector<Board*>& meant, const TeamworkRequest& request) {
  if (meant.empty() && !request.name.value_or("").empty()) {
    return {refused(noSuchThread(*request.name))};
  }
  for (Board* board : meant) {
    if (!isFailing()) lapse(*board, moment());
    save(*board);
  }
  const std::vector<const Board*> boards(meant.begin(), meant.end());
  Answer answer;
  if (settings_.viewing.isUpToDate(boards, request)) {
    answer.holdMs = std::clamp<int64_t>(request.holdMs.value_or(0), 0, holdLimitMs);
  }
  if (answer.holdMs == 0)
    answer.response = settings_.viewing.view(boards, store_, request, moment());
  return answer;
}

TeamworkResponse Service::newThread(const TeamworkRequest& request) {
  const std::string name = request.name.value_or("");
  if (std::ranges::any_of(boards_, [&](const Board& board) { return isFor(board, name); })) {
    return refused(text::cat("There is a thread called \"", name, "\" already."));
  }
  Board& board = addBoard(name);
  TeamworkResponse response =
      written(text::cat("Made the thread \"", name, "\" (", board.thread().id, ")."));
  if (save(board)) return response;
  boards_.pop_back();
  return refused(cannotWrite);
}

Board& Service::addBoard(std::string_view name) {
  Thread thread;
  thread.id = mintTag(random_);
  thread.name = name.empty() ? firstThread : name;
  thread.place = boards_.empty() ? 1 : boards_.back().thread().place + 1;
  boards_.push_back(newBoard(std::move(thread)));
  return boards_.back();
}

TeamworkResponse Service::newSeat(const TeamworkRequest& request) {
  const std::string name = request.name.value_or("");
  const auto found =
      std::ranges::find_if(boards_, [&](const Board& board) { return isFor(board, name); });
  const bool isNew = found == boards_.end();
  Board& board = isNew ? addBoard(name) : *found;
  Seat seat;
  seat.label = cutWithMark(oneLine(request.agent.value_or("")), roleLimit);
  seat.id = mintSecret(random_);
  do {
    seat.handle = mintHandle(random_);
  } while (seatAt(board, seat.handle) != nullptr);
  const Seat& added = board.seats.put(std::move(seat));
  TeamworkResponse response =
      written(environmentLines({added.id, settings_.tokenPath, settings_.socketPath}),
              text::cat(isNew && !name.empty() ? "A new thread was made. " : "",
                        "This seat answers to ", added.handle, " on the thread \"",
                        board.thread().name, "\" (", board.thread().id, ")."));
  response.panes = {{added.handle}};
  response.threadTag = board.thread().id;
  if (save(board)) return response;
  if (isNew) boards_.pop_back();
  return refused(cannotWrite);
}

}  // namespace quillpost::board
