#include "board/helped.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

TEST(Helpers, WhereNoneIsAllowedWorkIsFiledAndNothingStarts) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const auto response = desk.ask("AA2", "request_hands", R"("title":"lift","body":"the brief")");
  EXPECT_TRUE(wasWritten(response));
  EXPECT_THAT(response.notice.value_or(""), HasSubstr("suggest_helper"));
  ASSERT_EQ(desk.board.tasks.size(), 1u);
  EXPECT_EQ(briefOf(desk.board, "t000001"), "the brief");
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "request_hands", Desk::on("t000001"))));
  EXPECT_EQ(desk.board.tasks.size(), 1u);
  EXPECT_TRUE(desk.board.runs.empty());
}

TEST(Helpers, OneIsAskedForWithANewTaskThatIsHandedToIt) {
  HelpedDesk desk;
  const auto response = desk.ask("AA2", "request_hands", R"("title":"lift","body":"the brief")");
  ASSERT_TRUE(wasWritten(response));
  const Task& task = desk.task("t000001");
  EXPECT_EQ(briefOf(desk.board, "t000001"), "the brief");
  EXPECT_EQ(task.reportsTo, "AA2");
  const HelperRun& run = desk.run(task.routedTo);
  EXPECT_EQ(run.taskID, "t000001");
  EXPECT_EQ(run.helper, "scout");
  EXPECT_EQ(run.state, RunState::starting);
  EXPECT_THAT(response.message.value_or(""), HasSubstr(run.handle));
  EXPECT_THAT(response.message.value_or(""),
              HasSubstr("HELPER LIMIT: 1 of 20 helpers are running in this thread, so 19 more may "
                        "start."));
  EXPECT_FALSE(desk.seat(run.handle).registered);
  EXPECT_EQ(desk.seat(run.handle).label, "scout");
}

TEST(Helpers, OneIsAskedForWithATaskOfTheBoard) {
  HelpedDesk desk;
  const std::string id = desk.add("lift");
  ASSERT_TRUE(wasWritten(desk.ask("BB3", "request_hands", Desk::on(id) + R"(,"agent":"scout")")));
  EXPECT_EQ(desk.run(desk.task(id).routedTo).askerHandle, "BB3");
  EXPECT_EQ(desk.board.tasks.size(), 1u);
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "request_hands", Desk::on(id)), "already"));
}

TEST(Helpers, AskingWronglyIsRefused) {
  HelpedDesk desk;
  const std::string id = desk.add("one");
  const std::string waiting = desk.add("two", text::cat(R"("waitsOn":[")", id, "\"]"));
  const std::string own = desk.add("mine");
  const std::string held = desk.add("theirs");
  const std::string closed = desk.add("over");
  const std::string stuck = desk.add("stuck");
  desk.claim("AA2", own);
  desk.claim("BB3", held);
  desk.ask("AA2", "reject_task", Desk::on(closed) + R"(,"releaseReason":"no")");
  desk.claim("BB3", stuck);
  desk.ask("BB3", "update_task", Desk::on(stuck) + R"(,"blocked":true,"blockerQuestion":"Which?")");
  desk.ask("BB3", "release_task", Desk::on(stuck));
  const std::size_t tasks = desk.board.tasks.size();
  for (const auto& [members, words] :
       {std::pair<std::string, const char*>{"", "never both"},
        {Desk::on(id) + R"(,"title":"x")", "never both"},
        {R"("title":"x","to":"laptop")", "one device"},
        {R"("title":"x","to":"laptop","agent":"scout")", "never both"},
        {R"("title":"x","agent":"mate")", "only \"scout\""},
        {Desk::on("t777777"), "t777777"},
        {Desk::on(waiting), "not READY"},
        {Desk::on(own), "release_task first"},
        {Desk::on(held), "held by BB3"},
        {Desk::on(closed), "closed"},
        {Desk::on(stuck), "question to the person"}}) {
    EXPECT_TRUE(wasRefused(desk.ask("AA2", "request_hands", members), words)) << members;
  }
  desk.allow("mate");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "request_hands", R"("title":"x")"),
                         "name one with `agent`: \"mate\", \"scout\""));
  desk.person(personSquad, R"("approve":false)");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "request_hands", R"("title":"x","agent":"mate")"), "off"));
  desk.person(personSquad, R"("approve":true)");
  desk.person(personGoal, R"("body":"g")");
  desk.person(personConfirmGoal, R"("acknowledgeOpenTasks":true)");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "request_hands", R"("title":"x","agent":"mate")"),
                         "goal is complete"));
  EXPECT_EQ(desk.board.tasks.size(), tasks);
  EXPECT_TRUE(desk.board.runs.empty());
}

TEST(Helpers, TwentyMayBeThereAndTheTwentyFirstIsRefusedWhoeverAsks) {
  HelpedDesk desk;
  const std::string helper = desk.working("AA2");
  for (int i = 1; i < 20; ++i) EXPECT_NE(desk.hands(i % 2 == 0 ? "AA2" : "BB3"), "") << i;
  const std::size_t tasks = desk.board.tasks.size();
  for (const char* asker : {"AA2", "BB3"})
    EXPECT_TRUE(wasRefused(desk.ask(asker, "request_hands", R"("title":"x")"),
                           "20 of 20 helpers are running in this thread, so none may start"));
  EXPECT_TRUE(wasRefused(desk.asHelper(helper, "request_hands", R"("title":"x")"), "20 of 20"));
  EXPECT_EQ(desk.board.tasks.size(), tasks) << "nothing is filed";

  // One that has ended still counts, and so does one that is being stopped until it has ended.
  const std::string session = desk.run(helper).id;
  endRun(desk.board, session, {true, "ended with status 0"}, desk.at);
  EXPECT_EQ(desk.hands("AA2"), "");
  desk.ask("AA2", "stop_helper", text::cat(R"("to":")", helper, "\""));
  EXPECT_NE(desk.hands("AA2"), "");
  EXPECT_EQ(desk.hands("AA2"), "");
}

TEST(Helpers, OnlyWhoAskedForOneMayStopIt) {
  HelpedDesk desk;
  const std::string first = desk.working("AA2");
  desk.asHelper(first, "request_hands", R"("title":"deeper")");
  const std::string second = desk.task("t000002").routedTo;
  const auto stop = [](std::string_view handle) { return text::cat(R"("to":")", handle, "\""); };
  EXPECT_TRUE(wasRefused(desk.ask("BB3", "stop_helper", stop(first)), "asked for by AA2"));
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "stop_helper", stop("ZZ9")), "ZZ9"));
  EXPECT_TRUE(wasRefused(desk.asHelper(second, "register").kind == Desk::Kind::registered
                             ? desk.asHelper(second, "stop_helper", stop(first))
                             : TeamworkResponse{},
                         "asked for by AA2"));
  const auto response = desk.ask("AA2", "stop_helper", stop(text::lowered(first)));
  ASSERT_TRUE(wasWritten(response));
  EXPECT_EQ(response.message,
            text::cat("Stopped ", first,
                      " and 1 helper that it had asked for. t000001 \"work\" went back to the "
                      "pool. t000002 \"deeper\" had been handed to it and is anybody's now. HELPER "
                      "LIMIT: 2 of 20 helpers are running in this thread, so 18 more may start."));
  EXPECT_THAT(desk.ask("AA2", "stop_helper", stop(first)).message.value_or(""),
              HasSubstr("stopped already"));
}

TEST(Helpers, AreInTheRosterAndAmongThoseThatMayBeAskedFor) {
  HelpedDesk desk;
  const std::string handle = desk.hands("AA2");
  const TeamworkResponse roster = desk.ask("BB3", "list_agents");
  EXPECT_FALSE(roster.panes) << "a helper's seat is no terminal";
  ASSERT_TRUE(roster.runningHelpers);
  EXPECT_EQ(roster.runningHelpers->front().handle, handle);
  ASSERT_TRUE(roster.squad);
  EXPECT_TRUE(roster.squad->canSpawn);
  EXPECT_EQ(roster.squad->helperLimit, 20);
  EXPECT_EQ(roster.squad->helpersRunning, 1);
  EXPECT_EQ(roster.squad->helpers->front(), (TeamworkHelper{"scout", "reads", false, false}));
  EXPECT_EQ(desk.ask("BB3", "register").squad, roster.squad);
}

TEST(Helpers, WakeTheirAskerWhenTheyCompleteAndWhenTheyAsk) {
  HelpedDesk desk;
  const std::string handle = desk.working("AA2");
  desk.asHelper(handle, "update_task",
                Desk::on("t000001") + R"(,"blocked":true,"blockerQuestion":"Which day?")");
  EXPECT_TRUE(desk.isWoken("AA2", "helperBlocked t000001"));
  EXPECT_THAT(desk.told("AA2").back(), HasSubstr("Which day?"));
  desk.person(personAnswer, Desk::on("t000001") + R"(,"body":"Monday")");
  desk.settle();
  desk.asHelper(handle, "complete_task", Desk::on("t000001") + R"(,"summary":"done")");
  EXPECT_TRUE(desk.isWoken("AA2", "handedTaskDone t000001"));
  desk.settle();
  const std::string own = desk.add("own");
  desk.claim("AA2", own);
  desk.ask("AA2", "update_task", Desk::on(own) + R"(,"blocked":true,"blockerQuestion":"Who?")");
  EXPECT_TRUE(desk.wakes("AA2").empty()) << "an agent that is no helper tells nobody";
}

TEST(Helpers, ASuggestionIsOneSimpleCommandAndReplacesItsNamesake) {
  Desk desk;
  const auto suggest = [&](std::string_view name, std::string_view command) {
    return desk.ask(
        "AA2", "suggest_helper",
        text::cat(R"("agent":")", name, R"(","command":")", command, R"(","explanation":"fast")"));
  };
  for (const char* command : {"a; b", "a | b", "a > b", "a $(b)", "a && b", " ", "a 'b"})
    EXPECT_TRUE(wasRefused(suggest("mate", command), "command")) << command;
  EXPECT_TRUE(wasRefused(suggest("mate", std::string(2001, 'c')), "2000"));
  EXPECT_TRUE(wasRefused(suggest(std::string(49, 'n'), "run"), "48"));
  EXPECT_TRUE(wasWritten(suggest(std::string(48, 'n'), "run")));
  EXPECT_TRUE(wasWritten(suggest("mate", "run --slow")));
  EXPECT_TRUE(wasWritten(suggest("mate", "run --fast {prompt}")));
  EXPECT_EQ(desk.board.suggestions.size(), 2u);
  EXPECT_EQ(desk.board.suggestions.find("mate")->command, "run --fast {prompt}");
}

}  // namespace
}  // namespace quillpost::board
