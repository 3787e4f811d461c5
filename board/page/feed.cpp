#include "board/page/feed.h"

#include "board/verbs/person.h"
#include "json/decoder.h"
#include "json/record.h"

#include <tuple>
#include <utility>

namespace quillpost::board {

namespace {

/// What a feed reads of a sheet.
struct Head {
  int64_t rev = 0;

  bool operator==(const Head&) const = default;
  static constexpr auto fields() { return std::tuple{json::required("rev", &Head::rev)}; }
};

/// What readers are told of a board that does not answer.
struct Loss {
  std::string why;

  bool operator==(const Loss&) const = default;
  static constexpr auto fields() { return std::tuple{json::required("why", &Loss::why)}; }
};

}  // namespace

Feed::Feed(AskBoard ask, std::string thread)
    : ask_(std::move(ask)), thread_(std::move(thread)), poller_([this] { poll(); }) {}

Feed::~Feed() {
  {
    const std::lock_guard lock(mutex_);
    isOver_ = true;
  }
  changed_.notify_all();
  poller_.join();
}

/// Whether there is somebody to ask for; false when it is over.
bool Feed::waitForReaders() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return isOver_ || readers_ > 0; });
  return !isOver_;
}

void Feed::tellSheet(std::string sheet) {
  const std::lock_guard lock(mutex_);
  isLost_ = false;
  push({"sheet", std::move(sheet)});
}

/// A board that stays lost is told of once.
void Feed::tellLoss(std::string why) {
  const std::lock_guard lock(mutex_);
  if (std::exchange(isLost_, true)) return;
  push({"lost", json::encode(Loss{std::move(why)})});
}

/// For whoever holds the lock.
void Feed::push(Event event) {
  events_.push_back(std::move(event));
  ++last_;
  if (events_.size() > eventsKept) events_.pop_front();
  changed_.notify_all();
}

void Feed::poll() {
  std::optional<int64_t> since;
  while (waitForReaders()) {
    TeamworkRequest request;
    request.method = personLive;
    request.name = thread_;
    request.sinceRev = since;
    request.holdMs = feedHoldMs;
    std::string why;
    std::optional<TeamworkResponse> response = ask_(std::move(request), why);
    if (response && response->kind == TeamworkResponse::Kind::error) {
      why = std::move(response->message).value_or("the board refuses, and does not say why");
      response.reset();
    }
    const std::optional<Head> head =
        response ? json::decode<Head>(response->message.value_or("")) : std::nullopt;
    if (response && !head) why = "the board is of another version than this page";
    since.reset();
    if (head) {
      since = head->rev;
      tellSheet(std::move(response->message).value_or(""));
    } else {
      tellLoss(std::move(why));
    }
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, head ? moveRest : lostRest, [this] { return isOver_; });
  }
}

Feed::Reader::Reader(Feed& feed) : feed_(feed) {
  {
    const std::lock_guard lock(feed_.mutex_);
    ++feed_.readers_;
    // What came before is known to whoever asks for everything now; that the board is lost is not.
    seen_ = feed_.isLost_ ? feed_.last_ - 1 : feed_.last_;
  }
  feed_.changed_.notify_all();
}

Feed::Reader::~Reader() {
  const std::lock_guard lock(feed_.mutex_);
  --feed_.readers_;
}

std::optional<Feed::Event> Feed::Reader::next(Duration patience) {
  std::unique_lock lock(feed_.mutex_);
  const bool hasCome = feed_.changed_.wait_for(
      lock, patience, [this] { return feed_.isOver_ || feed_.last_ > seen_; });
  if (!hasCome || feed_.isOver_) return std::nullopt;
  const uint64_t behind = feed_.last_ - seen_;
  if (behind > feed_.events_.size()) {
    seen_ = feed_.last_;
    return Event{"gap", "{}"};
  }
  ++seen_;
  return feed_.events_[feed_.events_.size() - static_cast<std::size_t>(behind)];
}

}  // namespace quillpost::board
