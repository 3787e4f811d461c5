#include "board/serving/service.h"

#include "board/desk.h"
#include "board/fake_processes.h"
#include "board/full_disk.h"
#include "board/person/views.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using Kind = TeamworkResponse::Kind;

/// A service over a store in memory, with two agents.
struct ServiceDesk {
  int64_t nowMs = 1'000'000'000;
  std::string why;
  std::vector<std::string> said;
  Store store = *Store::open(":memory:", why);
  Service service = make();
  std::string first = seat(), second = seat();

  ServiceDesk() {
    ask(first, "register");
    ask(second, "register");
  }

  Service make() {
    return Service(
        store, store.load(why)->boards,
        {.token = "agents",
         .personToken = "persons",
         .leaseMs = 900'000,
         .socketPath = "/d/s.sock",
         .tokenPath = "/d/s.token",
         .say = [this](const std::string& sentence) { said.push_back(sentence); },
         .viewing = viewing},
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
  for (const std::string_view method :
       {personSeat, personShow, personAnswer, personConfirmGoal, personReopenGoal, personSay,
        personSquad, personRestore, personHelpers, personHelperAllow, personHelperForget,
        personHelperApprove, personHelperRefuse}) {
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
  desk.service.confirm(*again.receipt);
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
  ASSERT_TRUE(answer.response.messages && answer.receipt);
  desk.service.confirm(*answer.receipt);
  EXPECT_FALSE(desk.ask(desk.second, "heartbeat").response.messages);
  EXPECT_EQ(desk.ask(desk.second, "read_messages").response.kind, Kind::empty);
}

TEST(Service, LeasesLapseByTheClockThatItWasGiven) {
  ServiceDesk desk;
  desk.ask(desk.first, "add_task", R"("title":"x")");
  desk.ask(desk.second, "claim_task", R"("taskID":"t000001")");
  EXPECT_EQ(desk.service.tick(), quietAfterMs);
  desk.nowMs += quietAfterMs;
  EXPECT_EQ(desk.service.tick(), 180'000);
  desk.nowMs += 180'000;
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

TEST(Service, ARepeatedWriteWhoseAnswerWasLostIsCarriedOutOnce) {
  ServiceDesk desk;
  const auto add = [&](std::string_view title) {
    return desk.ask(desk.first, "add_task", text::cat(R"("title":")", title, "\""));
  };
  const auto count = [&] { return desk.ask(desk.first, "list_tasks").response.tasks->size(); };
  const Answer lost = add("one");
  EXPECT_EQ(add("one").response.message, lost.response.message);
  EXPECT_EQ(count(), 1u);
  add("two");
  EXPECT_EQ(count(), 2u) << "another request is another request";
  desk.nowMs += repetitionMs + 1;
  add("two");
  EXPECT_EQ(count(), 3u) << "too late for a repetition";
  desk.service.confirm(*add("three").receipt);
  desk.service.confirm(*add("three").receipt);
  EXPECT_EQ(count(), 5u) << "its answer had arrived";
  desk.ask(desk.second, "add_task", R"("title":"four")");
  add("four");
  EXPECT_EQ(count(), 7u) << "another seat is another seat";
}

TEST(Service, WhatThePersonSaysIsForgottenOnceItsAnswerWasSent) {
  ServiceDesk desk;
  const auto roster = desk.ask(desk.first, "list_agents").response;
  for (const TeamworkAgent& agent : *roster.agents) {
    if (!agent.isSelf) continue;
    desk.service.answer(requestOf(
        "", personSay, text::cat(R"("to":")", agent.handle, R"(","body":"Stop")"), "persons"));
  }
  const Answer lost = desk.ask(desk.first, "add_task", R"("title":"x")");
  EXPECT_THAT(lost.response.notice.value_or(""), HasSubstr("The human says: Stop"));
  const Answer told = desk.ask(desk.first, "add_task", R"("title":"y")");
  EXPECT_THAT(told.response.notice.value_or(""), HasSubstr("The human says: Stop"));
  desk.service.confirm(*told.receipt);
  EXPECT_EQ(desk.ask(desk.first, "add_task", R"("title":"z")").response.notice, std::nullopt);
}

TEST(Service, KnowsNoMethodThatShowsSomethingUnlessItIsHandedIn) {
  ServiceDesk desk;
  const TeamworkRequest request = requestOf("", personShow, "", "persons");
  EXPECT_EQ(desk.service.answer(request).response.kind, Kind::written);
  Service blind = Service(
      desk.store, desk.store.load(desk.why)->boards,
      {.token = "agents", .personToken = "persons", .socketPath = "", .tokenPath = ""},
      [&desk] { return desk.nowMs; }, countingRandom());
  const TeamworkResponse refusal = blind.answer(request).response;
  EXPECT_EQ(refusal.kind, Kind::error);
  EXPECT_EQ(refusal.message, "This board does not know that method.");
}

/// A service over a file whose directory can be taken away.
struct FileDesk {
  testing::TempDir dir;
  std::string path = dir.pathOf("board.db");
  int64_t nowMs = 1'000'000'000;
  std::vector<std::string> said;
  std::string why;
  Store store = *Store::open(path, why);
  Service service = Service(
      store, store.load(why)->boards,
      {.token = "agents",
       .personToken = "persons",
       .socketPath = "",
       .tokenPath = "",
       .say = [this](const std::string& sentence) { said.push_back(sentence); },
       .viewing = viewing},
      [this] { return nowMs; }, countingRandom());

  std::string show() {
    return service.answer(requestOf("", personShow, "", "persons")).response.message.value_or("");
  }
};

TEST(Service, AFileThatIsDeletedIsNoticedAndWrittenAnew) {
  FileDesk desk;
  desk.service.answer(requestOf("", personSeat, R"("name":"main")", "persons"));
  EXPECT_EQ(desk.service.tick(), storeCareMs);
  std::filesystem::remove(desk.path);
  desk.nowMs += storeCareMs;
  desk.service.tick();
  EXPECT_FALSE(desk.service.isOver());
  ASSERT_EQ(desk.said.size(), 1u);
  EXPECT_THAT(desk.said.front(), HasSubstr("written anew"));
  EXPECT_TRUE(std::filesystem::exists(desk.path));
}

TEST(Service, AFileThatIsReplacedEndsTheBoardAndStaysAsItIs) {
  FileDesk desk;
  desk.service.answer(requestOf("", personSeat, R"("name":"main")", "persons"));
  const std::string other = desk.dir.pathOf("other.db");
  Desk others;
  ASSERT_TRUE(Store::open(other, desk.why)->save(others.board));
  const std::string bytes = testing::readFile(other);
  std::filesystem::rename(other, desk.path);
  desk.nowMs += storeCareMs;
  desk.service.tick();
  EXPECT_TRUE(desk.service.isOver());
  EXPECT_EQ(testing::readFile(desk.path), bytes);
}

TEST(Service, AFullDiskRefusesWritesInWordsLetsReadsGoOnAndRecovers) {
  FileDesk desk;
  const auto ask = [&](const std::string& session, std::string_view method,
                       std::string_view members = "") {
    return desk.service.answer(requestOf(session, method, members, "agents")).response;
  };
  const auto seat = desk.service.answer(requestOf("", personSeat, R"("name":"main")", "persons"));
  const std::string lines = seat.response.message.value_or("");
  const std::string session = lines.substr(lines.find("ID='") + 4, 32);
  ask(session, "register");
  ask(session, "add_task", R"("title":"one")");
  ask(session, "claim_task", R"("taskID":"t000001")");
  const std::string big = text::cat(R"("title":"two","body":")", std::string(200'000, 'x'), "\"");

  const FullDisk full;
  EXPECT_TRUE(wasRefused(ask(session, "add_task", big), "disk full"));
  EXPECT_EQ(desk.said.size(), 1u);
  EXPECT_EQ(ask(session, "list_tasks").tasks->size(), 1u);
  EXPECT_TRUE(
      wasRefused(ask(session, "comment_task", R"("taskID":"t000001","note":"x")"), "disk full"))
      << "not tried again so soon";
  desk.nowMs += 1'000'000;
  const auto due = desk.service.tick();
  EXPECT_GE(due.value_or(0), 1) << "a due lease does not spin";
  EXPECT_EQ(ask(session, "list_tasks").tasks->front().state, "claimed");
  EXPECT_EQ(desk.said.size(), 1u) << "said once";

  full.end();
  desk.nowMs += storeCareMs;
  desk.service.tick();
  EXPECT_EQ(desk.said.size(), 2u) << "by itself";
  EXPECT_EQ(ask(session, "list_tasks").tasks->front().state, "claimed") << "its lease runs anew";
  EXPECT_TRUE(wasWritten(ask(session, "add_task", big)));
}

TEST(Service, AThreadThatCouldNotBeWrittenIsNotThereAndIsBegunByTheNextRequest) {
  FileDesk desk;
  const auto begin = [&] {
    const auto request = requestOf("", personAdd, R"("title":"one")", "persons");
    return desk.service.answer(request).response;
  };
  const FullDisk full;
  EXPECT_TRUE(wasRefused(begin(), "disk full"));
  EXPECT_TRUE(wasRefused(begin(), "disk full"));
  full.end();
  desk.nowMs += storeCareMs;
  EXPECT_TRUE(wasWritten(begin()));
}

TEST(Service, WithSeveralThreadsThePersonSaysWhichIsMeantAndTheFirstMadeIsShown) {
  ServiceDesk desk;
  const auto person = [&](std::string_view method, std::string_view members) {
    return desk.service.answer(requestOf("", method, members, "persons")).response;
  };
  EXPECT_TRUE(wasWritten(person(personSquad, R"("approve":true)")));
  desk.seat(R"("name":"another")");
  EXPECT_TRUE(wasRefused(person(personSquad, R"("approve":true)"), "(main, another)"));
  EXPECT_TRUE(wasWritten(person(personSquad, R"("approve":true,"name":"another")")));
  EXPECT_THAT(person(personShow, "").message.value_or(""), HasSubstr(R"("cells":["main")"));
  EXPECT_TRUE(wasRefused(person(personThread, R"("name":"two\nlines")"), "one line"));
  Service again = desk.make();
  EXPECT_THAT(again.answer(requestOf("", personShow, "", "persons")).response.message.value_or(""),
              HasSubstr(R"("thread","columns":["thread","tag","revision","squad","state","open",)"
                        R"("finished","goal","charter"],"rows":[{"cells":["main")"))
      << "in the order of their making, whatever their tags";
}

TEST(Service, AnswersRepeatTheRevisionThatTheSeatHasBeenShownAndNoLaterOne) {
  ServiceDesk desk;
  const std::string third = desk.seat();
  const Answer arrived = desk.ask(third, "register");
  const int64_t rev = arrived.response.rev.value_or(0);
  EXPECT_GT(rev, 0) << "a new agent waits for what comes after its arrival";
  desk.service.confirm(*arrived.receipt);
  desk.ask(desk.first, "add_task", R"("title":"x")");
  EXPECT_EQ(desk.ask(third, "comment_task", R"("taskID":"t000001","note":"x")").response.rev, rev)
      << "it has not been told of the task";
  EXPECT_EQ(desk.ask(third, "register", R"("role":"lead")").response.rev, rev);
  const Answer feed = desk.ask(third, "poll_changes", text::cat(R"("sinceRev":)", rev));
  EXPECT_EQ(desk.ask(third, "read_plan").response.rev, rev) << "the feed may have been lost";
  desk.service.confirm(*feed.receipt);
  EXPECT_EQ(desk.ask(third, "read_plan").response.rev, feed.response.changes->rev);
  const Answer list = desk.ask(third, "list_tasks");
  desk.service.confirm(*list.receipt);
  EXPECT_EQ(desk.ask(third, "list_agents").response.rev, list.response.rev);
}

TEST(Service, WhileASeatListensItsStopHookIsToldOnlyOfWhatIsOwed) {
  ServiceDesk desk;
  desk.ask(desk.first, "add_task", R"("title":"x")");
  desk.ask(desk.second, "watch_task", R"("taskID":"t000001")");
  desk.service.beginListening(desk.second);
  desk.service.beginListening(desk.second);
  desk.service.endListening(desk.second);
  desk.ask(desk.first, "comment_task", R"("taskID":"t000001","note":"x")");
  EXPECT_EQ(desk.ask(desk.second, "wake_query").response.wakePending, false);
  desk.ask(desk.first, "open_discussion", R"("body":"Which way?")");
  EXPECT_EQ(desk.ask(desk.second, "wake_query").response.wakePending, true);
  desk.ask(desk.second, "reply_discussion", R"("discussionID":"d000001","body":"Left.")");
  desk.service.endListening(desk.second);
  EXPECT_EQ(desk.ask(desk.second, "wake_query").response.wakePending, true)
      << "nothing listens, and the wakes are still there";
}

TEST(Service, NothingIsAcknowledgedThatGoesIntoAFileThatIsGone) {
  FileDesk desk;
  desk.service.answer(requestOf("", personSeat, R"("name":"main")", "persons"));
  std::filesystem::remove(desk.path);
  const auto request = requestOf("", personSquad, R"("approve":true)", "persons");
  EXPECT_EQ(desk.service.answer(request).response.kind, Kind::written);
  EXPECT_TRUE(std::filesystem::exists(desk.path)) << "it was written anew before";
  desk.dir.write("other", "somebody's");
  std::filesystem::rename(desk.dir.pathOf("other"), desk.path);
  EXPECT_EQ(desk.service.answer(requestOf("", personSquad, "", "persons")).response.kind,
            Kind::error);
  EXPECT_TRUE(desk.service.isOver());
}

TEST(Service, HelpersStartWithTheRequestLoseTheirSeatWithTheirAskerAndEndWithTheBoard) {
  FakeProcesses processes;
  int64_t nowMs = 1'000'000'000;
  std::string why;
  Store store = *Store::open(":memory:", why);
  Settings settings{"agents", "persons", 900'000, "/d/s.sock", "/d/s.token"};
  settings.processes = &processes;
  Service service(
      store, store.load(why)->boards, settings, [&] { return nowMs; }, countingRandom());
  const auto ask = [&](const std::string& session, std::string_view method,
                       std::string_view members = "") {
    return service.answer(requestOf(session, method, members, "agents")).response;
  };
  const std::string lines =
      service.answer(requestOf("", personSeat, "", "persons")).response.message.value_or("");
  const std::string asker = lines.substr(lines.find('\'') + 1, 32);
  ask(asker, "register");
  TeamworkRequest allow = requestOf("", personHelperAllow, "", "persons");
  allow.body = R"({"id":"scout","directory":"/d","words":["scout"]})";
  EXPECT_TRUE(wasWritten(service.answer(allow).response));

  EXPECT_TRUE(wasWritten(ask(asker, "request_hands", R"("title":"one")")));
  ASSERT_EQ(processes.all.size(), 1u);
  const std::string variable = processes.all[0].launch.variables.at(0);
  const std::string helper = variable.substr(variable.find('=') + 1);
  EXPECT_EQ(ask(helper, "register").kind, Kind::registered);
  nowMs += 500'000;
  ask(helper, "heartbeat");
  nowMs += 500'000;
  EXPECT_TRUE(wasRefused(ask(helper, "list_tasks"), "knows no seat"));
  EXPECT_EQ(processes.all[0].signals, std::vector{SIGTERM});

  ask(asker, "register");
  EXPECT_TRUE(wasWritten(ask(asker, "request_hands", R"("title":"two")")));
  service.finish();
  EXPECT_EQ(processes.all.at(1).signals, (std::vector{SIGTERM, SIGKILL}));
  EXPECT_TRUE(wasRefused(ask(asker, "stop_helper", R"("to":"ZZ9")"), "ZZ9"));
}

TEST(Service, AHelperRunsOnceItsProcessStandsInTheFileAndNoSooner) {
  const testing::TempDir dir;
  std::optional<FullDisk> full;
  FakeProcesses processes;
  int64_t nowMs = 1'000'000'000;
  std::string why;
  Store store = *Store::open(dir.pathOf("board.db"), why);
  Settings settings{"agents", "persons", 900'000, "", ""};
  settings.processes = &processes;
  Service service(
      store, store.load(why)->boards, settings, [&] { return nowMs; }, countingRandom());
  const auto seat = service.answer(requestOf("", personSeat, "", "persons"));
  const std::string lines = seat.response.message.value_or("");
  const std::string asker = lines.substr(lines.find("ID='") + 4, 32);
  service.answer(requestOf(asker, "register", "", "agents"));
  TeamworkRequest allow = requestOf("", personHelperAllow, "", "persons");
  allow.body = R"({"id":"scout","directory":"/d","words":["scout"]})";
  service.answer(allow);
  // The disk is full just when the process is there.
  processes.beforeStart = [&] { full.emplace(); };
  service.answer(requestOf(asker, "request_hands", R"("title":"one")", "agents"));
  ASSERT_EQ(processes.all.size(), 1u);
  EXPECT_FALSE(processes.isLetGo(0)) << "a board that is killed now knows of no process";
  full.reset();
  nowMs += storeCareMs;
  service.tick();
  EXPECT_EQ(processes.all.size(), 1u);
  EXPECT_TRUE(processes.isLetGo(0));
}

}  // namespace
}  // namespace quillpost::board
