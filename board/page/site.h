#pragma once

// The page over HTTP: its files, what the board shows, what moves on it, and what the person does.

#include "board/page/feed.h"
#include "board/person/commands.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace quillpost::board {

/// How many requests are answered at once, and how many of these may be streams of moves, which
/// last: a client that is slow or never ends costs one of these and nothing else.
inline constexpr std::size_t workers = 24;
inline constexpr std::size_t streamsAtMost = 12;

/// How long a client may take for a piece of its request or of its answer, in seconds.
inline constexpr int clientPatience = 5;

/// How many Threads can be followed at once.
inline constexpr std::size_t feedsAtMost = 16;

/// What a page is served with.
struct SiteSettings {
  /// What every request carries.
  std::string key;
  AskBoard ask;
  /// The Thread that is shown first; empty for the first one made.
  std::string thread;
  /// The terminal that a helper gets its directory and its variables from.
  Surroundings around;
};

/// The page, served on this machine's own addresses and on no other.
class Site {
 public:
  explicit Site(SiteSettings settings);
  ~Site();
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  /// Takes a port of 127.0.0.1, and of ::1 where there is one; any free one for 0. The port, or 0
  /// when it is taken.
  int bind(int port);
  /// Serves on threads of its own until this object ends. To be called once, when `bind` has given
  /// a port: only then is there an address to be asked at.
  void start();

 private:
  struct Inside;
  std::unique_ptr<Inside> inside_;
};

}  // namespace quillpost::board
