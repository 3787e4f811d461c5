#pragma once

// The board's desk: takes one request, carries it out on the right board, and answers only when
// what has changed is on disk. Knows no sockets.

#include "board/serving/hands.h"
#include "board/serving/reply.h"
#include "board/serving/store.h"
#include "board/verbs/methods.h"
#include "model/request.h"
#include "model/response.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// The version of the protocol that is spoken here.
inline constexpr int64_t protocolVersion = 1;

/// The longest a poll is held, in milliseconds: below the 40 seconds after which a client takes the
/// board to be gone.
inline constexpr int64_t holdLimitMs = 30'000;

/// How long after a write whose answer did not arrive the same request of the same seat is taken
/// for its repetition, in milliseconds. A client repeats one within half a second.
inline constexpr int64_t repetitionMs = 2000;

/// How often, in milliseconds, the file is looked at, and tried again when it could not be written.
inline constexpr int64_t storeCareMs = 1000;

/// The person's methods that show something. The desk knows them by what is handed in here, and
/// none when nothing is.
struct Viewing {
  /// Whether a method is one of these.
  bool (*shows)(std::string_view method) = nullptr;
  /// Whether whoever asks has seen all that there is to show, so that the answer may be held back.
  bool (*isUpToDate)(std::span<const Board* const> boards,
                     const TeamworkRequest& request) = nullptr;
  /// What the Threads that are meant have to show.
  TeamworkResponse (*view)(std::span<const Board* const> boards, const Store& store,
                           const TeamworkRequest& request, Moment at) = nullptr;
};

/// What a desk needs to know.
struct Settings {
  /// What an agent's requests carry.
  std::string token;
  /// What the person's requests carry.
  std::string personToken;
  int64_t leaseMs = defaultLeaseMs;
  /// What the environment lines of a new seat name.
  std::string socketPath;
  std::string tokenPath;
  /// Told, in a sentence, what whoever runs the board should know. May be empty.
  std::function<void(const std::string&)> say = {};
  /// Called about once a second, for what else is to be looked after. May be empty.
  std::function<void()> care = {};
  /// Told of every request when its answer is known. May be empty.
  std::function<void(const TeamworkRequest&, const TeamworkResponse&)> log = {};
  /// What starts helpers, and what can be read when one may have ended; null and -1 where none is
  /// ever started.
  Processes* processes = nullptr;
  int news = -1;
  Viewing viewing = {};
};

/// The time in milliseconds since 1970.
using Now = std::function<int64_t()>;

/// The desk.
class Service {
 public:
  /// Takes over the boards of a store. Leases that ran while nobody served them run anew.
  Service(Store& store, Boards boards, Settings settings, Now now, Random random);

  /// Carries out one request.
  Answer answer(const TeamworkRequest& request);

  /// Notes that an answer has been sent whole.
  void confirm(const Receipt& receipt);

  /// Notes that a poll of that seat is held from now on, or no longer.
  void beginListening(const std::string& session) { listening_.insert(session); }
  void endListening(const std::string& session);

  /// Does what is due by now: lapsed leases, warnings, the care of the file. When it is to be
  /// called again, in milliseconds from now; nothing when nothing will be due.
  std::optional<int64_t> tick();

  /// What can be read when helpers have something to say, and what hears it.
  std::vector<int> helperDescriptors() const { return hands_.descriptors(); }
  void hear(int descriptor);

  /// Stops all helpers and waits until they have ended; the last thing to be done.
  void finish();

  /// Counts whatever may give a held poll something to say.
  uint64_t stirred() const { return stirred_; }

  /// Whether nothing more can be kept, so that the board must end rather than go on.
  bool isOver() const { return isOver_; }

 private:
  /// A write that was carried out and whose answer may not have arrived.
  struct Unanswered {
    TeamworkRequest request;
    TeamworkResponse response;
    int64_t atMs = 0;
    uint64_t number = 0;
  };

  Answer answerSeat(Board& board, Seat& seat, const TeamworkRequest& request);
  void addReceipt(const TeamworkRequest& request, Answer& answer);
  void addRevision(const TeamworkRequest& request, Answer& answer) const;
  const TeamworkResponse* answeredBefore(const TeamworkRequest& request) const;
  Answer carryOutOne(const TeamworkRequest& request);
  Answer answerPerson(const TeamworkRequest& request);
  Answer answerViewer(const std::vector<Board*>& meant, const TeamworkRequest& request);
  TeamworkResponse newThread(const TeamworkRequest& request);
  Board& addBoard(std::string_view name);
  TeamworkResponse newSeat(const TeamworkRequest& request);
  Board* boardOf(std::string_view sessionID);
  bool save(Board& board);
  void tend(Board& board);
  void careForFile();
  void say(const std::string& sentence) const;
  Moment moment() const { return {now_(), settings_.leaseMs}; }
  bool isFailing() const { return retryAtMs_ != 0; }

  Store& store_;
  Boards boards_;
  Settings settings_;
  Now now_;
  Random random_;
  Hands hands_;
  uint64_t stirred_ = 0;
  /// When writing may be tried again after it failed; 0 while it does not fail.
  int64_t retryAtMs_ = 0;
  int64_t lookAtMs_ = 0;
  bool isOver_ = false;
  /// By session id.
  std::map<std::string, Unanswered, std::less<>> unanswered_;
  /// The sessions of the polls that are held.
  std::multiset<std::string> listening_;
  /// By session id, the revision up to which the seat has been shown the board.
  std::map<std::string, int64_t, std::less<>> shown_;
  uint64_t lastWrite_ = 0;
};

}  // namespace quillpost::board
