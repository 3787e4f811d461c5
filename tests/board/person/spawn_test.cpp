#include "board/person/spawn.h"

#include "base/output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

int statusOf(std::vector<std::string> words) {
  std::string why;
  const auto spawned = spawn({std::move(words), {"WORD=told"}}, why);
  return spawned ? waitFor(spawned->pid) : -1;
}

TEST(Spawning, GivesTheStatusOrTheSignal) {
  EXPECT_EQ(statusOf({"sh", "-c", "exit 7"}), 7);
  EXPECT_EQ(statusOf({"sh", "-c", "kill -9 $$"}), 128 + SIGKILL);
  EXPECT_EQ(statusOf({"sh", "-c", "test \"$WORD\" = told && test -z \"$HOME\""}), 0);
}

TEST(Spawning, WhatIsNotThereIsToldOf) {
  std::string why;
  EXPECT_FALSE(spawn({{"no-such-program-here"}, {}}, why));
  EXPECT_THAT(why, HasSubstr("cannot run no-such-program-here: "));
}

TEST(Spawning, PipesAreItsStandardStreams) {
  std::string why;
  auto spawned = spawn({{"cat"}, {}, Streams::piped}, why);
  ASSERT_TRUE(spawned) << why;
  EXPECT_TRUE(FdOutput(spawned->input.get()).write("through\n"));
  spawned->input = UniqueFd();
  char bytes[16] = {};
  EXPECT_EQ(::read(spawned->output.get(), bytes, sizeof bytes), 8);
  EXPECT_STREQ(bytes, "through\n");
  EXPECT_EQ(waitFor(spawned->pid), 0);
}

}  // namespace
}  // namespace quillpost::board
