#pragma once

// The board's desk: takes one request, carries it out on the right board, and answers only when
// what has changed is on disk. Knows no sockets.

#include "board/rules/wakes.h"
#include "board/serving/store.h"
#include "board/verbs/methods.h"
#include "model/request.h"
#include "model/response.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board {

/// The version of the protocol that is spoken here.
inline constexpr int64_t protocolVersion = 1;

/// The longest a poll is held, in milliseconds: below the 40 seconds after which a client takes the
/// board to be gone.
inline constexpr int64_t holdLimitMs = 30'000;

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
};

/// The time in milliseconds since 1970.
using Now = std::function<int64_t()>;

/// An answer, and what it carries that is to be forgotten once it has been sent.
struct Answer {
  TeamworkResponse response;
  std::optional<Delivery> delivery;
  /// For how long the answer may be held back, because it says that nothing has moved; 0 when it is
  /// to be sent now.
  int64_t holdMs = 0;
};

/// The desk.
class Service {
 public:
  /// Takes over the boards of a store. Leases that ran while nobody served them run anew.
  Service(Store& store, Boards boards, Settings settings, Now now, Random random);

  /// Carries out one request.
  Answer answer(const TeamworkRequest& request);

  /// Notes that an answer has been sent whole.
  void confirm(const Delivery& delivery);

  /// Does what is due by now: lapsed leases, warnings. When it is to be called again, in
  /// milliseconds from now; nothing when nothing will be due.
  std::optional<int64_t> tick();

  /// Counts whatever may give a held poll something to say.
  uint64_t stirred() const { return stirred_; }

 private:
  Answer answerSeat(Board& board, Seat& seat, const TeamworkRequest& request);
  TeamworkResponse answerPerson(const TeamworkRequest& request);
  TeamworkResponse newSeat(const TeamworkRequest& request);
  Board* boardOf(std::string_view sessionID);
  bool save(Board& board);
  Moment moment() const { return {now_(), settings_.leaseMs}; }

  Store& store_;
  Boards boards_;
  Settings settings_;
  Now now_;
  Random random_;
  uint64_t stirred_ = 0;
};

}  // namespace quillpost::board
