#include "board_model/session.h"

#include "base/text.h"
#include "board/rules/feed.h"
#include "board/rules/ids.h"
#include "board/rules/people.h"
#include "board/serving/store.h"
#include "board/verbs/methods.h"
#include "board/verbs/person.h"
#include "board_model/calm.h"
#include "board_model/judge.h"
#include "harness/dice.h"
#include "tools/tool_name.h"

#include <array>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::board_model {

namespace {

using namespace board;
using Kind = TeamworkResponse::Kind;

constexpr std::size_t seatCount = 10;
constexpr std::size_t stepCount = 50;
constexpr std::size_t firstTasks = 5;

/// What chance prefers: what makes a board move, since most verbs are refused most of the time.
constexpr std::array<std::string_view, 34> likely{"register",         "add_task",
                                                  "add_task",         "claim_task",
                                                  "claim_task",       "claim_task",
                                                  "complete_task",    "complete_task",
                                                  "complete_task",    "update_task",
                                                  "update_task",      "comment_task",
                                                  "release_task",     "request_release",
                                                  "request_review",   "request_review",
                                                  "verify_task",      "delete_task",
                                                  "reject_task",      "watch_task",
                                                  "send_message",     "open_discussion",
                                                  "reply_discussion", "resolve_discussion",
                                                  "heartbeat",        "heartbeat",
                                                  "poll_changes",     "poll_changes",
                                                  "assign_task",      "list_tasks",
                                                  wakeQuery,          wakeQuery,
                                                  wakeQuery,          "propose_goal_complete"};

constexpr std::array<std::string_view, 9> ofPerson{
    personAnswer, personSay,        personConfirmGoal, personSquad,  personAnswer,
    personAnswer, personReopenGoal, personReopenGoal,  personRestore};

/// What one seat's agent knows of what has reached it.
struct Reader {
  int64_t rev = 0;
  /// Ids of wakes and messages that have been carried to it, and of what must still come.
  std::set<std::string> carried;
  /// Ids of those that its stop hook has told of.
  std::set<std::string> told;
  std::vector<std::string> messagesAhead;
};

class Session {
 public:
  Session(uint64_t seed, Tally& tally, std::string* trace)
      : dice_(seed), tally_(tally), trace_(trace) {
    Thread thread;
    thread.id = "T-abc234";
    thread.name = "main";
    thread.place = 1;
    boards_.push_back(newBoard(std::move(thread)));
    for (std::size_t i = 0; i < seatCount; ++i) {
      Seat seat;
      seat.id = text::cat("s-", i);
      seat.handle = text::cat("AB", i);
      board().seats.put(std::move(seat));
    }
    begin();
    store_.save(board());
  }

  std::optional<std::string> play() {
    for (std::size_t step = 0; step < stepCount; ++step)
      if (auto wrong = takeStep()) return text::cat("step ", step, ": ", *wrong);
    calmAt_ = at_;
    const auto ask = [this](TeamworkRequest request) { return askInCalm(std::move(request)); };
    if (auto wrong = endCalmly({board(), at_, dice_, ask})) {
      return text::cat("in the calm: ", *wrong);
    }
    for (const auto& [session, reader] : readers_) {
      const bool isHere = isLive(*board().seats.find(session));
      if (isHere && !reader.messagesAhead.empty()) return "in the calm: a message never came";
    }
    return std::nullopt;
  }

 private:
  Board& board() { return boards_.front(); }

  /// Agents on every seat but one, a goal, the squad switched on, some tasks.
  void begin() {
    TeamworkRequest request;
    request.title = request.name = "words";
    request.approve = true;
    request.method = personSquad;
    carryOutForPerson(board(), request, at_);
    for (std::size_t i = 1; i < seatCount; ++i) ask(text::cat("s-", i), "register", request);
    ask("s-1", "set_goal", request);
    for (std::size_t i = 0; i < firstTasks; ++i) ask("s-1", "add_task", request);
  }

  TeamworkResponse ask(const std::string& session, std::string_view method,
                       TeamworkRequest request) {
    request.method = method;
    return carryOut({board(), request, *board().seats.touch(session), at_, random_});
  }

  std::optional<std::string> takeStep() {
    const Moment then = at_;
    if (dice_.oneIn(6)) at_.nowMs += static_cast<int64_t>(dice_.below(250'000));
    const Before before = lookAt(board(), then);
    std::string mover;
    std::optional<std::string> wrong;
    if (dice_.oneIn(12)) {
      letLapse();
      wrong = askAsPerson();
    } else {
      wrong = askAsSeat(mover);
    }
    if (!wrong) wrong = whatIsWrong(board(), at_);
    if (!wrong) wrong = whatWasMissed(board(), before, at_, mover);
    if (!wrong && dice_.oneIn(30)) wrong = killAndLoad();
    return wrong;
  }

  /// One request whose answer arrives, of the person when it names no session.
  std::optional<std::string> askInCalm(TeamworkRequest request) {
    const std::string& session = request.sessionID;
    const Before before = lookAt(board(), *std::exchange(calmAt_, at_));
    lapse(board(), at_);
    if (request.method == pollChanges) request.sinceRev = readers_[session].rev;
    Seat* seat = session.empty() ? nullptr : board().seats.touch(session);
    const TeamworkResponse response = seat == nullptr
                                          ? carryOutForPerson(board(), request, at_)
                                          : carryOut({board(), request, *seat, at_, random_});
    note(seat == nullptr ? "person" : seat->handle, request, response);
    const bool hasMoved = !isSaved(board());
    store_.save(board());
    std::optional<std::string> wrong;
    if (response.kind == Kind::error) {
      wrong = text::cat(request.method, " is refused: ", response.message.value_or(""));
    }
    if (response.wakePending.value_or(false)) wrong = "a stop hook holds back who owes nothing";
    if (!wrong && hasMoved) wrong = whatIsWrong(board(), at_);
    if (!wrong && hasMoved) {
      wrong = whatWasMissed(board(), before, at_, seat == nullptr ? "" : seat->fingerprint);
    }
    if (wrong || seat == nullptr) return wrong;
    if (request.method == "complete_task") ++tally_["done in the calm"];
    return takeAnswer(response, *seat, readers_[session]);
  }

  void letLapse() {
    lapse(board(), at_);
    store_.save(board());
  }

  std::optional<std::string> askAsPerson() {
    TeamworkRequest request = someRequest();
    request.method = dice_.oneOf(ofPerson);
    const TeamworkResponse response = carryOutForPerson(board(), request, at_);
    note("person", request, response);
    store_.save(board());
    return std::nullopt;
  }

  std::optional<std::string> askAsSeat(std::string& mover) {
    const std::string session = text::cat("s-", dice_.below(seatCount));
    TeamworkRequest request = someRequest();
    request.sessionID = session;
    const auto held = board().tasks.with({byOwner, board().seats.find(session)->fingerprint});
    if (!held.empty() && !dice_.oneIn(4)) request.taskID = dice_.oneOf(held)->id;
    request.method = dice_.oneIn(4) ? dice_.oneOf(boardMethods) : dice_.oneOf(likely);
    if (!board().seats.find(session)->registered && !dice_.oneIn(8)) request.method = "register";
    Reader& reader = readers_[session];
    if (request.method == pollChanges) request.sinceRev = reader.rev;
    const auto unjudged = board().tasks.with({toReview, {}});
    if (request.method == "open_discussion" && dice_.flip()) request.taskID.reset();
    if (request.method == "complete_task") request.summary = request.title;
    if (request.method == "verify_task" && !unjudged.empty()) {
      request.taskID = dice_.oneOf(unjudged)->id;
    }
    letLapse();
    Seat& seat = *board().seats.touch(session);
    const Before then = request.method == "claim_task" ? lookAt(board(), at_) : Before{};
    const bool isSaveToFail = dice_.oneIn(20);
    const std::string rows = isSaveToFail ? rowsOf(board()) : std::string();
    const std::string target = request.taskID.value_or("");
    const bool mayClaim = then.isTakeable(session, target);
    const bool isOwn = board().tasks.find(target) != nullptr &&
                       isHeldBy(*board().tasks.find(target), seat.fingerprint);
    if (request.method == "add_task" && !dice_.oneIn(4)) request.to.reset();
    const TeamworkResponse response = carryOut({board(), request, seat, at_, random_});
    mover = seat.fingerprint;
    note(seat.handle, request, response);
    if (isSaveToFail) {
      // As when the disk is full: nothing of it has happened.
      revert(board());
      return rowsOf(board()) == rows ? std::nullopt
                                     : std::optional<std::string>("a failed save left traces");
    }
    store_.save(board());
    if (request.method == "claim_task" && seat.registered && !isOwn) {
      const bool isClaimed = response.kind == Kind::written;
      const bool isExpected = isClaimed ? mayClaim || wasBlockedBy(target, seat) : !mayClaim;
      if (!isExpected) return text::cat("the claim of ", target, " went against what was shown");
    }
    noteMessages(request, response, seat);
    if (response.kind == Kind::wake && !hasToldAll(seat, reader) && !*response.wakePending) {
      return "a stop hook let an agent go that was not told of all that waits for it";
    }
    return takeAnswer(response, seat, reader);
  }

  /// Whoever is blocked on a task itself may take it up again.
  bool wasBlockedBy(const std::string& id, const Seat& seat) {
    const Task* task = board().tasks.find(id);
    return task != nullptr && task->blocked && task->blockedBy == seat.fingerprint;
  }

  /// Messages that were accepted must arrive, unless their reader's agent leaves.
  void noteMessages(const TeamworkRequest& request, const TeamworkResponse& response,
                    const Seat& seat) {
    if (request.method == "send_message" && response.kind == Kind::written) {
      const Seat* reader = seatAt(board(), request.to.value_or(""));
      readers_[reader->id].messagesAhead.push_back(request.body.value_or(""));
    }
    if (request.method == "unregister") readers_[seat.id].messagesAhead.clear();
  }

  /// Whether the stop hook has told before of all that waits; now it has.
  bool hasToldAll(const Seat& seat, Reader& reader) {
    const std::size_t before = reader.told.size();
    for (const Wake* wake : wakesOf(board(), seat)) reader.told.insert(wake->id);
    for (const Message* message : messagesOf(board(), seat)) reader.told.insert(message->id);
    return reader.told.size() == before;
  }

  /// The agent reads an answer, or it is lost on the way.
  std::optional<std::string> takeAnswer(TeamworkResponse response, const Seat& seat,
                                        Reader& reader) {
    const bool isFeed = response.kind == Kind::changes;
    if (isFeed && response.changes->rev < reader.rev) return "a revision went back";
    Delivery delivery{"", seat.id};
    if (isFeed || response.messages) delivery = deliveryOf(board(), seat);
    if (!isFeed) delivery.wakesUpTo.clear();
    if (seat.registered && !seat.waiting) delivery.saidUpTo = carrySaid(board(), seat, response);
    if (!calmAt_ && dice_.oneIn(5)) return std::nullopt;
    if (isFeed) {
      reader.rev = response.changes->rev;
      if (response.changes->wakeReasons.size() != wakesOf(board(), seat).size()) {
        return "a feed left out a wake";
      }
      for (const Wake* wake : wakesOf(board(), seat))
        if (!reader.carried.insert(wake->id).second) return "a wake came twice";
    }
    const auto messages = isFeed ? response.changes->messages
                                 : response.messages.value_or(std::vector<TeamworkSquadMessage>());
    for (const TeamworkSquadMessage& message : messages) {
      if (reader.messagesAhead.empty() || reader.messagesAhead.front() != message.text) {
        return "a message came twice, out of order or from nowhere";
      }
      reader.messagesAhead.erase(reader.messagesAhead.begin());
    }
    forgetDelivered(board(), delivery);
    store_.save(board());
    tally_["wakes read"] += isFeed ? text::countOf(response.changes->wakeReasons) : 0;
    tally_["messages read"] += text::countOf(messages);
    return std::nullopt;
  }

  /// What is saved is what the board is; it goes on from there.
  std::optional<std::string> killAndLoad() {
    std::string why;
    std::optional<Loaded> loaded = store_.load(why);
    if (!loaded || loaded->boards.size() != 1 || !loaded->damages.empty())
      return "no board: " + why;
    if (rowsOf(loaded->boards.front()) != rowsOf(board())) return "what was saved differs";
    boards_ = std::move(loaded->boards);
    forgiveAbsence(board(), at_);
    store_.save(board());
    ++tally_["kills"];
    return std::nullopt;
  }

  /// Mostly one that is there.
  std::string someTask() {
    const int64_t filed = board().counted().tasksFiled;
    return taskID(static_cast<int64_t>(dice_.below(static_cast<std::size_t>(filed) + 2)) + 1);
  }
  std::string someParty() {
    const std::string handle = text::cat("AB", dice_.below(seatCount));
    const Seat* seat = seatAt(board(), handle);
    if (dice_.oneIn(10)) return "human";
    return dice_.flip() && !seat->fingerprint.empty() ? seat->fingerprint : handle;
  }
  template <class Make>
  std::optional<std::vector<std::string>> someList(Make&& make) {
    if (!dice_.oneIn(3)) return std::nullopt;
    std::vector<std::string> list;
    for (std::size_t left = dice_.below(3); left > 0; --left) list.push_back(make());
    return list;
  }
  std::optional<bool> someFlag(std::size_t oneIn) {
    if (!dice_.oneIn(oneIn)) return std::nullopt;
    return dice_.flip();
  }

  TeamworkRequest someRequest() {
    TeamworkRequest request;
    const std::string words = text::cat("words ", ++said_);
    request.taskID = someTask();
    request.discussionID = discussionID(static_cast<int64_t>(dice_.below(4)) + 1);
    request.title = request.body = words;
    request.name = dice_.oneIn(6) ? std::optional(words) : std::nullopt;
    if (dice_.flip()) request.summary = words;
    if (dice_.flip()) request.note = words;
    if (dice_.flip()) request.role = dice_.oneIn(3) ? "planner" : "reviewer";
    if (dice_.oneIn(3)) request.routedToFingerprint = dice_.oneIn(4) ? "" : someParty();
    if (dice_.oneIn(3)) request.reviewOfFingerprint = someParty();
    if (dice_.oneIn(6)) request.parkReason = words;
    request.to = text::cat("AB", dice_.below(seatCount));
    request.waitsOn = someList([this] { return someTask(); });
    request.tags = someList([this] { return someParty(); });
    request.taskIDs = someList([this] { return someTask(); });
    request.blocked = someFlag(5);
    if (request.blocked) request.blockerQuestion = words;
    request.approve = dice_.flip();
    request.waiting = someFlag(3);
    request.editLast = someFlag(4);
    request.acknowledgeOpenTasks = someFlag(2);
    request.wakeOnStateChanges = someFlag(3);
    return request;
  }

  void note(std::string_view who, const TeamworkRequest& request,
            const TeamworkResponse& response) {
    const bool isDone = response.kind != Kind::error;
    ++tally_[text::cat(request.method, isDone ? "" : " refused")];
    if (trace_ == nullptr) return;
    *trace_ += text::cat(at_.nowMs, " ", who, " ", request.method, " ", request.taskID.value_or(""),
                         ": ", isDone ? "" : "refused: ", response.message.value_or(""), "\n");
  }

  static Store openStore() {
    std::string why;
    return *Store::open(":memory:", why);
  }

  testing::Dice dice_;
  Tally& tally_;
  std::string* trace_;
  Store store_ = openStore();
  Boards boards_;
  Moment at_{1'000'000'000, 900'000};
  Random random_ = [this] { return static_cast<uint32_t>(dice_.below(1U << 31)); };
  std::map<std::string, Reader> readers_;
  int64_t said_ = 0;
  /// When the last request was, once nothing goes wrong any more.
  std::optional<Moment> calmAt_;
};

}  // namespace

std::optional<std::string> playSession(uint64_t seed, Tally& tally, std::string* trace) {
  return Session(seed, tally, trace).play();
}

}  // namespace quillpost::board_model
