#include "qp/desk.h"

#include "base/text.h"
#include "qp/command.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quillpost {
namespace {

using testing::responseFrom;

template <class Name>
concept NamesATool = requires(Desk& desk, Name name, const json::TreeObject& arguments) {
  desk.call(name, arguments);
};
static_assert(NamesATool<ToolName> && NamesATool<const Tool&>);
static_assert(!NamesATool<std::string_view>, "a name that nobody has looked up is not called");

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

TEST_F(DeskTest, CallsAToolByItsRowAsByItsName) {
  const Surroundings around = surroundings();
  Desk desk(around);
  const ToolReply byName = desk.call("list_agents", {});
  EXPECT_EQ(sent("method"), "\"list_agents\"");
  const ToolReply byRow = desk.call(*findTool("list_agents"), {});
  EXPECT_EQ(sent("method"), "\"list_agents\"");
  EXPECT_EQ(bridge.requests.size(), 2u);
  EXPECT_EQ(byRow.text.sentences(), byName.text.sentences());
}

TEST_F(DeskTest, SaysNothingOfAMemoryThatCannotBeWrittenAndKeepsItToItsEnd) {
  const Surroundings around = surroundings();
  otherwise = answerAt(41);
  Desk desk(around);
  std::filesystem::remove_all(std::filesystem::path(desk.file().path()).parent_path());
  EXPECT_EQ(desk.call("watch_task", {}).end, CallEnd::answered);
  EXPECT_EQ(desk.seat().state.lastSeenRev, 41);
  EXPECT_EQ(err.text, "");
  EXPECT_FALSE(Desk(around).seat().state.hasCursor) << "the next command begins without it";
}

TEST_F(DeskTest, WritesNeitherTheTokenNorTheSessionDown) {
  const Surroundings around = surroundings();
  bridge.token = "token-4711";
  otherwise = answerAt(41);
  Desk desk(around);
  desk.call("watch_task", {});
  EXPECT_EQ(sent("token"), "\"token-4711\"");
  const std::string kept = testing::readFile(desk.file().path());
  EXPECT_NE(kept.find("41"), std::string::npos) << kept;
  EXPECT_EQ(kept.find("4711"), std::string::npos) << kept;
  EXPECT_EQ(kept.find(around.sessionID), std::string::npos) << kept;
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
