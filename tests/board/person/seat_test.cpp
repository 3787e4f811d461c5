#include "board/person/seat.h"

#include "board/verbs/person.h"
#include "harness/scripted_app.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
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

  /// Answers whoever connects; one that only looks whether somebody is there does not read it.
  void answers(const std::string& reply) {
    app.otherwise([reply](const std::string&) { return testing::reply(reply); });
  }
};

TEST(NewSeats, AreWhatTheBoardSaysAndTheFilesOfItsFolder) {
  SeatDesk desk;
  desk.answers(R"({"kind":"written","message":"export QUILLPOST_SESSION_ID='0123'\n",)"
               R"("panes":[{"handle":"KQ3"}],"threadTag":"T-abc","notice":"This seat."})");
  const auto seat = askForSeat(desk.line, desk.why);
  ASSERT_TRUE(seat) << desk.why;
  EXPECT_EQ(seat->handle, "KQ3");
  EXPECT_EQ(seat->session, "0123");
  EXPECT_EQ(seat->socket, desk.dir.pathOf("teamwork-b.sock"));
  EXPECT_EQ(seat->tokenFile, desk.dir.pathOf("teamwork-b.token"));
  desk.answers(R"({"kind":"written","message":"Took it away."})");
  EXPECT_TRUE(giveBack(desk.line, *seat, desk.why)) << desk.why;
  EXPECT_THAT(desk.app.requests(),
              Contains(AllOf(HasSubstr(R"("name":"T-abc")"), HasSubstr(R"("to":"KQ3")"))));
}

TEST(NewSeats, ABoardThatSaysLessIsOfAnotherVersion) {
  SeatDesk desk;
  desk.answers(R"({"kind":"written","message":"export QUILLPOST_SESSION_ID='0123'\n"})");
  EXPECT_FALSE(askForSeat(desk.line, desk.why));
  EXPECT_THAT(desk.why, HasSubstr("another version"));
}

}  // namespace
}  // namespace quillpost::board
