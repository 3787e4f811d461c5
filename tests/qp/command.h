#pragma once

// A command of `qp` in a test: a scripted app, a memory in a folder of its own, and what it prints.

#include "harness/fake_bridge.h"
#include "harness/fake_environment.h"
#include "harness/fake_lifetime.h"
#include "harness/fake_output.h"
#include "harness/json_object.h"
#include "harness/temp_dir.h"
#include "qp/run.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost {

/// Commands one after the other in one seat.
struct CommandTest : ::testing::Test {
  CommandTest() {
    bridge.otherwise = [this](const TeamworkRequest&) {
      return testing::FakeAnswer{.response = testing::responseFrom(otherwise)};
    };
  }

  /// Carries out a line, and keeps what it printed.
  int run(const std::vector<std::string>& words) {
    out = {}, err = {};
    out.leavesAfter = readsWrites;
    return static_cast<int>(runLine(words, surroundings()));
  }

  Surroundings surroundings() {
    return {
        .doors = {.clock = clock, .environment = environment, .bridge = bridge},
        .sessionID = sessionID,
        .memory = {.runtime = home.pathOf("memory"), .temporary = ""},
        .lifetime = lifetime,
        .console = {.output = out, .errors = err, .isTerminal = isTerminal, .hasColour = hasColour},
        .texts = {.input = [this] { return std::exchange(input, std::nullopt); },
                  .file = [this](const std::string& path) { return fileAt(path); }},
        .places = [this] { return places; }};
  }

  std::optional<std::string> fileAt(const std::string& path) const {
    const auto found = files.find(path);
    return found == files.end() ? std::nullopt : std::optional(found->second);
  }

  /// A member of the request that was sent last, as JSON.
  std::string sent(std::string_view key) const {
    if (bridge.requests.empty()) return "nothing";
    return testing::memberOf(testing::objectFrom(bridge.requests.back()), key);
  }

  testing::TempDir home;
  testing::FakeClock clock;
  testing::FakeBridge bridge{clock};
  testing::FakeLifetime lifetime;
  testing::FakeOutput out, err;
  testing::FakeEnvironment environment;
  std::string sessionID = "ses";
  std::string otherwise = R"({"kind":"written","message":"Taken."})";
  std::optional<std::string> input;
  std::map<std::string, std::string> files;
  Places places;
  bool isTerminal = false, hasColour = false;
  int64_t readsWrites = INT64_MAX;
};

}  // namespace quillpost
