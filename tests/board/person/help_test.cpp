#include "board/person/help.h"

#include "base/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(BoardHelp, TellsOfEveryCommandOnLinesOfATerminal) {
  const std::string text = overview();
  for (const Command& command : commands()) EXPECT_THAT(text, HasSubstr(command.name));
  EXPECT_THAT(text, HasSubstr("--thread NAME"));
}

TEST(BoardHelp, OnACommandTellsOfItsOwnOptionsAndThoseOfAll) {
  const std::string text = helpOn(*commandNamed("watch"));
  EXPECT_THAT(text, HasSubstr("usage: quillpost-board watch [--mine] [--open] [--all] "
                              "[--exec COMMAND]\n"));
  EXPECT_THAT(text, HasSubstr("QUILLPOST_NEED_ID"));
  EXPECT_THAT(text, HasSubstr("--suffix NAME"));
  EXPECT_THAT(text, Not(HasSubstr("--lease")));
}

TEST(BoardHelp, PagesNameEveryCommandAndOption) {
  for (const Command& command : commands()) {
    EXPECT_THAT(manualPage(), HasSubstr(text::cat(".It Cm ", command.name)));
    EXPECT_THAT(commandList(), HasSubstr(text::cat("\n| `", command.name)));
  }
  for (const Option& option : options())
    EXPECT_THAT(manualPage(), HasSubstr(text::cat(".It Fl ", option.name.substr(1))));
}

TEST(BoardHelp, FitsATerminalOfTheUsualWidth) {
  std::string all = overview();
  for (const Command& command : commands()) all += helpOn(command);
  for (const std::string_view line : text::split(all, '\n'))
    EXPECT_TRUE(line.starts_with("usage: ") || line.size() <= 80) << line;
}

}  // namespace
}  // namespace quillpost::board
