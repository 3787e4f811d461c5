#include "board/person/watch.h"

#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

Sheet needing(const std::vector<std::string>& ids) {
  Sheet sheet{1, 1, {{"needs", {"id", "kind"}, {}}}};
  for (const std::string& id : ids) sheet.sections.front().add(id, "question");
  return sheet;
}

TEST(Watching, OnlyWhatDidNotNeedThePersonBeforeIsNew) {
  Needs known;
  EXPECT_EQ(newNeeds(needing({"t1"}), known).size(), 1u);
  EXPECT_EQ(newNeeds(needing({"t1"}), known).size(), 0u);
  const Sheet two = needing({"t1", "t2"});
  const auto fresh = newNeeds(two, known);
  ASSERT_EQ(fresh.size(), 1u);
  EXPECT_EQ(fresh.front()->cells.front(), "t2");
  EXPECT_EQ(newNeeds(needing({}), known).size(), 0u);
  EXPECT_EQ(newNeeds(needing({"t1"}), known).size(), 1u) << "it was answered, and asks again";
  EXPECT_EQ(newNeeds(Sheet{}, known).size(), 0u);
}

TEST(Watching, AScreenIsDrawnOverTheOneBeforeAndNeverScrolls) {
  EXPECT_EQ(screenOf("a\nb\n", 24), "\x1b[Ha\x1b[K\nb\x1b[K\n\x1b[J");
  EXPECT_EQ(screenOf("a\nb\nc\n", 4), "\x1b[Ha\x1b[K\nb\x1b[K\nc\x1b[K\n\x1b[J");
  const std::string cut = screenOf("a\nb\nc\nd\n", 4);
  EXPECT_THAT(cut, HasSubstr("b\x1b[K\n  ... 2 more lines"));
  EXPECT_EQ(std::ranges::count(cut, '\n'), 3);
}

TEST(Watching, ShowsWhatMovesAndRunsACommandForWhatIsNew) {
  CommandedBoard board;
  board.type({"goal", "Ship it"});
  const std::string told = board.directory().pathOf("told");
  testing::Process watch(
      {testing::boardProgram(),
       {"--dir", board.directory().path(), "watch", "--exec",
        "echo \"$QUILLPOST_NEED_ID $QUILLPOST_NEED_KIND $QUILLPOST_NEED\" >>" + told},
       {{"PATH", "/usr/bin:/bin"}}});
  const auto readUntil = [&](std::string_view words) {
    std::string seen;
    while (const auto line = watch.readLine(realPatience)) {
      seen += *line + "\n";
      if (line->find(words) != std::string::npos) return true;
    }
    ADD_FAILURE() << words << " never came: " << seen;
    return false;
  };
  readUntil("Goal: Ship it");
  board.type({"add", "Frame"});
  readUntil("t000001  Frame");
  board.type({"run", "sh", "-c",
              "qp register then claim t000001 then update t000001 --blocked --blocker-question "
              "'Oak or steel?' >/dev/null; qp propose-complete --acknowledge-open-tasks"});
  readUntil("> quillpost-board answer t000001 TEXT");
  const Instant deadline = SteadyClock().now() + realPatience;
  std::string all;
  while (isBefore(deadline) && all.find("goal proposal") == std::string::npos)
    all = testing::readFile(told);
  EXPECT_THAT(all, HasSubstr("t000001 question Oak or steel?\n"));
  EXPECT_THAT(all, HasSubstr("goal proposal The goal is complete?\n"));
}

TEST(Watching, WithoutABoardThereIsNothingToWatch) {
  const testing::TempDir dir;
  const Said said = typed(dir.path(), {"watch"});
  EXPECT_EQ(said.status, 1);
  EXPECT_THAT(said.errors, HasSubstr("quillpost-board serve"));
}

}  // namespace
}  // namespace quillpost::board
