#include "render/squad.h"

#include "harness/golden.h"
#include "harness/integers.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::expanded;
using testing::highest;
using testing::lowest;
using testing::objectText;
using testing::sameText;

std::string squadText(const TeamworkSquadState& squad) {
  return objectText([&](json::Object& out) { addSquad(out, squad); });
}

TeamworkSquadState squadOn() {
  TeamworkSquadState squad;
  squad.mode = "on";
  return squad;
}

TEST(AddSquad, WritesNullForWhatTheAppDidNotSay) {
  TeamworkSquadState squad;
  squad.mode = "off";
  EXPECT_EQ(squadText(squad),
            R"({"mode":"off","canAddress":false,"canSpawn":false,"helperLimit":null,)"
            R"("helpersRunning":null,"helpersLeft":null,"lead":null,"helpers":[]})");
}

TEST(AddSquad, WritesAllEightMembersInOrder) {
  TeamworkSquadState squad = squadOn();
  squad.canAddress = true;
  squad.canSpawn = true;
  squad.helperLimit = 3;
  squad.helpersRunning = 1;
  squad.lead = TeamworkLead{"Ada", true, false};
  squad.helpers = {{"scout", "reads", true, false}, {"hand", "", false, true}};
  EXPECT_EQ(squadText(squad),
            R"({"mode":"on","canAddress":true,"canSpawn":true,"helperLimit":3,)"
            R"("helpersRunning":1,"helpersLeft":2,)"
            R"("lead":{"name":"Ada","runsWithoutApprovals":true,"paused":false},"helpers":[)"
            R"({"name":"scout","explanation":"reads","runsWithoutApprovals":true,)"
            R"("quillpostTools":false},)"
            R"({"name":"hand","explanation":"","runsWithoutApprovals":false,)"
            R"("quillpostTools":true}]})");
}

TEST(AddSquad, KnowsWhatIsLeftOnlyWhenBothNumbersAreKnown) {
  struct Row {
    std::optional<int64_t> limit;
    std::optional<int64_t> running;
    std::string_view expected;
  };
  const std::vector<Row> rows = {
      {3, 1, R"("helperLimit":3,"helpersRunning":1,"helpersLeft":2,)"},
      {3, 5, R"("helperLimit":3,"helpersRunning":5,"helpersLeft":-2,)"},
      {3, std::nullopt, R"("helperLimit":3,"helpersRunning":null,"helpersLeft":null,)"},
      {std::nullopt, 1, R"("helperLimit":null,"helpersRunning":1,"helpersLeft":null,)"},
      {lowest, 1, R"("helpersRunning":1,"helpersLeft":-9223372036854775808,)"},
      {highest, -1, R"("helpersRunning":-1,"helpersLeft":9223372036854775807,)"},
  };
  for (const Row& row : rows) {
    TeamworkSquadState squad = squadOn();
    squad.helperLimit = row.limit;
    squad.helpersRunning = row.running;
    EXPECT_NE(squadText(squad).find(row.expected), std::string::npos) << squadText(squad);
  }
}

TEST(SquadParagraph, IsOnForOneWordAlone) {
  EXPECT_TRUE(sameText(expanded("{{squadOn}}"), squadParagraph("on")));
  for (const std::string_view mode : {"off", "", "On", "ON", "on "})
    EXPECT_TRUE(sameText(expanded("{{squadOff}}"), squadParagraph(mode))) << mode;
}

TEST(HelpersHereParagraph, IsAbsentUnlessTheSquadIsOn) {
  EXPECT_EQ(helpersHereParagraph(std::nullopt), std::nullopt);
  TeamworkSquadState off;
  off.mode = "off";
  off.helpers = {{"scout", "reads", true, false}};
  EXPECT_EQ(helpersHereParagraph(off), std::nullopt);
}

TEST(HelpersHereParagraph, ListsTheHelpersThatMayBeStarted) {
  struct Row {
    std::string_view name;
    void (*change)(TeamworkSquadState&);
    std::string_view expected;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"no list", [](TeamworkSquadState&) {}, "{{noHelpersHere}}"},
      {"an empty list", [](TeamworkSquadState& s) { s.helpers.emplace(); }, "{{noHelpersHere}}"},
      {"an empty list and a limit",
       [](TeamworkSquadState& s) { s.helpers.emplace(); s.helperLimit = 3; s.helpersRunning = 0; },
       "{{noHelpersHere}}"},
      {"one", [](TeamworkSquadState& s) { s.helpers = {{"scout", "reads code", true, true}}; },
       "{{helpersHere(, or omit it; one line)}}"},
      {"one without an explanation",
       [](TeamworkSquadState& s) { s.helpers = {{"scout", "", false, true}}; },
       R"(HELPERS HERE (request_hands agent: "<name>", or omit it): "scout".)"},
      {"one with both tags",
       [](TeamworkSquadState& s) { s.helpers = {{"scout", "", true, false}}; },
       R"(HELPERS HERE (request_hands agent: "<name>", or omit it): "scout" [runs without asking for approval; no Quillpost tools, only qp].)"},
      {"two",
       [](TeamworkSquadState& s) { s.helpers = {{"scout", "reads", false, false}, {"hand", "", false, true}}; },
       R"(HELPERS HERE (request_hands agent: "<name>", required when there is more than one): "scout": reads [no Quillpost tools, only qp]; "hand".)"},
      {"one and a limit",
       [](TeamworkSquadState& s) { s.helpers = {{"scout", "reads code", true, true}}; s.helperLimit = 3; s.helpersRunning = 1; },
       "{{helpersHere(, or omit it; one line)}} {{helperLimit(1 of 3, moreMayStart(2))}}"},
      {"one and half a limit",
       [](TeamworkSquadState& s) { s.helpers = {{"scout", "reads code", true, true}}; s.helperLimit = 3; },
       "{{helpersHere(, or omit it; one line)}}"},
      {"one and the other half",
       [](TeamworkSquadState& s) { s.helpers = {{"scout", "reads code", true, true}}; s.helpersRunning = 3; },
       "{{helpersHere(, or omit it; one line)}}"},
  };
  // clang-format on
  for (const Row& row : rows) {
    TeamworkSquadState squad = squadOn();
    row.change(squad);
    EXPECT_TRUE(sameText(expanded(row.expected), helpersHereParagraph(squad).value_or("nothing")))
        << row.name;
  }
}

TEST(HelperLimitSentence, SaysHowManyMoreMayStart) {
  EXPECT_TRUE(sameText(expanded("{{helperLimit(1 of 3, moreMayStart(2))}}"),
                       helperLimitSentence({.running = 1, .limit = 3})));
  EXPECT_TRUE(sameText(expanded("{{helperLimit(3 of 3, noneMayStart)}}"),
                       helperLimitSentence({.running = 3, .limit = 3})));
  struct Row {
    HelperCount count;
    std::string_view begin;
  };
  const std::vector<Row> rows = {
      {{2, 3},
       "HELPER LIMIT: 2 of 3 helpers are running in this thread, so 1 more may start. The 3 are "},
      {{5, 3},
       "HELPER LIMIT: 5 of 3 helpers are running in this thread, so none may start until one is "
       "stopped. The 3 are shared "},
      {{1, lowest},
       "HELPER LIMIT: 1 of -9223372036854775808 helpers are running in this thread, so none may "},
      {{-1, highest},
       "HELPER LIMIT: -1 of 9223372036854775807 helpers are running in this thread, so "
       "9223372036854775807 more may start. "},
  };
  for (const Row& row : rows)
    EXPECT_EQ(helperLimitSentence(row.count).substr(0, row.begin.size()), row.begin);
}

TeamworkHelperRun plainRun() {
  TeamworkHelperRun run;
  run.handle = "M2X";
  run.helper = "scout";
  run.state = "working";
  return run;
}

TEST(HelperRunLine, SaysWhatARunDoesAndHowItEnded) {
  struct Row {
    std::string_view name;
    void (*change)(TeamworkHelperRun&);
    std::string_view expected;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"starting", [](TeamworkHelperRun& r) { r.state = "starting"; }, R"(M2X ("scout"): starting)"},
      {"working", [](TeamworkHelperRun&) {}, R"(M2X ("scout"): working)"},
      {"waiting", [](TeamworkHelperRun& r) { r.state = "awaitingPermission"; },
       R"(M2X ("scout"): WAITING ON THE PERSON to answer a permission prompt)"},
      {"idle", [](TeamworkHelperRun& r) { r.state = "idle"; }, R"(M2X ("scout"): idle between turns)"},
      {"error", [](TeamworkHelperRun& r) { r.state = "error"; }, R"(M2X ("scout"): in error)"},
      {"exited", [](TeamworkHelperRun& r) { r.state = "exited"; }, R"(M2X ("scout"): stopped)"},
      {"a newer state", [](TeamworkHelperRun& r) { r.state = "dreaming"; }, R"(M2X ("scout"): dreaming)"},
      {"no state", [](TeamworkHelperRun& r) { r.state = ""; }, R"(M2X ("scout"): )"},
      {"in a terminal", [](TeamworkHelperRun& r) { r.kind = "terminal"; },
       R"(M2X ("scout", in a terminal): working)"},
      {"of another kind", [](TeamworkHelperRun& r) { r.kind = "window"; }, R"(M2X ("scout"): working)"},
      {"working with a detail", [](TeamworkHelperRun& r) { r.detail = "busy"; }, R"(M2X ("scout"): working)"},
      {"idle with a detail", [](TeamworkHelperRun& r) { r.state = "idle"; r.detail = "busy"; },
       R"(M2X ("scout"): idle between turns)"},
      {"exited with a detail", [](TeamworkHelperRun& r) { r.state = "exited"; r.detail = "code 1"; },
       R"(M2X ("scout"): stopped — code 1)"},
      {"exited with an empty detail", [](TeamworkHelperRun& r) { r.state = "exited"; r.detail = ""; },
       R"(M2X ("scout"): stopped)"},
      {"error with a detail, a terminal and an asker",
       [](TeamworkHelperRun& r) { r.state = "error"; r.detail = "no key"; r.kind = "terminal"; r.askedBy = "ZZ9"; },
       R"(M2X ("scout", in a terminal): in error — no key, asked for by ZZ9)"},
  };
  // clang-format on
  for (const Row& row : rows) {
    TeamworkHelperRun run = plainRun();
    row.change(run);
    EXPECT_EQ(helperRunLine(run, "KQ3"), row.expected) << row.name;
  }
}

TEST(HelperRunLine, SaysWhoAskedForIt) {
  struct Row {
    std::string_view name;
    std::string_view askedBy;
    bool yours;
    std::optional<std::string> caller;
    std::string_view expected;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"nobody",                              "",    true,  "KQ3",        ""},
      {"the caller",                          "KQ3", true,  "KQ3",        ", asked for by you"},
      {"the caller in small letters",         "kq3", true,  "KQ3",        ", asked for by you"},
      {"the caller, not marked as such",      "KQ3", false, "KQ3",        ", asked for by you"},
      {"a helper of the caller",              "M2X", true,  "KQ3",        ", asked for by your helper M2X, so you may stop it"},
      {"a peer",                              "M2X", false, "KQ3",        ", asked for by M2X"},
      {"the caller, whose handle is unknown", "KQ3", true,  std::nullopt, ", asked for by you"},
      {"the caller, whose handle is empty",   "KQ3", true,  "",           ", asked for by you"},
      {"a peer of an unknown caller",         "M2X", false, std::nullopt, ", asked for by M2X"},
  };
  // clang-format on
  for (const Row& row : rows) {
    TeamworkHelperRun run = plainRun();
    run.askedBy = row.askedBy;
    run.yours = row.yours;
    EXPECT_EQ(helperRunLine(run, row.caller),
              R"(M2X ("scout"): working)" + std::string(row.expected))
        << row.name;
  }
}

TEST(HelpersRunningParagraph, TellsHowToStopOneOnlyWhenThereIsOneToStop) {
  EXPECT_EQ(helpersRunningParagraph({}, "KQ3"), std::nullopt);
  TeamworkHelperRun peers = plainRun();
  peers.handle = "ZZ9";
  TeamworkHelperRun own = plainRun();
  own.yours = true;
  TeamworkHelperRun ended = own;
  ended.state = "exited";
  struct Row {
    std::string_view name;
    std::vector<TeamworkHelperRun> runs;
    std::string_view expected;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"a peer's", {peers}, R"(HELPERS RUNNING HERE: ZZ9 ("scout"): working.)"},
      {"the caller's", {own}, R"(HELPERS RUNNING HERE: M2X ("scout"): working.{{stopOneOfYours}})"},
      {"the caller's, ended", {ended, peers},
       R"(HELPERS RUNNING HERE: M2X ("scout"): stopped; ZZ9 ("scout"): working.)"},
      {"one of three to stop", {ended, peers, own},
       R"(HELPERS RUNNING HERE: M2X ("scout"): stopped; ZZ9 ("scout"): working; M2X ("scout"): working.{{stopOneOfYours}})"},
  };
  // clang-format on
  for (const Row& row : rows) {
    EXPECT_TRUE(sameText(expanded(row.expected),
                         helpersRunningParagraph(row.runs, "KQ3").value_or("nothing")))
        << row.name;
  }
}

}  // namespace
}  // namespace quillpost
