#include "board/person/commands.h"

#include "base/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace quillpost::board {
namespace {

TEST(Commands, EachStandsOnceAndOptionsNameOnlyThese) {
  std::set<std::string_view> names;
  for (const Command& command : commands()) {
    EXPECT_TRUE(names.insert(command.name).second) << command.name;
    EXPECT_EQ(commandNamed(command.name), &command);
    EXPECT_NE(command.run, nullptr) << command.name;
    EXPECT_FALSE(command.gist.empty()) << command.name;
  }
  EXPECT_EQ(commandNamed("frobnicate"), nullptr);
  // There a name of two words is written as one.
  std::set<std::string> written;
  for (std::string name : std::set<std::string>(names.begin(), names.end())) {
    std::ranges::replace(name, ' ', '-');
    written.insert(name);
  }
  for (const Command& command : commands()) {
    std::set<std::string_view> taken;
    for (const Option& option : options()) {
      if (!takes(command, option)) continue;
      EXPECT_TRUE(taken.insert(option.name).second) << command.name << " " << option.name;
      EXPECT_EQ(optionOf(command, option.name), &option) << command.name << " " << option.name;
    }
  }
  for (const Option& option : options()) {
    EXPECT_TRUE(option.name.starts_with("--")) << option.name;
    if (option.commands.empty()) continue;
    for (const std::string_view name : text::split(option.commands, ' '))
      EXPECT_TRUE(written.contains(std::string(name)))
          << option.name << " is said to be of " << name;
  }
}

TEST(Commands, AnOptionIsWhatTheCommandMeansByIt) {
  const Option* const ofPage = optionOf(*commandNamed("page"), "--open");
  const Option* const ofShow = optionOf(*commandNamed("show"), "--open");
  ASSERT_NE(ofPage, nullptr);
  ASSERT_NE(ofShow, nullptr);
  EXPECT_EQ(optionOf(*commandNamed("serve"), "--open"), ofPage);
  EXPECT_EQ(optionOf(*commandNamed("watch"), "--open"), ofShow);
  EXPECT_NE(ofPage->gist, ofShow->gist);
  EXPECT_EQ(optionOf(*commandNamed("threads"), "--open"), nullptr);
  EXPECT_EQ(optionOf(*commandNamed("show"), "--frobnicate"), nullptr);
}

TEST(Commands, AUsageLineHasTheWordsAndTheCommandsOwnOptions) {
  EXPECT_EQ(usageOf(*commandNamed("confirm-goal")), "quillpost-board confirm-goal [--anyway]");
  EXPECT_EQ(usageOf(*commandNamed("history")),
            "quillpost-board history [TASK] [--json] [--agent HANDLE] [--since TIME]");
}

TEST(Commands, TheUsualFileLiesInTheBoardsFolder) {
  Line line;
  line.directory = "/d";
  EXPECT_EQ(usualDatabase(line), "/d/board.db");
}

}  // namespace
}  // namespace quillpost::board
