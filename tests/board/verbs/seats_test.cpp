#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

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

TEST(Registering, TheNextAgentOfASeatHasNoneOfTheRightsOfTheOneBefore) {
  Desk desk;
  desk.ask("AA2", "register", R"("role":"reviewer")");
  EXPECT_EQ(desk.seat("AA2").authority, "reviewer");
  desk.ask("AA2", "unregister");
  desk.ask("AA2", "register");
  EXPECT_EQ(desk.seat("AA2").role, "");
  EXPECT_EQ(desk.seat("AA2").authority, "contributor");
}

TEST(Registering, LeavingReturnsWhatIsHeld) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  EXPECT_THAT(desk.ask("BB3", "unregister").message.value_or(""), HasSubstr("1 claim"));
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_FALSE(desk.seat("BB3").registered);
}

TEST(Registering, WhoeverSitsDownUnderAnotherNameWhereALeaseHasLapsedIsAnotherAgent) {
  struct Row {
    const char* name;
    bool isSame;
  };
  for (const Row& row : {Row{"bo", true}, {"", true}, {"Cy", false}}) {
    SCOPED_TRACE(row.name);
    Desk desk;
    desk.ask("BB3", "register", R"("name":"Bo")");
    const std::string mark = desk.mark("BB3");
    desk.pass(900);
    desk.person(personSay, R"("to":"BB3","body":"Come back, Bo")");
    leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "for Bo", 0});
    const int64_t rev = desk.board.counted().rev;
    const auto response = desk.ask("BB3", "register", text::cat(R"("name":")", row.name, "\""));
    EXPECT_EQ(response.messages.has_value(), row.isSame);
    EXPECT_EQ(desk.isWoken("BB3", "humanSaid"), row.isSame);
    EXPECT_EQ(desk.mark("BB3") == mark, row.isSame);
    EXPECT_EQ(desk.board.changes.find(padded(desk.board.counted().rev))->kind,
              MoveKind::agentJoined);
    EXPECT_GT(desk.board.counted().rev, rev);
    EXPECT_TRUE(isLive(desk.seat("BB3")));
  }
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
  leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "x", 0});
  EXPECT_EQ(desk.ask("BB3", "wake_query").wakePending, true);
  EXPECT_EQ(messagesOf(desk.board, desk.seat("BB3")).size(), 1u) << "asking takes nothing";
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

TEST(Messages, AreNotGivenToTheNextAgentOfTheirSeat) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  desk.ask("AA2", "send_message", R"("to":"BB3","body":"for your eyes only")");
  desk.ask("BB3", "unregister");
  EXPECT_EQ(desk.ask("BB3", "register").messages, std::nullopt);
}

}  // namespace
}  // namespace quillpost::board
