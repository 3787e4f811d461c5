#include "board/person/views.h"

#include "board/desk.h"
#include "board/person/sheets.h"
#include "json/decoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

/// Two threads over one store, whose moves are saved.
struct Views {
  std::string why;
  Store store = *Store::open(":memory:", why);
  Desk one, two;

  Views() {
    two.board.editThread().name = "other";
    two.board.editThread().id = "T-xyz";
  }

  TeamworkResponse ask(std::string_view method, std::string_view members = "") {
    const Board* const boards[] = {&one.board, &two.board};
    return view(boards, store, requestOf("", method, members), one.at);
  }
  Sheet sheet(std::string_view method, std::string_view members = "") {
    const TeamworkResponse response = ask(method, members);
    EXPECT_TRUE(wasWritten(response));
    return json::decode<Sheet>(response.message.value_or("")).value_or(Sheet{});
  }
};

TEST(Views, ListThreadsAndSeatsOfAll) {
  Views views;
  EXPECT_THAT(columnOf(views.sheet(personThreads), "threads", "thread"),
              ElementsAre("main", "other"));
  EXPECT_EQ(columnOf(views.sheet(personSeats), "seats", "handle").size(), 4u);
}

TEST(Views, OfOneThingTheFirstThreadThatHasItCounts) {
  Views views;
  views.one.add("first");
  views.two.add("second");
  views.two.add("third");
  EXPECT_THAT(columnOf(views.sheet(personShow, R"("taskID":"1")"), "task", "title"),
              ElementsAre("first"));
  EXPECT_THAT(columnOf(views.sheet(personShow, R"("taskID":"2")"), "task", "title"),
              ElementsAre("third"));
  EXPECT_TRUE(wasRefused(views.ask(personShow, R"("taskID":"t9")"), "Nothing here is called t9"));
}

TEST(Views, TheExtentIsAWord) {
  Views views;
  EXPECT_EQ(views.sheet(personShow, R"("status":"mine")").sections.size(), 1u);
  EXPECT_NE(views.sheet(personShow).find("thread"), nullptr);
  EXPECT_EQ(views.sheet(personShow).rev,
            views.one.board.counted().rev + views.two.board.counted().rev);
}

TEST(Views, TheHistoryIsReadFromTheFile) {
  Views views;
  Desk& desk = views.one;
  const std::string id = desk.add("first");
  desk.claim("BB3", id);
  desk.at.nowMs += 100'000;
  desk.person(personComment, Desk::on(id) + R"(,"body":"Go on")");
  ASSERT_TRUE(views.store.save(desk.board));
  const auto moves = [&](std::string_view members) {
    return columnOf(views.sheet(personHistory, members), "moves", "move");
  };
  EXPECT_THAT(moves(""), ElementsAre("agentJoined", "agentJoined", "taskAdded", "taskClaimed",
                                     "taskCommented"));
  EXPECT_THAT(moves(R"("taskID":"1")"), ElementsAre("taskAdded", "taskClaimed", "taskCommented"));
  EXPECT_THAT(moves(R"("to":"bb3")"), ElementsAre("agentJoined", "taskClaimed"));
  EXPECT_THAT(moves(R"("to":"you")"), ElementsAre("taskCommented"));
  EXPECT_THAT(moves(R"("holdMs":5000)"), ElementsAre("taskCommented"));
  EXPECT_TRUE(wasRefused(views.ask(personHistory, R"("taskID":"77")"), "t000077"));
  EXPECT_TRUE(wasRefused(views.ask(personHistory, R"("taskID":"nope")"), "nope"));
  EXPECT_TRUE(wasRefused(views.ask(personHistory, R"("to":"nobody")"), "nobody"));
}

TEST(Views, WithoutAThreadThereIsNothingToSeeButLists) {
  std::string why;
  const Store store = *Store::open(":memory:", why);
  EXPECT_TRUE(wasRefused(view({}, store, requestOf("", personShow), {}), "no thread yet"));
  EXPECT_TRUE(wasWritten(view({}, store, requestOf("", personThreads), {})));
  EXPECT_EQ(revisionOf({}), 0);
}

}  // namespace
}  // namespace quillpost::board
