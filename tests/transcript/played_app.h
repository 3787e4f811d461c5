#pragma once

// The app of a transcript: answers by the lines of its section.

#include "harness/scripted_app.h"

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::testing {

/// Listens on a socket and answers each request by the next line for its method. The last line for
/// a method answers every further request of that method; a method without a line gets no answer.
///
/// A line is "method: answer". An answer is the reply's text as it stands, or one of:
///   (close)                   reads the request and closes
///   (cut) text                the text without its terminator, ended by closing
///   (terminator first) text   a terminator, then the text
///   (bytes) text              one byte at a time
///   (pieces) text | text      in these pieces, and a terminator at the end
///   (two) text | text         two replies on one connection
class PlayedApp {
 public:
  /// `body` is the section. A line that cannot be read is a test failure.
  PlayedApp(std::string socketPath, std::string_view body);

  /// What it received, a request a line. A connection that sent nothing, as a look for a live
  /// socket does, is left out; how long a poll may be held depends on the clock and reads "…".
  std::string requests() const;

  /// The lines that no request came for.
  std::vector<std::string> unusedLines() const;

 private:
  struct Line {
    std::string text;
    Behaviour behaviour;
    bool used = false;
  };

  Behaviour answer(const std::string& request);

  mutable std::mutex mutex_;
  std::map<std::string, std::deque<Line>> waiting_;
  ScriptedApp app_;
};

}  // namespace quillpost::testing
