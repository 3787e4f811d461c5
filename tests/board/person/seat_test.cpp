#include "board/person/seat.h"

#include "board/verbs/person.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

/// A board that answers what it is told to.
struct SeatDesk {
  testing::TempDir dir;
  testing::ScriptedApp app{dir.pathOf("teamwork-b.sock")};
  Line line;
  std::string why;

  SeatDesk() {
    line.directory = dir.path();
    line.request.method = personSeat;
  }

  /// Every command looks whether somebody is there before it asks.
  void play(const std::string& reply, int looks) {
    for (int i = 0; i < looks; ++i) app.play(testing::closeWithoutReply());
    app.play(testing::reply(reply));
  }
};

TEST(NewSeats, AreWhatTheBoardSaysAndTheFilesOfItsFolder) {
  SeatDesk desk;
  desk.play(R"({"kind":"written","message":"export QUILLPOST_SESSION_ID='0123'\n",)"
            R"("panes":[{"handle":"KQ3"}],"threadTag":"T-abc","notice":"This seat."})",
            2);
  const auto seat = askForSeat(desk.line, desk.why);
  ASSERT_TRUE(seat) << desk.why;
  EXPECT_EQ(seat->handle, "KQ3");
  EXPECT_EQ(seat->session, "0123");
  EXPECT_EQ(seat->socket, desk.dir.pathOf("teamwork-b.sock"));
  EXPECT_EQ(seat->tokenFile, desk.dir.pathOf("teamwork-b.token"));
  desk.play(R"({"kind":"written","message":"Took it away."})", 1);
  EXPECT_TRUE(giveBack(desk.line, *seat, desk.why)) << desk.why;
  EXPECT_THAT(desk.app.requests().back(), HasSubstr(R"("name":"T-abc")"));
  EXPECT_THAT(desk.app.requests().back(), HasSubstr(R"("to":"KQ3")"));
}

TEST(NewSeats, ABoardThatSaysLessIsOfAnotherVersion) {
  SeatDesk desk;
  desk.play(R"({"kind":"written","message":"export QUILLPOST_SESSION_ID='0123'\n"})", 2);
  EXPECT_FALSE(askForSeat(desk.line, desk.why));
  EXPECT_THAT(desk.why, HasSubstr("another version"));
}

}  // namespace
}  // namespace quillpost::board
