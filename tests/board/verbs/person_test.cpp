#include "board/verbs/person.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Person, SpeaksToAnAgentThatIsHome) {
  Desk desk;
  desk.sit("CC4");
  EXPECT_TRUE(wasWritten(desk.person(personSay, R"("to":"bb3","body":"Well done")")));
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("humanSaid"));
  EXPECT_EQ(wakesOf(desk.board, desk.seat("BB3")).front()->summary, "The human says: Well done");
  EXPECT_TRUE(wasRefused(desk.person(personSay, R"("to":"CC4","body":"x")"), "home"));
  EXPECT_TRUE(wasRefused(desk.person(personSay, R"("to":"BB3","body":" ")"), "Say"));
}

TEST(Person, AnsweringUnblocksABlockedTaskAndIsACommentOnAnother) {
  Desk desk;
  const std::string id = desk.add("one");
  const auto kindsOfAnswering = [&] {
    const int64_t rev = desk.board.counted().rev;
    EXPECT_TRUE(wasWritten(desk.person(personAnswer, Desk::on(id) + R"(,"body":"yes")")));
    return feedFor(desk.board, desk.seat("AA2"), {rev, {}, true}, desk.at).changeKinds;
  };
  EXPECT_THAT(kindsOfAnswering(), ElementsAre("taskCommented"));
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
  EXPECT_THAT(kindsOfAnswering(), ElementsAre("taskUnblocked"));
}

TEST(Person, AnAnswerToABlockerIsForWhoIsBlockedAndWhoHoldsTheTask) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
  desk.settle();
  desk.person(personAnswer, Desk::on(id) + R"(,"body":"yes")");
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("blockerAnswered " + id));
  EXPECT_THAT(desk.wakes("AA2"), IsEmpty()) << "it only filed the task";
  desk.settle();
  desk.person(personAnswer, Desk::on(id) + R"(,"body":"and hurry")");
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("humanReplied " + id));
  EXPECT_THAT(desk.wakes("AA2"), ElementsAre("humanReplied " + id));
}

TEST(Person, AnAnswerToOnesOwnBlockerReachesWhoeverFiledTheTaskToo) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("AA2", id);
  desk.ask("AA2", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
  desk.ask("AA2", "release_task", Desk::on(id));
  desk.person(personAnswer, Desk::on(id) + R"(,"body":"yes")");
  EXPECT_THAT(desk.wakes("AA2"), ElementsAre("blockerAnswered " + id));
}

TEST(Person, CannotAnswerOrConfirmWhatIsNotThere) {
  Desk desk;
  EXPECT_TRUE(wasRefused(desk.person(personAnswer, R"("taskID":"t9","body":"x")"), "t9"));
  EXPECT_TRUE(wasRefused(desk.person(personConfirmGoal), "no goal"));
  EXPECT_TRUE(wasRefused(desk.person(personRestore, R"("taskID":"t9")"), "t9"));
}

TEST(Person, IsHeardByAnAgentWhoseLeaseHasLapsed) {
  Desk desk;
  desk.pass(900);
  EXPECT_FALSE(isLive(desk.seat("BB3")));
  EXPECT_TRUE(wasWritten(desk.person(personSay, R"("to":"BB3","body":"Come back")")));
  EXPECT_TRUE(desk.isWoken("BB3", "humanSaid"));
}

/// A task of BB3's that waits for a secret and has been given one.
struct SecretTask : Desk {
  std::string id = add("one");

  SecretTask() {
    claim("BB3", id);
    ask("BB3", "update_task",
        on(id) + R"(,"blocked":true,"blockerQuestion":"[[ask:{\"k\":\"secret\"}]] The key?")");
    person(personAnswer, on(id) + R"(,"body":"hunter2")");
  }
  /// Everything on the board as one text.
  std::string everything() const {
    std::string rows;
    forEachTable(board, [&](std::string_view, const auto& table) {
      for (const auto& [rowID, row] : table) rows += json::encode(row);
    });
    return rows;
  }
};

TEST(Person, ASecretReachesWhoeverAskedForItAndNobodyElse) {
  SecretTask desk;
  EXPECT_EQ(desk.view("BB3", desk.id).blockerAnswer, "hunter2");
  EXPECT_EQ(desk.view("AA2", desk.id).blockerAnswer, std::nullopt);
  EXPECT_THAT(desk.log(desk.id).back(), ::testing::HasSubstr("a secret was given"));
  EXPECT_TRUE(desk.isWoken("BB3", "blockerAnswered " + desk.id));
  Task& task = *desk.board.tasks.touch(desk.id);
  EXPECT_EQ(std::exchange(task.blockerAnswer, ""), "hunter2");
  EXPECT_EQ(desk.everything().find("hunter2"), std::string::npos);
}

TEST(Person, ASecretIsGoneOnceItIsTaken) {
  struct Row {
    const char* name;
    void (*take)(SecretTask& desk);
  };
  const Row rows[] = {
      {"cleared",
       [](SecretTask& desk) {
         desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"blocked":false)");
       }},
      {"asked anew",
       [](SecretTask& desk) {
         desk.ask("BB3", "update_task",
                  Desk::on(desk.id) + R"(,"blocked":true,"blockerQuestion":"And now?")");
       }},
      {"completed",
       [](SecretTask& desk) {
         desk.ask("BB3", "complete_task", Desk::on(desk.id) + R"(,"summary":"did it")");
       }},
      {"left", [](SecretTask& desk) { desk.ask("BB3", "unregister"); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SecretTask desk;
    desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"note":"on it")");
    EXPECT_EQ(desk.view("BB3", desk.id).blockerAnswer, "hunter2") << "it may not be read yet";
    row.take(desk);
    EXPECT_EQ(desk.everything().find("hunter2"), std::string::npos);
  }
}

}  // namespace
}  // namespace quillpost::board
