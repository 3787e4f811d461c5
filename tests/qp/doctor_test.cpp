#include "qp/doctor.h"

#include "base/text.h"
#include "qp/command.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quillpost {
namespace {

struct DoctorTest : CommandTest {
  DoctorTest() {
    sessionID = "secret-session";
    bridge.token = "secret-token";
    otherwise = R"({"kind":"agents","threadTag":"T-1","agents":[{"id":"a","name":"","status":"",)"
                R"("canVerify":false,"activeClaims":0,)"
                R"("fingerprint":"#1",)"
                R"("handle":"KQ3","leaseSecondsRemaining":9,"isSelf":true}]})";
    places.tokenFilePath = home.write("a.token", "secret-token\n");
    ::chmod(places.tokenFilePath.c_str(), 0600);
    places.socketPath = home.pathOf("a.sock");
    ::mknod(places.socketPath.c_str(), S_IFSOCK | 0600, 0);
  }
  bool says(std::string_view words) const { return out.text.find(words) != std::string::npos; }
};

TEST_F(DoctorTest, FindsNothingWrongWhereAVerbWorks) {
  environment.variables["QUILLPOST_COLLAB_SOCKET"] = places.socketPath;
  EXPECT_EQ(run({"doctor"}), 0) << out.text;
  EXPECT_EQ(out.text.find("no  "), std::string::npos) << out.text;
  EXPECT_TRUE(says("mode 600"));
  EXPECT_TRUE(says("the board answers, thread T-1"));
  EXPECT_TRUE(says("this seat is registered as KQ3"));
  EXPECT_TRUE(says("ok  set: QUILLPOST_COLLAB_SOCKET; not set: QUILLPOST_COLLAB_TOKEN_FILE"));
  EXPECT_FALSE(says("secret")) << out.text;
}

TEST_F(DoctorTest, SaysWhatToDoAboutEachThingThatIsMissing) {
  sessionID = "";
  EXPECT_EQ(run({"doctor"}), 4);
  EXPECT_TRUE(says("no  QUILLPOST_SESSION_ID is not set"));
  places = {};
  bridge.token = "";
  EXPECT_EQ(run({"doctor"}), 4);
  EXPECT_TRUE(says("no  there is no token file at any place: start the app"));
  EXPECT_TRUE(says("no  there is no token: "));
  EXPECT_TRUE(says("no  no socket is named"));
}

TEST_F(DoctorTest, SaysWhenTheBoardDoesNotAnswer) {
  bridge.otherwise = [](const TeamworkRequest&) { return testing::FakeAnswer(); };
  EXPECT_EQ(run({"doctor"}), 4);
  EXPECT_TRUE(says("no  the board does not answer as it should: Couldn't reach"));
  places.socketPath = home.pathOf("missing.sock");
  EXPECT_EQ(run({"doctor"}), 4);
  EXPECT_TRUE(says("no  there is no socket at "));
}

TEST_F(DoctorTest, SaysThatASeatIsNotRegisteredYetWhereTheBoardKeepsItsRosterFromIt) {
  bridge.otherwise = [](const TeamworkRequest& request) {
    return testing::FakeAnswer{
        .response = testing::responseFrom(
            request.method == "list_agents"
                ? R"({"kind":"error","message":"This terminal has no agent on the roster."})"
                : R"({"kind":"tasks","tasks":[],"threadTag":"T-1"})")};
  };
  EXPECT_EQ(run({"doctor"}), 0) << out.text;
  EXPECT_TRUE(says("ok  the board answers, thread T-1"));
  EXPECT_TRUE(says("ok  this seat is not registered yet: qp register"));
}

TEST_F(DoctorTest, SaysWhatABoardSaysThatKnowsNoSuchSeat) {
  otherwise = R"({"kind":"error","message":"This board knows no such seat."})";
  EXPECT_EQ(run({"doctor"}), 4);
  EXPECT_TRUE(says("no  the board does not answer as it should: This board knows no such seat."));
}

TEST_F(DoctorTest, ShowsAPathThatSteersATerminalAsMarks) {
  places.socketPath = home.pathOf("a\x1b[31m.sock");
  run({"doctor"});
  EXPECT_EQ(out.text.find('\x1b'), std::string::npos);
}

TEST_F(DoctorTest, NamesAModeThatIsTooWide) {
  ::chmod(places.tokenFilePath.c_str(), 0644);
  EXPECT_EQ(run({"doctor"}), 0);
  EXPECT_TRUE(says("mode 644; others may read it: chmod 600 "));
}

TEST_F(DoctorTest, ColoursItsMarksWhereThatTellsSomething) {
  hasColour = true;
  run({"doctor"});
  EXPECT_TRUE(says("\x1b[32mok\x1b[0m"));
}

}  // namespace
}  // namespace quillpost
