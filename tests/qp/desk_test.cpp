#include "qp/desk.h"

#include "base/text.h"
#include "qp/command.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using testing::responseFrom;

struct DeskTest : CommandTest {
  std::string answerAt(int64_t rev) const {
    return text::cat(R"({"kind":"written","threadTag":"T-1","rev":)", rev, "}");
  }
};

TEST_F(DeskTest, TakesUpWhatTheSeatRemembers) {
  const Surroundings around = surroundings();
  otherwise = answerAt(41);
  Desk(around).call("watch_task", {});
  const Desk next(around);
  EXPECT_EQ(next.seat().state.lastSeenRev, 41);
  EXPECT_EQ(SeatFile(around.memory, around.sessionID).load().threadTag, "T-1");
}

TEST_F(DeskTest, WritesNothingWhenNothingWasLearnt) {
  const Surroundings around = surroundings();
  otherwise = R"({"kind":"written"})";
  Desk(around).call("watch_task", {});
  EXPECT_FALSE(Desk(around).seat().state.hasCursor);
  EXPECT_EQ(testing::readFile(Desk(around).file().path()), "");
}

TEST_F(DeskTest, DoesNotTakeBackWhatAQuickerCommandHasSeen) {
  const Surroundings around = surroundings();
  Desk slow(around), quick(around);
  otherwise = answerAt(20);
  quick.call("watch_task", {});
  otherwise = answerAt(15);
  slow.call("watch_task", {});
  EXPECT_EQ(Desk(around).seat().state.lastSeenRev, 20);
}

}  // namespace
}  // namespace quillpost
