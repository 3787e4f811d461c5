#include "board/serving/service.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using Kind = TeamworkResponse::Kind;

/// A service over a store in memory, with two agents.
struct ServiceDesk {
  int64_t nowMs = 1'000'000'000;
  std::string why;
  Store store = *Store::open(":memory:", why);
  Service service = make();
  std::string first = seat(), second = seat();

  ServiceDesk() {
    ask(first, "register");
    ask(second, "register");
  }

  Service make() {
    return Service(
        store, *store.load(why), {"agents", "persons", 900'000, "/d/s.sock", "/d/s.token"},
        [this] { return nowMs; }, countingRandom());
  }
  std::string seat(std::string_view members = "") {
    const auto answer = service.answer(requestOf("", personSeat, members, "persons"));
    const std::string lines = answer.response.message.value_or("");
    const std::string before = "QUILLPOST_SESSION_ID='";
    const std::size_t start = lines.find(before);
    EXPECT_NE(start, std::string::npos) << lines;
    return lines.substr(start + before.size(), 32);
  }
  Answer ask(const std::string& session, std::string_view method, std::string_view members = "") {
    return service.answer(requestOf(session, method, members, "agents"));
  }
};

TEST(Service, RefusesAWrongTokenVersionOrSeatInWords) {
  ServiceDesk desk;
  const auto refusal = [&](std::string_view session, std::string_view token, int64_t version) {
    TeamworkRequest request = requestOf(session, "list_tasks", "", token);
    request.protocolVersion = version;
    const TeamworkResponse response = desk.service.answer(request).response;
    EXPECT_EQ(response.kind, Kind::error);
    return response.message.value_or("");
  };
  EXPECT_THAT(refusal(desk.first, "wrong", 1), HasSubstr("token"));
  EXPECT_THAT(refusal(desk.first, "persons", 1), HasSubstr("token"));
  EXPECT_THAT(refusal(desk.first, "agents", 2), HasSubstr("version 1"));
  EXPECT_THAT(refusal("nobody", "agents", 1), HasSubstr("quillpost-board seat"));
}

TEST(Service, AnAgentCannotActAsThePerson) {
  ServiceDesk desk;
  for (const std::string_view method : {personSeat, personShow, personAnswer, personConfirmGoal,
                                        personReopenGoal, personSay, personSquad, personRestore}) {
    const auto answer = desk.ask(desk.first, method);
    EXPECT_EQ(answer.response.kind, Kind::error) << method;
    EXPECT_THAT(answer.response.message.value_or(""), HasSubstr("person")) << method;
  }
}

TEST(Service, EveryAnswerToASeatCarriesObligationsAudienceAndThread) {
  ServiceDesk desk;
  for (const char* method : {"list_tasks", "read_plan", "heartbeat", "poll_changes", "wake_query",
                             "frobnicate", "add_task"}) {
    const TeamworkResponse response = desk.ask(desk.first, method).response;
    EXPECT_TRUE(response.obligations) << method;
    ASSERT_TRUE(response.audience) << method;
    EXPECT_EQ(response.audience->otherLocalAgents, 1) << method;
    EXPECT_EQ(response.threadTag.value_or("").size(), 8u) << method;
  }
}

TEST(Service, APollIsHeldOnlyWhenItAsksAndNothingIsNew) {
  ServiceDesk desk;
  const int64_t rev = *desk.ask(desk.first, "list_tasks").response.rev;
  const std::string since = text::cat(R"("sinceRev":)", rev);
  EXPECT_EQ(desk.ask(desk.first, "poll_changes", since).holdMs, 0);
  EXPECT_EQ(desk.ask(desk.first, "poll_changes", since + R"(,"holdMs":5000)").holdMs, 5000);
  EXPECT_EQ(desk.ask(desk.first, "poll_changes", since + R"(,"holdMs":-1)").holdMs, 0);
  EXPECT_EQ(desk.ask(desk.first, "poll_changes", since + R"(,"holdMs":9999999)").holdMs,
            holdLimitMs);
  EXPECT_EQ(desk.ask(desk.first, "list_tasks", R"("holdMs":5000)").holdMs, 0);
  desk.ask(desk.second, "add_task", R"("title":"x")");
  const Answer answer = desk.ask(desk.first, "poll_changes", since + R"(,"holdMs":5000)");
  EXPECT_EQ(answer.holdMs, 0);
  EXPECT_TRUE(answer.response.changes->changed);
}

TEST(Service, AWakeIsToldUntilItsAnswerWasSent) {
  ServiceDesk desk;
  desk.ask(desk.first, "add_task", R"("title":"x")");
  desk.ask(desk.second, "watch_task", R"("taskID":"t000001")");
  desk.ask(desk.first, "comment_task", R"("taskID":"t000001","note":"x")");
  const Answer lost = desk.ask(desk.second, "poll_changes");
  EXPECT_EQ(lost.response.changes->wakeReasons.size(), 1u);
  const Answer again = desk.ask(desk.second, "poll_changes");
  EXPECT_EQ(again.response.changes->wakeReasons.size(), 1u);
  desk.ask(desk.first, "add_task", R"("title":"y")");
  desk.service.confirm(*again.delivery);
  EXPECT_EQ(desk.ask(desk.second, "poll_changes").response.changes->wakeReasons.size(), 0u);
  EXPECT_EQ(desk.ask(desk.second, "wake_query").response.wakePending, false);
}

TEST(Service, AMessageIsDeliveredOnce) {
  ServiceDesk desk;
  desk.service.answer(requestOf("", personSquad, R"("approve":true)", "persons"));
  const auto roster = desk.ask(desk.first, "list_agents").response;
  for (const TeamworkAgent& agent : *roster.agents) {
    if (agent.isSelf) continue;
    desk.ask(desk.first, "send_message",
             text::cat(R"("to":")", agent.handle, R"(","body":"hello")"));
  }
  const Answer answer = desk.ask(desk.second, "heartbeat");
  ASSERT_TRUE(answer.response.messages && answer.delivery);
  desk.service.confirm(*answer.delivery);
  EXPECT_FALSE(desk.ask(desk.second, "heartbeat").response.messages);
  EXPECT_EQ(desk.ask(desk.second, "read_messages").response.kind, Kind::empty);
}

TEST(Service, LeasesLapseByTheClockThatItWasGiven) {
  ServiceDesk desk;
  desk.ask(desk.first, "add_task", R"("title":"x")");
  desk.ask(desk.second, "claim_task", R"("taskID":"t000001")");
  EXPECT_EQ(desk.service.tick(), 780'000);
  desk.nowMs += 780'000;
  const uint64_t before = desk.service.stirred();
  EXPECT_EQ(desk.service.tick(), 120'000);
  EXPECT_GT(desk.service.stirred(), before) << "a held poll has something to tell";
  EXPECT_EQ(desk.ask(desk.second, "poll_changes").response.changes->wakeReasons.front().kind,
            "claimExpiring");
  desk.nowMs += 120'000;
  desk.service.tick();
  EXPECT_EQ(desk.ask(desk.second, "poll_changes").response.changes->wakeReasons.front().kind,
            "claimExpired");
}

TEST(Service, ABoardTakenUpAgainForgivesTheTimeBetween) {
  ServiceDesk desk;
  desk.ask(desk.first, "add_task", R"("title":"x")");
  desk.ask(desk.second, "claim_task", R"("taskID":"t000001")");
  desk.nowMs += 100'000'000;
  Service again = desk.make();
  const auto tasks =
      again.answer(requestOf(desk.second, "list_tasks", "", "agents")).response.tasks;
  ASSERT_EQ(tasks->size(), 1u);
  EXPECT_EQ(tasks->front().claimLeaseSecondsRemaining, 900);
}

TEST(Service, SeatsAreOnTheThreadTheyWereMadeFor) {
  ServiceDesk desk;
  const std::string other = desk.seat(R"("name":"other")");
  desk.ask(other, "register");
  desk.ask(other, "add_task", R"("title":"elsewhere")");
  EXPECT_EQ(desk.ask(desk.first, "list_tasks").response.tasks->size(), 0u);
  EXPECT_NE(desk.ask(desk.first, "list_tasks").response.threadTag,
            desk.ask(other, "list_tasks").response.threadTag);
  const auto show = [&](std::string_view members) {
    return desk.service.answer(requestOf("", personShow, members, "persons"))
        .response.message.value_or("");
  };
  EXPECT_THAT(show(R"("name":"other")"), HasSubstr("elsewhere"));
  EXPECT_THAT(show(R"("name":"third")"), HasSubstr("no thread called"));
}

}  // namespace
}  // namespace quillpost::board
