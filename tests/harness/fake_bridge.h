#pragma once

// An app that is a script: it plays the answers it was given, lets as much time pass as each of
// them takes, and writes down what it was asked.

#include "base/text.h"
#include "bridge/bridge.h"
#include "harness/fake_clock.h"
#include "model/coding.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost::testing {

/// One answer, or the failure to give one, how long it takes, and how large it says it is.
struct FakeAnswer {
  std::optional<TeamworkResponse> response = std::nullopt;
  Duration took = Duration::zero();
  std::size_t bytes = 0;
};

/// The scripted app. Each method has a script of its own.
class FakeBridge final : public Bridge {
 public:
  explicit FakeBridge(FakeClock& clock) : clock_(clock) {}

  /// Adds an answer to the script of a method.
  void answers(std::string_view method, TeamworkResponse response, Duration took = {}) {
    scripts_[std::string(method)].push_back({.response = std::move(response), .took = took});
  }
  /// Adds a failure to the script of a method.
  void fails(std::string_view method, Duration took = {}) {
    scripts_[std::string(method)].push_back({.took = took});
  }

  std::string currentToken() override {
    ++tokenReads;
    return tokens.empty() ? token : take(tokens);
  }

  Exchange send(const TeamworkRequest& request) override {
    requests.push_back(encodeRequest(request).value_or("not encodable"));
    note(lineFor(request));
    std::deque<FakeAnswer>& script = scripts_[request.method];
    FakeAnswer answer = script.empty() ? otherwise(request) : take(script);
    clock_.advance(answer.took);
    return {.response = std::move(answer.response), .bytes = answer.bytes};
  }

  /// Writes a line of the timeline, with the present time in seconds in front. More digits than one
  /// are shown only when the time has them.
  void note(std::string_view what) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(clock_.elapsed()).count();
    char time[32];
    const int digits = ms % 100 == 0 ? 1 : 3;
    std::snprintf(time, sizeof time, "%5.*f", digits, static_cast<double>(ms) / 1000);
    timeline += text::cat(time, "  ", what, "\n");
  }

  /// What happened, one line each: time, method, and for a poll its cursor and its hold.
  std::string timeline;
  /// Every request as it would have gone over the socket.
  std::vector<std::string> requests;
  /// The token to be read, after `tokens` have been read in turn; and how often one was.
  std::string token = "tok";
  std::deque<std::string> tokens;
  int64_t tokenReads = 0;
  /// Answers a method whose script is used up; a failure unless a test says otherwise.
  std::function<FakeAnswer(const TeamworkRequest&)> otherwise = [](const TeamworkRequest&) {
    return FakeAnswer();
  };

 private:
  template <class T>
  static T take(std::deque<T>& queue) {
    T first = std::move(queue.front());
    queue.pop_front();
    return first;
  }

  static std::string lineFor(const TeamworkRequest& request) {
    std::string line = request.method;
    if (request.sinceRev) line += text::cat(" sinceRev=", *request.sinceRev);
    if (request.holdMs) line += text::cat(" holdMs=", *request.holdMs);
    return line;
  }

  FakeClock& clock_;
  std::map<std::string, std::deque<FakeAnswer>> scripts_;
};

}  // namespace quillpost::testing
