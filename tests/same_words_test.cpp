// The promise of the command line: whatever is asked, whatever the board answers and whatever the
// seat remembers by then, `qp` sends the requests that the tool call sends and gives its very
// words.

#include "base/text.h"
#include "harness/dice.h"
#include "harness/fake_bridge.h"
#include "harness/fake_client.h"
#include "harness/fake_environment.h"
#include "harness/fake_lifetime.h"
#include "harness/json_object.h"
#include "harness/sanitized.h"
#include "harness/temp_dir.h"
#include "json/value.h"
#include "mcp/stdio_server.h"
#include "qp/run.h"
#include "tools/tool_name.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::Dice;
using testing::FakeAnswer;

/// A tool with random arguments: as the words of a line, and as a client gives them.
struct SameCall {
  const Tool* tool = nullptr;
  std::vector<std::string> words = {};
  json::TreeObject arguments = {};
};

/// A wait with a deadline, because a client's has one too and the command's otherwise has none; up
/// to the longest that a client can be held.
constexpr std::array<int64_t, 5> waitSeconds = {1, 2, 59, 2001, 3600};
constexpr std::string_view deadline = "timeoutSeconds";

/// Gives the call one more argument, of the property's type.
void addArgument(SameCall& same, const Property& property, Dice& dice) {
  const std::string option = text::cat("--", property.name);
  const auto fillText = [&] {
    std::string text;
    // Alone it would stand for standard input.
    do dice.fill(text);
    while (text == "-");
    return text;
  };
  switch (property.type) {
    case Type::string: {
      const std::string text = fillText();
      same.words.push_back(text::cat(option, "=", text));
      same.arguments[property.name] = text;
      return;
    }
    case Type::integer: {
      int64_t number = 0;
      dice.fill(number);
      if (property.name == deadline) number = dice.oneOf(waitSeconds);
      same.words.push_back(text::cat(option, "=", number));
      same.arguments[property.name] = number;
      return;
    }
    case Type::boolean: {
      const bool flag = dice.flip();
      same.words.push_back(text::cat(option, flag ? "=true" : "=false"));
      same.arguments[property.name] = flag;
      return;
    }
    case Type::strings: {
      // One alone would be read as a list with commas.
      boost::json::array list;
      for (std::size_t left = 2 + dice.below(2); left > 0; --left) {
        const std::string text = fillText();
        same.words.push_back(text::cat(option, "=", text));
        list.emplace_back(text);
      }
      same.arguments[property.name] = std::move(list);
      return;
    }
  }
}

SameCall randomCall(const Tool& tool, Dice& dice) {
  SameCall same{.tool = &tool};
  same.words.emplace_back(tool.name);
  for (const Property& property : tool.properties) {
    const bool isNeeded = property.need != Need::optional || property.name == deadline;
    if (isNeeded || dice.flip()) addArgument(same, property, dice);
  }
  return same;
}

/// What the board answers to a call: at first these one after the other, then nothing new.
struct SameAnswers {
  std::vector<std::optional<TeamworkResponse>> first;
};

/// Quiet polls, failures, and in the end most often an answer of any kind.
SameAnswers randomAnswers(bool isWait, Dice& dice) {
  SameAnswers answers;
  for (std::size_t left = isWait ? dice.below(6) : 0; left > 0; --left) {
    TeamworkResponse response;
    dice.fill(response);
    response.kind = TeamworkResponse::Kind::changes;
    if (response.changes) {
      response.changes->changed = response.changes->goalComplete = false;
      response.changes->wakeReasons.clear();
      response.changes->messages.clear();
    }
    answers.first.emplace_back(dice.oneIn(4) ? std::nullopt : std::optional(response));
  }
  if (dice.oneIn(8)) return answers;
  TeamworkResponse response;
  dice.fill(response);
  if (isWait && dice.flip()) response.kind = TeamworkResponse::Kind::changes;
  answers.first.emplace_back(std::move(response));
  return answers;
}

/// One way into a seat: an app of its own, so that each way meets the same one.
struct Way {
  /// Starts the app's answers anew.
  void begin(const SameAnswers& answers) {
    bridge.requests.clear();
    bridge.otherwise = [&answers, next = std::size_t{0}](const TeamworkRequest& request) mutable {
      // Nobody reads the answer to a wait's heartbeat.
      const bool isHeartbeatOfWait = request.waiting.has_value();
      if (isHeartbeatOfWait) return FakeAnswer();
      if (next < answers.first.size()) return FakeAnswer{.response = answers.first[next++]};
      return FakeAnswer{.took = std::chrono::milliseconds(request.holdMs.value_or(0))};
    };
  }

  testing::FakeClock clock;
  testing::FakeBridge bridge{clock};
};

/// One seat twice, each with the memory of its own way.
class Twins {
 public:
  /// A client that can be held as long as any, so that no hold is shortened for it, and whose
  /// harness, as far as anybody knows, is like the one that a shell runs in.
  Twins() {
    environment_.variables["QUILLPOST_COLLAB_WAIT_BUDGET_SECONDS"] = "3600";
    server_.handle(R"({"id":0,"method":"initialize","params":{"clientInfo":{"name":"codex"}}})");
    EXPECT_EQ(client_.take().size(), 1u);
  }

  /// What a client is told.
  std::string byTool(const SameCall& call, const SameAnswers& answers) {
    tool_.begin(answers);
    std::string line = R"({"id":1,"method":"tools/call","params":{"name":")";
    line += text::cat(call.tool->name, R"(","arguments":)");
    json::appendTree(line, call.arguments);
    server_.handle(line + "}}");
    const std::vector<std::string> told = client_.take();
    if (told.size() != 1) return "not one answer";
    const json::TreeObject message = testing::objectFrom(told.front());
    return std::string(message.at("result").at("content").at(0).at("text").as_string());
  }

  /// What a shell is told.
  std::string byCommand(const SameCall& call, const SameAnswers& answers) {
    command_.begin(answers);
    runLine(call.words, {.doors = doorsOf(command_),
                         .sessionID = sessionID,
                         .memory = {.runtime = home_.pathOf("memory"), .temporary = ""},
                         .lifetime = lifetime_,
                         .console = {.output = shell_, .errors = errors_},
                         .texts = {.input = [] { return std::nullopt; },
                                   .file = [](const std::string&) { return std::nullopt; }},
                         .places = [] { return Places(); }});
    std::string told = text::join(shell_.take(), "",
                                  [](const std::string& text) { return std::string_view(text); });
    EXPECT_TRUE(told.ends_with('\n')) << told;
    if (!told.empty()) told.pop_back();
    return told;
  }

  const std::vector<std::string>& sentByTool() const { return tool_.bridge.requests; }
  const std::vector<std::string>& sentByCommand() const { return command_.bridge.requests; }

 private:
  static constexpr const char* sessionID = "ses-4711";

  SeatDoors doorsOf(Way& way) {
    return {.clock = way.clock, .environment = environment_, .bridge = way.bridge};
  }

  testing::TempDir home_;
  testing::FakeEnvironment environment_;
  Way tool_, command_;
  testing::FakeOutput client_, shell_, errors_;
  testing::FakeLifetime lifetime_;
  TeamworkStdioServer server_{sessionID, doorsOf(tool_), client_};
};

/// Compares the two ways of one call. False when they part.
bool areSame(Twins& twins, const SameCall& call, const SameAnswers& answers) {
  const std::string byTool = twins.byTool(call, answers);
  const std::string byCommand = twins.byCommand(call, answers);
  EXPECT_EQ(byCommand, byTool);
  EXPECT_EQ(twins.sentByCommand(), twins.sentByTool());
  return byCommand == byTool && twins.sentByCommand() == twins.sentByTool();
}

TEST(SameWords, OfEveryToolThroughTheServerAndThroughTheCommand) {
  constexpr uint64_t seeds = QUILLPOST_SANITIZED ? 15 : 60;
  for (const Tool& tool : tools) {
    for (uint64_t seed = 1; seed <= seeds; ++seed) {
      Dice dice(seed);
      Twins twins;
      const SameCall call = randomCall(tool, dice);
      const SameAnswers answers = randomAnswers(tool.name == waitForChanges, dice);
      // Twice, so that the second call has something to remember.
      for (int round = 1; round <= 2; ++round) {
        SCOPED_TRACE(text::cat(tool.name, " seed ", seed, " round ", round));
        ASSERT_TRUE(areSame(twins, call, answers));
      }
    }
  }
}

TEST(SameWords, WhateverTheSeatRemembersFromTheCallsBefore) {
  constexpr uint64_t days = QUILLPOST_SANITIZED ? 25 : 100;
  constexpr int callsADay = 20;
  for (uint64_t day = 1; day <= days; ++day) {
    Dice dice(1'000 + day);
    Twins twins;
    for (int number = 1; number <= callsADay; ++number) {
      const Tool& tool = dice.oneIn(4) ? *findTool(waitForChanges) : dice.oneOf(tools);
      const SameCall call = randomCall(tool, dice);
      const SameAnswers answers = randomAnswers(tool.name == waitForChanges, dice);
      SCOPED_TRACE(text::cat("day ", day, " call ", number, ": ", tool.name));
      ASSERT_TRUE(areSame(twins, call, answers));
    }
  }
}

}  // namespace
}  // namespace quillpost
