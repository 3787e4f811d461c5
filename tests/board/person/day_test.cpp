// The guide's day with three agents, from nothing to a confirmed goal: the person types what the
// guide has, and in place of each harness a scripted client of MCP sits in the seat.

#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

/// The person at a shell, who types only what the guide has.
class Person {
 public:
  Person() {
    std::filesystem::permissions(home_.write("bin/ssh", sshToHere),
                                 std::filesystem::perms::owner_all);
  }

  /// Types a command of the guide as it stands there, and gives what it prints.
  std::string types(const std::string& line) const {
    EXPECT_THAT(guide_, HasSubstr("\n    quillpost-board " + line + "\n"));
    testing::Process shell({"/bin/sh", {"-c", "quillpost-board " + here(line)}, variables()});
    const std::string output = shell.restOfOutput();
    EXPECT_EQ(shell.waitForExit(), 0) << line << ": " << shell.errors();
    return output;
  }

  /// Starts a command of the guide that goes on until it is interrupted.
  testing::Command starts(const std::string& line) const {
    EXPECT_THAT(guide_, HasSubstr("quillpost-board " + line));
    return {"/bin/sh", {"-c", "exec quillpost-board " + here(line)}, variables()};
  }

  /// Starts a harness as the guide does, and an agent in the place of the harness.
  std::unique_ptr<RealSeat> runs(const std::string& line, std::string_view harness) const {
    EXPECT_THAT(guide_, HasSubstr("\n    quillpost-board " + line + std::string(harness) + "\n"));
    return std::make_unique<RealSeat>(testing::Command{
        "/bin/sh", {"-c", "exec quillpost-board " + line + "quillpost-teamwork"}, variables()});
  }

  /// Types a command until a board answers, and gives what it prints then.
  std::string waitsFor(const std::string& word) const {
    const Instant deadline = SteadyClock().now() + realPatience;
    while (isBefore(deadline)) {
      testing::Process command({testing::boardProgram(), {word}, variables()});
      std::string output = command.restOfOutput();
      if (command.waitForExit() == 0) return output;
    }
    ADD_FAILURE() << "no board answered";
    return {};
  }

  std::map<std::string, std::string> variables() const {
    const auto programs = std::filesystem::path(testing::boardProgram()).parent_path().string();
    return {{"PATH", text::cat(home_.pathOf("bin"), ":", programs, ":/usr/bin:/bin")},
            {"THERE", programs + ":/usr/bin:/bin"},
            {"HOME", home_.path()},
            {"XDG_DATA_HOME", home_.path()}};
  }

 private:
  /// The guide's backups lie in this test's own directory.
  std::string here(std::string line) const {
    const std::size_t at = line.find("/backups/");
    return at == line.npos ? line : line.replace(at, 9, home_.path() + "/");
  }

  testing::TempDir home_;
  std::string guide_ = testing::readFile(testing::inSources("docs/board.md"));
};

std::string onTask(std::string_view id, std::string_view more = "") {
  return text::cat(R"({"taskID":")", id, "\"", more, "}");
}

TEST(Day, PlaysAsTheGuideHasIt) {
  const Person person;
  testing::Process board({testing::boardProgram(), {"serve"}, person.variables()});
  // It greets on standard error, which is read at the end: it is served as soon as it answers.
  person.waitsFor("threads");

  person.types("goal The bakery shows on its site what bread is left");
  person.types(R"(add Publish bread.json --priority 2 --body "Read the till. No prices.")");
  person.types("add Show the bread on the front page --waits-on 1");
  person.types("add Say when the bakery is closed");

  const auto ada = person.runs("run --name Ada -- ", "claude");
  const auto bo = person.runs("run --name Bo -- ", "codex --no-daemon");
  const auto cy = person.runs("run --name Cy --host cy@builder -- ", "opencode");
  for (RealSeat* agent : {ada.get(), bo.get(), cy.get()}) agent->call("register");
  testing::Process watch(person.starts("watch"));
  EXPECT_THAT(ada->call("read_task", onTask("t000001")), HasSubstr("Read the till. No prices."));
  ada->call("claim_task", onTask("t000001"));
  bo->call("claim_task", onTask("t000003"));
  bo->call(
      "update_task",
      onTask("t000003", R"(,"blocked":true,"blockerKind":"decision",)"
                        R"("blockerQuestion":"Which day?","blockerOptions":["Monday","Tuesday"])"));
  for (std::string line; line.find("answer t000003 NUMBER") == line.npos;) {
    const std::optional<std::string> next = watch.readLine(realPatience);
    ASSERT_TRUE(next) << "the watch never showed the question";
    line = *next;
  }
  watch.signal(SIGTERM);
  testing::Process mine({testing::boardProgram(), {"show", "--mine"}, person.variables()});
  EXPECT_THAT(mine.restOfOutput(), HasSubstr("> quillpost-board answer t000003 NUMBER"));
  EXPECT_EQ(mine.waitForExit(), 1);
  person.types("answer 3 2");
  EXPECT_THAT(bo->call("wait_for_changes"), HasSubstr("Tuesday"));

  EXPECT_THAT(person.types("show 1"), HasSubstr("working"));
  person.types("comment 1 Round the weights to whole loaves");
  person.types("say all Lunch until one");
  EXPECT_THAT(ada->call("wait_for_changes"), HasSubstr("The human says: Lunch until one"));

  ada->call("open_discussion",
            R"({"question":"A loaf is sold out: hide it or grey it out?","addressTo":["human"]})");
  EXPECT_THAT(person.types("show d1"), HasSubstr("hide it or grey it out?"));
  person.types("reply d1 Grey it out: people shall see that we bake it");
  ada->call("resolve_discussion", R"({"discussionID":"d000001","resolution":"Greyed out."})");
  ada->call("complete_task", onTask("t000001", R"(,"summary":"bread.json is there.")"));
  bo->call("complete_task", onTask("t000003", R"(,"summary":"The footer says Tuesday.")"));
  EXPECT_THAT(cy->call("claim_task", onTask("t000002")), HasSubstr("You hold"));
  person.types("release 2 It has been silent for an hour");
  ada->call("claim_task", onTask("t000002"));
  ada->call("complete_task", onTask("t000002", R"(,"summary":"The page shows it.")"));
  ada->call("propose_goal_complete");

  EXPECT_THAT(person.types("history --since 8h"), HasSubstr("taskCompleted"));
  EXPECT_THAT(person.types("show --all"), HasSubstr("The goal is complete?"));
  EXPECT_EQ(person.types("confirm-goal"), "The goal is complete.\n");
  EXPECT_EQ(ada->end(), 0);
  EXPECT_EQ(bo->end(), 0);
  EXPECT_EQ(cy->end(), 0);
  testing::Process seats({testing::boardProgram(), {"seats"}, person.variables()});
  EXPECT_EQ(seats.restOfOutput(), "There is nothing to show.\n") << "all seats are free again";

  person.types("backup /backups/board-monday.db");
  person.types("export /backups/board-monday.jsonl");
  person.types("check");
  board.signal(SIGTERM);
  EXPECT_EQ(board.waitForExit(), 0);
  testing::Process copy(person.starts("serve --db /backups/board-monday.db"));
  const std::string threads = person.waitsFor("threads");
  EXPECT_THAT(threads, HasSubstr("The bakery shows")) << "the copy is a board";
  copy.signal(SIGTERM);
  EXPECT_EQ(copy.waitForExit(), 0);
}

}  // namespace
}  // namespace quillpost::board
