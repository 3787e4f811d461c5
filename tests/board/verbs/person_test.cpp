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

TEST(Person, AnAnswerToAQuestionThatIsNotAskedAnyMoreIsRefused) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  const auto ask = [&](std::string_view question) {
    desk.ask("BB3", "update_task",
             text::cat(Desk::on(id), R"(,"blocked":true,"blockerQuestion":")", question, "\""));
  };
  const auto answerTo = [&](std::string_view question) {
    return desk.person(personAnswer, text::cat(Desk::on(id), R"(,"body":"yes","blockerQuestion":")",
                                               question, "\""));
  };
  ask("Oak?");
  EXPECT_TRUE(wasRefused(answerTo("Steel?"), "answered first, or taken back"));
  EXPECT_TRUE(wasWritten(answerTo("Oak?")));
  EXPECT_TRUE(wasRefused(answerTo("Oak?"), "answered first, or taken back"));
  EXPECT_EQ(desk.log(id).size(), 1u);
  ask("Oak?");
  EXPECT_TRUE(wasWritten(answerTo("Oak?"))) << "it is asked again";
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
  EXPECT_TRUE(wasRefused(desk.person(personAnswer, R"("taskID":"t9","body":"x")"), "t000009"));
  EXPECT_TRUE(wasRefused(desk.person(personConfirmGoal), "no goal"));
  EXPECT_TRUE(wasRefused(desk.person(personRestore, R"("taskID":"t9")"), "t000009"));
}

TEST(Person, SpeaksToAllWhoHaveRegisteredThoughTheirLeaseHasLapsed) {
  Desk desk;
  desk.sit("CC4");
  desk.pass(500);
  desk.ask("AA2", "heartbeat");
  desk.pass(500);
  EXPECT_FALSE(isLive(desk.seat("BB3")));
  EXPECT_EQ(desk.person(personSay, R"("to":"all","body":"Lunch")").message, "Said to 2 agents.");
  EXPECT_TRUE(desk.isWoken("AA2", "humanSaid"));
  EXPECT_TRUE(desk.isWoken("BB3", "humanSaid"));
  EXPECT_THAT(desk.wakes("CC4"), IsEmpty());
  Desk empty({});
  empty.sit("CC4");
  EXPECT_TRUE(wasRefused(empty.person(personSay, R"("to":"all","body":"Lunch")"), "nobody"));
}

TEST(Person, FindsAnAgentByItsName) {
  Desk desk;
  desk.ask("BB3", "register", R"("name":"Bo")");
  EXPECT_TRUE(wasWritten(desk.person(personSay, R"("to":"bo","body":"Well done")")));
  EXPECT_TRUE(desk.isWoken("BB3", "humanSaid"));
  EXPECT_TRUE(wasWritten(desk.person(personUnseat, R"("to":"Bo")")));
  EXPECT_EQ(seatAt(desk.board, "BB3"), nullptr);
}

TEST(Person, WhatThePersonSaysIsCutWithANotice) {
  struct Row {
    std::string_view method;
    const char* members;
    const char* words;
  };
  const Row rows[] = {
      {personComment, R"("taskID":"1","body":)", "2000 characters"},
      {personAnswer, R"("taskID":"1","body":)", "2000 characters"},
      {personReply, R"("taskID":"d1","body":)", "2000 characters"},
      {personSay, R"("to":"BB3","body":)", "2000 characters"},
      {personDone, R"("taskID":"1","body":)", "2000 characters"},
      {personRelease, R"("taskID":"1","releaseReason":)", "240 characters"},
      {personReject, R"("taskID":"1","releaseReason":)", "240 characters"},
      {personDelete, R"("taskID":"1","releaseReason":)", "240 characters"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.method);
    Desk desk;
    const std::string id = desk.add("one");
    desk.claim("BB3", id);
    desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
    desk.ask("AA2", "open_discussion", R"("body":"Why?","tags":["human"])");
    const auto response = desk.person(
        row.method, text::cat(row.members, "\"", std::string(std::size_t{7} << 20, 'x'), "\""));
    EXPECT_TRUE(wasWritten(response));
    EXPECT_THAT(response.notice.value_or(""), ::testing::HasSubstr(row.words));
    forEachTable(desk.board, [](std::string_view kind, const auto& table) {
      for (const auto& [rowID, written] : table)
        EXPECT_LT(json::encode(written).size(), 10'000u) << kind;
    });
  }
}

TEST(Person, ACommentLeavesAQuestionOpen) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
  desk.settle();
  EXPECT_TRUE(wasWritten(desk.person(personComment, R"("taskID":"1","body":"Let me think")")));
  EXPECT_TRUE(desk.task(id).blocked);
  EXPECT_TRUE(desk.isWoken("BB3", "humanReplied " + id));
  EXPECT_TRUE(wasRefused(desk.person(personComment, R"("taskID":"t9","body":"x")"), "t000009"));
  EXPECT_TRUE(wasRefused(desk.person(personComment, R"("taskID":"1","body":" ")"), "Say"));
}

TEST(Person, SpeaksInADiscussionUntilItIsResolved) {
  Desk desk;
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["human","BB3"])");
  EXPECT_TRUE(wasWritten(desk.person(personReply, R"("taskID":"d1","body":"Left")")));
  EXPECT_TRUE(wasWritten(desk.person(personAnswer, R"("taskID":"d1","body":"Left, I said")")));
  EXPECT_EQ(desk.board.discussions.find("d000001")->volleys.size(), 2u);
  EXPECT_TRUE(wasRefused(desk.person(personReply, R"("taskID":"d2","body":"x")"), "d000002"));
  desk.ask("AA2", "resolve_discussion", R"("discussionID":"d000001","body":"Left")");
  EXPECT_TRUE(wasRefused(desk.person(personReply, R"("taskID":"d1","body":"x")"), "resolved"));
}

TEST(Person, SetsGoalAndCharter) {
  Desk desk;
  EXPECT_TRUE(wasWritten(desk.person(personGoal, R"("body":"Ship it")")));
  EXPECT_TRUE(wasWritten(desk.person(personCharter, R"("body":"Owns the ship")")));
  EXPECT_EQ(desk.board.thread().goal, "Ship it");
  EXPECT_EQ(desk.board.thread().charter, "Owns the ship");
  EXPECT_TRUE(wasRefused(desk.person(personGoal), "Say"));
  EXPECT_TRUE(wasRefused(desk.person(personCharter, R"("body":" ")"), "Say"));
}

TEST(Person, ConfirmsOnlyWhatIsProposedAndDoneUnlessTheySayAnyway) {
  Desk desk;
  desk.person(personGoal, R"("body":"Ship it")");
  desk.add("one");
  EXPECT_TRUE(wasRefused(desk.person(personConfirmGoal),
                         "No agent has proposed that it is complete. 1 task is still open. With "
                         "--anyway"));
  EXPECT_FALSE(desk.board.thread().goalComplete);
  desk.ask("AA2", "propose_goal_complete", R"("acknowledgeOpenTasks":true)");
  EXPECT_TRUE(wasRefused(desk.person(personConfirmGoal), "1 task is still open. With --anyway"));
  EXPECT_TRUE(wasWritten(desk.person(personConfirmGoal, R"("acknowledgeOpenTasks":true)")));
  EXPECT_TRUE(desk.board.thread().goalComplete);
  EXPECT_TRUE(desk.isWoken("BB3", "goalConfirmed"));
  EXPECT_TRUE(wasWritten(desk.person(personConfirmGoal))) << "said twice";
  EXPECT_TRUE(wasRefused(desk.person(personGoal, R"("body":"More")"), "reopen-goal"));
  EXPECT_TRUE(wasWritten(desk.person(personReopenGoal)));
  EXPECT_TRUE(wasWritten(desk.person(personGoal, R"("body":"More")")));
}

TEST(Person, TakesASeatAwayWithWhatItsAgentHolds) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  EXPECT_TRUE(wasWritten(desk.person(personUnseat, R"("to":"bb3")")));
  EXPECT_EQ(seatAt(desk.board, "BB3"), nullptr);
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_TRUE(wasRefused(desk.person(personUnseat, R"("to":"BB3")"), "no seat"));
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
      {"goes on",
       [](SecretTask& desk) {
         desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"note":"on it")");
       }},
      {"declined", [](SecretTask& desk) { desk.person(personReject, Desk::on(desk.id)); }},
      {"deleted", [](SecretTask& desk) { desk.person(personDelete, Desk::on(desk.id)); }},
      {"done", [](SecretTask& desk) { desk.person(personDone, Desk::on(desk.id)); }},
      {"released", [](SecretTask& desk) { desk.ask("BB3", "release_task", Desk::on(desk.id)); }},
      {"handed over",
       [](SecretTask& desk) {
         desk.ask("BB3", "heartbeat", R"("waiting":true,"parkReason":"for the key")");
         desk.ask("AA2", "request_release", Desk::on(desk.id));
         EXPECT_TRUE(isHeldBy(desk.task(desk.id), desk.mark("AA2")));
       }},
      {"lapsed", [](SecretTask& desk) { desk.pass(900); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SecretTask desk;
    desk.ask("AA2", "comment_task", Desk::on(desk.id) + R"(,"note":"on it?")");
    EXPECT_EQ(desk.view("BB3", desk.id).blockerAnswer, "hunter2") << "it may not be read yet";
    row.take(desk);
    EXPECT_EQ(desk.everything().find("hunter2"), std::string::npos);
  }
}

TEST(Person, ASecretMayBeGivenAnewUntilItIsTakenAndNeverBecomesAComment) {
  SecretTask desk;
  const std::string again = Desk::on(desk.id) + R"(,"body":"swordfish")";
  EXPECT_TRUE(wasWritten(desk.person(personAnswer, again)));
  EXPECT_EQ(desk.view("BB3", desk.id).blockerAnswer, "swordfish");
  EXPECT_THAT(desk.log(desk.id),
              ElementsAre("human: a secret was given", "human: a secret was given"));
  const auto update = desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"note":"on it")");
  EXPECT_THAT(update.notice.value_or(""), ::testing::HasSubstr("secret"));
  EXPECT_TRUE(wasRefused(desk.person(personAnswer, again), "Nobody waits for a secret"));
  EXPECT_EQ(desk.everything().find("swordfish"), std::string::npos);
  EXPECT_TRUE(wasWritten(desk.person(personComment, Desk::on(desk.id) + R"(,"body":"Go on")")));
}

TEST(Person, ASecretForNobodyIsNotKept) {
  SecretTask desk;
  const std::string late = Desk::on(desk.id) + R"(,"body":"swordfish")";
  desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"blocked":true)");
  desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"blocked":false)");
  EXPECT_TRUE(wasRefused(desk.person(personAnswer, late), "Nobody waits")) << "it was taken back";
  desk.ask("BB3", "update_task",
           Desk::on(desk.id) +
               R"(,"blocked":true,"blockerQuestion":"[[ask:{\"k\":\"secret\"}]] The key?")");
  desk.ask("BB3", "unregister");
  EXPECT_THAT(desk.person(personAnswer, late).notice.value_or(""), ::testing::HasSubstr("left"));
  EXPECT_FALSE(desk.task(desk.id).blocked) << "others may go on with it";
  EXPECT_EQ(desk.everything().find("swordfish"), std::string::npos);
}

}  // namespace
}  // namespace quillpost::board
