#pragma once

// What moves on a board, for any number of readers by one poll that the board holds.

#include "base/clock.h"
#include "model/request.h"
#include "model/response.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace quillpost::board {

/// Sends a request of the person's to the board. Nothing when no answer comes: then `why` says so
/// in words. Called from several threads at once.
using AskBoard =
    std::function<std::optional<TeamworkResponse>(TeamworkRequest request, std::string& why)>;

/// How long the board may hold a poll, in milliseconds: what is shown of agents and leases, which
/// change without a move, is never older than that.
inline constexpr int64_t feedHoldMs = 3000;

/// How long to rest before a board that was lost is asked again.
inline constexpr Duration lostRest = std::chrono::milliseconds(300);

/// How long to rest before a board that has answered is asked again: what moves meanwhile comes in
/// one answer, so that a busy board is not asked for every line by itself.
inline constexpr Duration moveRest = std::chrono::milliseconds(40);

/// How many events are kept for readers that are slower than the board.
inline constexpr std::size_t eventsKept = 64;

/// The moves of one Thread. Asks the board only while somebody reads.
class Feed {
 public:
  /// One thing that readers are told: "sheet" with the sheet that the board gave; "lost" with the
  /// words why there is none, as a JSON text; "gap" with nothing, when events were missed.
  struct Event {
    std::string_view kind;
    std::string data;
  };

  /// `thread` is the Thread's name or tag; empty for the first.
  Feed(AskBoard ask, std::string thread);
  ~Feed();
  Feed(const Feed&) = delete;
  Feed& operator=(const Feed&) = delete;

  /// One reader, from its first event to its last.
  class Reader {
   public:
    explicit Reader(Feed& feed);
    ~Reader();
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// The next event; nothing when none came for so long.
    std::optional<Event> next(Duration patience);

   private:
    Feed& feed_;
    uint64_t seen_ = 0;
  };

 private:
  void poll();
  bool waitForReaders();
  void tellSheet(std::string sheet);
  void tellLoss(std::string why);
  void push(Event event);

  const AskBoard ask_;
  const std::string thread_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Event> events_;
  /// The number of the last event, counted from 1.
  uint64_t last_ = 0;
  std::size_t readers_ = 0;
  bool isLost_ = false;
  bool isOver_ = false;
  std::thread poller_;
};

}  // namespace quillpost::board
