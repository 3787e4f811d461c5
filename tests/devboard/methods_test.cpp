#include "devboard/methods.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk.h"
#include "model/verbs.h"

namespace quillpost::devboard {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Methods, OnlyAFewAreOpenToATerminalThatHasNotRegistered) {
  for (const std::string_view method : boardMethods) {
    Desk desk;
    desk.sit("CC4");
    const auto response = desk.ask("CC4", method);
    const bool isOpen = method == "register" || method == "unregister" || method == "list_tasks";
    EXPECT_EQ(response.kind != Desk::Kind::error, isOpen) << method;
    const std::string message = response.message.value_or("");
    EXPECT_TRUE(isOpen || message.find("Call register first") != std::string::npos) << message;
  }
}

TEST(Methods, AnUnknownOneIsRefusedByName) {
  EXPECT_TRUE(wasRefused(Desk().ask("AA2", "frobnicate"), "frobnicate"));
}

TEST(Methods, AMissingOrUnknownTaskIsRefusedInWords) {
  for (const char* method :
       {"read_task", "claim_task", "update_task", "complete_task", "reject_task", "delete_task",
        "release_task", "watch_task", "unwatch_task", "request_review", "verify_task",
        "comment_task", "request_release", "assign_task"}) {
    Desk desk;
    EXPECT_TRUE(wasRefused(desk.ask("AA2", method), "taskID")) << method;
    EXPECT_TRUE(wasRefused(desk.ask("AA2", method, Desk::on("t777777")), "t777777")) << method;
  }
}

TEST(Methods, WhatIsRefusedChangesNothing) {
  struct Row {
    const char* method;
    const char* members;
  };
  const Row rows[] = {
      {"set_goal", R"("name":"  ")"},
      {"set_charter", ""},
      {"add_task", R"("title":" ")"},
      {"add_task", R"("title":"x","to":"BB3")"},
      {"claim_task", R"("taskID":"t000001")"},
      {"update_task", R"("taskID":"t000001","note":"mine now")"},
      {"complete_task", R"("taskID":"t000001","summary":"x")"},
      {"reject_task", R"("taskID":"t000001")"},
      {"delete_task", R"("taskID":"t000001")"},
      {"release_task", R"("taskID":"t000001")"},
      {"comment_task", R"("taskID":"t000001","note":"  ")"},
      {"request_review", R"("taskID":"t000001")"},
      {"verify_task", R"("taskID":"t000001","approve":true)"},
      {"request_release", R"("taskID":"t000002")"},
      {"assign_task", R"("taskID":"t000002","to":"BB3")"},
      {"send_message", R"("to":"BB3","body":"x")"},
      {"open_discussion", ""},
      {"open_discussion", R"("body":"?","taskID":"t777777")"},
      {"reply_discussion", R"("discussionID":"d777777","body":"x")"},
      {"propose_goal_complete", ""},
      {"request_hands", R"("title":"x")"},
      {"suggest_helper", R"("command":"a; b","explanation":"x")"},
      {"stop_helper", R"("to":"KQ4")"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(text::cat(row.method, " ", row.members));
    Desk desk;
    desk.claim("BB3", desk.add("held"));
    desk.add("free");
    forEachTable(desk.board, [](std::string_view, auto& table) { table.settle(); });
    EXPECT_EQ(desk.ask("AA2", row.method, row.members).kind, Desk::Kind::error);
    forEachTable(desk.board, [](std::string_view kind, const auto& table) {
      EXPECT_THAT(table.changed(), IsEmpty()) << kind;
    });
  }
}

TEST(Registering, GivesAFingerprintThatLastsUntilTheAgentLeaves) {
  Desk desk;
  const std::string mark = desk.mark("AA2");
  EXPECT_EQ(mark.size(), 5u);
  EXPECT_EQ(mark.front(), '#');
  desk.ask("AA2", "register", R"("name":"Ann","status":"at it")");
  EXPECT_EQ(desk.mark("AA2"), mark);
  desk.ask("AA2", "unregister");
  const auto response = desk.ask("AA2", "register");
  EXPECT_NE(response.agent->fingerprint, mark);
  EXPECT_EQ(response.agent->name, "") << "another agent may sit here now";
  EXPECT_EQ(response.agent->handle, "AA2");
}

TEST(Registering, ALongRoleIsShortenedWithAnEllipsis) {
  Desk desk;
  const std::string role(121, 'r');
  desk.ask("AA2", "register", text::cat(R"("role":")", role, "\""));
  EXPECT_EQ(desk.seat("AA2").role, std::string(119, 'r') + "…");
}

TEST(Registering, LeavingReturnsWhatIsHeld) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  EXPECT_THAT(desk.ask("BB3", "unregister").message.value_or(""), HasSubstr("1 claim"));
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_FALSE(desk.seat("BB3").registered);
}

TEST(Messages, AreRefusedWhileTheSquadIsOffAndWhereNobodyIsHome) {
  Desk desk;
  desk.sit("CC4");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "send_message", R"("to":"BB3","body":"x")"), "squad"));
  desk.person(personSquad, R"("approve":true)");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "send_message", R"("to":"CC4","body":"x")"), "home"));
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "send_message", R"("to":"ZZ9","body":"x")"), "ZZ9"));
  EXPECT_TRUE(
      wasRefused(desk.ask("AA2", "send_message", R"("to":"KQ3@laptop","body":"x")"), "device"));
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "send_message", R"("to":"BB3","body":"x")")));
}

TEST(Messages, ALongOneIsATask) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const auto send = [&](std::size_t length) {
    return desk.ask("AA2", "send_message",
                    text::cat(R"("to":"BB3","body":")", std::string(length, 'x'), "\""));
  };
  EXPECT_TRUE(wasWritten(send(1000)));
  EXPECT_TRUE(wasRefused(send(1001), "add_task"));
}

TEST(Messages, ComeWithRegisterHeartbeatAndReadingButNotWithTheHeartbeatOfAWait) {
  struct Row {
    const char* method;
    const char* members;
    bool carries;
  };
  for (const Row& row : {Row{"register", "", true}, Row{"heartbeat", "", true},
                         Row{"heartbeat", R"("waiting":true)", false},
                         Row{"read_messages", "", true}, Row{"list_tasks", "", false}}) {
    SCOPED_TRACE(text::cat(row.method, row.members));
    Desk desk;
    desk.person(personSquad, R"("approve":true)");
    desk.ask("AA2", "send_message", R"("to":"BB3","body":"x")");
    EXPECT_EQ(desk.ask("BB3", row.method, row.members).messages.has_value(), row.carries);
  }
}

TEST(Messages, AnEmptyInboxSaysSo) {
  EXPECT_EQ(Desk().ask("AA2", "read_messages").message, "Your inbox is empty.");
}

TEST(WakeQuery, IsPendingWhileAWakeOrAMessageIs) {
  Desk desk;
  EXPECT_EQ(desk.ask("BB3", "wake_query").wakePending, false);
  leaveMessage(desk.board, desk.seat("BB3"), {0, "AA2", "", "x", 0});
  EXPECT_EQ(desk.ask("BB3", "wake_query").wakePending, true);
  EXPECT_EQ(desk.ask("BB3", "wake_query").wakePending, true) << "asking takes nothing";
}

TEST(Agents, ThoseWhoAreHereAndTheTerminalsWithNobodyHome) {
  Desk desk;
  desk.sit("CC4");
  const auto response = desk.ask("AA2", "list_agents");
  ASSERT_EQ(response.agents->size(), 2u);
  EXPECT_TRUE(response.agents->front().isSelf);
  EXPECT_FALSE(response.agents->back().isSelf);
  ASSERT_EQ(response.panes->size(), 1u);
  EXPECT_EQ(response.panes->front().handle, "CC4");
  EXPECT_EQ(response.squad->mode, "off");
  EXPECT_THAT(*response.squad->helpers, IsEmpty());
}

TEST(Goal, IsProposedByAgentsAndConfirmedByThePerson) {
  Desk desk;
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "propose_goal_complete"), "set_goal"));
  desk.ask("AA2", "set_goal", R"("name":"Ship")");
  const std::string id = desk.add("one");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "propose_goal_complete"), "1 task is"));
  EXPECT_TRUE(
      wasWritten(desk.ask("AA2", "propose_goal_complete", R"("acknowledgeOpenTasks":true)")));
  EXPECT_TRUE(desk.ask("BB3", "read_plan").plan->pendingGoalComplete);
  EXPECT_FALSE(desk.ask("BB3", "read_plan").plan->goalComplete);
  desk.person(personConfirmGoal);
  EXPECT_TRUE(desk.ask("BB3", "read_plan").plan->goalComplete);
  EXPECT_FALSE(desk.ask("BB3", "read_plan").plan->pendingGoalComplete);
  EXPECT_TRUE(wasRefused(desk.claim("BB3", id), "complete"));
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "set_goal", R"("name":"More")"), "locked"));
  desk.settle();
  desk.person(personReopenGoal);
  EXPECT_THAT(desk.wakes("AA2"), ElementsAre("goalReopened"));
  EXPECT_TRUE(wasWritten(desk.claim("BB3", id)));
}

TEST(Goal, ANewOneTakesTheProposalBack) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship")");
  desk.ask("AA2", "propose_goal_complete");
  desk.ask("AA2", "set_goal", R"("name":"Ship more")");
  EXPECT_FALSE(desk.ask("BB3", "read_plan").plan->pendingGoalComplete);
}

TEST(Helpers, NoneIsAllowedSoWorkIsFiledAndNothingStarts) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const auto response = desk.ask("AA2", "request_hands", R"("title":"lift","body":"the brief")");
  EXPECT_TRUE(wasWritten(response));
  EXPECT_THAT(response.notice.value_or(""), HasSubstr("suggest_helper"));
  ASSERT_EQ(desk.board.tasks.size(), 1u);
  EXPECT_EQ(desk.task("t000001").body, "the brief");
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "request_hands", Desk::on("t000001"))));
  EXPECT_EQ(desk.board.tasks.size(), 1u);
}

TEST(Helpers, AskingWronglyIsRefused) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const std::string id = desk.add("one");
  for (const auto& [members, words] : {std::pair<std::string, const char*>{"", "never both"},
                                       {Desk::on(id) + R"(,"title":"x")", "never both"},
                                       {R"("title":"x","to":"laptop")", "device"},
                                       {R"("title":"x","agent":"mate")", "mate"},
                                       {Desk::on("t777777"), "t777777"}}) {
    EXPECT_TRUE(wasRefused(desk.ask("AA2", "request_hands", members), words)) << members;
  }
  EXPECT_EQ(desk.board.tasks.size(), 1u);
}

TEST(Helpers, ASuggestionIsOneSimpleCommandAndReplacesItsNamesake) {
  Desk desk;
  const auto suggest = [&](std::string_view name, std::string_view command) {
    return desk.ask(
        "AA2", "suggest_helper",
        text::cat(R"("agent":")", name, R"(","command":")", command, R"(","explanation":"fast")"));
  };
  for (const char* command : {"a; b", "a | b", "a > b", "a $(b)", "a && b", " "})
    EXPECT_TRUE(wasRefused(suggest("mate", command), "command")) << command;
  EXPECT_TRUE(wasRefused(suggest(std::string(49, 'n'), "run"), "48"));
  EXPECT_TRUE(wasWritten(suggest(std::string(48, 'n'), "run")));
  EXPECT_TRUE(wasWritten(suggest("mate", "run --slow")));
  EXPECT_TRUE(wasWritten(suggest("mate", "run --fast {prompt}")));
  EXPECT_EQ(desk.board.suggestions.size(), 2u);
  EXPECT_EQ(desk.board.suggestions.find("mate")->command, "run --fast {prompt}");
}

}  // namespace
}  // namespace quillpost::devboard
